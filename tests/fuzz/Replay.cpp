// Plays each file of a folder to the target that this is linked with.
#include "fuzz/Fuzzing.hpp"
#include "support/TemporaryDirectory.hpp"

int main(int, char** arguments) {
  int inputs = 0;
  for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
    const std::string input = ZAK::Tests::contentOf(file.path());
    std::fprintf(stderr, "%s\n", file.path().filename().c_str());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    ++inputs;
  }
  ZAK::Fuzzing::require(inputs > 0, "the folder holds inputs");
}

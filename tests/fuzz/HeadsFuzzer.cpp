// Heads of answers, line by line as a server sends them.
#include "fuzz/Fuzzing.hpp"
#include "http/ResponseHead.hpp"

#include <set>

using ZAK::Fuzzing::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input = ZAK::Fuzzing::text(data, size);
  ZAK::ResponseHead head;
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size() - 1) + 1;
    head.add(input.substr(0, end));
    input.remove_prefix(end);
  }
  const int status = head.statusCode().code();
  require(status == 0 || status >= 200, "an interim status is never final");
  const ZAK::HTTPHeaders headers = head.takeHeaders();
  require(status != 0 || headers.elements().empty(), "headers belong to a final answer");
  std::set<std::string> names;
  for (const auto& element : headers.elements()) {
    for (const std::string& text : {element.name, element.value}) {
      require(text.find('\n') == std::string::npos && !text.ends_with('\r'), "a header is one line", text);
    }
    require(headers.value(element.name) == element.value, "a name stands once", element.name);
  }
  return 0;
}

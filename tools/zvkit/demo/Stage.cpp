#include "Stage.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/domains/MemoriesDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace zvkit {
namespace {

namespace fs = std::filesystem;
using boost::asio::awaitable;

/// New Year's Eve, in the morning.
ZAK::Date firstMorning() {
  using namespace std::chrono;
  return sys_days(2023y / December / 31) + 9h;
}

ZAK::EmulatorOptions emulatorOptions(const std::shared_ptr<ZAK::ManualClock>& clock) {
  ZAK::EmulatorOptions options;
  options.now = [clock] { return clock->now(); };
  options.tokenLifetime = Stage::tokenLifetime;
  options.phoneCode = Stage::phoneCode;
  options.videoSize = Stage::videoSize;
  options.pageSize = 2;
  return options;
}

std::shared_ptr<const fs::path> makeDirectory() {
  std::string name = fs::temp_directory_path() / "zvkit-demo-XXXXXX";
  if (!::mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), "temporary directory");
  const auto remove = [](const fs::path* directory) {
    std::error_code ignored;
    fs::remove_all(*directory, ignored);
    delete directory;
  };
  return {new fs::path(name), remove};
}

}  // namespace

Stage::Stage(bool isVerbose)
    : files(makeDirectory()),
      clock(std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance, firstMorning())),
      emulator(emulatorOptions(clock)),
      logger(isVerbose ? std::make_shared<ConsoleLogger>() : nullptr),
      app(openApp(mia)) {}

std::shared_ptr<ZAK::MobileApiClient> Stage::openApp(const Phone& phone) {
  ZAK::Context context{.configuration = {ZAK::Configuration::Environment::sandbox},
                       .deviceInfo = ZAK::DeviceInfo("Linux", "1", phone.deviceId),
                       .authentifier = phone.firebase,
                       .logger = logger,
                       .executor = io.get_executor(),
                       .bundle = {.executable = "zvkit", .identifier = "com.zolvi.zvkit"},
                       .transport = emulator->transportOptions(),
                       .keychain = phone.keychain,
                       .directories = {.documents = *files / "Documents", .temporary = *files / "tmp"},
                       .clock = clock};
  return ZAK::MobileApiClient::create(std::move(context));
}

std::size_t Stage::exchanges(const std::string& grant) const {
  std::size_t count = 0;
  for (const auto& request : emulator->requests()) count += request.target.ends_with("/token?grant_type=" + grant);
  return count;
}

void Stage::chapter(std::string_view title) { printResult("\n" + std::string(title)); }

void Stage::step(const std::string& text) { printResult(std::to_string(++steps) + ". " + text); }

void Stage::check(bool holds, const char* claim) {
  if (!holds) throw std::logic_error(std::string("the demo went wrong: not so: ") + claim);
}

std::string jpeg(std::size_t size) {
  std::string bytes("\xFF\xD8\xFF\xE0", 4);
  while (bytes.size() + 2 < size) bytes += static_cast<char>(bytes.size() % 251);
  return bytes + "\xFF\xD9";
}

awaitable<void> uploadPicture(Stage* stage, std::string name, std::string picture, ZAK::UploadUrlDto target) {
  ZAK::UploadDomain uploads{stage->app};
  ProgressLine line = stage->progressLine();
  const auto sent = line.add(name + " ");
  co_await uploads.upload(std::move(picture), std::move(target), sent);
}

awaitable<std::string> downloaded(Stage* stage, ZAK::URL url) {
  ZAK::MemoriesDomain memories{stage->app};
  const fs::path copy = *stage->files / "copy.jpg";
  co_await memories.downloadPhoto(url, copy);
  std::ifstream content(copy, std::ios::binary);
  co_return std::string(std::istreambuf_iterator<char>(content), {});
}

}  // namespace zvkit

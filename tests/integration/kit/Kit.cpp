#include "Kit.hpp"

#include "Catalogue.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/json/JSONErrors.hpp>

#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>
namespace ZAK::Tests {

namespace {

using nlohmann::json;

constexpr const char* storedTokenKey = "zak_token_sandbox_store_key";

EmulatorOptions onClock(EmulatorOptions options, const std::shared_ptr<ManualClock>& clock) {
  options.now = [clock] { return clock->now(); };
  options.recordedRequests = 100'000;
  return options;
}

std::string described(const EmulatorRequest& request) {
  if (request.target.ends_with("/token?grant_type=firebase")) return "firebase";
  if (request.target.ends_with("/token?grant_type=refresh_token")) return "refresh";
  return request.method + " " + request.path + (request.header("Authorization") ? " signed" : "");
}

bool holds(const json& actual, const json& expected) {
  if (expected.is_object() && actual.is_object()) {
    const auto found = [&](const auto& item) {
      return actual.contains(item.key()) && holds(actual.at(item.key()), item.value());
    };
    const auto items = expected.items();
    return std::all_of(items.begin(), items.end(), found);
  }
  if (expected.is_array() && actual.is_array() && !expected.empty()) {
    return std::all_of(expected.begin(), expected.end(), [&](const json& wanted) {
      return std::any_of(actual.begin(), actual.end(), [&](const json& got) { return holds(got, wanted); });
    });
  }
  return actual == expected;
}

void fillIn(json& value, const std::string& directory, const json& latest) {
  if (value.is_structured()) {
    for (json& part : value) fillIn(part, directory, latest);
  }
  if (!value.is_string()) return;
  std::string& text = value.get_ref<std::string&>();
  if (const std::size_t at = text.find("DIR"); at != std::string::npos) text.replace(at, 3, directory);
  if (text.starts_with('$')) value = json(latest.at(json::json_pointer(text.substr(1))));
}

}  // namespace

void expectNoSecret(std::string_view text) {
  for (const char* secret : {"access-", "refresh-", "firebase-alice", "D8B13E62", "5E0A41C7"}) {
    EXPECT_EQ(text.find(secret), std::string_view::npos) << "a secret shows in: " << text;
  }
}

std::string outcome(const std::exception_ptr& failure) {
  std::string text = "ok";
  try {
    if (failure) std::rethrow_exception(failure);
  } catch (const ZAKError& error) {
    text = error.errorDto() ? "apiError: " : error.underlyingError() ? "httpError: " : "ZAKError: ";
    text += error.what();
  } catch (const boost::system::system_error& error) {
    text = error.code() == boost::asio::error::operation_aborted ? "cancelled" : error.what();
  } catch (const std::exception& error) {
    text = error.what();
  }
  expectNoSecret(text);
  return text;
}

void RecordingLogger::message(std::string_view text, std::optional<std::string_view> extra) {
  EXPECT_FALSE(extra);
  keep("message: ", text);
}

void RecordingLogger::warning(std::string_view text) { keep("warning: ", text); }

void RecordingLogger::error(std::string_view text, const std::exception* error) {
  if (error) expectNoSecret(error->what());
  keep("error: ", text);
}

void RecordingLogger::keep(std::string_view operation, std::string_view text) {
  if (!allowsRejectedBearer_ || !text.starts_with("[LoginValidator] validation failed.")) expectNoSecret(text);
  const std::scoped_lock lock(mutex_);
  lines_.push_back(std::string(operation).append(text));
}

Texts RecordingLogger::take() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(lines_, {});
}

void RecordingMonitor::didEnqueue(const HTTPRequest& request, const HTTPTransfer& transfer) {
  keep("enqueued ", request, transfer.url().host());
}

void RecordingMonitor::didCollectMetrics(const HTTPRequest& request, const HTTPMetrics& metrics) {
  keep("metrics ", request, std::to_string(metrics.attempt));
}

void RecordingMonitor::didComplete(const HTTPRequest& request, const HTTPError* error) {
  keep("completed ", request, error ? error->what() : "without error");
}

void RecordingMonitor::didReceive(const HTTPRequest& request, std::optional<std::string_view> body) {
  keep("received ", request, body ? "a body" : "no body");
}

void RecordingMonitor::keep(std::string_view operation, const HTTPRequest& request, std::string_view detail) {
  const std::scoped_lock lock(mutex_);
  events_.push_back(std::string(operation).append(request.description()).append(" ").append(detail));
}

Texts RecordingMonitor::take() {
  const std::scoped_lock lock(mutex_);
  return std::exchange(events_, {});
}

awaitable<std::string> Firebase::token(std::string user, bool fails) {
  if (fails) throw std::runtime_error("signed out of Firebase");
  co_return "firebase-" + user;
}

void Firebase::signOut() noexcept {
  EXPECT_FALSE(keychain_->data(storedTokenKey)) << "the kit's own token goes first";
  ++signOuts;
}

Kit::Kit(Options options)
    : clock(std::make_shared<ManualClock>(options.clock)),
      emulator(onClock(std::move(options.emulator), clock)),
      logger(std::make_shared<RecordingLogger>(!options.redactsSecrets)),
      redactsSecrets_(options.redactsSecrets) {
  client = MobileApiClient::create(context());
}

Context Kit::context() {
  return Context{.configuration = {Configuration::Environment::sandbox},
                 .deviceInfo = DeviceInfo("Linux", "12.4", "device-1"),
                 .authentifier = firebase,
                 .monitor = monitor,
                 .logger = logger,
                 .executor = runner.executor(),
                 .bundle = {"MyApp", "2.3.1", "com.example.app", "457"},
                 .transport = emulator->transportOptions(),
                 .keychain = keychain,
                 .directories = {files.path() / "documents", files.path() / "temporary"},
                 .redactsSecrets = redactsSecrets_,
                 .clock = clock};
}

awaitable<void> Kit::readBobsPost(ContentDomain content) {
  const NewPostDto post = co_await content.post(PostId("post-bob"));
  EXPECT_EQ(post.id, "post-bob");
}

std::string Kit::outcomeOf(awaitable<void> call) {
  start(std::move(call));
  runner.drain();
  if (outcomes->size() != 1) return "not ended";
  return std::exchange(*outcomes, {}).front();
}

void Kit::start(awaitable<void> call, boost::asio::cancellation_slot slot) {
  runner.start(std::move(call), slot, [outcomes = outcomes](const std::exception_ptr& failure) {  //
    outcomes->push_back(outcome(failure));
  });
}

void Kit::finish() {
  runner.context().restart();
  const bool finished = runner.runUntil([this] {
    if (clock->pendingWaits() > 0) clock->advance(std::chrono::minutes(1));
    return runner.context().stopped();
  });
  EXPECT_TRUE(finished) << "something is still in flight";
}

void Kit::signIn() {
  EXPECT_EQ(outcomeOf(reading()), "ok");
  EXPECT_EQ(traffic(), (Texts{"firebase", "GET /content/posts/post-bob signed"}));
  logger->take();
  monitor->take();
}

void Kit::actAs(const std::string& user) {
  firebase->user = user;
  keychain = std::make_shared<InMemoryKeychain>();
  client = MobileApiClient::create(context());
}

void Kit::perform(std::string_view operation, std::string arguments, std::string_view expected) {
  json given = json::parse(arguments);
  fillIn(given, files.path(), latest_);
  const json wanted = expected.empty() ? json() : json::parse(expected);
  try {
    const std::string result = runner.run(zvkit::find(operation, given).call(client, given, {}));
    EXPECT_EQ(result.empty(), expected.empty()) << result;
    latest_ = result.empty() ? json() : json::parse(result);
    EXPECT_TRUE(holds(latest_, wanted)) << result << "\nlacks " << expected;
  } catch (const ZAKError& error) {
    const ErrorDto* const refusal = error.errorDto();
    ASSERT_NE(refusal, nullptr) << error.what();
    const json actual = wanted.is_string() ? json(refusal->errorKey.value_or("")) : json(refusal->statusCode);
    EXPECT_EQ(actual, wanted) << error.what();
  }
}

std::vector<EmulatorRequest> Kit::requests() {
  std::vector<EmulatorRequest> all = emulator->requests();
  all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(seen_));
  seen_ += all.size();
  return all;
}

Texts Kit::traffic() {
  Texts texts;
  for (const EmulatorRequest& request : requests()) texts.push_back(described(request));
  return texts;
}

std::string Kit::storedToken() const {
  const std::optional<std::string> stored = keychain->data(storedTokenKey);
  return stored ? json::parse(*stored).at("access_token").get<std::string>() : std::string();
}

}  // namespace ZAK::Tests

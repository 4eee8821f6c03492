// Every error that a call of the kit can end with, and what to do about it. An emulator in this process stands in for
// the back-end and is told to misbehave. `adviceFor` is meant to be taken along.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/MemoriesDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/error.hpp>

#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <stop_token>

namespace {

// The server understood the call and refused it, in words of its own.
std::string adviceFor(const ZAK::ErrorDto& refusal) {
  const std::string words = "show \"" + refusal.message.value_or(refusal.error) + "\"";
  // Or no token could be had because the authentication server does not answer: only the log tells.
  if (refusal.statusCode == 401) return "try again, then sign in again";
  const std::optional<ZAK::ErrorDto::Key> key = refusal.key();  // absent too when it is one that the kit does not know
  if (!key) return words;
  switch (*key) {
    case ZAK::ErrorDto::Key::usernameNotAvailable:
      return "ask the user for another name";
    case ZAK::ErrorDto::Key::userAlreadyPosted:
      return "show the post of today that is there";
    case ZAK::ErrorDto::Key::tooManyDeletions:
    case ZAK::ErrorDto::Key::changeVisibilityTooMuch:
      return "tell the user to wait for the next moment";
    default:
      return words;
  }
}

// There was no answer, or none that says why.
std::string adviceFor(const ZAK::HTTPError& error) {
  using Kind = ZAK::HTTPError::Kind;
  switch (error.kind()) {
    case Kind::cannotFindHost:
    case Kind::cannotConnect:
      return "tell the user to check the connection";  // nothing was sent
    case Kind::timedOut:
    case Kind::connectionLost:
      return "try again if the operation may be repeated";  // it may have been carried out: its comment tells
    case Kind::status:
      return error.statusCode().code() >= 500 ? "try again later" : "report a bug";
    case Kind::secureConnectionFailed:
      return "check clock and network: somebody may be listening";
    case Kind::fileSystem:  // underlyingError() is a std::filesystem::filesystem_error, which names the file
      return "check the file";
    default:
      return "report a bug";
  }
}

std::string adviceFor(const ZAK::ZAKError& error) {
  switch (error.kind()) {
    case ZAK::ZAKError::apiError:
      return adviceFor(*error.errorDto());
    case ZAK::ZAKError::httpError:
      return adviceFor(*error.underlyingError());
    case ZAK::ZAKError::failedToUploadWithSignedUrl:
      return "ask for a new upload URL";  // what the storage answered is in the log
    case ZAK::ZAKError::failedToDownloadData:
      return "try again later";  // the reason is in the log
    case ZAK::ZAKError::noClientAvailable:
      return "keep the client as long as its groups";
    default:  // urlNotValid and uploadfileNameNotValid: an id or a name that no path can hold
      return "correct the argument";
  }
}

std::string adviceFor(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const ZAK::ZAKError& error) {
    return adviceFor(error);
  } catch (const ZAK::HTTPError& error) {  // by itself from uploads only
    return adviceFor(error);
  } catch (const ZAK::DecodingError&) {
    return "update the app";  // what() names the field, and quotes at most the value at fault
  } catch (const ZAK::EncodingError&) {
    return "correct the argument";
  } catch (const std::filesystem::filesystem_error&) {
    return "make room, or choose another place";
  } catch (const std::invalid_argument&) {  // from create
    return "correct the program";
  } catch (const boost::system::system_error& error) {
    if (error.code() == boost::asio::error::operation_aborted) return "nothing: it was cancelled";
    throw;
  }  // what is left comes from the host's own objects
}

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

void tell(const char* title, const std::function<void()>& attempt) {
  try {
    attempt();
    std::cout << title << " | did not fail\n";
  } catch (const std::exception& error) {
    std::cout << title << " | " << error.what() << " | " << adviceFor(std::current_exception()) << "\n";
  }
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend;
  const auto firebase = std::make_shared<Firebase>();
  ZAK::Context context;
  context.configuration.environment = ZAK::Configuration::Environment::sandbox;
  context.deviceInfo = ZAK::DeviceInfo("Linux", "6.1", "device-1");
  context.authentifier = firebase;
  context.bundle = {.executable = "Errors", .identifier = "com.example.errors"};
  context.transport = backend->transportOptions();
  context.transport.stallTimeout = std::chrono::seconds(1);
  context.keychain = std::make_shared<ZAK::InMemoryKeychain>();
  ZAK::BlockingClient tool(context);
  ZAK::ContentDomain content{tool.client()};
  ZAK::ProfileDomain profiles{tool.client()};
  ZAK::UploadDomain uploads{tool.client()};
  ZAK::MemoriesDomain memories{tool.client()};
  const ZAK::PostId post("post-bob");
  const ZAK::UserId bob("bob");
  // The next request meets the answer, whatever the back-end would have said.
  const auto answerNext = [&](int status, const char* body) {
    backend->inject({.answer = ZAK::EmulatorResponse{status, body}});
  };

  tell("a name that is taken", [&] { tool.run(profiles.updateUsername("bob")); });
  tell("no such post", [&] { tool.run(content.post(ZAK::PostId("gone"))); });
  tell("no post at all", [&] { tool.run(content.post(ZAK::PostId(".."))); });
  tell("not UTF-8", [&] { tool.run(content.addComment("\xff", post, bob)); });
  answerNext(503, "busy");
  tell("server overloaded", [&] { tool.run(content.post(post)); });
  answerNext(200, R"({"id": 5})");
  tell("another record", [&] { tool.run(content.post(post)); });
  backend->inject({.delay = std::chrono::hours(1)});
  tell("no answer in time", [&] { tool.run(content.addComment("Hi", post, bob)); });

  const ZAK::UploadUrlDto target = tool.run(uploads.askProfileQuibletUploadUrl());
  answerNext(403, "expired");
  tell("upload refused", [&] { tool.run(uploads.upload("a picture", target)); });
  tell("nothing to upload", [&] { tool.run(uploads.uploadFile("missing.jpg", target)); });
  const auto copy = std::filesystem::temp_directory_path() / "zvapikit-example-errors";
  answerNext(404, "");
  tell("download refused", [&] { tool.run(memories.downloadPhoto(target.url, copy)); });
  tell("nowhere to download to", [&] { tool.run(memories.downloadPhoto(target.url, copy / "missing" / "p")); });

  std::stop_source stop;
  stop.request_stop();
  tell("cancelled", [&] { tool.run(content.post(post), stop.get_token()); });
  tell("client without an executor", [&] { ZAK::MobileApiClient::create(context); });

  ZAK::Context offline = context;
  offline.transport.connectTo = {{"", 0, "127.0.0.1", 1}};
  auto other = std::make_unique<ZAK::BlockingClient>(offline);
  ZAK::ContentDomain orphan{other->client()};
  tell("no connection", [&] { other->run(orphan.addComment("Hi", post, bob)); });
  other.reset();
  tell("the client is gone", [&] { tool.run(orphan.post(post)); });
}

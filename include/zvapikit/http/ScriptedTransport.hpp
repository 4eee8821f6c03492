#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/http/Transport.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// Holds coroutines of a test back until the test lets them go, so that it sets the order of operations that run at
/// once. Copies are the same hold. It serves answers of a `ScriptedTransport`, and a test's own fakes by `wait`.
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API ScriptedHold {
 public:
  /// A hold that nobody has released.
  ScriptedHold();

  /// Lets everything held go; whatever comes later is not held at all.
  void release();
  /// How many coroutines are held at this moment.
  [[nodiscard]] std::size_t waiting() const;
  /// Resumes on the caller's executor after `release()`. Cancellation of any type ends it with `operation_aborted`. A
  /// held coroutine counts as work of its executor.
  [[nodiscard]] boost::asio::awaitable<void> wait() const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

/// How a `ScriptedTransport` ends one attempt.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API ScriptedAnswer {
 public:
  /// An answer of that status.
  explicit ScriptedAnswer(int status, std::string body = {}, HTTPHeaders headers = HTTPHeaders());
  /// An answer that holds a value as JSON, as the server writes it. An empty `URL` in it is written but not read back.
  /// \throws EncodingError when a part of the value has no JSON form.
  template <class T>
  static ScriptedAnswer json(const T& value, int status = 200) {
    return ScriptedAnswer(status, JSONEncoder().encode(value),
                          HTTPHeaders({HTTPHeaders::Element::contentType(MIMEType::json)}));
  }
  /// A failed transfer. It counts as begun to be answered when the error has a status.
  explicit ScriptedAnswer(const HTTPError& error);

  /// What the transport hands over; free to be changed before the answer is added.
  TransferResult result;
};

/// A transport for tests: answers requests from a script, without a network, and records them. It fills a request's
/// destination and tells of progress, of each body in one.
///
///     auto transport = std::make_shared<ScriptedTransport>();
///     transport->signIn();
///     transport->add(HTTPMethod::get, "/content/posts/p1", ScriptedAnswer(200, R"({"id":"p1"})"));
///     auto client = MobileApiClient::create({.executor = io.get_executor(), .testTransport = transport});
///
/// Thread safety: callable from any thread.
class ZVAPIKIT_API ScriptedTransport final : public Transport {
 public:
  /// A transport without a script.
  ScriptedTransport();
  ~ScriptedTransport() override;

  /// Answers a request that no answer of its own method and path waits for. Such answers serve in the order of their
  /// adding, each once.
  void add(ScriptedAnswer answer);
  /// The same, held back after the request was recorded.
  void add(ScriptedAnswer answer, ScriptedHold hold);
  /// Answers a request of that method whose URL's path ends with `path` (which starts with a `/`). Such answers go
  /// before those for any request, among themselves in the order of their adding, each once.
  void add(HTTPMethod method, std::string path, ScriptedAnswer answer);
  /// The same, held back after the request was recorded.
  void add(HTTPMethod method, std::string path, ScriptedAnswer answer, ScriptedHold hold);

  /// Plays the authentication server, for as long as the transport is used: a request for a token gets the next one of
  /// `access-1`, `access-2`, ..., each good for `lifetime`. Answers added for the path `/token` go before it, those for
  /// any request behind. Without it the client's own request for a token takes an answer from the script, or goes
  /// without one, and the host's request is sent without a token.
  void signIn(std::chrono::seconds lifetime = std::chrono::hours(1));

  /// As in `Transport`. The answer is taken, and the request recorded, when the awaitable begins to run.
  /// \throws std::logic_error when the script holds no answer for the request; the request is recorded all the same.
  boost::asio::awaitable<TransferResult> perform(TransferRequest request) override;

  /// All requests so far, as sent; those for tokens among them.
  [[nodiscard]] std::vector<TransferRequest> requests() const;
  /// Those of that method whose URL's path ends with `path`.
  [[nodiscard]] std::vector<TransferRequest> requests(HTTPMethod method, std::string_view path) const;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace ZAK

#include "http/BodyReader.hpp"
#include "http/Gate.hpp"
#include "http/TransferCounts.hpp"
#include "http/TransferError.hpp"
#include "platform/FileReplacement.hpp"

#include <zvapikit/http/ScriptedTransport.hpp>

#include <boost/asio/this_coro.hpp>

#include <algorithm>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace asio = boost::asio;

namespace ZAK {

struct ScriptedHold::State {
  std::mutex mutex;
  bool released = false;
  std::vector<std::weak_ptr<Gate>> gates;

  static asio::awaitable<void> wait(std::shared_ptr<State> state) {
    const auto gate = std::make_shared<Gate>(co_await asio::this_coro::executor);
    {
      const std::scoped_lock lock(state->mutex);
      if (state->released) co_return;
      state->gates.push_back(gate);
    }
    co_await Gate::wait(gate);
  }
};

ScriptedHold::ScriptedHold() : state_(std::make_shared<State>()) {}

void ScriptedHold::release() {
  const std::scoped_lock lock(state_->mutex);
  state_->released = true;
  for (const std::weak_ptr<Gate>& waiter : state_->gates) {
    if (const std::shared_ptr<Gate> gate = waiter.lock()) gate->open();
  }
  state_->gates.clear();
}

std::size_t ScriptedHold::waiting() const {
  const std::scoped_lock lock(state_->mutex);
  return static_cast<std::size_t>(std::count_if(state_->gates.begin(), state_->gates.end(),
                                                [](const std::weak_ptr<Gate>& gate) { return !gate.expired(); }));
}

asio::awaitable<void> ScriptedHold::wait() const { return State::wait(state_); }

ScriptedAnswer::ScriptedAnswer(int status, std::string body, HTTPHeaders headers) {
  result.response.statusCode = HTTPStatusCode(status);
  result.response.headers = std::move(headers);
  result.response.body = std::move(body);
  result.answerStarted = true;
}

ScriptedAnswer::ScriptedAnswer(const HTTPError& error) {
  result.response.statusCode = error.statusCode();
  result.response.error = error;
  result.answerStarted = result.response.hasAnswer();
}

namespace {

std::string pathOf(const TransferRequest& request) {
  const std::optional<URL> url = URL::parse(request.url);
  return url ? url->path() : std::string();
}

ScriptedAnswer tokenAnswer(std::size_t number, std::chrono::seconds lifetime) {
  const std::string suffix = std::to_string(number) + '"';
  return ScriptedAnswer(201, R"({"token_type":"bearer","scope":"","access_token":"access-)" + suffix +
                                 R"(,"refresh_token":"refresh-)" + suffix + R"(,"expires_in":)" +
                                 std::to_string(lifetime.count()) + "}");
}

}  // namespace

struct ScriptedTransport::State {
  struct Entry {
    std::optional<HTTPMethod> method;  // absent: any request
    std::string path;
    ScriptedAnswer answer;
    std::optional<ScriptedHold> hold;

    [[nodiscard]] bool isFor(HTTPMethod asked, const std::string& askedPath) const {
      return method == asked && askedPath.ends_with(path);
    }
  };

  mutable std::mutex mutex;
  std::deque<Entry> script;
  std::vector<TransferRequest> requests;
  std::optional<std::chrono::seconds> tokenLifetime;  // absent: nobody signs in
  std::size_t tokens = 0;

  void add(Entry entry) {
    const std::scoped_lock lock(mutex);
    script.push_back(std::move(entry));
  }

  Entry take(TransferRequest request) {
    const std::scoped_lock lock(mutex);
    const std::string path = pathOf(request);
    const HTTPMethod method = request.method;
    requests.push_back(std::move(request));
    auto found = std::find_if(script.begin(), script.end(), [&](const Entry& e) { return e.isFor(method, path); });
    if (found == script.end() && tokenLifetime && method == HTTPMethod::post && path.ends_with("/token")) {
      return Entry{{}, {}, tokenAnswer(++tokens, *tokenLifetime), {}};
    }
    if (found == script.end()) {
      found = std::find_if(script.begin(), script.end(), [](const Entry& entry) { return !entry.method; });
    }
    if (found == script.end()) {
      throw std::logic_error("ScriptedTransport: no answer for " + std::string(rawValue(method)) + " " + path);
    }
    Entry entry = std::move(*found);
    script.erase(found);
    return entry;
  }

  /// Reads the request's body, puts the answer's where it belongs, and tells of both.
  static void exchangeBodies(const TransferRequest& request, TransferResult& result) {
    if (result.response.error) return;
    TransferCounts counts;
    auto& response = result.response;
    try {
      if (request.body.isPresent()) {
        const std::uint64_t size = BodyReader(request.body).size();
        counts.sent = {size, size};
      }
      if (response.statusCode.isSuccess()) counts.received = {response.body.size(), response.body.size()};
      if (request.yieldsFile(response.statusCode)) {
        FileReplacement file(*request.destination);
        file.write(response.body);
        file.replace();
        response.file = request.destination;
        response.body.clear();
      }
    } catch (const std::filesystem::filesystem_error& failure) {
      response.error = fileError(failure, response.statusCode);
    }
    counts.tell(request.progress, {});
  }

  static asio::awaitable<TransferResult> perform(std::shared_ptr<State> state, TransferRequest request) {
    Entry entry = state->take(request);
    if (entry.hold) co_await entry.hold->wait();
    TransferResult result = std::move(entry.answer.result);
    exchangeBodies(request, result);
    co_return result;
  }
};

ScriptedTransport::ScriptedTransport() : state_(std::make_shared<State>()) {}
ScriptedTransport::~ScriptedTransport() = default;

void ScriptedTransport::add(ScriptedAnswer answer) { state_->add({{}, {}, std::move(answer), {}}); }

void ScriptedTransport::add(ScriptedAnswer answer, ScriptedHold hold) {
  state_->add({{}, {}, std::move(answer), std::move(hold)});
}

void ScriptedTransport::add(HTTPMethod method, std::string path, ScriptedAnswer answer) {
  state_->add({method, std::move(path), std::move(answer), {}});
}

void ScriptedTransport::add(HTTPMethod method, std::string path, ScriptedAnswer answer, ScriptedHold hold) {
  state_->add({method, std::move(path), std::move(answer), std::move(hold)});
}

void ScriptedTransport::signIn(std::chrono::seconds lifetime) {
  const std::scoped_lock lock(state_->mutex);
  state_->tokenLifetime = lifetime;
}

asio::awaitable<TransferResult> ScriptedTransport::perform(TransferRequest request) {
  return State::perform(state_, std::move(request));
}

std::vector<TransferRequest> ScriptedTransport::requests() const {
  const std::scoped_lock lock(state_->mutex);
  return state_->requests;
}

std::vector<TransferRequest> ScriptedTransport::requests(HTTPMethod method, std::string_view path) const {
  std::vector<TransferRequest> found = requests();
  std::erase_if(found, [&](const TransferRequest& r) { return r.method != method || !pathOf(r).ends_with(path); });
  return found;
}

}  // namespace ZAK

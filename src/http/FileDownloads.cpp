#include "http/FileDownloads.hpp"

#include "http/Cancellation.hpp"
#include "http/Gate.hpp"
#include "http/TransferCounts.hpp"

#include <boost/asio/this_coro.hpp>

#include <optional>
#include <vector>

namespace asio = boost::asio;

namespace ZAK {

/// A transfer under way, as those see it who wait for it.
class FileDownloads::Download {
 public:
  explicit Download(std::string uri) : uri_(std::move(uri)) {}

  /// What is fetched, with its query.
  [[nodiscard]] const std::string& uri() const noexcept { return uri_; }

  struct State {
    TransferCounts::Direction received{};
    bool ended = false;
    /// Null when the transfer was given up.
    std::shared_ptr<const HTTPResponse> response{};
  };

  /// The state when there is news; else the gate is opened when there is some.
  std::optional<State> news(const TransferCounts::Direction& told, const std::shared_ptr<Gate>& gate) {
    const std::scoped_lock lock(mutex_);
    if (state_.ended || state_.received != told) return state_;
    waiting_.push_back(gate);
    return std::nullopt;
  }

  void advance(std::uint64_t done, std::optional<std::uint64_t> total) {
    change([&](State& state) { state.received = {done, total}; });
  }
  void end(std::shared_ptr<const HTTPResponse> response) {
    change([&](State& state) {
      state.ended = true;
      state.response = std::move(response);
    });
  }

 private:
  template <class Change>
  void change(const Change& apply) {
    const std::scoped_lock lock(mutex_);
    apply(state_);
    for (const auto& waiting : waiting_) {
      if (const auto gate = waiting.lock()) gate->open();
    }
    waiting_.clear();
  }

  const std::string uri_;
  std::mutex mutex_;
  State state_;
  std::vector<std::weak_ptr<Gate>> waiting_;
};

/// A call's part in a transfer. The first to come leads; when it goes, however that is, the transfer has ended.
class FileDownloads::Lead {
 public:
  Lead(std::shared_ptr<FileDownloads> downloads, std::string key, const std::string& uri)
      : downloads_(std::move(downloads)), key_(std::move(key)) {
    const std::scoped_lock lock(downloads_->mutex_);
    const auto [position, isFirst] = downloads_->running_.try_emplace(key_);
    if (isFirst) position->second = std::make_shared<Download>(uri);
    download_ = position->second;
    leads_ = isFirst;
  }
  Lead(const Lead&) = delete;
  Lead& operator=(const Lead&) = delete;
  ~Lead() {
    if (leads_) end(nullptr);
  }

  void end(std::shared_ptr<const HTTPResponse> response) {
    leads_ = false;
    {
      // First, so that who calls from now on finds no transfer that has ended.
      const std::scoped_lock lock(downloads_->mutex_);
      downloads_->running_.erase(key_);
    }
    download_->end(std::move(response));
  }

  [[nodiscard]] bool leads() const noexcept { return leads_; }
  [[nodiscard]] const std::shared_ptr<Download>& download() const noexcept { return download_; }

 private:
  const std::shared_ptr<FileDownloads> downloads_;
  const std::string key_;
  std::shared_ptr<Download> download_;
  bool leads_ = false;
};

asio::awaitable<HTTPResponse> FileDownloads::fetch(std::shared_ptr<HTTPClient> client, HTTPRequest request) {
  return fetchShared(shared_from_this(), std::move(client), std::move(request));
}

asio::awaitable<HTTPResponse> FileDownloads::fetchShared(std::shared_ptr<FileDownloads> self,
                                                         std::shared_ptr<HTTPClient> client, HTTPRequest request) {
  co_await acceptAllCancellation();
  const std::string uri = request.expandedURI();
  const std::string key = request.destination->lexically_normal().native() + '\n' + uri.substr(0, uri.find('?'));
  for (;;) {
    auto part = std::make_shared<Lead>(self, key, uri);
    if (part->leads()) co_return co_await lead(std::move(part), std::move(client), std::move(request));
    const auto response = co_await follow(part->download(), request.progress.received);
    // Another signature may have expired where this one has not.
    const bool holdsForThis = response && (!response->error || part->download()->uri() == uri);
    if (holdsForThis) co_return *response;
  }
}

asio::awaitable<HTTPResponse> FileDownloads::lead(std::shared_ptr<Lead> lead, std::shared_ptr<HTTPClient> client,
                                                  HTTPRequest request) {
  request.progress.received = [download = lead->download(), own = std::move(request.progress.received)](
                                  std::uint64_t done, std::optional<std::uint64_t> total) {
    download->advance(done, total);
    if (own) own(done, total);
  };
  const auto response = std::make_shared<const HTTPResponse>(co_await client->fetch(std::move(request)));
  lead->end(response);
  co_return *response;
}

asio::awaitable<std::shared_ptr<const HTTPResponse>> FileDownloads::follow(std::shared_ptr<Download> download,
                                                                           HTTPProgress::Function received) {
  const auto executor = co_await asio::this_coro::executor;
  TransferCounts::Direction told;
  for (;;) {
    const auto gate = std::make_shared<Gate>(executor);
    const std::optional<Download::State> state = download->news(told, gate);
    if (!state) {
      co_await Gate::wait(gate);
      continue;
    }
    if (state->received != told && received) received(state->received.done, state->received.total);
    told = state->received;
    if (state->ended) co_return state->response;
  }
}

}  // namespace ZAK

#include "Listener.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>

namespace ZAK {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

/// How long to wait when the process has no descriptor left for a connection.
constexpr auto breather = std::chrono::milliseconds(10);

}  // namespace

Listener::Listener(asio::any_io_executor executor, int port, ServerIdentity identity, std::shared_ptr<Backend> backend)
    : executor_(executor),
      identity_(std::move(identity)),
      backend_(std::move(backend)),
      acceptor_(asio::make_strand(executor),
                tcp::endpoint(asio::ip::address_v4::loopback(), static_cast<asio::ip::port_type>(port))),
      timer_(acceptor_.get_executor()),
      port_(acceptor_.local_endpoint().port()) {}

void Listener::start() { asio::co_spawn(acceptor_.get_executor(), run(shared_from_this()), asio::detached); }

asio::awaitable<void> Listener::run(std::shared_ptr<Listener> self) {
  for (;;) {
    boost::system::error_code error;
    tcp::socket socket = co_await self->acceptor_.async_accept(asio::make_strand(self->executor_),
                                                               asio::redirect_error(asio::use_awaitable, error));
    if (!self->acceptor_.is_open()) co_return;
    if (error) {
      self->timer_.expires_after(breather);
      co_await self->timer_.async_wait(asio::redirect_error(asio::use_awaitable, error));
      continue;
    }
    socket.set_option(tcp::no_delay(true), error);
    self->backend_->countConnection();
    auto connection = std::make_shared<Connection>(std::move(socket), self->identity_.context, self->backend_);
    if (self->adopt(connection)) connection->start();
  }
}

bool Listener::adopt(const std::shared_ptr<Connection>& connection) {
  const std::scoped_lock lock(mutex_);
  if (stopped_) return false;
  std::erase_if(connections_, [](const std::weak_ptr<Connection>& other) { return other.expired(); });
  connections_.push_back(connection);
  return true;
}

void Listener::stop() {
  const std::scoped_lock lock(mutex_);
  if (std::exchange(stopped_, true)) return;
  asio::post(acceptor_.get_executor(), [self = shared_from_this()] {
    boost::system::error_code ignored;
    self->acceptor_.close(ignored);
    self->timer_.cancel();
  });
  for (const std::weak_ptr<Connection>& weak : connections_) {
    if (const auto connection = weak.lock()) connection->stop();
  }
}

}  // namespace ZAK

#include "Connection.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include <algorithm>

namespace ZAK {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using Ending = EmulatorFault::Ending;

namespace {

constexpr std::uint64_t maximumRequestBody = std::uint64_t{64} << 20;
/// How long a client may take to answer the end of TLS.
constexpr auto farewell = std::chrono::milliseconds(100);

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, asio::ssl::context& context, std::shared_ptr<Backend> backend)
    : stream_(std::move(socket), context), timer_(stream_.get_executor()), backend_(std::move(backend)) {}

void Connection::start() { asio::co_spawn(stream_.get_executor(), run(shared_from_this()), asio::detached); }

void Connection::stop() {
  asio::post(stream_.get_executor(), [self = shared_from_this()] {
    self->stopped_ = true;
    self->timer_.cancel();
    self->closeSocket();
  });
}

void Connection::closeSocket() {
  boost::system::error_code ignored;
  stream_.next_layer().close(ignored);
}

asio::awaitable<void> Connection::run(std::shared_ptr<Connection> self) {
  try {
    co_await self->stream_.async_handshake(asio::ssl::stream_base::server, asio::use_awaitable);
    for (bool open = true; open;) {
      Received received = co_await self->receive();
      Delivery delivery = self->backend_->serve(std::move(received.request));
      const Ending ending =
          delivery.ending == Ending::keepAlive && !received.keepAlive ? Ending::close : delivery.ending;
      co_await self->pause(delivery.delay);
      co_await self->send(std::move(delivery));
      open = ending == Ending::keepAlive;
      if (!open) co_await self->end(ending);
    }
  } catch (const boost::system::system_error&) {
    self->closeSocket();  // the client went away, spoke nonsense, or the emulator stopped
  }
}

asio::awaitable<Connection::Received> Connection::receive() {
  http::request_parser<http::string_body> parser;
  parser.body_limit(maximumRequestBody);
  co_await http::async_read(stream_, buffer_, parser, asio::use_awaitable);
  http::request<http::string_body> message = parser.release();
  Received received;
  received.keepAlive = message.keep_alive();
  received.request.method = message.method_string();
  received.request.host = message[http::field::host];
  received.request.target = message.target();
  for (const auto& field : message) received.request.headers.emplace_back(field.name_string(), field.value());
  received.request.body = std::move(message.body());
  co_return received;
}

asio::awaitable<void> Connection::pause(std::chrono::milliseconds duration) {
  if (duration <= std::chrono::milliseconds::zero()) co_return;
  timer_.expires_after(duration);
  co_await timer_.async_wait(asio::use_awaitable);
  if (stopped_) throw boost::system::system_error(asio::error::operation_aborted);
}

asio::awaitable<void> Connection::send(Delivery delivery) {
  const std::string& bytes = delivery.bytes;
  for (std::size_t sent = 0; sent < bytes.size();) {
    if (sent > 0) co_await pause(delivery.interval);
    const std::size_t count = std::min(delivery.chunk, bytes.size() - sent);
    sent += co_await asio::async_write(stream_, asio::buffer(bytes.data() + sent, count), asio::use_awaitable);
  }
}

asio::awaitable<void> Connection::end(Ending ending) {
  if (ending == Ending::reset) stream_.next_layer().set_option(asio::socket_base::linger(true, 0));
  if (ending == Ending::close) {
    timer_.expires_after(farewell);
    timer_.async_wait([self = shared_from_this()](boost::system::error_code error) {
      if (!error) self->closeSocket();
    });
    boost::system::error_code ignored;
    co_await stream_.async_shutdown(asio::redirect_error(asio::use_awaitable, ignored));
    timer_.cancel();
  }
  closeSocket();
}

}  // namespace ZAK

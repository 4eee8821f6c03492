#include "Kit.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace ZAK::Tests {
namespace {

namespace asio = boost::asio;
using asio::use_awaitable;
using asio::ip::tcp;

/// An HTTP proxy that tunnels connections (CONNECT of RFC 9110) to ports of this machine.
class Proxy {
 public:
  Proxy() {
    asio::co_spawn(context_, serve(&acceptor_, &tunnels), asio::detached);
    thread_ = std::thread([this] { context_.run(); });
  }
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;
  ~Proxy() {
    context_.stop();
    thread_.join();
  }

  [[nodiscard]] std::string url() const {
    return "http://127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port());
  }

  std::atomic<int> tunnels = 0;

 private:
  using Socket = std::shared_ptr<tcp::socket>;

  static awaitable<void> serve(tcp::acceptor* acceptor, std::atomic<int>* tunnels) {
    for (;;) {
      auto client = std::make_shared<tcp::socket>(co_await acceptor->async_accept(use_awaitable));
      asio::co_spawn(acceptor->get_executor(), open(std::move(client), tunnels), asio::detached);
    }
  }

  static awaitable<void> open(Socket client, std::atomic<int>* tunnels) {
    std::string head;
    co_await asio::async_read_until(*client, asio::dynamic_buffer(head), "\r\n\r\n", use_awaitable);
    const auto line = head.substr(0, head.find(" HTTP/"));
    const auto port = static_cast<unsigned short>(std::stoi(line.substr(line.rfind(':') + 1)));
    auto server = std::make_shared<tcp::socket>(client->get_executor());
    const tcp::endpoint target(asio::ip::address_v4::loopback(), port);
    co_await server->async_connect(target, use_awaitable);
    ++*tunnels;
    const std::string_view answer = "HTTP/1.1 200 OK\r\n\r\n";
    co_await asio::async_write(*client, asio::buffer(answer), use_awaitable);
    asio::co_spawn(client->get_executor(), pass(client, server), asio::detached);
    co_await pass(server, client);
  }

  static awaitable<void> pass(Socket from, Socket to) {
    std::array<char, 4096> bytes;
    for (;;) {
      const auto count = co_await from->async_read_some(asio::buffer(bytes), use_awaitable);
      co_await asio::async_write(*to, asio::buffer(bytes.data(), count), use_awaitable);
    }
  }

  asio::io_context context_{1};
  tcp::acceptor acceptor_{context_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
  std::thread thread_;
};

// What the proxy is asked must not be taken for a first sending of a request that may be sent once only.
TEST(KitProxy, CarriesRequestsThatMustNotBeRepeated) {
  Kit kit;
  Proxy proxy;
  Context context = kit.context();
  context.transport.proxy = proxy.url();
  kit.client = MobileApiClient::create(std::move(context));
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "ok");
  EXPECT_EQ(kit.traffic(), (Texts{"firebase", "GET /content/posts/post-bob signed"}));
  EXPECT_GT(proxy.tunnels, 0);

  context = kit.context();
  context.transport.proxy = "http://127.0.0.1:1";
  kit.client = MobileApiClient::create(std::move(context));
  EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: connection refused: the proxy for mobile-dev.zolvi.example");
}

}  // namespace
}  // namespace ZAK::Tests

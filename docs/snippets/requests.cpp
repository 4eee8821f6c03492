#include "Snippets.hpp"

#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/http/HTTPClient.hpp>

#include <array>
#include <optional>

namespace {

// A record of the host's own: optional fields may be absent or null, the others must be there.
struct Greeting {
  std::string text;
  std::optional<std::string> language;
  static constexpr auto jsonFields() {
    return std::array{ZAK::JSONField::of<&Greeting::text>("text"), ZAK::JSONField::of<&Greeting::language>("language")};
  }
};

boost::asio::awaitable<void> greet(std::shared_ptr<ZAK::MobileApiClient> client, std::string user, Greeting greeting) {
  ZAK::HTTPRequest request(ZAK::HTTPMethod::post, "/greetings/{user}", {{"user", user}});
  request.addParameter("loud", "true");
  request.body = ZAK::HTTPBody::json(greeting);
  co_await client->fire<ZAK::EmptyDto>(std::move(request), true);
}

boost::asio::awaitable<std::string> read(std::shared_ptr<ZAK::MobileApiClient> client, ZAK::URL url) {
  const std::shared_ptr<ZAK::HTTPClient> raw = client->buildRaw();
  const ZAK::HTTPResponse response = co_await raw->fetch(ZAK::HTTPRequest(ZAK::HTTPMethod::get, url));
  if (response.error) throw *response.error;  // fetch throws neither for a 404 nor for a lost connection
  co_return response.body;
}

boost::asio::awaitable<void> ask(std::shared_ptr<ZAK::MobileApiClient> client, ZAK::URL url) {
  const Greeting greeting{.text = "Hi", .language = "en"};
  co_await greet(client, "bob", greeting);
  const std::string page = co_await read(client, url);
  require(page == "a page", "another page");
}

}  // namespace

void requests() {
  ZAK::EmulatorThread backend;
  const std::size_t greetings = backend->inject(
      {.server = ZAK::EmulatorServer::mobile, .path = "/greetings/{user}", .answer = ZAK::EmulatorResponse{200, ""}});
  backend->inject({.server = ZAK::EmulatorServer::storage, .answer = ZAK::EmulatorResponse{200, "a page"}});
  boost::asio::io_context io;
  const auto firebase = std::make_shared<Alice>();
  const auto client = ZAK::MobileApiClient::create(contextFor(backend, io, firebase));
  run(io, ask(client, ZAK::URL::parse("https://storage.zolvi.example/zolvi-photos-dev/page").value()));
  require(backend->timesMet(greetings) == 1, "nobody was greeted");
}

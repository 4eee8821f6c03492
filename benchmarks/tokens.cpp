// Ten thousand callers who find the token expired share one exchange; what that costs each of them, against callers
// who find a valid one.

#include "Measure.hpp"

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/EmptyDto.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/http/Transport.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstdlib>

namespace {

namespace asio = boost::asio;

constexpr int pairs = 11;
constexpr int callers = 10'000;

/// Answers at once, token requests with a token.
class Answers final : public ZAK::Transport {
 public:
  asio::awaitable<ZAK::TransferResult> perform(ZAK::TransferRequest request) override {
    const bool isExchange = request.method == ZAK::HTTPMethod::post;
    ++(isExchange ? exchanges : calls);
    ZAK::TransferResult result;
    result.response.statusCode = ZAK::HTTPStatusCode(200);
    result.response.body =
        isExchange ? R"({"token_type":"Bearer","access_token":"a2","expires_in":3600,"refresh_token":"r2","scope":""})"
                   : "{}";
    return answer(std::move(result));
  }

  int exchanges = 0;
  int calls = 0;

 private:
  static asio::awaitable<ZAK::TransferResult> answer(ZAK::TransferResult result) { co_return result; }
};

asio::awaitable<void> call(std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::HTTPRequest request(ZAK::HTTPMethod::get, "/users/me");
  co_await client->fire<ZAK::EmptyDto>(std::move(request), true);
}

/// Seconds of CPU a caller, and the exchanges there were.
std::pair<double, int> measured(std::chrono::seconds validity) {
  asio::io_context io{1};
  const auto answers = std::make_shared<Answers>();
  const auto keychain = std::make_shared<ZAK::InMemoryKeychain>();
  const auto expiry = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()) + validity;
  const ZAK::TokenDto token("Bearer", "a1", expiry, "r1", "", std::nullopt);
  keychain->set(ZAK::JSONEncoder(ZAK::JSONDateStrategy::secondsSince2001).encode(token),
                "zak_token_production_store_key");
  ZAK::Context context;
  context.executor = io.get_executor();
  context.testTransport = answers;
  context.keychain = keychain;
  const auto client = ZAK::MobileApiClient::create(std::move(context));
  const double begin = Bench::threadSeconds();
  for (int i = 0; i < callers; ++i) {
    asio::co_spawn(io, call(client), [](std::exception_ptr failure) {
      if (failure) std::rethrow_exception(failure);
    });
  }
  io.run();
  const double spent = Bench::threadSeconds() - begin;
  if (answers->calls != callers) std::abort();
  return {spent / callers, answers->exchanges};
}

}  // namespace

int main() {
  measured(std::chrono::hours(1));
  for (int pair = 0; pair < pairs; ++pair) {
    const auto [expired, exchanges] = measured(-std::chrono::hours(1));
    const auto [valid, none] = measured(std::chrono::hours(1));
    if (none != 0) std::abort();
    Bench::report("tokens", pair, "expired", expired);
    Bench::report("tokens", pair, "valid", valid);
    Bench::report("token-exchanges", pair, "kit", exchanges);
  }
}

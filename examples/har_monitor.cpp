// Writes the kit's traffic to a HAR file (HTTP Archive 1.2), which the network panel of a browser opens. Tokens and
// signatures stay out of it, and so do bodies unless they are asked for; what is left is still about people.

#include <zvapikit/core/BlockingClient.hpp>
#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/Info.hpp>
#include <zvapikit/core/MonitorDelegate.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/json/JSONPrinting.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <stdexcept>

namespace {

using nlohmann::json;
using std::chrono::microseconds;

double milliseconds(microseconds duration) { return static_cast<double>(duration.count()) / 1000; }

// How one attempt spent its time. HAR counts TLS as part of connecting; -1 stands for what did not take place.
json timings(const ZAK::HTTPMetrics& m) {
  const auto phase = [](microseconds from, microseconds to) { return to > from ? milliseconds(to - from) : -1; };
  const microseconds connected = std::max({m.nameLookup, m.connect, m.secureConnect});
  const microseconds answered = m.firstByte > connected ? m.firstByte : m.total;
  return {{"blocked", -1},
          {"dns", phase({}, m.nameLookup)},
          {"connect", phase(m.nameLookup, connected)},
          {"ssl", phase(m.connect, m.secureConnect)},
          {"send", 0},  // the metrics do not tell sending from waiting
          {"wait", milliseconds(answered - connected)},
          {"receive", milliseconds(m.total - answered)}};
}

class HarMonitor : public ZAK::MonitorDelegate {
 public:
  explicit HarMonitor(bool keepsBodies = false) : keepsBodies_(keepsBodies) {}

  // The address of its request tells a call from others until it has completed. One that is cancelled never does: what
  // is left of it is overwritten when the address comes up again.
  void didEnqueue(const ZAK::HTTPRequest& request, const ZAK::HTTPTransfer& transfer) override {
    const std::scoped_lock lock(mutex_);
    calls_.insert_or_assign(&request, Call{transfer.url()});
  }

  // The end of an attempt. Each is an entry of its own, as in a browser.
  void didCollectMetrics(const ZAK::HTTPRequest& request, const ZAK::HTTPMetrics& m) override {
    const auto start = std::chrono::floor<microseconds>(std::chrono::system_clock::now()) - m.total;
    const std::scoped_lock lock(mutex_);
    Call& call = calls_.at(&request);
    call.entry = entries_.size();
    entries_.push_back({{"startedDateTime", ZAK::JavaScriptISO8601DateFormatter::string(start)},
                        {"time", milliseconds(m.total)},
                        {"request", asked(request, m, call)},
                        {"response", answered(m)},
                        {"cache", json::object()},
                        {"timings", timings(m)}});
  }

  // The last attempt's answer, then the end of the call.
  void didReceive(const ZAK::HTTPRequest& request, std::optional<std::string_view> body) override {
    const std::scoped_lock lock(mutex_);
    const Call& call = calls_.at(&request);
    json& content = entries_.at(call.entry)["response"]["content"];
    content["size"] = body.value_or("").size();  // after decompression
    if (body && keepsBodies_) content["text"] = readable(*body);
  }
  void didComplete(const ZAK::HTTPRequest& request, const ZAK::HTTPError* error) override {
    const std::scoped_lock lock(mutex_);
    if (error) entries_.at(calls_.at(&request).entry)["comment"] = error->description();
    calls_.erase(&request);
  }

  void save(const std::filesystem::path& file) const {
    const std::scoped_lock lock(mutex_);
    const json creator = {{"name", "ZVApiKit"}, {"version", ZAK::Info::version()}};
    const json log = {{"version", "1.2"}, {"creator", creator}, {"entries", entries_}};
    std::ofstream out(file);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    out << json{{"log", log}}.dump(2, ' ', false, json::error_handler_t::replace);
  }

 private:
  struct Call {
    ZAK::URL url;
    std::size_t entry = 0;
  };

  // Bodies hold tokens and signed URLs as well; the kit knows where.
  static std::string readable(std::string_view body) { return ZAK::prettyPrinted(body, ZAK::JSONPrinting::redacted); }

  // The query of an absolute URL may be a signature: shown is what was added to the URL, not what it came with. The
  // headers are those of this request; the ones that all requests share are not told.
  json asked(const ZAK::HTTPRequest& request, const ZAK::HTTPMetrics& m, const Call& call) const {
    json query = json::array();
    for (const ZAK::URLQueryItem& item : request.queryItems()) {
      query.push_back({{"name", item.name}, {"value", item.value.value_or("")}});
    }
    json headers = json::array();
    ZAK::HTTPHeaders shown = request.headers;
    shown.remove("Authorization");  // however it is spelt
    for (const auto& [name, value] : shown.elements()) headers.push_back({{"name", name}, {"value", value}});
    json result = {{"method", rawValue(request.method)},
                   {"url", call.url.withoutQuery()},
                   {"httpVersion", m.protocol},
                   {"cookies", json::array()},
                   {"headers", headers},
                   {"queryString", query},
                   {"headersSize", -1},
                   {"bodySize", m.bytesSent}};
    if (keepsBodies_ && request.body.contentType() == ZAK::MIMEType::json) {
      result["postData"] = {{"mimeType", ZAK::MIMEType::json}, {"text", readable(request.body.bytes())}};
    }
    return result;
  }

  static json answered(const ZAK::HTTPMetrics& m) {
    const std::string status = m.statusCode.description();  // `404 Not Found`
    return {{"status", m.statusCode.code()},
            {"statusText", status.substr(std::min<std::size_t>(status.size(), 4))},
            {"httpVersion", m.protocol},
            {"cookies", json::array()},
            {"headers", json::array()},
            {"content", {{"size", m.bytesReceived}, {"mimeType", m.contentType}}},
            {"redirectURL", ""},
            {"headersSize", -1},
            {"bodySize", m.bytesReceived}};
  }

  const bool keepsBodies_;
  mutable std::mutex mutex_;  // the kit calls from every thread that runs the client's executor
  std::map<const ZAK::HTTPRequest*, Call> calls_;
  std::vector<json> entries_;
};

class Firebase : public ZAK::FirebaseAuthentifier {
 public:
  boost::asio::awaitable<std::string> idToken() override { co_return "firebase-alice"; }
  void signOut() noexcept override {}
};

void check(const std::filesystem::path& file) {
  const json har = json::parse(std::ifstream(file));
  std::vector<int> statuses;
  for (const json& entry : har.at("log").at("entries")) {
    const json& request = entry.at("request");
    std::cout << entry.at("startedDateTime").get<std::string>() << " " << request.at("method").get<std::string>() << " "
              << request.at("url").get<std::string>() << " " << entry.at("time") << " ms\n";
    statuses.push_back(entry.at("response").at("status"));
    double sum = 0;
    for (const char* phase : {"dns", "connect", "send", "wait", "receive"}) {
      sum += std::max(entry.at("timings").at(phase).get<double>(), 0.0);
    }
    if (std::abs(sum - entry.at("time").get<double>()) > 0.01) throw std::runtime_error("the phases are not the whole");
  }
  if (statuses != std::vector{201, 200, 200, 401, 201, 201, 404}) throw std::runtime_error("entries are missing");
  const std::string text = har.dump();
  for (const char* secret : {"access-", "refresh-", "firebase-", "X-Goog-Signature=", "Bearer"}) {
    if (text.find(secret) != std::string::npos) throw std::runtime_error("a secret is in the file");
  }
  if (text.find("Nice view!") == std::string::npos) throw std::runtime_error("a body is missing");
  std::cout << file.string() << " holds " << statuses.size() << " entries and no secret\n";
}

}  // namespace

int main() {
  ZAK::EmulatorThread backend;
  const auto firebase = std::make_shared<Firebase>();
  const auto monitor = std::make_shared<HarMonitor>(true);
  ZAK::BlockingClient tool({.configuration = {ZAK::Configuration::Environment::sandbox},
                            .authentifier = firebase,
                            .monitor = monitor,
                            .transport = backend->transportOptions(),
                            .keychain = std::make_shared<ZAK::InMemoryKeychain>()});
  ZAK::ContentDomain content{tool.client()};
  ZAK::UploadDomain uploads{tool.client()};

  // A sign-in, an upload, a rejected token, a failure.
  const ZAK::UploadUrlDto url = tool.run(uploads.askInstantQuibletUploadUrl());
  tool.run(uploads.upload("\xff\xd8\xff\xd9", url));
  backend->expireTokens();
  tool.run(content.addComment("Nice view!", ZAK::PostId("post-bob"), ZAK::UserId("bob")));
  try {
    tool.run(content.post(ZAK::PostId("post-nobody")));
  } catch (const ZAK::ZAKError& error) {
    std::cout << error.errorDescription() << "\n";
  }

  const std::filesystem::path file = "zvapikit.har";
  monitor->save(file);
  check(file);
}

// What hosts write by mistake. A marked line is refused with that text; without them all of this compiles.

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/LoggerDelegate.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/PersonDomain.hpp>

struct Logger : ZAK::LoggerDelegate {
  void message(std::string_view, std::optional<std::string_view>) override {}
  void warning(std::string_view) override {}
  void error(std::string_view, const std::exception*) override {}
};

struct WithoutTable {};

// Identifiers are not swapped, nor made from any text.
void identify(ZAK::ContentDomain& content, ZAK::PersonDomain& person) {
  (void)content.addComment("hi", ZAK::PostId("p"), ZAK::UserId("u"));
  (void)content.addComment("hi", ZAK::UserId("u"), ZAK::PostId("p"));  // refused: (cannot|no viable) conver
  (void)content.post(std::string("p"));                                // refused: (cannot|no viable) conver
  (void)person.fetch("bob");                                           // refused: no matching (member )?function
}

// Nothing is built on an object that would be gone at once.
void keep(const ZAK::Context& context) {
  const auto client = ZAK::MobileApiClient::create(context);
  const auto logger = std::make_shared<Logger>();
  const ZAK::ContentDomain group(client);
  const ZAK::ContentDomain lostGroup(ZAK::MobileApiClient::create(context));  // refused: deleted
  client->setLogger(logger);
  client->setLogger(std::make_shared<Logger>());  // refused: deleted
  const ZAK::Context told{.logger = logger};
  const ZAK::Context lost{.logger = std::make_shared<Logger>()};  // refused: deleted
}

// A record of a host's own needs a JSON form.
void decode(ZAK::MobileApiClient& client, ZAK::HTTPRequest request) {
  (void)client.fire<int>(request, true);
  (void)client.fire<WithoutTable>(request, true);  // refused: no JSON form: give the type a jsonFields\(\) table
}

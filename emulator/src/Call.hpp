#pragma once

#include "Router.hpp"
#include "Text.hpp"
#include "World.hpp"

#include <zvapikit/emulator/EmulatorOptions.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <nlohmann/json.hpp>

#include <exception>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// An answer other than 2xx, thrown by handlers.
struct Refusal : std::exception {
  explicit Refusal(int status_, std::string message_, std::string errorKey_ = {})
      : status(status_), message(std::move(message_)), errorKey(std::move(errorKey_)) {}
  [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

  int status;
  std::string message;
  std::string errorKey;  ///< empty: the body has none
};

/// One request on its way through a handler.
struct Call {
  const EmulatorRequest& request;
  const EmulatorOptions& options;
  World& world;
  Date now;
  PathVariables variables{};
  std::string userId{};  ///< the caller; empty on servers that take no bearer token

  /// The query item of that name; absent when there is none. Refuses one that is there twice.
  [[nodiscard]] std::optional<EmulatorText::QueryItem> queryItem(std::string_view name) const;
  /// Refuses query items with other names.
  void checkQuery(std::initializer_list<std::string_view> names) const;
  /// The value of a query item that must be there once and not be empty.
  [[nodiscard]] std::string queryValue(std::string_view name) const;
  /// The primary subtag of the query item "language": `fr` for `fr-CA`; `en` when it is not there.
  [[nodiscard]] std::string language() const;
  /// The body, which must be a JSON object with these keys, perhaps some of the optional ones, and no others.
  [[nodiscard]] nlohmann::json body(std::initializer_list<const char*> required,
                                    std::initializer_list<const char*> optional = {}) const;

  /// The caller, who must have made a profile.
  [[nodiscard]] User& self() const;
  /// The person as the caller may meet them; refuses with 404 one whom the caller cannot.
  [[nodiscard]] const User& person(const std::string& id) const;
  /// A post that the caller may read; refuses with 404 any other.
  [[nodiscard]] Post& readablePost(const std::string& id) const;
  /// What the caller did in the current moment.
  [[nodiscard]] Usage& usage() const;
};

// Reading a checked object; each refuses a value of another type with 400.
void checkKeys(const nlohmann::json& value, std::initializer_list<const char*> required,
               std::initializer_list<const char*> optional = {});
[[nodiscard]] std::string textField(const nlohmann::json& object, const char* key);    ///< not empty
[[nodiscard]] std::int64_t countField(const nlohmann::json& object, const char* key);  ///< an integer, 0 or more
[[nodiscard]] double numberField(const nlohmann::json& object, const char* key);
[[nodiscard]] bool flagField(const nlohmann::json& object, const char* key);
[[nodiscard]] Date dateField(const nlohmann::json& object, const char* key);
[[nodiscard]] std::vector<std::string> textsField(const nlohmann::json& object, const char* key);
[[nodiscard]] Picture pictureField(const nlohmann::json& object, const char* key);

[[nodiscard]] std::string reasonPhrase(int status);
[[nodiscard]] EmulatorResponse jsonResponse(const nlohmann::json& value, int status = 200);
[[nodiscard]] EmulatorResponse emptyResponse();  ///< `{}`
[[nodiscard]] EmulatorResponse refusalResponse(const Refusal& refusal, Date now);

// The operations of each area.
void addAuthenticationRoutes(Router& router);
void addContentRoutes(Router& router);
void addRelationshipsRoutes(Router& router);
void addPeopleRoutes(Router& router);
void addProfileRoutes(Router& router);
void addModerationRoutes(Router& router);
void addPhoneRoutes(Router& router);
void addFeedRoutes(Router& router);
void addMemoryRoutes(Router& router);
void addSettingsRoutes(Router& router);
void addAnalyticsRoutes(Router& router);
void addUploadRoutes(Router& router);
void addStorageRoutes(Router& router);

}  // namespace ZAK

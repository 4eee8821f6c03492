#pragma once

#include "Router.hpp"
#include "Text.hpp"
#include "World.hpp"

#include <zvapikit/emulator/EmulatorOptions.hpp>
#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <nlohmann/json.hpp>

#include <exception>
#include <initializer_list>
#include <string>
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

  /// The value of a query item that must be there once and not be empty.
  [[nodiscard]] std::string queryValue(std::string_view name) const;
  /// The body, which must be a JSON object with these keys, perhaps some of the optional ones, and no others.
  [[nodiscard]] nlohmann::json body(std::initializer_list<const char*> required,
                                    std::initializer_list<const char*> optional = {}) const;
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
[[nodiscard]] EmulatorResponse refusalResponse(const Refusal& refusal, Date now);

// The operations of each area.
void addAuthenticationRoutes(Router& router);
void addContentRoutes(Router& router);

}  // namespace ZAK

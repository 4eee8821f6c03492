#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/json/JSONValue.hpp>

#include <array>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// The server's error keys that a host can act on.
enum class ErrorKey {
  tooManyFriends,
  tooManyFriendRequestsPending,
  friendHasTooManyFriends,
  friendHasTooManyFriendRequestsPending,
  usernameNotAvailable,
  missingParentalConsent,
  errorBirthdate,
  checkUserExist,
  userAccountInvalid,
  changeVisibilityTooMuch,
  tooManyDeletions,
  userAlreadyPosted,
  oldPost
};

template <>
struct RawValues<ErrorKey> {
  static constexpr std::string_view name = "Key";
  static constexpr std::array cases = {
      RawCase{ErrorKey::tooManyFriends, "too-many-friends"},
      RawCase{ErrorKey::tooManyFriendRequestsPending, "too-many-friend-requests-pending"},
      RawCase{ErrorKey::friendHasTooManyFriends, "friend-has-too-many-friends"},
      RawCase{ErrorKey::friendHasTooManyFriendRequestsPending, "friend-has-too-many-friend-requests-pending"},
      RawCase{ErrorKey::usernameNotAvailable, "username-not-available"},
      RawCase{ErrorKey::missingParentalConsent, "missing-parental-consent"},
      RawCase{ErrorKey::errorBirthdate, "error-birthdate"},
      RawCase{ErrorKey::checkUserExist, "check-user-exist"},
      RawCase{ErrorKey::userAccountInvalid, "user-account-invalid"},
      RawCase{ErrorKey::changeVisibilityTooMuch, "too-many-visibility-upgrades"},
      RawCase{ErrorKey::tooManyDeletions, "too-many-deletions"},
      RawCase{ErrorKey::userAlreadyPosted, "user-already-posted"},
      RawCase{ErrorKey::oldPost, "old-post"}};
};

/// What the server says about a call that it refused.
struct ZVAPIKIT_API ErrorDto : std::exception {
  using Key = ErrorKey;

  ErrorDto() : ErrorDto({}, 0, {}, {}, {}, {}) {}
  ErrorDto(std::string error_, std::int64_t statusCode_, std::optional<std::string> message_,
           std::optional<std::string> errorKey_, std::optional<std::string> requestId_,
           std::optional<std::string> timestamp_);

  std::string error;
  std::int64_t statusCode;
  std::optional<std::string> message;
  std::optional<std::string> errorKey;  ///< as the server wrote it; see `key()`
  std::optional<std::string> requestId;
  std::optional<std::string> timestamp;

  /// Absent when the server gave no key or one that is not known.
  [[nodiscard]] std::optional<Key> key() const noexcept;
  /// `Error: Conflict message : , keys: username-not-available`. Made with the record; a later change of a field does
  /// not show.
  [[nodiscard]] const std::string& description() const noexcept { return description_; }
  /// Same text as `description()`.
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  bool operator==(const ErrorDto& other) const noexcept;
  static ErrorDto decodeJSON(const JSONValue& json);
  static constexpr auto jsonFields() {
    return std::array{
        JSONField::of<&ErrorDto::error>("error"),         JSONField::of<&ErrorDto::statusCode>("statusCode"),
        JSONField::of<&ErrorDto::message>("message"),     JSONField::of<&ErrorDto::errorKey>("errorKey"),
        JSONField::of<&ErrorDto::requestId>("requestId"), JSONField::of<&ErrorDto::timestamp>("timestamp")};
  }

 private:
  std::string description_;
};

}  // namespace ZAK

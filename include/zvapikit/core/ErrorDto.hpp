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
  tooManyFriends,                         ///< the user has as many friends as one may have
  tooManyFriendRequestsPending,           ///< too many of the user's requests wait for an answer
  friendHasTooManyFriends,                ///< the same of the other user
  friendHasTooManyFriendRequestsPending,  ///< too many requests wait for the other user's answer
  usernameNotAvailable,                   ///< somebody else has the user name
  missingParentalConsent,                 ///< a user of this age needs the parents' consent
  errorBirthdate,                         ///< the birth date is none, or the user is too young
  checkUserExist,                         ///< whether there is such a user has to be looked into
  userAccountInvalid,                     ///< the account is not, or no longer, to be used
  changeVisibilityTooMuch,                ///< the post was opened to more people too often
  tooManyDeletions,                       ///< the user deleted as many posts of the moment as one may
  userAlreadyPosted,                      ///< the user has a post of the moment
  oldPost                                 ///< the post belongs to a moment that is over
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
///
/// Thread safety: as a standard container.
struct ZVAPIKIT_API ErrorDto : std::exception {
  /// `ErrorKey` under its short name.
  using Key = ErrorKey;

  /// Empty texts, and the status 0.
  ErrorDto() : ErrorDto({}, 0, {}, {}, {}, {}) {}
  /// All fields, in their order.
  ErrorDto(std::string error_, std::int64_t statusCode_, std::optional<std::string> message_,
           std::optional<std::string> errorKey_, std::optional<std::string> requestId_,
           std::optional<std::string> timestamp_);

  std::string error;                     ///< kind of failure in words, for example `Conflict`
  std::int64_t statusCode;               ///< HTTP status, as the body repeats it
  std::optional<std::string> message;    ///< for developers
  std::optional<std::string> errorKey;   ///< as the server wrote it; see `key()`
  std::optional<std::string> requestId;  ///< names the call in the server's own log
  std::optional<std::string> timestamp;  ///< when it failed, as the server wrote it

  /// What a host can act on; absent when the server gave no key or one that is not known.
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

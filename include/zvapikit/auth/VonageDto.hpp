#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// How a step of a phone verification went: the status codes of Vonage's verification service. An unknown text fails to
/// decode.
enum class VonageStatusDto {
  success,                 ///< 0: the code was sent, or was right
  invalidRequestId,        ///< 3: there is no such verification
  requestAlreadyVerified,  ///< 6: the code was right before
  codeAlreadySend,         ///< 10: a code is on its way already
  invalidCode,             ///< 16: the code is not the one that was sent
  wrongCode                ///< 17: a wrong code was given too often
};

template <>
struct RawValues<VonageStatusDto> {
  static constexpr std::string_view name = "VonageStatusDto";
  static constexpr std::array cases = {RawCase{VonageStatusDto::success, "0"},
                                       RawCase{VonageStatusDto::invalidRequestId, "3"},
                                       RawCase{VonageStatusDto::requestAlreadyVerified, "6"},
                                       RawCase{VonageStatusDto::codeAlreadySend, "10"},
                                       RawCase{VonageStatusDto::invalidCode, "16"},
                                       RawCase{VonageStatusDto::wrongCode, "17"}};
};

/// Body that asks for a code.
struct VonageRequestCodeDto {
  std::optional<std::string> deviceId;  ///< `DeviceInfo::deviceId`; left out when absent
  std::string phoneNumber;              ///< in E.164 form, for example `+33639980101`

  bool operator==(const VonageRequestCodeDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&VonageRequestCodeDto::deviceId>("deviceId"),
                      JSONField::of<&VonageRequestCodeDto::phoneNumber>("phoneNumber")};
  }
};

/// Whether a code was sent.
struct VonageRequestCodeResponseDto {
  std::string vonageRequestId;                        ///< names the verification when its code is checked
  VonageStatusDto status = VonageStatusDto::success;  ///< whether the code was sent
  std::optional<std::string> errorText;               ///< why not, in the service's words

  bool operator==(const VonageRequestCodeResponseDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&VonageRequestCodeResponseDto::vonageRequestId>("vonageRequestId"),
                      JSONField::of<&VonageRequestCodeResponseDto::status>("status"),
                      JSONField::of<&VonageRequestCodeResponseDto::errorText>("errorText")};
  }
};

/// Body that checks a code.
struct VonageCheckCodeDto {
  std::string vonageRequestId;  ///< of the answer to the request for the code
  std::string code;             ///< as the user typed it

  bool operator==(const VonageCheckCodeDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&VonageCheckCodeDto::vonageRequestId>("vonageRequestId"),
                      JSONField::of<&VonageCheckCodeDto::code>("code")};
  }
};

/// Whether a code was right.
struct VonageCheckCodeResponseDto {
  VonageStatusDto status = VonageStatusDto::success;  ///< whether the code was right
  std::optional<std::string> token;                   ///< signs the user in at Firebase; there on success
  std::optional<std::string> uid;                     ///< the user's identifier; there on success
  std::optional<std::string> errorText;               ///< why not, in the service's words

  bool operator==(const VonageCheckCodeResponseDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&VonageCheckCodeResponseDto::status>("status"),
                      JSONField::of<&VonageCheckCodeResponseDto::token>("token"),
                      JSONField::of<&VonageCheckCodeResponseDto::uid>("uid"),
                      JSONField::of<&VonageCheckCodeResponseDto::errorText>("errorText")};
  }
};

}  // namespace ZAK

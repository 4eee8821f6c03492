#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// What the user is asked to agree to. An unknown text decodes as `unknown`.
enum class TermCodeDto {
  memories,      ///< the keeping of past posts
  gps,           ///< the place at which a post was taken
  terms,         ///< the terms of use
  privacy,       ///< the privacy policy
  fofConnector,  ///< being shown to friends' friends; text `show-friends-to-friends`
  camera,        ///< the use of the camera
  contacts,      ///< the use of the address book
  unknown        ///< a text that this version of the kit does not know
};

template <>
struct RawValues<TermCodeDto> {
  static constexpr std::string_view name = "TermCodeDto";
  static constexpr std::array cases = {RawCase{TermCodeDto::memories, "memories"},
                                       RawCase{TermCodeDto::gps, "gps"},
                                       RawCase{TermCodeDto::terms, "terms"},
                                       RawCase{TermCodeDto::privacy, "privacy"},
                                       RawCase{TermCodeDto::fofConnector, "show-friends-to-friends"},
                                       RawCase{TermCodeDto::camera, "camera"},
                                       RawCase{TermCodeDto::contacts, "contacts"},
                                       RawCase{TermCodeDto::unknown, "unknown"}};
};
template <>
inline constexpr bool CodableLastByDefault<TermCodeDto> = true;

/// What the user answered. An unknown text, lower case included, decodes as `unknown`.
enum class TermStatusDto {
  accepted,  ///< text `ACCEPTED`
  declined,  ///< text `DECLINED`
  unknown    ///< a text that this version of the kit does not know, or no answer yet
};

template <>
struct RawValues<TermStatusDto> {
  static constexpr std::string_view name = "TermStatusDto";
  static constexpr std::array cases = {RawCase{TermStatusDto::accepted, "ACCEPTED"},
                                       RawCase{TermStatusDto::declined, "DECLINED"},
                                       RawCase{TermStatusDto::unknown, "UNKNOWN"}};
};
template <>
inline constexpr bool CodableLastByDefault<TermStatusDto> = true;

/// A term and the user's answer to it.
struct TermDto {
  TermCodeDto code = TermCodeDto::memories;        ///< what was asked
  TermStatusDto status = TermStatusDto::accepted;  ///< what the user answered

  bool operator==(const TermDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&TermDto::code>("code"), JSONField::of<&TermDto::status>("status")};
  }
};

}  // namespace ZAK

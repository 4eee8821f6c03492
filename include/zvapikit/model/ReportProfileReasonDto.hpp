#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Why a profile is reported. An unknown text fails to decode.
enum class ReportProfileReasonDto {
  repeatedFriendInvites,      ///< asks to be a friend again and again
  inappropriateProfilePhoto,  ///< the profile picture
  inappropriateUsername,      ///< the user name
  inappropriateQuiblet,       ///< a reaction selfie
  impersonation,              ///< passes for somebody else
  spam,                       ///< unwanted advertising
  other                       ///< see the comment
};

template <>
struct RawValues<ReportProfileReasonDto> {
  static constexpr std::string_view name = "ReportProfileReasonDto";
  static constexpr std::array cases = {
      RawCase{ReportProfileReasonDto::repeatedFriendInvites, "repeated-friend-invites"},
      RawCase{ReportProfileReasonDto::inappropriateProfilePhoto, "inappropriate-profile-photo"},
      RawCase{ReportProfileReasonDto::inappropriateUsername, "inappropriate-username"},
      RawCase{ReportProfileReasonDto::inappropriateQuiblet, "inappropriate-quiblet"},
      RawCase{ReportProfileReasonDto::impersonation, "impersonation"},
      RawCase{ReportProfileReasonDto::spam, "spam"},
      RawCase{ReportProfileReasonDto::other, "other"}};
};

}  // namespace ZAK

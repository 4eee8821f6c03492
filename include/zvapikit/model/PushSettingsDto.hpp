#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>

namespace ZAK {

/// Which push notifications the user receives.
struct PushSettingsDto {
  PushSettingsDto() = default;
  /// All fields, in their order.
  PushSettingsDto(bool late_, bool comment_, bool mention_, bool friendRequest_, bool quiblet_)
      : late(late_), comment(comment_), mention(mention_), friendRequest(friendRequest_), quiblet(quiblet_) {}

  bool late = false;           ///< a friend posted late
  bool comment = false;        ///< somebody commented on the user's post
  bool mention = false;        ///< somebody named the user in a comment
  bool friendRequest = false;  ///< somebody asks to be a friend
  bool quiblet = false;        ///< somebody reacted to the user's post

  bool operator==(const PushSettingsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&PushSettingsDto::late>("late"),
                      JSONField::of<&PushSettingsDto::comment>("comment"),
                      JSONField::of<&PushSettingsDto::mention>("mention"),
                      JSONField::of<&PushSettingsDto::friendRequest>("friendRequest"),
                      JSONField::of<&PushSettingsDto::quiblet>("quiblet")};
  }
};

}  // namespace ZAK

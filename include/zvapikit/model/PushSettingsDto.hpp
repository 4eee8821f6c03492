#pragma once

#include <zvapikit/json/JSONType.hpp>

#include <array>

namespace ZAK {

/// Which push notifications the user receives.
struct PushSettingsDto {
  PushSettingsDto() = default;
  PushSettingsDto(bool late_, bool comment_, bool mention_, bool friendRequest_, bool quiblet_)
      : late(late_), comment(comment_), mention(mention_), friendRequest(friendRequest_), quiblet(quiblet_) {}

  bool late = false;
  bool comment = false;
  bool mention = false;
  bool friendRequest = false;
  bool quiblet = false;

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

#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Who may see a post. An unknown text decodes as `unknown`.
enum class PostVisibilityDto { friends, fof, public_, unknown };

template <>
struct RawValues<PostVisibilityDto> {
  static constexpr std::string_view name = "PostVisibilityDto";
  static constexpr std::array cases = {
      RawCase{PostVisibilityDto::friends, "friends"}, RawCase{PostVisibilityDto::fof, "friends-of-friends"},
      RawCase{PostVisibilityDto::public_, "public"}, RawCase{PostVisibilityDto::unknown, "unknown"}};
};
template <>
inline constexpr bool CodableLastByDefault<PostVisibilityDto> = true;

}  // namespace ZAK

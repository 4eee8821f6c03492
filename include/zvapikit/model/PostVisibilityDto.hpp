#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Who may see a post. An unknown text decodes as `unknown`.
enum class PostVisibilityDto {
  friends,  ///< the author's friends
  fof,      ///< friends of the author's friends
  public_,  ///< everybody, in the discovery feed; text `public`
  unknown   ///< a text that this version of the kit does not know
};

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

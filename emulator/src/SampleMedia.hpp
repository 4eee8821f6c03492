#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ZAK::SampleMedia {

/// A grey picture of that size, JPEG (ITU-T T.81).
[[nodiscard]] std::string picture(std::uint16_t width, std::uint16_t height);

/// So many bytes that stand for a video. No player shows them; they differ from place to place, so that a piece that is
/// lost or doubled is seen.
[[nodiscard]] std::string video(std::size_t size);

}  // namespace ZAK::SampleMedia

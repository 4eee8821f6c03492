#include "SampleMedia.hpp"

namespace ZAK::SampleMedia {
namespace {

std::string bigEndian(std::uint16_t value) { return {static_cast<char>(value >> 8), static_cast<char>(value & 0xFF)}; }

/// A segment: its marker, its length and its content.
std::string segment(unsigned char marker, const std::string& content) {
  const auto length = static_cast<std::uint16_t>(content.size() + 2);
  return std::string("\xFF") + static_cast<char>(marker) + bigEndian(length) + content;
}

/// A Huffman table of a single code, the bit 0, for the value 0.
std::string huffmanTable(char kind) { return segment(0xC4, kind + ("\x01" + std::string(16, '\0'))); }

}  // namespace

std::string picture(std::uint16_t width, std::uint16_t height) {
  const std::string component("\x01\x11\x00", 3);
  std::string jpeg("\xFF\xD8", 2);
  jpeg += segment(0xDB, std::string(1, '\0') + std::string(64, '\x01'));
  jpeg += segment(0xC0, "\x08" + bigEndian(height) + bigEndian(width) + "\x01" + component);
  jpeg += huffmanTable('\x00') + huffmanTable('\x10');
  jpeg += segment(0xDA, std::string("\x01\x01\x00\x00\x3F\x00", 6));
  // Each block of 8 by 8 is two zero bits: no difference in brightness, and no detail.
  const std::size_t bits = std::size_t{2} * ((width + 7u) / 8) * ((height + 7u) / 8);
  jpeg += std::string(bits / 8, '\0');
  if (bits % 8 != 0) jpeg += static_cast<char>(0xFF >> (bits % 8));
  return jpeg + "\xFF\xD9";
}

std::string video(std::size_t size) {
  std::string bytes = "....ftypisom";
  bytes.resize(size);
  std::uint32_t state = 1;
  for (std::size_t i = 12; i < size; ++i) {
    state = state * 1664525u + 1013904223u;
    bytes[i] = static_cast<char>(state >> 24);
  }
  return bytes;
}

}  // namespace ZAK::SampleMedia

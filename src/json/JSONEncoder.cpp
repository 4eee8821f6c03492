#include "json/DateText.hpp"
#include "json/JSONOutput.hpp"
#include "json/ReferenceDate.hpp"

#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONWriter.hpp>

#include <simdjson.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace ZAK::detail {
namespace {

using Kind = JSONType::Kind;

template <class Number>
void append(TextBuffer& text, Number number) {
  constexpr std::size_t longest = 32;
  char* const start = text.room(longest);
  text.advance(std::to_chars(start, start + longest, number).ptr);
}

/// Sixteen bytes that are worked on at once.
using Block = signed char __attribute__((vector_size(16)));

bool isZero(Block block) noexcept {
  std::uint64_t halves[2];
  std::memcpy(halves, &block, sizeof halves);
  return (halves[0] | halves[1]) == 0;
}

/// Copies the text, and tells whether it is printable ASCII without `"` and `\`, which needs neither escapes nor a look
/// at its encoding.
bool copyIfPlain(std::string_view text, char* to) noexcept {
  const std::size_t size = text.size();
  // The last word of either kind overlaps the one before it where the size is no multiple.
  if (size >= sizeof(Block)) {
    Block found{};
    const auto copy = [&](std::size_t position) {
      Block block;
      std::memcpy(&block, text.data() + position, sizeof block);
      std::memcpy(to + position, &block, sizeof block);
      found |= (block < ' ') | (block == '"') | (block == '\\');  // bytes outside ASCII are negative
    };
    for (std::size_t i = 0; i + sizeof(Block) < size; i += sizeof(Block)) copy(i);
    copy(size - sizeof(Block));
    return isZero(found);
  }
  // A lane's top bit tells that the byte is one of the others.
  constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
  std::uint64_t found = 0;
  const auto copy = [&]<class Word>(Word word, std::size_t position) {
    std::memcpy(&word, text.data() + position, sizeof word);
    std::memcpy(to + position, &word, sizeof word);
    const Word one = static_cast<Word>(ones);
    const std::uint64_t quote = word ^ static_cast<Word>(one * '"'), backslash = word ^ static_cast<Word>(one * '\\');
    found |= (word | (word - one * 0x20u) | (quote - one) | (backslash - one)) & static_cast<Word>(tops);
  };
  if (size >= 8) {
    copy(std::uint64_t{}, 0);
    copy(std::uint64_t{}, size - 8);
  } else if (size >= 4) {
    copy(std::uint32_t{}, 0);
    copy(std::uint32_t{}, size - 4);
  } else {
    for (std::size_t i = 0; i < size; ++i) copy(std::uint8_t{}, i);
  }
  return found == 0;
}

/// Writes a plain text in quotes and yields where it ends; null for any other.
char* quoteIfPlain(std::string_view text, char* to) noexcept {
  if (!copyIfPlain(text, to + 1)) return nullptr;
  *to = to[text.size() + 1] = '"';
  return to + text.size() + 2;
}

}  // namespace

void JSONOutput::fail(std::string description) const {
  throw EncodingError(codingPath(frame_), std::move(description));
}

void JSONOutput::write(const JSONType& type, const void* value) {
  switch (type.kind) {
    case Kind::string:
      return writeString(*static_cast<const std::string*>(value));
    case Kind::url:
      return writeString(static_cast<const URL*>(value)->string());
    case Kind::rawValue:
      return writeRawValue(type, value);
    case Kind::boolean:
      return text_.append(std::string_view(*static_cast<const bool*>(value) ? "true" : "false"));
    case Kind::number:
      return writeNumber(*static_cast<const double*>(value));
    case Kind::date:
      return writeDate(*static_cast<const Date*>(value));
    case Kind::array:
      return writeArray(type, value);
    case Kind::map:
      return writeMap(type, value);
    case Kind::optional:
      if (const void* content = type.content(value)) return write(*type.element, content);
      return text_.append("null");
    case Kind::integer: {
      std::int64_t wide = 0;
      std::int32_t narrow = 0;
      if (type.size == sizeof wide) {
        std::memcpy(&wide, value, sizeof wide);
      } else {
        std::memcpy(&narrow, value, sizeof narrow);
        wide = narrow;
      }
      return append(text_, wide);
    }
    case Kind::record:
      if (!type.encode) return writeRecord(type, value);
      JSONWriter writer(*this);
      type.encode(value, writer);
      return;
  }
}

void JSONOutput::writeString(std::string_view text) {
  if (char* const end = quoteIfPlain(text, text_.room(text.size() + 2))) return text_.advance(end);
  writeEscaped(text);
}

void JSONOutput::writeKey(std::string_view key) {
  if (text_.last() != '{') text_.append(',');
  if (char* const end = quoteIfPlain(key, text_.room(key.size() + 3))) {
    *end = ':';
    return text_.advance(end + 1);
  }
  writeEscaped(key);
  text_.append(':');
}

void JSONOutput::writeEscaped(std::string_view text) {
  if (!simdjson::validate_utf8(text)) fail("The text is not valid UTF-8.");
  constexpr std::string_view shortNames = "btn?fr";  // of the characters 8 to 13; 11 has none
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr std::size_t longestEscape = 6;
  char* to = text_.room(longestEscape * text.size() + 2);
  *to++ = '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && c != '"' && c != '\\') {
      *to++ = c;
      continue;
    }
    *to++ = '\\';
    if (byte >= 0x20) {
      *to++ = c;
    } else if (byte >= 8 && byte <= 13 && byte != 11) {
      *to++ = shortNames[byte - 8u];
    } else {
      for (const char escape : {'u', '0', '0', digits[byte >> 4], digits[byte & 15]}) *to++ = escape;
    }
  }
  *to++ = '"';
  text_.advance(to);
}

void JSONOutput::writeNumber(double number) {
  if (!std::isfinite(number)) fail("The number is not finite.");
  // Sizes in pixels are mostly whole. Below this their text is the same either way.
  if (number >= 1 && number < 100'000 && std::trunc(number) == number) {
    append(text_, static_cast<std::int64_t>(number));
  } else {
    append(text_, number);
  }
}

void JSONOutput::writeRawValue(const JSONType& type, const void* value) {
  const std::size_t index = type.caseIndex(value);
  if (index >= type.rawValueCount) fail("The value is no case of " + std::string(type.name) + ".");
  writeString(type.rawValues[index]);
}

void JSONOutput::writeDate(Date date) {
  if (dates_ == JSONDateStrategy::secondsSince2001) {
    if (!hasSecondsSince2001(date)) fail("The date is outside the range of numbers of seconds.");
    const auto distance = date - referenceDate;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(distance);
    const auto microseconds = std::abs((distance - seconds).count());
    if (distance.count() < 0 && seconds.count() == 0) text_.append('-');
    append(text_, static_cast<std::int64_t>(seconds.count()));
    if (microseconds == 0) return;
    const std::string fraction = std::to_string(1'000'000 + microseconds);
    text_.append('.');
    text_.append(std::string_view(fraction).substr(1, fraction.find_last_not_of('0')));
    return;
  }
  char* const start = text_.room(dateTextSize + 2);
  if (!writeDateText(date, start + 1)) fail("The date is outside the years 1 to 9999.");
  *start = start[dateTextSize + 1] = '"';
  text_.advance(start + dateTextSize + 2);
}

void JSONOutput::writeArray(const JSONType& type, const void* array) {
  struct Walk {
    JSONOutput& output;
    const JSONType& element;
    CodingFrameScope frame;
    std::size_t index = 0;
  } walk{*this, *type.element, {frame_, true}};
  text_.append('[');
  type.forEach(array, &walk, [](void* context, std::string_view, const void* element) {
    Walk& at = *static_cast<Walk*>(context);
    if (at.index > 0) at.output.text_.append(',');
    at.frame.enter(at.index++);
    at.output.write(at.element, element);
  });
  text_.append(']');
}

void JSONOutput::writeMap(const JSONType& type, const void* map) {
  struct Walk {
    JSONOutput& output;
    const JSONType& element;
  } walk{*this, *type.element};
  beginObject();
  type.forEach(map, &walk, [](void* context, std::string_view key, const void* element) {
    const Walk& at = *static_cast<const Walk*>(context);
    at.output.writeField(key, at.element, element);
  });
  endObject();
}

void JSONOutput::writeRecord(const JSONType& type, const void* record) {
  beginObject();
  for (std::size_t i = 0; i < type.fieldCount; ++i) {
    const JSONField& field = type.fields[i];
    // The accessor serves readers too; nothing is written through it here.
    writeField(field.key, *field.type, field.member(const_cast<void*>(record)));
  }
  endObject();
}

void JSONOutput::beginObject() { text_.append('{'); }

void JSONOutput::writeField(std::string_view key, const JSONType& type, const void* value) {
  const bool isOptional = type.kind == Kind::optional;
  const void* const content = isOptional ? type.content(value) : value;
  if (!content && !type.writesNull) return;
  CodingFrameScope frame(frame_, false);
  frame.enter(key);
  writeKey(key);
  if (!content) return text_.append("null");
  write(isOptional ? *type.element : type, content);
}

void JSONOutput::endObject() { text_.append('}'); }

}  // namespace ZAK::detail

namespace ZAK {

std::string JSONEncoder::encode(const JSONType& type, const void* value) const {
  detail::JSONOutput output(dates_);
  output.write(type, value);
  return output.text();
}

void JSONWriter::beginObject() { output_->beginObject(); }
void JSONWriter::endObject() { output_->endObject(); }
void JSONWriter::write(const JSONType& type, const void* value) { output_->write(type, value); }
void JSONWriter::write(std::string_view key, const JSONType& type, const void* value) {
  output_->writeField(key, type, value);
}

}  // namespace ZAK

#include "json/JSONOutput.hpp"
#include "json/ReferenceDate.hpp"

#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/json/JSONWriter.hpp>
#include <zvapikit/json/JavaScriptISO8601DateFormatter.hpp>

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

/// Copies the text, and tells whether it is printable ASCII without `"` and `\`, which needs neither escapes nor a look
/// at its encoding.
bool copyIfPlain(std::string_view text, char* to) noexcept {
  // Eight bytes at a time; a lane's top bit tells that the byte is one of the others.
  constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
  std::uint64_t found = 0;
  const auto copy = [&]<class Word>(Word word, std::size_t position) {
    std::memcpy(&word, text.data() + position, sizeof word);
    std::memcpy(to + position, &word, sizeof word);
    const Word one = static_cast<Word>(ones);
    const std::uint64_t quote = word ^ static_cast<Word>(one * '"'), backslash = word ^ static_cast<Word>(one * '\\');
    found |= (word | (word - one * 0x20u) | (quote - one) | (backslash - one)) & static_cast<Word>(tops);
  };
  // The last word overlaps the one before it where the size is no multiple.
  const std::size_t size = text.size();
  if (size >= 8) {
    for (std::size_t i = 0; i + 8 < size; i += 8) copy(std::uint64_t{}, i);
    copy(std::uint64_t{}, size - 8);
  } else if (size >= 4) {
    copy(std::uint32_t{}, 0);
    copy(std::uint32_t{}, size - 4);
  } else {
    for (std::size_t i = 0; i < size; ++i) copy(std::uint8_t{}, i);
  }
  return found == 0;
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
  char* const start = text_.room(text.size() + 2);
  if (!copyIfPlain(text, start + 1)) return writeEscaped(text);
  *start = '"';
  start[text.size() + 1] = '"';
  text_.advance(start + text.size() + 2);
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
  const std::string text = JavaScriptISO8601DateFormatter::string(date);
  if (text.empty()) fail("The date is outside the years 1 to 9999.");
  writeString(text);
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
  if (type.kind == Kind::optional && !type.writesNull && !type.content(value)) return;
  if (text_.last() != '{') text_.append(',');
  CodingFrameScope frame(frame_, false);
  frame.enter(key);
  writeString(key);
  text_.append(':');
  write(type, value);
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

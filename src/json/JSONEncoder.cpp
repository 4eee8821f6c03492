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
void append(std::string& text, Number number) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  text.append(buffer.data(), end);
}

/// True for printable ASCII without `"` and `\`, which needs neither escapes nor a look at its encoding.
bool isPlain(std::string_view text) noexcept {
  // Eight bytes at a time; a lane's top bit tells that the byte is one of the others.
  constexpr std::uint64_t ones = 0x0101010101010101, tops = 0x8080808080808080;
  const auto unusual = [](std::uint64_t word) {
    const std::uint64_t quote = word ^ (ones * '"'), backslash = word ^ (ones * '\\');
    return (word | (word - ones * 0x20) | (quote - ones) | (backslash - ones)) & tops;
  };
  std::uint64_t found = 0;
  std::size_t i = 0;
  std::uint64_t word;
  for (; i + sizeof word <= text.size(); i += sizeof word) {
    std::memcpy(&word, text.data() + i, sizeof word);
    found |= unusual(word);
  }
  word = ones * ' ';
  std::memcpy(&word, text.data() + i, text.size() - i);
  return (found | unusual(word)) == 0;
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
      text_ += *static_cast<const bool*>(value) ? "true" : "false";
      return;
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
      text_ += "null";
      return;
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
  text_ += '"';
  if (isPlain(text)) {
    text_ += text;
  } else {
    writeEscaped(text);
  }
  text_ += '"';
}

void JSONOutput::writeEscaped(std::string_view text) {
  if (!simdjson::validate_utf8(text)) fail("The text is not valid UTF-8.");
  constexpr std::string_view shortNames = "btn?fr";  // of the characters 8 to 13; 11 has none
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      text_ += '\\';
      text_ += c;
    } else if (byte >= 0x20) {
      text_ += c;
    } else if (byte >= 8 && byte <= 13 && byte != 11) {
      text_ += '\\';
      text_ += shortNames[byte - 8u];
    } else {
      text_ += "\\u00";
      text_ += digits[byte >> 4];
      text_ += digits[byte & 15];
    }
  }
}

void JSONOutput::writeNumber(double number) {
  if (!std::isfinite(number)) fail("The number is not finite.");
  append(text_, number);
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
    if (distance.count() < 0 && seconds.count() == 0) text_ += '-';
    append(text_, static_cast<std::int64_t>(seconds.count()));
    if (microseconds == 0) return;
    const std::string fraction = std::to_string(1'000'000 + microseconds);
    text_ += '.';
    text_.append(fraction, 1, fraction.find_last_not_of('0'));
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
  text_ += '[';
  type.forEach(array, &walk, [](void* context, std::string_view, const void* element) {
    Walk& at = *static_cast<Walk*>(context);
    if (at.index > 0) at.output.text_ += ',';
    at.frame.enter(at.index++);
    at.output.write(at.element, element);
  });
  text_ += ']';
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

void JSONOutput::beginObject() { text_ += '{'; }

void JSONOutput::writeField(std::string_view key, const JSONType& type, const void* value) {
  if (type.kind == Kind::optional && !type.writesNull && !type.content(value)) return;
  if (text_.back() != '{') text_ += ',';
  CodingFrameScope frame(frame_, false);
  frame.enter(key);
  writeString(key);
  text_ += ':';
  write(type, value);
}

void JSONOutput::endObject() { text_ += '}'; }

}  // namespace ZAK::detail

namespace ZAK {

std::string JSONEncoder::encode(const JSONType& type, const void* value) const {
  detail::JSONOutput output(dates_);
  output.write(type, value);
  return output.takeText();
}

void JSONWriter::beginObject() { output_->beginObject(); }
void JSONWriter::endObject() { output_->endObject(); }
void JSONWriter::write(const JSONType& type, const void* value) { output_->write(type, value); }
void JSONWriter::write(std::string_view key, const JSONType& type, const void* value) {
  output_->writeField(key, type, value);
}

}  // namespace ZAK

#pragma once

#include "json/CodingFrame.hpp"
#include "json/TextBuffer.hpp"

#include <zvapikit/json/JSONDateStrategy.hpp>
#include <zvapikit/json/JSONType.hpp>

#include <string>
#include <string_view>

namespace ZAK::detail {

/// Appends values to a text.
class JSONOutput {
 public:
  explicit JSONOutput(JSONDateStrategy dates) noexcept : dates_(dates) {}

  void write(const JSONType& type, const void* value);
  void beginObject();
  void writeField(std::string_view key, const JSONType& type, const void* value);
  void endObject();

  [[nodiscard]] std::string text() const { return text_.string(); }

 private:
  void writeString(std::string_view text);
  void writeKey(std::string_view key);
  void writeEscaped(std::string_view text);
  void writeNumber(double number);
  void writeRawValue(const JSONType& type, const void* value);
  void writeDate(Date date);
  void writeArray(const JSONType& type, const void* array);
  void writeMap(const JSONType& type, const void* map);
  void writeRecord(const JSONType& type, const void* record);
  [[noreturn]] void fail(std::string description) const;

  TextBuffer text_;
  const JSONDateStrategy dates_;
  const CodingFrame* frame_ = nullptr;
};

}  // namespace ZAK::detail

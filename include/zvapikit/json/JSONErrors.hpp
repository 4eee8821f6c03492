#pragma once

#include <zvapikit/Export.hpp>

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// One step of the way from the top of a body to a value in it: a key, or an index of an array.
///
/// Thread safety: as a standard container.
class CodingKey {
 public:
  /// A key of an object.
  CodingKey(std::string key) : text_(std::move(key)) {}  // NOLINT: meant to convert
  /// A key of an object, from a literal.
  CodingKey(const char* key) : text_(key) {}  // NOLINT: meant to convert
  /// The index of an element, from 0.
  explicit CodingKey(std::size_t index) : text_("Index " + std::to_string(index)), index_(index) {}

  /// The key; `Index 1` for the second element of an array.
  [[nodiscard]] const std::string& stringValue() const noexcept { return text_; }
  /// The index, from 0; absent for a key.
  [[nodiscard]] const std::optional<std::size_t>& index() const noexcept { return index_; }

  bool operator==(const CodingKey&) const = default;

 private:
  std::string text_;
  std::optional<std::size_t> index_;
};

/// Why a value could not be read from or written to JSON. Of the body it quotes at most the value at fault, never a
/// string that was of the wrong type.
///
/// Thread safety: immutable; copies share the texts.
class ZVAPIKIT_API CodingError : public std::exception {
 public:
  /// From the top of the body to the value at fault.
  [[nodiscard]] const std::vector<CodingKey>& codingPath() const noexcept { return state_->path; }
  /// What went wrong, without the path: `Expected to decode Int but found a string instead.`
  [[nodiscard]] const std::string& debugDescription() const noexcept { return state_->debugDescription; }
  /// Path and expectation in one line: `data[3].user.id: expected string, found number`.
  [[nodiscard]] const char* what() const noexcept override { return state_->what.c_str(); }

 protected:
  /// `key` is what `missingKey()` says; `summary` as in `DecodingError`.
  CodingError(std::vector<CodingKey> path, std::string key, std::string debugDescription, std::string_view summary);
  /// The key that is not there; empty when that is not what is wrong.
  [[nodiscard]] const std::string& missingKey() const noexcept { return state_->key; }

 private:
  struct State {
    std::vector<CodingKey> path;
    std::string key;
    std::string debugDescription;
    std::string what;
  };
  std::shared_ptr<const State> state_;
};

/// A body that is not JSON, or not the JSON of the record asked for.
///
/// Thread safety: immutable; copies share the texts.
class ZVAPIKIT_API DecodingError : public CodingError {
 public:
  /// What is wrong.
  enum class Kind {
    keyNotFound,    ///< a required key is missing; `key()` names it and the path ends at the object without it
    valueNotFound,  ///< null where a value is required
    typeMismatch,   ///< a value of another JSON type
    dataCorrupted   ///< not JSON at all, or a text or number outside what the field can hold
  };

  /// `summary` is what `what()` says after the path; without one it is `debugDescription`.
  DecodingError(Kind kind, std::vector<CodingKey> path, std::string debugDescription, std::string_view summary = {});
  /// Of kind `keyNotFound`.
  static DecodingError keyNotFound(std::string key, std::vector<CodingKey> path, std::string debugDescription,
                                   std::string_view summary = {});

  /// What is wrong.
  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// The missing key; empty for the other kinds.
  [[nodiscard]] const std::string& key() const noexcept { return missingKey(); }

 private:
  DecodingError(Kind kind, std::vector<CodingKey> path, std::string key, std::string debugDescription,
                std::string_view summary);

  Kind kind_;
};

/// A value that has no JSON form: text that is not UTF-8, a number that is not finite, a date outside the years 0001
/// to 9999, a required value that is absent.
///
/// Thread safety: immutable; copies share the texts.
class ZVAPIKIT_API EncodingError : public CodingError {
 public:
  /// A value at `path` that cannot be written.
  EncodingError(std::vector<CodingKey> path, std::string debugDescription);
};

}  // namespace ZAK

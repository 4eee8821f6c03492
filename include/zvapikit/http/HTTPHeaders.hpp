#pragma once

#include <zvapikit/Export.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZAK {

/// An ordered list of header fields. Names compare without regard to case (RFC 9110); a name stands once.
///
/// Thread safety: as a standard container.
class ZVAPIKIT_API HTTPHeaders {
 public:
  /// One field: a name and a value, which may be empty and is then sent empty. A CR, LF or NUL in either is refused
  /// when a request is sent.
  struct Element {
    Element() = default;
    /// All fields, in their order.
    Element(std::string name_, std::string value_) : name(std::move(name_)), value(std::move(value_)) {}

    std::string name;   ///< without the colon
    std::string value;  ///< as it is sent

    bool operator==(const Element&) const = default;

    /// `User-Agent: text`
    static Element userAgent(std::string text);
    /// `Authorization: Bearer token` (RFC 6750)
    static Element bearer(std::string_view token);
    /// `Content-Type: type`
    static Element contentType(std::string_view type);
    /// The encodings that the transport decodes, best first.
    static Element defaultAcceptEncoding();
    /// Up to six language tags with falling weights: `fr-FR;q=1.0, en;q=0.9`.
    static Element defaultAcceptLanguage(const std::vector<std::string>& preferredLanguages);
  };

  HTTPHeaders() = default;
  /// Later elements replace earlier ones of the same name.
  explicit HTTPHeaders(std::vector<Element> elements);

  /// Adds the element, or replaces the value of the one of that name where it stands.
  void set(Element element);
  /// Adds the element; where there is one of that name, adds the value to its own, behind a comma (RFC 9110, 5.3).
  void add(Element element);
  /// Removes the element of that name, if there is one.
  void remove(std::string_view name);
  /// The value of the element of that name; absent when there is none.
  [[nodiscard]] std::optional<std::string> value(std::string_view name) const;
  /// True when there is an element of that name.
  [[nodiscard]] bool contains(std::string_view name) const noexcept;
  /// All of them, in their order.
  [[nodiscard]] const std::vector<Element>& elements() const noexcept { return elements_; }

  bool operator==(const HTTPHeaders&) const = default;

 private:
  std::vector<Element> elements_;
};

}  // namespace ZAK

#pragma once

#include "Fields.hpp"

#include <concepts>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

struct NotConvertible : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The conversion that a host would write by hand on top of a parser. It checks what the kit checks: types,
/// required keys, dates, URLs and enumerations. `Library` is the parser's way of looking at a value:
///
///     using Value = ...;                             // cheap to copy
///     struct Object { explicit Object(Value); std::optional<Value> find(std::string_view key); };
///     static bool isNull(Value);
///     static std::string_view string(Value);         // throws when the value is another type; so do those below
///     static double number(Value);
///     static std::int64_t integer(Value);
///     static bool boolean(Value);
///     static void forEach(Value array, auto visit);  // hands `visit` each element
///     static std::size_t size(Value array);
template <class Library>
class Conversion {
 public:
  using Value = typename Library::Value;

  template <class Result>
  static Result converted(Value value) {
    Result result{};
    read(value, result);
    return result;
  }

 private:
  class Reader {
   public:
    explicit Reader(Value value) : object_(value) {}

    template <class Member>
    Reader& operator()(std::string_view key, Member& member) {
      const std::optional<Value> value = object_.find(key);
      if (!value) throw NotConvertible("missing " + std::string(key));
      read(*value, member);
      return *this;
    }

    template <class Member>
    Reader& operator()(std::string_view key, std::optional<Member>& member) {
      const std::optional<Value> value = object_.find(key);
      if (value && !Library::isNull(*value)) read(*value, member.emplace());
      return *this;
    }

   private:
    typename Library::Object object_;
  };

  template <HasFields Record>
  static void read(Value value, Record& record) {
    Reader reader(value);
    fields(reader, record);
  }

  template <class Element>
  static void read(Value value, std::vector<Element>& elements) {
    elements.reserve(Library::size(value));
    Library::forEach(value, [&](Value element) { read(element, elements.emplace_back()); });
  }

  static void read(Value value, std::string& text) { text = Library::string(value); }
  static void read(Value value, ZAK::RegionCodeDto& region) { region.value = Library::string(value); }
  static void read(Value value, double& number) { number = Library::number(value); }
  static void read(Value value, std::int64_t& number) { number = Library::integer(value); }
  static void read(Value value, bool& boolean) { boolean = Library::boolean(value); }

  static void read(Value value, ZAK::URL& url) {
    auto parsed = ZAK::URL::parse(Library::string(value));
    if (!parsed) throw NotConvertible("not a URL");
    url = std::move(*parsed);
  }

  template <ZAK::RawRepresentable Enumeration>
  static void read(Value value, Enumeration& result) {
    const auto known = ZAK::fromRawValue<Enumeration>(Library::string(value));
    if (!known && !ZAK::CodableLastByDefault<Enumeration>) throw NotConvertible("not one of the texts");
    result = known.value_or(ZAK::RawValues<Enumeration>::cases.back().value);
  }

  /// `YYYY-MM-DDThh:mm:ss.fffZ`, the one layout that the back-end writes.
  static void read(Value value, ZAK::Date& date) {
    constexpr std::string_view layout = "0000-00-00T00:00:00.000Z";
    const std::string_view text = Library::string(value);
    bool fits = text.size() == layout.size();
    for (std::size_t i = 0; fits && i < layout.size(); ++i) {
      fits = layout[i] == '0' ? text[i] >= '0' && text[i] <= '9' : text[i] == layout[i];
    }
    if (!fits) throw NotConvertible("not a date");
    const auto number = [text](std::size_t at, std::size_t digits) {
      int result = 0;
      for (std::size_t i = at; i < at + digits; ++i) result = 10 * result + (text[i] - '0');
      return result;
    };
    const std::chrono::year_month_day day(std::chrono::year(number(0, 4)), std::chrono::month(unsigned(number(5, 2))),
                                          std::chrono::day(unsigned(number(8, 2))));
    if (!day.ok() || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 59) throw NotConvertible("not a date");
    date = std::chrono::sys_days(day) + std::chrono::hours(number(11, 2)) + std::chrono::minutes(number(14, 2)) +
           std::chrono::seconds(number(17, 2)) + std::chrono::milliseconds(number(20, 3));
  }
};

}  // namespace Bench

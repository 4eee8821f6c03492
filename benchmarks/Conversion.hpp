#pragma once

#include <zvapikit/model/PostDto.hpp>

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

/// The conversion of posts that a host would write by hand on top of a parser. It checks what the kit checks: types,
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

  static std::vector<ZAK::PostDto> posts(Value value) {
    std::vector<ZAK::PostDto> posts;
    read(value, posts);
    return posts;
  }

  static void read(Value value, ZAK::PostDto& post) {
    Object object(value);
    required(object, "id", post.id);
    required(object, "user", post.user);
    required(object, "moment", post.moment);
    optional(object, "visibility", post.visibility);
    optional(object, "location", post.location);
    optional(object, "caption", post.caption);
    required(object, "retakeCounter", post.retakeCounter);
    required(object, "isLate", post.isLate);
    required(object, "lateInSeconds", post.lateInSeconds);
    required(object, "primary", post.primary);
    required(object, "secondary", post.secondary);
    optional(object, "quiblets", post.quiblets);
    optional(object, "comments", post.comments);
    optional(object, "screenshots", post.screenshots);
    required(object, "takenAt", post.takenAt);
    required(object, "createdAt", post.createdAt);
  }

 private:
  using Object = typename Library::Object;

  static void read(Value value, ZAK::PostPerson& person) {
    Object object(value);
    required(object, "id", person.id);
    required(object, "username", person.username);
    optional(object, "fullname", person.fullname);
    optional(object, "profilePicture", person.profilePicture);
    optional(object, "status", person.status);
  }

  static void read(Value value, ZAK::PostMomentDto& moment) {
    Object object(value);
    required(object, "id", moment.id);
    required(object, "region", moment.region);
  }

  static void read(Value value, ZAK::PostLocationDto& location) {
    Object object(value);
    required(object, "latitude", location.latitude);
    required(object, "longitude", location.longitude);
  }

  static void read(Value value, ZAK::MediaDto& media) {
    Object object(value);
    required(object, "url", media.url);
    required(object, "width", media.width);
    required(object, "height", media.height);
  }

  static void read(Value value, ZAK::PostQuibletDto& quiblet) {
    Object object(value);
    required(object, "id", quiblet.id);
    required(object, "user", quiblet.user);
    required(object, "emoji", quiblet.emoji);
    required(object, "isInstant", quiblet.isInstant);
    required(object, "media", quiblet.media);
    required(object, "postedAt", quiblet.postedAt);
  }

  static void read(Value value, ZAK::PostCommentDto& comment) {
    Object object(value);
    required(object, "id", comment.id);
    required(object, "user", comment.user);
    required(object, "postedAt", comment.postedAt);
    required(object, "content", comment.content);
  }

  static void read(Value value, ZAK::PostScreenshotDto& screenshot) {
    Object object(value);
    required(object, "id", screenshot.id);
    required(object, "user", screenshot.user);
  }

  template <class Element>
  static void read(Value value, ZAK::SampleCollectionDto<Element>& collection) {
    Object object(value);
    required(object, "sample", collection.sample);
    required(object, "total", collection.total);
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

  static void read(Value value, ZAK::PostVisibilityDto& visibility) {
    visibility =
        ZAK::fromRawValue<ZAK::PostVisibilityDto>(Library::string(value)).value_or(ZAK::PostVisibilityDto::unknown);
  }

  static void read(Value value, ZAK::RelationshipsStatusDto& status) {
    const auto known = ZAK::fromRawValue<ZAK::RelationshipsStatusDto>(Library::string(value));
    if (!known) throw NotConvertible("not a status");
    status = *known;
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

  template <class T>
  static void required(Object& object, std::string_view key, T& result) {
    const std::optional<Value> value = object.find(key);
    if (!value) throw NotConvertible("missing " + std::string(key));
    read(*value, result);
  }

  template <class T>
  static void optional(Object& object, std::string_view key, std::optional<T>& result) {
    const std::optional<Value> value = object.find(key);
    if (value && !Library::isNull(*value)) read(*value, result.emplace());
  }
};

}  // namespace Bench

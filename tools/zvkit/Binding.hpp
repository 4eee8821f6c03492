#pragma once

#include "Catalogue.hpp"
#include "Shape.hpp"

#include <zvapikit/core/CursorDto.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/model/AnalyticsEventDto.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace zvkit {

/// How an argument is read from JSON and named to people.
template <class T>
struct ArgumentType {
  static T read(const nlohmann::json& value) {
    checkKeys(value, ZAK::jsonType<T>());
    return ZAK::JSONDecoder().decode<T>(value.dump());
  }
  static std::string name() { return shapeOf(ZAK::jsonType<T>()); }
};

template <ZAK::RawRepresentable T>
struct ArgumentType<T> {
  static T read(const nlohmann::json& value) {
    // Strictly, also where the kit itself reads an unknown text as the last case.
    const auto known = ZAK::fromRawValue<T>(value.get<std::string>());
    if (!known) throw UsageError("must be one of " + name());
    return *known;
  }
  static std::string name() { return shapeOf(ZAK::jsonType<T>()); }
};

/// The small types around a text.
template <class T>
requires std::is_same_v<T, ZAK::PostId> || std::is_same_v<T, ZAK::UserId> || std::is_same_v<T, ZAK::Username> ||
    std::is_same_v<T, ZAK::RegionCodeDto>
struct ArgumentType<T> {
  static T read(const nlohmann::json& value) { return T(ArgumentType<std::string>::read(value)); }
  static std::string name() { return ArgumentType<std::string>::name(); }
};

template <>
struct ArgumentType<ZAK::CursorDto> {
  static ZAK::CursorDto read(const nlohmann::json& value);
  static std::string name() { return R"("start"|"end"|{nextIndex: string})"; }
};

template <>
struct ArgumentType<std::filesystem::path> {
  static std::filesystem::path read(const nlohmann::json& value) { return value.get<std::string>(); }
  static std::string name() { return "path"; }
};

/// The content of a file.
struct Bytes {
  std::string value;
};

template <>
struct ArgumentType<Bytes> {
  static Bytes read(const nlohmann::json& value);
  static std::string name() { return R"("@FILE")"; }
};

template <>
struct ArgumentType<ZAK::AnalyticsEventDto> {
  static ZAK::AnalyticsEventDto read(const nlohmann::json& value) {
    if (!value.is_object()) throw UsageError("must be an array of objects");
    return ZAK::AnalyticsEventDto(value);
  }
  static std::string name() { return "{...}"; }
};

template <class T>
struct ArgumentType<std::vector<T>> {
  static std::vector<T> read(const nlohmann::json& value) {
    if (!value.is_array()) throw UsageError("must be an array");
    std::vector<T> elements;
    for (const auto& element : value) elements.push_back(ArgumentType<T>::read(element));
    return elements;
  }
  static std::string name() { return "[" + ArgumentType<T>::name() + "]"; }
};

template <class T>
struct ArgumentType<std::optional<T>> {
  static std::optional<T> read(const nlohmann::json& value) {
    if (value.is_null()) return std::nullopt;
    return ArgumentType<T>::read(value);
  }
  static std::string name() { return ArgumentType<T>::name() + "|null"; }
};

template <class T>
T readArgument(const nlohmann::json& arguments, const Argument& argument) {
  const auto found = arguments.find(argument.name);
  if (found == arguments.end() && !argument.mayBeLeftOut) {
    throw UsageError("missing argument \"" + argument.name + "\"");
  }
  try {
    return ArgumentType<T>::read(found == arguments.end() ? nlohmann::json() : *found);
  } catch (const std::exception& error) {
    throw UsageError("argument \"" + argument.name + "\": " + error.what());
  }
}

template <class T>
inline constexpr bool isProgress = std::is_same_v<T, ZAK::HTTPProgress::Function>;

template <class T>
T argumentValue(const nlohmann::json& arguments, const std::vector<Argument>& known, std::size_t index,
                const ZAK::HTTPProgress::Function& progress) {
  if constexpr (isProgress<T>) {
    return progress;
  } else {
    return readArgument<T>(arguments, known.at(index));
  }
}

template <class T>
void addArgument(std::vector<Argument>& known, const std::vector<std::string>& names) {
  if constexpr (!isProgress<T>) {
    std::string name = names.at(known.size());
    const bool mayBeLeftOut = name.ends_with('?');
    if (mayBeLeftOut) name.pop_back();
    known.push_back({std::move(name), ArgumentType<T>::name(), mayBeLeftOut});
  }
}

template <class Result>
boost::asio::awaitable<std::string> encoded(boost::asio::awaitable<Result> call) {
  if constexpr (std::is_void_v<Result>) {
    co_await std::move(call);
    co_return std::string();
  } else {
    const Result result = co_await std::move(call);
    co_return ZAK::JSONEncoder().encode(result);
  }
}

/// An operation that is made by `invoke(group, arguments...)`. The arguments are named in the order of the parameters,
/// a last one for progress aside. One that ends in `?` may be left out, as one that has a default.
template <class Group, class... Args, class Invoke>
Operation bindCall(std::string group, std::string name, const std::vector<std::string>& names, Invoke invoke) {
  Operation operation;
  operation.group = std::move(group);
  operation.name = std::move(name);
  (addArgument<std::decay_t<Args>>(operation.arguments, names), ...);
  operation.call = [invoke, known = operation.arguments](std::shared_ptr<ZAK::MobileApiClient> client,
                                                         const nlohmann::json& arguments,
                                                         const ZAK::HTTPProgress::Function& progress) {
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
      // Braces: the arguments are read from left to right.
      std::tuple<std::decay_t<Args>...> values{argumentValue<std::decay_t<Args>>(arguments, known, I, progress)...};
      return encoded(invoke(Group(client), std::move(std::get<I>(values))...));
    }
    (std::index_sequence_for<Args...>());
  };
  return operation;
}

template <class Group, class Result, class... Args>
Operation bind(std::string group, std::string name, boost::asio::awaitable<Result> (Group::*method)(Args...),
               const std::vector<std::string>& names) {
  static_assert(!(std::is_aggregate_v<Args> || ...), "hosts make it in co_await expressions, which g++ 12 miscompiles");
  return bindCall<Group, Args...>(std::move(group), std::move(name), names, [method](Group target, Args... arguments) {
    return (target.*method)(std::move(arguments)...);
  });
}

/// An operation that needs an adapter.
template <class Group, class Result, class... Args>
Operation bind(std::string group, std::string name, boost::asio::awaitable<Result> (*call)(Group, Args...),
               const std::vector<std::string>& names) {
  return bindCall<Group, Args...>(std::move(group), std::move(name), names, call);
}

}  // namespace zvkit

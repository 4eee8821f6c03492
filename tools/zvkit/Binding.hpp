#pragma once

#include "Catalogue.hpp"

#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/model/Identifiers.hpp>

#include <nlohmann/json.hpp>

#include <array>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

namespace zvkit {

/// How an argument is read from JSON and named to people.
template <class T>
struct ArgumentType {
  static T read(const nlohmann::json& value) {
    if constexpr (ZAK::RawRepresentable<T>) {
      // Strictly, also where the kit itself reads an unknown text as the last case.
      const auto known = ZAK::fromRawValue<T>(value.get<std::string>());
      if (!known) throw UsageError("must be one of " + name());
      return *known;
    } else {
      return ZAK::JSONDecoder().decode<T>(value.dump());
    }
  }
  static std::string name() {
    if constexpr (std::is_same_v<T, std::string>) {
      return "string";
    } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
      return "[string]";
    } else if constexpr (ZAK::RawRepresentable<T>) {
      std::string cases;
      for (const auto& candidate : ZAK::RawValues<T>::cases) {
        cases += (cases.empty() ? "" : "|") + std::string(candidate.rawValue);
      }
      return cases;
    } else {
      return "object";
    }
  }
};

template <class T>
requires std::is_same_v<T, ZAK::PostId> || std::is_same_v<T, ZAK::UserId>
struct ArgumentType<T> {
  static T read(const nlohmann::json& value) { return T(ArgumentType<std::string>::read(value)); }
  static std::string name() { return "string"; }
};

template <class T>
T readArgument(const nlohmann::json& arguments, const std::string& name) {
  const auto found = arguments.find(name);
  if (found == arguments.end()) throw UsageError("missing argument \"" + name + "\"");
  try {
    return ArgumentType<T>::read(*found);
  } catch (const std::exception& error) {
    throw UsageError("argument \"" + name + "\": " + error.what());
  }
}

/// Refuses what is no object, and arguments that the operation does not have.
void checkArguments(const nlohmann::json& arguments, const std::vector<Argument>& known);

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

/// An operation of an endpoint group, its arguments by name in the order of its parameters.
template <class Group, class Result, class... Args>
Operation bind(std::string group, std::string name, boost::asio::awaitable<Result> (Group::*method)(Args...),
               const std::array<std::string, sizeof...(Args)>& names) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    Operation operation;
    operation.group = std::move(group);
    operation.name = std::move(name);
    operation.arguments = {Argument{names[I], ArgumentType<Args>::name()}...};
    operation.call = [method, known = operation.arguments](std::shared_ptr<ZAK::MobileApiClient> client,
                                                           const nlohmann::json& arguments) {
      checkArguments(arguments, known);
      // Braces: the arguments are read from left to right.
      std::tuple<Args...> values{readArgument<Args>(arguments, known[I].name)...};
      return encoded<Result>((Group(client).*method)(std::move(std::get<I>(values))...));
    };
    return operation;
  }
  (std::index_sequence_for<Args...>());
}

}  // namespace zvkit

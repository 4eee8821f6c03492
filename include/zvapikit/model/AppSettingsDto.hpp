#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZAK {

/// A version of the app for each platform; the server knows iOS alone.
struct AppSettingsVersionDto {
  std::string ios;  ///< of the app, for example `2.3.1`

  bool operator==(const AppSettingsVersionDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&AppSettingsVersionDto::ios>("ios")}; }
};

/// How often to poll, in the units that the server and the host agree on.
struct AppSettingsPollingDto {
  std::int64_t feedsFriends = 0;  ///< between two looks at the friends feed
  std::int64_t moment = 0;        ///< between two looks at the moment

  bool operator==(const AppSettingsPollingDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsPollingDto::feedsFriends>("feedsFriends"),
                      JSONField::of<&AppSettingsPollingDto::moment>("moment")};
  }
};

/// How analytics events are sent together.
struct AppSettingsAnalyticsBatchDto {
  std::int64_t maxLength = 0;     ///< most events of one batch
  std::int64_t flushAfterMs = 0;  ///< longest that an event waits for its batch, in milliseconds

  bool operator==(const AppSettingsAnalyticsBatchDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsAnalyticsBatchDto::maxLength>("maxLength"),
                      JSONField::of<&AppSettingsAnalyticsBatchDto::flushAfterMs>("flushAfterMs")};
  }
};

/// Thresholds of what is measured.
struct AppSettingsAnalyticsMetricsDto {
  std::int64_t postSustainLookTimeInMs = 0;  ///< how long a post is looked at until that counts, in milliseconds

  bool operator==(const AppSettingsAnalyticsMetricsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{
        JSONField::of<&AppSettingsAnalyticsMetricsDto::postSustainLookTimeInMs>("postSustainLookTimeInMs")};
  }
};

/// Settings of analytics.
struct AppSettingsAnalyticsDto {
  AppSettingsAnalyticsBatchDto batch;      ///< how events are gathered
  AppSettingsAnalyticsMetricsDto metrics;  ///< what counts as an event

  bool operator==(const AppSettingsAnalyticsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsAnalyticsDto::batch>("batch"),
                      JSONField::of<&AppSettingsAnalyticsDto::metrics>("metrics")};
  }
};

/// Which features are switched on.
struct AppSettingsFeatureFlagsDto {
  std::optional<bool> friendsOfFriendsFeed;  ///< the feed of `FeedsDomain::fetchFof`
  std::optional<bool> messaging;             ///< see `AppSettingsFeaturesFlagsMessagingDto`
  std::optional<bool> analytics;             ///< the events of `AnalyticsDomain`

  bool operator==(const AppSettingsFeatureFlagsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsFeatureFlagsDto::friendsOfFriendsFeed>("friendsOfFriendsFeed"),
                      JSONField::of<&AppSettingsFeatureFlagsDto::messaging>("messaging"),
                      JSONField::of<&AppSettingsFeatureFlagsDto::analytics>("analytics")};
  }
};

/// How long messages stay. An unknown text fails to decode.
enum class MessagingScenario {
  noLimit,       ///< without limit
  noLimitVanish  ///< without limit, unless they are made to vanish
};

template <>
struct RawValues<MessagingScenario> {
  static constexpr std::string_view name = "Scenario";
  static constexpr std::array cases = {RawCase{MessagingScenario::noLimit, "no_limit"},
                                       RawCase{MessagingScenario::noLimitVanish, "no_limit_vanish"}};
};

/// Settings of messaging.
struct AppSettingsFeaturesFlagsMessagingDto {
  /// `MessagingScenario` under its short name.
  using Scenario = MessagingScenario;

  std::string token;                      ///< opaque to the kit
  Scenario scenario = Scenario::noLimit;  ///< how long messages stay

  bool operator==(const AppSettingsFeaturesFlagsMessagingDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsFeaturesFlagsMessagingDto::token>("token"),
                      JSONField::of<&AppSettingsFeaturesFlagsMessagingDto::scenario>("scenario")};
  }
};

/// Settings of single features.
struct AppSettingsFeatureFlagsSettingsDto {
  std::optional<AppSettingsFeaturesFlagsMessagingDto> messaging;  ///< absent when there is nothing to set

  bool operator==(const AppSettingsFeatureFlagsSettingsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsFeatureFlagsSettingsDto::messaging>("messaging")};
  }
};

/// What the server asks of the app.
struct AppSettingsDto {
  AppSettingsVersionDto mandatoryVersions;                                 ///< below these the app must be updated
  AppSettingsVersionDto recommendedVersions;                               ///< below these an update is advised
  AppSettingsPollingDto polling;                                           ///< how often to ask for news
  std::optional<AppSettingsAnalyticsDto> analytics;                        ///< absent: the host's own choice
  std::optional<AppSettingsFeatureFlagsDto> featureFlags;                  ///< absent: the host's own choice
  std::optional<AppSettingsFeatureFlagsSettingsDto> featureFlagsSettings;  ///< what goes with the flags

  bool operator==(const AppSettingsDto&) const = default;
  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&AppSettingsDto::mandatoryVersions>("mandatoryVersions"),
                      JSONField::of<&AppSettingsDto::recommendedVersions>("recommendedVersions"),
                      JSONField::of<&AppSettingsDto::polling>("polling"),
                      JSONField::of<&AppSettingsDto::analytics>("analytics"),
                      JSONField::of<&AppSettingsDto::featureFlags>("featureFlags"),
                      JSONField::of<&AppSettingsDto::featureFlagsSettings>("featureFlagsSettings")};
  }
};

}  // namespace ZAK

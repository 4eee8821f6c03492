#pragma once

#include "Console.hpp"
#include "GivenToken.hpp"

#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/json/URL.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>
#include <zvapikit/model/UploadUrlDto.hpp>

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zvkit {

/// A user's phone: what stays there while the app is closed.
struct Phone {
  explicit Phone(std::string deviceId_, std::string firebaseToken = {})
      : deviceId(std::move(deviceId_)), firebase(std::make_shared<GivenToken>(std::move(firebaseToken))) {}

  std::string deviceId;
  std::shared_ptr<GivenToken> firebase;
  std::shared_ptr<ZAK::InMemoryKeychain> keychain = std::make_shared<ZAK::InMemoryKeychain>();
};

/// The stage on which the day is played: one emulator, a clock that all go by, and Mia's phone, whose app is open.
struct Stage {
  explicit Stage(bool isVerbose);

  /// The app, opened on a phone: what it takes to make a client.
  [[nodiscard]] std::shared_ptr<ZAK::MobileApiClient> openApp(const Phone& phone);
  /// Tokens that the authentication server has been asked for under a grant so far.
  [[nodiscard]] std::size_t exchanges(const std::string& grant) const;
  [[nodiscard]] ProgressLine progressLine() const { return {stdout, logger != nullptr}; }

  static void chapter(std::string_view title);
  void step(const std::string& text);
  /// What the back-end did must be what the next step is about to claim.
  static void check(bool holds, const char* claim);

  static constexpr std::chrono::hours tokenLifetime{1};
  static constexpr std::size_t videoSize = 4'000'000;
  static constexpr const char* phoneCode = "271828";

  std::shared_ptr<const std::filesystem::path> files;  ///< a directory of its own, removed with the last reference
  std::shared_ptr<ZAK::ManualClock> clock;
  ZAK::EmulatorThread emulator;
  boost::asio::io_context io{1};
  std::shared_ptr<ConsoleLogger> logger;  ///< null unless the log is wanted
  Phone mia{"phone-of-mia"};
  std::string miaId;                          ///< her user id, once she has one
  std::shared_ptr<ZAK::MobileApiClient> app;  ///< on her phone
  int steps = 0;
};

/// As many bytes as a camera might have made of a picture.
std::string jpeg(std::size_t size);
/// Uploads a picture, with a progress bar under its name.
boost::asio::awaitable<void> uploadPicture(Stage* stage, std::string name, std::string picture,
                                           ZAK::UploadUrlDto target);
/// What there is to download at the URL.
boost::asio::awaitable<std::string> downloaded(Stage* stage, ZAK::URL url);

/// The record with the id; null when the list has none.
template <class Record>
const Record* withId(const std::vector<Record>& list, std::string_view id) {
  const auto found = std::find_if(list.begin(), list.end(), [&](const Record& record) { return record.id == id; });
  return found == list.end() ? nullptr : &*found;
}

// The chapters of the day, in their order. Each goes on from what those before it left on the stage, which must outlive
// it, and throws when the back-end did not do what it should.

/// Mia is new: phone verification, profile, settings, friends.
boost::asio::awaitable<void> arrive(Stage* stage);
/// Two uploads at once and the post, the three feeds, reactions, moderation.
boost::asio::awaitable<void> postAndReact(Stage* stage);
/// Mishaps and how the kit mends them, the video of the year, the account's deletion, the end of the session.
boost::asio::awaitable<void> endTheYear(Stage* stage);

}  // namespace zvkit

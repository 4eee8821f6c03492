#include "Commands.hpp"
#include "Console.hpp"

#include <zvapikit/core/Context.hpp>
#include <zvapikit/core/FirebaseAuthentifier.hpp>
#include <zvapikit/core/MobileApiClient.hpp>
#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/emulator/EmulatorThread.hpp>
#include <zvapikit/http/ManualClock.hpp>
#include <zvapikit/keychain/InMemoryKeychain.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <stdexcept>

namespace zvkit {
namespace {

using boost::asio::awaitable;

/// Alice's Firebase sign-in.
class AliceAtFirebase final : public ZAK::FirebaseAuthentifier {
 public:
  awaitable<std::string> idToken() override { return token(); }
  void signOut() noexcept override { signedOut = true; }

  bool signedOut = false;

 private:
  static awaitable<std::string> token() { co_return "firebase-alice"; }
};

/// The stage on which the day is played: one emulator, one user, and a clock that both go by.
struct Stage {
  explicit Stage(bool verbose) : emulator(options()) {
    if (verbose) logger = std::make_shared<ConsoleLogger>();
  }

  ZAK::EmulatorOptions options() const {
    ZAK::EmulatorOptions settings;
    settings.now = [now = clock] { return now->now(); };
    settings.tokenLifetime = tokenLifetime;
    return settings;
  }

  std::shared_ptr<ZAK::MobileApiClient> openApp() {
    ZAK::Context context{.configuration = {ZAK::Configuration::Environment::sandbox},
                         .deviceInfo = ZAK::DeviceInfo("Linux", "1", "demo-device"),
                         .authentifier = firebase,
                         .logger = logger,
                         .executor = io.get_executor(),
                         .bundle = {.executable = "zvkit", .identifier = "com.zolvi.zvkit"},
                         .transport = emulator->transportOptions(),
                         .keychain = keychain,
                         .clock = clock};
    return ZAK::MobileApiClient::create(std::move(context));
  }

  /// Tokens that the authentication server has handed out under a grant so far.
  std::size_t exchanges(const std::string& grant) const {
    std::size_t count = 0;
    for (const auto& request : emulator->requests()) count += request.target.ends_with("/token?grant_type=" + grant);
    return count;
  }

  void step(const std::string& text) { printResult(std::to_string(++steps) + ". " + text); }

  /// What the back-end did must be what the step is about to claim.
  static void check(bool holds, const char* claim) {
    if (!holds) throw std::logic_error(std::string("the demo went wrong: not so: ") + claim);
  }

  static constexpr std::chrono::minutes tokenLifetime{10};
  std::shared_ptr<ZAK::ManualClock> clock = std::make_shared<ZAK::ManualClock>(ZAK::ManualClock::autoAdvance);
  ZAK::EmulatorThread emulator;
  boost::asio::io_context io{1};
  std::shared_ptr<ZAK::InMemoryKeychain> keychain = std::make_shared<ZAK::InMemoryKeychain>();
  std::shared_ptr<AliceAtFirebase> firebase = std::make_shared<AliceAtFirebase>();
  std::shared_ptr<ConsoleLogger> logger;
  int steps = 0;
};

ZAK::CreatePostDto pictureOfTheDay(ZAK::Date takenAt) {
  ZAK::CreatePostDto post;
  post.takenAt = takenAt;
  post.backCamera = ZAK::CreatePostPictureDto("storage", "photos/back.jpg", 1500, 2000);
  post.frontCamera = ZAK::CreatePostPictureDto("storage", "photos/front.jpg", 1500, 2000);
  post.visibility = {ZAK::PostVisibilityDto::friends};
  post.retakeCounter = 1;
  post.location = ZAK::CreatePostLocationDto(48.8566, 2.3522);
  return post;
}

/// Post, read back, change, react: the first call signs in by itself.
awaitable<void> morning(std::shared_ptr<Stage> stage, std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ContentDomain content{client};
  const ZAK::CreatePostDto picture = pictureOfTheDay(stage->clock->now());
  const ZAK::PostDto post = co_await content.createMyPost(picture);
  Stage::check(stage->exchanges("firebase") == 1, "one sign-in");
  stage->step("Signed in with Firebase, and published post " + post.id + " of " + post.user.username + ", visible to " +
              std::string(rawValue(post.visibility->front())));

  const ZAK::NewPostDto readBack = co_await content.post(ZAK::PostId(post.id));
  Stage::check(readBack.id == post.id, "the post reads back");
  stage->step("Read it back by its id, with the token that is at hand");

  const ZAK::PostDto captioned = co_await content.updateCaption("Coffee first ☕");
  stage->step("Gave it the caption \"" + captioned.caption.value_or("") + "\"");

  const ZAK::PostId bobsPost("post-bob");
  const ZAK::UserId bob("bob");
  const ZAK::PostCommentDto comment = co_await content.addComment("Nice view!", bobsPost, bob);
  const ZAK::PostQuibletDto quiblet = co_await content.addEmoji("😍", bobsPost, bob);
  stage->step("Commented \"" + comment.content + "\" on Bob's post and reacted with " + quiblet.emoji);

  const std::vector<std::string> unwanted{comment.id};
  co_await content.deleteComments(unwanted, bobsPost, bob);
  stage->step("Took the comment back");
}

/// What goes wrong in a day, and how the kit mends it.
awaitable<void> afternoon(std::shared_ptr<Stage> stage, std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ContentDomain content{client};
  const ZAK::CreatePostDto picture = pictureOfTheDay(stage->clock->now());
  std::optional<ZAK::ZAKError> refusal;
  try {
    co_await content.createMyPost(picture);
  } catch (const ZAK::ZAKError& error) {
    refusal = error;
  }
  Stage::check(refusal && refusal->errorDto() && refusal->errorDto()->key() == ZAK::ErrorDto::Key::userAlreadyPosted,
               "a second post is refused");
  stage->step("A second post of the day is refused: " + refusal->errorDescription());

  stage->clock->advance(Stage::tokenLifetime);
  co_await content.updateCaption("Coffee first, again ☕");
  Stage::check(stage->exchanges("refresh_token") == 1, "one refresh");
  stage->step("Ten minutes later the token had expired: refreshed it, and changed the caption");

  stage->emulator->expireTokens();
  co_await content.updateVisibility(ZAK::PostVisibilityDto::fof);
  Stage::check(stage->exchanges("firebase") == 2, "one more sign-in");
  stage->step(
      "The server rejected the token: signed in anew, sent the request again, and opened the post to "
      "friends-of-friends");
}

awaitable<void> evening(std::shared_ptr<Stage> stage, std::shared_ptr<ZAK::MobileApiClient> client) {
  ZAK::ContentDomain content{client};
  co_await content.deleteMyPost();
  Stage::check(stage->exchanges("firebase") + stage->exchanges("refresh_token") == 3, "no token was asked for");
  stage->step("Opened the app anew: the token came from the keychain; deleted the post");

  co_await client->logout();
  Stage::check(stage->firebase->signedOut, "Firebase was told");
  stage->step("Signed out: the token is gone from memory and keychain, and Firebase was told");
}

/// Runs one part of the day with a client of its own, until nothing is in flight.
void play(
    const std::shared_ptr<Stage>& stage,
    std::initializer_list<awaitable<void> (*)(std::shared_ptr<Stage>, std::shared_ptr<ZAK::MobileApiClient>)> parts) {
  const auto client = stage->openApp();
  for (const auto part : parts) {
    stage->io.restart();
    boost::asio::co_spawn(stage->io, part(stage, client), [](std::exception_ptr failure) {
      if (failure) std::rethrow_exception(failure);
    });
    stage->io.run();
  }
}

}  // namespace

int demo(const DemoOptions& options) {
  keepStandardOutputForResults();
  const auto stage = std::make_shared<Stage>(options.verbose);
  stage->step("Started the back-end's emulator on 127.0.0.1:" + std::to_string(stage->emulator->port()));
  play(stage, {morning, afternoon});
  play(stage, {evening});
  printResult("Done: " + std::to_string(stage->emulator->requests().size()) + " requests over " +
              std::to_string(stage->emulator->counts().connections) + " TLS connections");
  return 0;
}

}  // namespace zvkit

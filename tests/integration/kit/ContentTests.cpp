#include "Kit.hpp"

#include <zvapikit/core/EmptyDto.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>

namespace ZAK::Test {
namespace {

/// Sets an environment variable for one test.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) { ::setenv(name, value, 1); }
  ~EnvironmentVariable() { ::unsetenv(name_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  const char* name_;
};

/// A call with the request that it must become. The calls follow one another on one back-end.
struct Operation {
  const char* method;
  const char* target;  ///< below the base
  const char* body;    ///< JSON; empty for none
  awaitable<void> (*call)(ContentDomain content);
};

// Arguments stand in the `co_await` expressions as temporaries, nested ones too, since hosts write them so.
const Operation operations[] = {
    {"POST", "/content/posts",
     R"({"takenAt":"2023-11-14T22:10:00.345Z","backCamera":{"bucket":"b","path":"a long path/back.jpg","width":1500,
         "height":2000},"frontCamera":{"bucket":"b","path":"a long path/front.jpg","width":3,"height":4},"isLate":true,
         "visibility":["friends-of-friends","friends-of-friends"],"retakeCounter":2,
         "location":{"latitude":48.5,"longitude":-2.25}})",
     [](ContentDomain content) -> awaitable<void> {
       const PostDto post = co_await content.createMyPost(CreatePostDto(
           Date(std::chrono::milliseconds(1'699'999'800'345)),
           CreatePostPictureDto("b", "a long path/back.jpg", 1500, 2000),
           CreatePostPictureDto("b", "a long path/front.jpg", 3, 4), true,
           std::vector<PostVisibilityDto>(2, PostVisibilityDto::fof), 2, CreatePostLocationDto(48.5, -2.25)));
       EXPECT_EQ(post.id, "post-1");
       EXPECT_EQ(post.user.username, "alice");
       EXPECT_EQ(post.takenAt, Date(std::chrono::milliseconds(1'699'999'800'345)));
       EXPECT_EQ(post.location->longitude, -2.25);
       EXPECT_TRUE(post.isLate);
       EXPECT_EQ(post.lateInSeconds, 22 * 3600 + 10 * 60);
       EXPECT_EQ(post.primary.width, 1500.0);
       EXPECT_EQ(post.secondary.url.host(), "storage.zolvi.example");
     }},
    {"GET", "/content/posts/post-1", "",
     [](ContentDomain content) -> awaitable<void> {
       const NewPostDto post = co_await content.post(PostId(std::string("post-") + "1"));
       EXPECT_EQ(post.id, "post-1");
     }},
    {"GET", "/content/posts/a%2Fb%20%C3%BC%3F", "",
     [](ContentDomain content) -> awaitable<void> {
       const NewPostDto post = co_await content.post(PostId("a/b ü?"));
       EXPECT_EQ(post.id, "escaped");
     }},
    {"PATCH", "/content/posts/caption", R"({"caption":"\"Cof\\fee\" ☕\n"})",
     [](ContentDomain content) -> awaitable<void> {
       const PostDto post = co_await content.updateCaption(std::string("\"Cof\\fee\"") + " ☕\n");
       EXPECT_EQ(post.caption, "\"Cof\\fee\" ☕\n");
     }},
    {"PATCH", "/content/posts/visibility", R"({"visibility":"public"})",
     [](ContentDomain content) -> awaitable<void> {
       const PostDto post = co_await content.updateVisibility(PostVisibilityDto::public_);
       EXPECT_EQ(post.visibility, std::vector{PostVisibilityDto::public_});
     }},
    {"POST", "/content/screenshots?postId=post-bob&postUserId=bob", "",
     [](ContentDomain content) -> awaitable<void> {
       const PostDto post = co_await content.notifyScreenshot(PostId("post-bob"), UserId("bob"));
       EXPECT_EQ(post.screenshots->total, 1);
     }},
    {"POST", "/content/comments?postId=post-bob&postUserId=bob", R"({"content":"Nice view, so early in the day!"})",
     [](ContentDomain content) -> awaitable<void> {
       const PostCommentDto comment = co_await content.addComment(std::string("Nice view, ") + "so early in the day!",
                                                                  PostId("post-bob"), UserId("bob"));
       EXPECT_EQ(comment.id, "comment-3");
       EXPECT_EQ(comment.user.id, "alice");
     }},
    {"DELETE", "/content/comments?postId=post-bob&postUserId=bob", R"({"commentIds":["comment-3"]})",
     [](ContentDomain content) -> awaitable<void> {
       co_await content.deleteComments(std::vector<std::string>(1, "comment-3"), PostId("post-bob"), UserId("bob"));
     }},
    {"PUT", "/content/quiblets?postId=post-bob&postUserId=bob", R"({"emoji":"😍"})",
     [](ContentDomain content) -> awaitable<void> {
       const PostQuibletDto quiblet = co_await content.addEmoji("😍", PostId("post-bob"), UserId("bob"));
       EXPECT_EQ(quiblet.emoji, "😍");
       EXPECT_FALSE(quiblet.isInstant);
     }},
    {"PUT", "/content/quiblets/instant?postId=post-bob&postUserId=bob",
     R"({"media":{"bucket":"b","path":"a long path/to/a selfie.jpg","width":500,"height":600}})",
     [](ContentDomain content) -> awaitable<void> {
       const PostQuibletDto quiblet = co_await content.addInstant(
           AddInstantQuibletDto{MediaBucketDto("b", "a long path/to/a selfie.jpg", 500, 600)}, PostId("post-bob"),
           UserId("bob"));
       EXPECT_TRUE(quiblet.isInstant);
       EXPECT_EQ(quiblet.media.height, 600.0);
     }},
    {"DELETE", "/content/quiblets?postId=post-bob&postUserId=bob", R"({"quibletIds":[]})",
     [](ContentDomain content) -> awaitable<void> {
       co_await content.deleteQuiblets(std::vector<std::string>(), PostId("post-bob"), UserId("bob"));
     }},
    {"DELETE", "/content/posts", "", [](ContentDomain content) -> awaitable<void> { co_await content.deleteMyPost(); }},
};

/// All headers but those that describe the message itself.
EmulatorHeaders kitHeaders(const EmulatorRequest& request) {
  EmulatorHeaders headers = request.headers;
  std::erase_if(headers, [](const auto& header) {
    return header.first == "Host" || header.first == "Content-Length" || header.first == "Content-Type";
  });
  return headers;
}

TEST(KitContent, SendsEachOperationAsTheBackEndExpectsAndDecodesItsAnswer) {
  const EnvironmentVariable locale("LC_ALL", "fr_FR.UTF-8");
  const EnvironmentVariable languages("LANGUAGE", "fr_FR:en_GB:de");
  const EnvironmentVariable zone("TZ", "Europe/Paris");
  struct Environment {
    Configuration::Environment kind;
    std::string host, base, authTarget;
  };
  for (const Environment& environment :
       {Environment{Configuration::Environment::sandbox, "mobile-dev.zolvi.example", "/main/api", "/main/token"},
        Environment{Configuration::Environment::production, "mobile.zolvi.example", "/api", "/token"}}) {
    Kit kit({.emulator = {.requiresFixedHeaders = true}});
    Context context = kit.context();
    context.configuration.environment = environment.kind;
    kit.client = MobileApiClient::create(std::move(context));
    kit.emulator->inject(
        {.path = "/content/posts/a%2Fb%20%C3%BC%3F", .answer = EmulatorResponse{200, R"({"id":"escaped"})"}});

    for (const Operation& operation : operations) {
      EXPECT_EQ(kit.outcomeOf(operation.call(ContentDomain(kit.client))), "ok") << operation.target;
    }

    const std::vector<EmulatorRequest> requests = kit.requests();
    ASSERT_EQ(requests.size(), 1 + std::size(operations));
    EXPECT_EQ(requests[0].target, environment.authTarget + "?grant_type=firebase");
    EmulatorHeaders headers = kitHeaders(requests[0]);
    const auto userAgent =
        std::find_if(headers.begin(), headers.end(), [](auto& h) { return h.first == "User-Agent"; });
    ASSERT_NE(userAgent, headers.end());
    EXPECT_TRUE(userAgent->second.starts_with("MyApp/2.3.1 (com.example.app; build:457; iOS ")) << userAgent->second;
    EXPECT_TRUE(userAgent->second.ends_with(") 1.0.0/ZVApiKit")) << userAgent->second;
    const EmulatorHeaders fixed{{"Accept-Encoding", "br, gzip, deflate"},
                                {"Accept-Language", "fr-FR;q=1.0, en-GB;q=0.9, de;q=0.8"},
                                *userAgent,
                                {"zolvi-platform", "Linux"},
                                {"zolvi-device-language", "fr"},
                                {"zolvi-app-version", "2.3.1-(457)"},
                                {"zolvi-os-version", "12.4"},
                                {"zolvi-app-language", "fr-FR"},
                                {"zolvi-timezone", "Europe/Paris"},
                                {"zolvi-device-id", "device-1"}};
    EXPECT_EQ(headers, fixed) << "no token on the way to the authentication server, and nothing that curl would add";

    headers = fixed;
    headers.emplace_back("Authorization", *requests[1].header("Authorization"));
    EXPECT_TRUE(headers.back().second.starts_with("Bearer access-"));
    for (std::size_t i = 0; i < std::size(operations); ++i) {
      const EmulatorRequest& request = requests[i + 1];
      SCOPED_TRACE(request.method + " " + request.target);
      EXPECT_EQ(request.method, operations[i].method);
      EXPECT_EQ(request.host, environment.host);
      EXPECT_EQ(request.target, environment.base + operations[i].target);
      EXPECT_EQ(kitHeaders(request), headers);
      const std::string expected = operations[i].body;
      EXPECT_EQ(request.header("Content-Type") != nullptr, !expected.empty());
      if (expected.empty()) {
        EXPECT_EQ(request.body, "");
      } else {
        EXPECT_EQ(*request.header("Content-Type"), "application/json");
        EXPECT_EQ(nlohmann::json::parse(request.body), nlohmann::json::parse(expected));
      }
    }
  }
}

awaitable<void> readPost(ContentDomain content, std::string id) { co_await content.post(PostId(std::move(id))); }

awaitable<void> comment(ContentDomain content, std::string text) {
  co_await content.addComment(std::move(text), PostId("post-bob"), UserId("bob"));
}

TEST(KitContent, RefusesWhatMustNotBeSentBeforeAnythingIs) {
  Kit kit;
  kit.signIn();
  const ContentDomain content(kit.client);
  EXPECT_EQ(kit.outcomeOf(readPost(content, "..")), "ZAKError: URL not valid");
  EXPECT_EQ(kit.outcomeOf(comment(content, "\xff")), "content: The text is not valid UTF-8.");
  const auto unawaited = ContentDomain(kit.client).updateCaption("never");
  kit.client.reset();
  EXPECT_EQ(kit.outcomeOf(readPost(content, "p1")), "ZAKError: No client available");
  EXPECT_EQ(kit.traffic(), Texts());
}

/// A request of the host's own making, which sees the API's token if `authenticated`.
awaitable<void> fire(std::shared_ptr<MobileApiClient> client, HTTPRequest request, bool authenticated) {
  co_await client->fire<EmptyDto>(std::move(request), authenticated);
}

TEST(KitContent, TakesTheTokenToTheApiAlone) {
  Kit kit;
  kit.signIn();
  const char* elsewhere = "https://storage.zolvi.example/zolvi-photos-dev/Photos/x.jpg";
  EXPECT_EQ(kit.outcomeOf(fire(kit.client, HTTPRequest(HTTPMethod::get, elsewhere), true)),
            "httpError: a client's Authorization is for its own server only");
  EXPECT_EQ(kit.traffic(), Texts());
  EXPECT_NE(kit.outcomeOf(fire(kit.client, HTTPRequest(HTTPMethod::get, elsewhere), false)), "ok");
  EXPECT_EQ(kit.traffic(), Texts{"GET /Photos/x.jpg"});

  // Nor does it follow a redirect, be it to the API itself.
  for (const char* location : {elsewhere, "https://mobile-dev.zolvi.example/main/api/content/posts/post-bob"}) {
    kit.emulator->inject({.answer = EmulatorResponse{302, "", {{"Location", location}}}});
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: HTTP 302 Found");
    EXPECT_EQ(kit.traffic(), Texts{"GET /content/posts/post-bob signed"});
  }
}

}  // namespace
}  // namespace ZAK::Test

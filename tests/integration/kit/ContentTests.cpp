#include "Kit.hpp"
#include "support/EnvironmentVariable.hpp"

#include <zvapikit/core/EmptyDto.hpp>

#include <gtest/gtest.h>

#include <algorithm>

namespace ZAK::Tests {
namespace {

// The arguments stand in the `co_await` expression as temporaries, nested ones too, since hosts write them so.
awaitable<void> createPost(ContentDomain content) {
  const PostDto post = co_await content.createMyPost(CreatePostDto(
      Date(std::chrono::milliseconds(1'699'999'800'345)), CreatePostPictureDto("b", "a long path/back.jpg", 1500, 2000),
      CreatePostPictureDto("b", "a long path/front.jpg", 3, 4), true,
      std::vector<PostVisibilityDto>(2, PostVisibilityDto::fof), 2, CreatePostLocationDto(48.5, -2.25)));
  EXPECT_EQ(post.id, "post-1");
  EXPECT_EQ(post.user.username, "alice");
  EXPECT_EQ(post.takenAt, Date(std::chrono::milliseconds(1'699'999'800'345)));
  EXPECT_EQ(post.visibility, std::vector<PostVisibilityDto>(2, PostVisibilityDto::fof));
  EXPECT_EQ(post.location->longitude, -2.25);
  EXPECT_TRUE(post.isLate);
  EXPECT_EQ(post.lateInSeconds, 22 * 3600 + 10 * 60);
  EXPECT_EQ(post.retakeCounter, 2);
  EXPECT_EQ(post.primary.width, 1500.0);
  EXPECT_EQ(post.secondary.url.string(), "https://storage.zolvi.example/b/a%20long%20path/front.jpg");
}

awaitable<void> readPost(ContentDomain content, std::string id) { co_await content.post(PostId(std::move(id))); }

/// All headers but those that describe the message itself.
EmulatorHeaders kitHeaders(const EmulatorRequest& request) {
  EmulatorHeaders headers = request.headers;
  std::erase_if(headers, [](const auto& header) {
    return header.first == "Host" || header.first == "Content-Length" || header.first == "Content-Type";
  });
  return headers;
}

TEST(KitContent, SendsItsHeadersAndBodiesToTheEnvironmentOfTheClient) {
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
    EXPECT_EQ(kit.outcomeOf(createPost(ContentDomain(kit.client))), "ok");
    EXPECT_NE(kit.outcomeOf(readPost(ContentDomain(kit.client), "a/b ü?")), "ok") << "there is none";

    const std::vector<EmulatorRequest> requests = kit.requests();
    ASSERT_EQ(requests.size(), 3u);
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
    for (const EmulatorRequest& request : {requests[1], requests[2]}) {
      EXPECT_EQ(request.host, environment.host);
      EXPECT_EQ(kitHeaders(request), headers);
    }
    EXPECT_EQ(requests[1].target, environment.base + "/content/posts");
    EXPECT_EQ(requests[2].target, environment.base + "/content/posts/a%2Fb%20%C3%BC%3F");
  }
}

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
  for (const int status : {301, 302, 303, 307, 308}) {
    for (const char* location : {elsewhere, "https://mobile-dev.zolvi.example/main/api/content/posts/post-bob"}) {
      kit.emulator->inject({.answer = EmulatorResponse{status, "", {{"Location", location}}}});
      const std::string outcome = kit.outcomeOf(kit.reading());
      EXPECT_TRUE(outcome.starts_with("httpError: HTTP " + std::to_string(status))) << outcome;
      EXPECT_EQ(kit.traffic(), Texts{"GET /content/posts/post-bob signed"});
    }
  }
}

}  // namespace
}  // namespace ZAK::Tests

#include "integration/kit/Kit.hpp"

#include <zvapikit/http/HTTPClient.hpp>

namespace ZAK::Tests {
namespace {

TEST(Redirects, AreAnswersToTheApiClientAndToUploads) {
  Kit kit;
  kit.signIn();
  for (const int status : {301, 302, 303, 307, 308}) {
    SCOPED_TRACE(status);
    kit.emulator->inject(
        {.times = 2,
         .answer = EmulatorResponse{status, "", {{"Location", "https://storage.zolvi.example/zolvi-photos-dev/x"}}}});
    const std::string described = HTTPError::unsuccessful(HTTPStatusCode(status)).description();
    EXPECT_EQ(kit.outcomeOf(kit.reading()), "httpError: " + described);
    HTTPRequest request(HTTPMethod::put, "https://storage.zolvi.example/zolvi-photos-dev/y");
    request.body = HTTPBody::data("picture");
    const HTTPResponse response = kit.runner.run(kit.client->buildRaw()->fetch(std::move(request)));
    ASSERT_TRUE(response.error);
    EXPECT_EQ(response.error->description(), described);
    EXPECT_EQ(kit.requests().size(), 2u) << "and none to where they point";
  }
}

}  // namespace
}  // namespace ZAK::Tests

#include "Kit.hpp"

#include <zvapikit/core/ZAKError.hpp>
#include <zvapikit/domains/MemoriesDomain.hpp>

#include <gmock/gmock.h>

namespace ZAK::Tests {
namespace {

namespace asio = boost::asio;
namespace fs = std::filesystem;
using Ending = EmulatorFault::Ending;
using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string video = std::string(300'000, 'v');
const URL url = URL::parse("https://storage.zolvi.example/videos/2022.mp4?signature=D8B13E62").value();

const std::string place = "documents/memories/server";
const std::string name = "Zolvi 2022 Video Recap.mp4";

awaitable<void> get(MemoriesDomain memories, bool force, std::string recapName = "2022", std::optional<URL> from = url,
                    HTTPProgress::Function received = {}) {
  const auto location = co_await memories.getVideo(std::move(from), force, std::move(recapName), std::move(received));
  EXPECT_EQ("documents/" + *location.documentsPath(), place + "/" + name);
}

/// The hidden ones too.
Texts filesIn(const fs::path& directory) {
  Texts names;
  for (const auto& file : fs::directory_iterator(directory)) names.push_back(file.path().filename());
  return names;
}

const EmulatorFault slowly{
    .times = EmulatorFault::always, .answer = EmulatorResponse{200, video}, .dripBytes = 100'000};

/// A kit with a video to be had, and with the place where it is kept.
class VideoTest : public testing::Test {
 protected:
  VideoTest() { serve(); }

  void serve() { kit.emulator->inject({.times = EmulatorFault::always, .answer = EmulatorResponse{200, video}}); }
  void keep(std::string_view content) { kit.files.write(fs::path(place) / name, content); }

  Kit kit;
  MemoriesDomain memories{kit.client};
  const fs::path documents = kit.files.path() / "documents";
  const fs::path kept = kit.files.path() / place / name;
};

TEST_F(VideoTest, isFetchedWhenTheKeptOneIsTooSmallOrNotWanted) {
  EXPECT_EQ(memories.getLocalVideoLocation(url, "2022"), std::nullopt);
  for (const auto& [size, force, fetched] :
       {std::tuple(20480, false, true), {20481, false, false}, {20481, true, true}}) {
    SCOPED_TRACE(size);
    keep(std::string(static_cast<std::size_t>(size), 'o'));
    EXPECT_EQ(memories.getLocalVideoLocation(url, "2022").has_value(), size == 20481);
    EXPECT_EQ(kit.outcomeOf(get(memories, force)), "ok");
    EXPECT_EQ(contentOf(kept) == video, fetched);
    const std::vector<EmulatorRequest> requests = kit.requests();
    ASSERT_EQ(requests.size(), fetched ? 1u : 0u);
    if (!fetched) continue;
    EXPECT_EQ(requests[0].headers, (EmulatorHeaders{{"Host", "storage.zolvi.example"}})) << "and nothing of the kit's";
    EXPECT_EQ("https://storage.zolvi.example" + requests[0].target, url.string());
  }
  memories.deleteLocalVideo(std::nullopt, "2022");
  EXPECT_EQ(filesIn(kept.parent_path()), Texts{name});
  memories.deleteLocalVideo(url, "2022");
  EXPECT_EQ(filesIn(kept.parent_path()), Texts());
  EXPECT_THROW(memories.deleteLocalVideo(url, "2022"), fs::filesystem_error) << "there is none";
  EXPECT_EQ(memories.getLocalVideoLocation(std::nullopt, "2022"), std::nullopt);
}

TEST_F(VideoTest, staysAsItWasUntilANewOneIsWhole) {
  const auto redirect = [](const char* to, int times) {
    return EmulatorFault{.times = times, .answer = EmulatorResponse{302, "", {{"Location", to}}}};
  };
  const struct {
    EmulatorFault fault;
    std::string line;  ///< empty when the video comes
    std::size_t requests = 1;
  } cases[] = {
      {{.answer = EmulatorResponse{404, "no such file"}}, "HTTP 404 Not Found"},
      {{.answer = EmulatorResponse{204}}, "HTTP 204 No Content"},
      {{.answer = EmulatorResponse{200, video}, .cutAfter = 100'000, .ending = Ending::reset}, "connection lost"},
      {redirect("http://storage.zolvi.example/x", 1), "redirected to an address that is not https"},
      {redirect("/elsewhere", 6), "too many redirects", 6},
      {redirect("/elsewhere", 5), "", 6},
  };
  for (const auto& given : cases) {
    SCOPED_TRACE(given.line);
    keep("old");
    kit.emulator->clearFaults();
    kit.emulator->inject(given.fault);
    serve();
    const bool comes = given.line.empty();
    EXPECT_EQ(kit.outcomeOf(get(memories, false)), comes ? "ok" : "ZAKError: Failed to download data");
    EXPECT_TRUE(contentOf(kept) == (comes ? video : "old"));
    EXPECT_EQ(filesIn(kept.parent_path()), Texts{name});
    EXPECT_EQ(kit.requests().size(), given.requests);
    const Texts lines = kit.logger->take();
    EXPECT_EQ(lines.empty() ? "" : lines[0], comes ? "" : "error: [MemoriesDomain] download failed : " + given.line);
  }
}

TEST_F(VideoTest, failsWithTheCauseWhereItCannotBeKept) {
  EXPECT_EQ(kit.outcomeOf(get(memories, false, "../x")), "ZAKError: URL not valid");
  EXPECT_EQ(kit.outcomeOf(get(memories, false, "2022", std::nullopt)), "ZAKError: URL not valid");
  EXPECT_FALSE(fs::exists(documents));
  const fs::path photo = kit.files.path() / "none" / "photo.jpg";
  EXPECT_THAT(kit.outcomeOf(memories.downloadPhoto(url, photo)), HasSubstr("No such file or directory"));
  EXPECT_THAT(kit.traffic(), IsEmpty());

  // A broken connection is tried again once for photos, and not for videos.
  kit.emulator->clearFaults();
  kit.emulator->inject({.times = EmulatorFault::always, .cutAfter = 0, .ending = Ending::reset});
  for (const bool isPhoto : {false, true}) {
    const auto client = MobileApiClient::create(kit.context());
    MemoriesDomain unconnected(client);
    kit.requests();
    EXPECT_EQ(kit.outcomeOf(isPhoto ? unconnected.downloadPhoto(url, kit.files.path() / "x") : get(unconnected, true)),
              "ZAKError: Failed to download data");
    EXPECT_EQ(kit.requests().size(), isPhoto ? 2u : 1u);
  }

  // The place is looked at before the client.
  keep(video);
  kit.client.reset();
  EXPECT_EQ(kit.outcomeOf(get(memories, false)), "ok");
  EXPECT_EQ(kit.outcomeOf(get(memories, true)), "ZAKError: No client available");
}

TEST_F(VideoTest, isAskedForAgainWithASignatureThatMayHoldWhereAnotherDidNot) {
  const URL renewed = URL::parse(std::string(url.withoutQuery()) + "?signature=renewed").value();
  for (const bool isRenewed : {false, true}) {
    kit.emulator->clearFaults();
    kit.emulator->inject({.delay = milliseconds(50), .answer = EmulatorResponse{403, "expired"}});
    serve();
    kit.start(get(memories, true));
    kit.start(get(memories, true, "2022", isRenewed ? renewed : url));
    kit.finish();
    const std::string refused = "ZAKError: Failed to download data";
    EXPECT_EQ(std::exchange(*kit.outcomes, {}), (Texts{refused, isRenewed ? "ok" : refused}));
    EXPECT_EQ(kit.requests().size(), isRenewed ? 2u : 1u);
  }
}

// One call leads the transfer and another waits for it, when both, the first or all of the context go.
TEST(KitVideos, CallsForOneFileShareATransferAndMayGoAtEveryStep) {
  enum Way { cancelFirst, cancelBoth, endContext };
  for (const Way way : {cancelFirst, cancelBoth, endContext}) {
    bool ended = false;
    for (int steps = 1; !ended; steps += 1 + steps / 8) {
      SCOPED_TRACE("way " + std::to_string(way) + " after handler " + std::to_string(steps));
      Kit kit;
      kit.emulator->inject(slowly);
      std::uint64_t told[2] = {};
      const auto call = [&](std::uint64_t& bytes) {
        return get(MemoriesDomain(kit.client), true, "2022", url, [&](std::uint64_t done, auto) { bytes = done; });
      };
      Running<void> first(kit.runner.context(), call(told[0]));
      Running<void> second(kit.runner.context(), call(told[1]));
      for (int i = 0; i < steps; ++i) kit.runner.context().run_one_for(std::chrono::seconds(10));
      ended = first.done() && second.done();
      if (way == endContext) {
        kit.runner.destroyContext();
        continue;
      }
      first.cancel.emit(asio::cancellation_type::terminal);
      if (way == cancelBoth) second.cancel.emit(asio::cancellation_type::total);
      kit.finish();
      EXPECT_TRUE(first.value ? told[0] == video.size() : first.wasCancelled());
      EXPECT_TRUE(second.value ? told[1] == video.size() : way == cancelBoth && second.wasCancelled());
      EXPECT_LE(kit.requests().size(), first.value || way == cancelBoth ? 1u : 2u);
      const Texts kept = filesIn(kit.files.path() / place);
      EXPECT_TRUE(kept == Texts{name} || (kept.empty() && !first.value && !second.value));
    }
  }
}

}  // namespace
}  // namespace ZAK::Tests

#include "Bodies.hpp"

#include "support/Samples.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

#include <random>
#include <string>

namespace Bench {
namespace {

class Maker {
 public:
  ZAK::PostDto post() {
    ZAK::PostDto post = post_;
    post.id = identifier();
    change(post.user);
    post.moment.id = identifier();
    post.primary = picture();
    post.secondary = picture();
    post.caption = text(12);
    if (number(0, 4) == 0) post.caption.reset();
    if (number(0, 2) == 0) post.location.reset();
    fill(post.quiblets->sample, number(0, 8));
    fill(post.comments->sample, number(0, 10));
    fill(post.screenshots->sample, number(0, 2));
    post.takenAt += std::chrono::milliseconds(number(0, 80'000'000));
    post.createdAt = post.takenAt + std::chrono::milliseconds(number(500, 9000));
    return post;
  }

  ZAK::LegacyPostDto legacyPost() {
    ZAK::LegacyPostDto post = legacyPost_;
    post.id = identifier();
    change(post.user);
    post.notificationID = identifier();
    post.takenAt._seconds += number(0, 80'000);
    post.takenAt._nanoseconds = number(0, 999) * 1'000'000;
    post.creationDate._seconds = post.takenAt._seconds + number(1, 9);
    post.updatedAt = post.creationDate._seconds * 1000 + number(0, 999'999);
    post.photoURL = picture().url;
    post.secondaryPhotoURL = picture().url;
    post.caption = text(12);
    if (number(0, 4) == 0) post.caption.reset();
    if (number(0, 2) == 0) post.location.reset();
    post.screenshots->assign(std::size_t(number(0, 2)), identifier());
    fill(*post.screenshotsV2, number(0, 2));
    fill(*post.comment, number(0, 11));
    fill(*post.quiblets, number(0, 8));
    return post;
  }

  ZAK::FofPostDto fofPost() {
    ZAK::FofPostDto post = fofPost_;
    post.id = identifier();
    change(post.user);
    post.user.relationship->commonFriends->resize(std::size_t(number(1, 3)),
                                                  post.user.relationship->commonFriends->front());
    for (auto& common : *post.user.relationship->commonFriends) change(common);
    post.moment.id = identifier();
    post.primary = picture();
    post.secondary = picture();
    post.caption = text(12);
    if (number(0, 4) == 0) post.caption.reset();
    if (number(0, 2) == 0) post.location.reset();
    if (number(0, 2) > 0) post.quiblets->mine.reset();
    fill(post.quiblets->sample, number(0, 14));
    post.takenAt += std::chrono::milliseconds(number(0, 80'000'000));
    post.postedAt = post.takenAt + std::chrono::milliseconds(number(500, 9000));
    return post;
  }

  ZAK::RelationshipsPersonDto person() {
    ZAK::RelationshipsPersonDto person = person_;
    change(person);
    person.fullname = text(3);
    person.mutualFriends = number(0, 200);
    person.hashedPhoneNumber = identifier() + identifier();
    if (number(0, 3) == 0) person.hashedPhoneNumber.reset();
    *person.createdAt += std::chrono::milliseconds(number(0, 2'000'000'000));
    person.updatedAt = *person.createdAt + std::chrono::milliseconds(number(0, 2'000'000'000));
    return person;
  }

  ZAK::ProfileDto profile() {
    ZAK::ProfileDto profile = profile_;
    change(profile);
    profile.devices.resize(2, profile.devices.front());
    for (auto& device : profile.devices) {
      device.deviceId = identifier();
      device.pushToken = identifier() + ":" + identifier() + identifier() + identifier() + identifier();
    }
    profile.quiblets.resize(5, profile.quiblets.front());
    for (auto& quiblet : profile.quiblets) quiblet.media = picture();
    profile.biography = text(20) + "\n" + text(20);
    profile.accountDeleteScheduledAt.reset();
    return profile;
  }

  ZAK::AnalyticsEventDto event() {
    static const char* const names[] = {"actionScreenView", "actionPostOpened", "actionFriendAdded", "metricLoadTime"};
    const int width = number(0, 1) == 0 ? 1080 : 1440;
    return ZAK::AnalyticsEventDto({{"name", names[number(0, 3)]},
                                   {"timestamp", 1'680'714'552'345 + number(0, 2'000'000'000)},
                                   {"session", identifier()},
                                   {"properties",
                                    {{"screen", "feedFriends"},
                                     {"postId", identifier()},
                                     {"position", number(0, 99)},
                                     {"lookTimeInMs", number(0, 90'000) / 7.0},
                                     {"viewport", {width, 2340}},
                                     {"isLate", number(0, 1) == 0},
                                     {"caption", text(6)},
                                     {"source", nullptr},
                                     {"locale", "fr_FR"}}}});
  }

 private:
  int number(int least, int most) { return least + int(engine_() % unsigned(most - least + 1)); }

  std::string identifier() {
    std::string text(28, ' ');
    for (char& c : text) c = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"[number(0, 63)];
    return text;
  }

  std::string text(int words) {
    static const char* const some[] = {"sunset", "à la plage",  "coffee", "with the team", "😍🔥",  "late again",
                                       "home",   "\"finally\"", "день",   "so good",       "and", "Zürich"};
    std::string text = "ok";
    for (int i = number(0, words); i > 0; --i) text.append(" ").append(some[number(0, 11)]);
    return text;
  }

  ZAK::MediaDto picture() {
    ZAK::MediaDto media;
    media.url =
        *ZAK::URL::parse("https://cdn.zolvi.example/Photos/" + identifier() + "/post/" + identifier() + ".webp");
    media.width = number(0, 1) == 0 ? 1500 : 1000;
    media.height = number(0, 1) == 0 ? 2000 : 1000;
    return media;
  }

  template <class Person>
  void change(Person& person) {
    person.id = identifier();
    person.username = "user" + std::to_string(number(1, 999'999));
    if constexpr (requires { person.profilePicture; }) {
      person.profilePicture = picture();
      if (number(0, 5) == 0) person.profilePicture.reset();
    }
  }

  void changeRest(ZAK::PostQuibletDto& quiblet) { quiblet.media = picture(); }
  void changeRest(ZAK::PostCommentDto& comment) { comment.content = text(20); }
  void changeRest(ZAK::PostScreenshotDto&) {}
  void changeRest(ZAK::FofQuibletDto& quiblet) { quiblet.media = picture(); }
  void changeRest(ZAK::LegacyPostScreenshotDto&) {}
  void changeRest(ZAK::LegacyPostQuibletDto& quiblet) {
    changeOwner(quiblet);
    quiblet.uri = picture().url;
  }
  void changeRest(ZAK::LegacyPostCommentDto& comment) {
    changeOwner(comment);
    comment.text = text(20);
  }
  static void changeOwner(auto& entry) {
    entry.uid = entry.user.id;
    entry.userName = entry.user.username;
  }

  template <class Element>
  void fill(std::vector<Element>& elements, int count) {
    elements.resize(std::size_t(count), elements.front());
    for (Element& element : elements) {
      element.id = identifier();
      change(element.user);
      changeRest(element);
    }
  }

  template <class Record>
  static Record sample(const char* name) {
    return ZAK::JSONDecoder().decode<Record>(ZAK::Tests::sample(name).dump());
  }

  const ZAK::PostDto post_ = sample<ZAK::PostDto>("PostDto");
  const ZAK::LegacyPostDto legacyPost_ = sample<ZAK::LegacyPostDto>("LegacyPostDto");
  const ZAK::FofPostDto fofPost_ = sample<ZAK::FofPostDto>("FofPostDto");
  const ZAK::RelationshipsPersonDto person_ = sample<ZAK::RelationshipsPersonDto>("RelationshipsPersonDto");
  const ZAK::ProfileDto profile_ = sample<ZAK::ProfileDto>("ProfileDto");
  std::minstd_rand engine_;
};

/// So many of what one maker makes.
template <class Record>
std::vector<Record> made(int count, Record (Maker::*make)()) {
  Maker maker;
  std::vector<Record> records;
  for (int i = 0; i < count; ++i) records.push_back((maker.*make)());
  return records;
}

}  // namespace

std::vector<ZAK::PostDto> posts(int count) { return made(count, &Maker::post); }
std::vector<ZAK::LegacyPostDto> feed(int count) { return made(count, &Maker::legacyPost); }
ZAK::CollectionDto<ZAK::FofPostDto> fofPosts(int count) { return {made(count, &Maker::fofPost), "after"}; }
ZAK::CollectionDto<ZAK::RelationshipsPersonDto> friends(int count) { return {made(count, &Maker::person), {}}; }
ZAK::ProfileDto profile() { return Maker().profile(); }
std::vector<ZAK::AnalyticsEventDto> events(int count) { return made(count, &Maker::event); }

}  // namespace Bench

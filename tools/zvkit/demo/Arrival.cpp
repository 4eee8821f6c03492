#include "Stage.hpp"

#include <zvapikit/core/Pager.hpp>
#include <zvapikit/domains/MomentDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/RegionsDomain.hpp>
#include <zvapikit/domains/RelationshipsDomain.hpp>
#include <zvapikit/domains/SearchDomain.hpp>
#include <zvapikit/domains/SettingsDomain.hpp>
#include <zvapikit/domains/TermsDomain.hpp>
#include <zvapikit/domains/VonageDomain.hpp>

namespace zvkit {
namespace {

using boost::asio::awaitable;
using ZAK::RelationshipsDomain;
using ZAK::RelationshipsStatusDto;

awaitable<void> verifyPhone(Stage* stage) {
  Stage::chapter("Mia is new");
  ZAK::VonageDomain vonage{stage->app};
  const auto asked = co_await vonage.requestCode("+33639980199");
  Stage::check(asked.status == ZAK::VonageStatusDto::success, "a code was sent");
  stage->step("Mia asked for a code to be sent to +33639980199");

  const auto wrong = co_await vonage.checkCode(asked.vonageRequestId, "000000");
  Stage::check(wrong.status == ZAK::VonageStatusDto::invalidCode && !wrong.token, "a wrong code is refused");
  stage->step("Typed 000000, which was refused: " + wrong.errorText.value_or(""));

  const auto right = co_await vonage.checkCode(asked.vonageRequestId, Stage::phoneCode);
  Stage::check(right.status == ZAK::VonageStatusDto::success && right.token && right.uid, "the right code signs in");
  stage->miaId = *right.uid;
  stage->mia.firebase->token = *right.token;
  stage->step("Typed the code that came: Firebase now knows her as " + *right.uid);
}

awaitable<void> makeProfile(Stage* stage) {
  using namespace std::chrono;
  ZAK::ProfileDomain profile{stage->app};
  ZAK::ProfileInformationDto infos;
  infos.username = "mia";
  infos.fullname = "Mia Moreau";
  infos.birthdate = sys_days(2000y / May / 20);
  const ZAK::ProfileDto made = co_await profile.create(infos);
  Stage::check(made.id == stage->miaId && made.username == "mia", "the profile is Mia's");
  Stage::check(stage->exchanges("firebase") == 1, "one sign-in");
  stage->step("Signed in by the first call, and made the profile of " + made.fullname.value_or("") + ", @" +
              made.username);
}

awaitable<void> changePicture(Stage* stage) {
  ZAK::ProfileDomain profile{stage->app};
  const std::string picture = jpeg(1'200'000);
  ProgressLine line = stage->progressLine();
  const auto sent = line.add("me.jpg ");
  const ZAK::ProfileDto shown = co_await profile.updateProfilePicture(picture, "me.jpg", sent);
  line.finish();
  Stage::check(shown.profilePicture.has_value(), "the profile has a picture");
  const std::string copy = co_await downloaded(stage, shown.profilePicture->url);
  Stage::check(copy == picture, "the picture is the one that was sent");
  stage->step("Set the profile picture, and saw it arrive whole");
}

awaitable<void> lookAround(Stage* stage) {
  ZAK::SettingsDomain settings{stage->app};
  ZAK::TermsDomain terms{stage->app};
  const auto recommended = co_await settings.fetch();
  auto push = co_await settings.fetchPush();
  push.late = !push.late;
  co_await settings.updatePush(push);
  const auto kept = co_await settings.fetchPush();
  co_await terms.update(ZAK::TermCodeDto::memories, ZAK::TermStatusDto::accepted);
  const auto answers = co_await terms.fetch();
  const ZAK::TermDto accepted{ZAK::TermCodeDto::memories, ZAK::TermStatusDto::accepted};
  Stage::check(kept == push && std::count(answers.data.begin(), answers.data.end(), accepted) == 1, "all is kept");
  stage->step("Switched the notifications of late posts off, and accepted the term \"memories\"; version " +
              recommended.recommendedVersions.ios + " of the app is recommended");

  ZAK::RegionsDomain regions{stage->app};
  ZAK::MomentDomain moments{stage->app};
  const auto known = co_await regions.fetch("fr");
  const ZAK::MomentDto moment = co_await moments.fetch("europe-west");
  Stage::check(known.size() > 1 && moment.startDate && moment.startDate <= stage->clock->now(), "the moment has come");
  stage->step("Of " + std::to_string(known.size()) + " regions hers is " + moment.region.value + ", where it is " +
              moment.id);
}

/// Mia asks; Alice answers on her own phone.
awaitable<void> askAlice(Stage* stage) {
  Stage::chapter("Friends");
  ZAK::SearchDomain search{stage->app};
  RelationshipsDomain mias{stage->app};
  const auto found = co_await search.searchPersons("alice", 5);
  Stage::check(found.data.size() == 1 && found.data.front().id == "alice", "the search finds Alice");
  const auto asked = co_await mias.sendFriendRequest(ZAK::UserId("alice"), ZAK::RelationshipsActionSourceDto::username);
  Stage::check(asked.status == RelationshipsStatusDto::sent, "the request was sent");
  stage->step("Searched for \"alice\", found " + found.data.front().fullname.value_or("") + " and asked to be friends");

  const Phone phone("phone-of-alice", "firebase-alice");
  const auto app = stage->openApp(phone);
  RelationshipsDomain alices{app};
  const auto received = co_await alices.fetchFriendsRequestReceived();
  Stage::check(withId(received.data, stage->miaId) != nullptr, "Alice has the request");
  const auto accepted = co_await alices.acceptFriendRequest(ZAK::UserId(stage->miaId));
  Stage::check(accepted.status == RelationshipsStatusDto::accepted, "Alice accepted");
  stage->step("Alice, on her phone, found the request of @" + accepted.username + " and accepted it");
}

/// Frida asks on her own phone; Mia answers.
awaitable<void> answerFrida(Stage* stage) {
  RelationshipsDomain mias{stage->app};
  const std::vector<std::string> addressBook{"+447700900111", "+447700900999"};
  const auto contacts = co_await mias.retrieveExistingContacts(addressBook);
  Stage::check(contacts.size() == 1 && contacts.front().id == "frida", "one contact has the app");
  stage->step("Of two numbers in the address book one has the app: " + contacts.front().fullname.value_or(""));

  const Phone phone("phone-of-frida", "firebase-frida");
  const auto app = stage->openApp(phone);
  RelationshipsDomain fridas{app};
  const ZAK::UserId mia(stage->miaId);
  co_await fridas.sendFriendRequest(mia, ZAK::RelationshipsActionSourceDto::contact);
  const auto received = co_await mias.fetchFriendsRequestReceived();
  Stage::check(received.data.size() == 1 && received.data.front().id == "frida", "Frida's request came");
  co_await mias.acceptFriendRequest(ZAK::UserId("frida"));
  const auto friends = co_await mias.fetchFriends();
  Stage::check(withId(friends.data, "alice") && withId(friends.data, "frida"), "Mia has two friends");
  stage->step("Frida was quicker: accepted her request, and has " + std::to_string(friends.data.size()) + " friends");
}

awaitable<void> lookAtSuggestions(Stage* stage) {
  RelationshipsDomain relationships{stage->app};
  auto suggestions = ZAK::pages(relationships, &RelationshipsDomain::fetchSuggestions);
  std::string names;
  int count = 0;
  int pages = 0;
  while (const auto page = co_await suggestions.next()) {
    ++pages;
    for (const auto& person : *page) names += (count++ == 0 ? "@" : ", @") + person.username;
  }
  Stage::check(count > 2 && pages > 1, "there are several pages of suggestions");
  stage->step("Friends of theirs are suggested, " + std::to_string(count) + " on " + std::to_string(pages) +
              " pages: " + names);

  co_await relationships.hideSuggestion(ZAK::UserId("bob"));
  const auto left = co_await relationships.fetchSuggestions();
  Stage::check(!withId(left.data, "bob"), "Bob is not suggested again");
  stage->step("Hid the first of them, who is not suggested again");
}

}  // namespace

awaitable<void> arrive(Stage* stage) {
  for (const auto part : {verifyPhone, makeProfile, changePicture, lookAround}) co_await part(stage);
  for (const auto part : {askAlice, answerFrida, lookAtSuggestions}) co_await part(stage);
}

}  // namespace zvkit

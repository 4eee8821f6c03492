#include "Catalogue.hpp"

#include "Binding.hpp"

#include <zvapikit/domains/AnalyticsDomain.hpp>
#include <zvapikit/domains/ContentDomain.hpp>
#include <zvapikit/domains/FeedsDomain.hpp>
#include <zvapikit/domains/MemoriesDomain.hpp>
#include <zvapikit/domains/ModerationBlockDomain.hpp>
#include <zvapikit/domains/ModerationReportDomain.hpp>
#include <zvapikit/domains/MomentDomain.hpp>
#include <zvapikit/domains/PersonDomain.hpp>
#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/domains/RegionsDomain.hpp>
#include <zvapikit/domains/RelationshipsDomain.hpp>
#include <zvapikit/domains/SearchDomain.hpp>
#include <zvapikit/domains/SettingsDomain.hpp>
#include <zvapikit/domains/StatsDomain.hpp>
#include <zvapikit/domains/TermsDomain.hpp>
#include <zvapikit/domains/UploadDomain.hpp>
#include <zvapikit/domains/VonageDomain.hpp>

#include <algorithm>

namespace zvkit {
namespace {

using namespace ZAK;
using boost::asio::awaitable;

/// The form of `PersonDomain::fetch` that takes these arguments.
template <class Key>
using FetchPerson = awaitable<PersonDto> (PersonDomain::*)(Key);

awaitable<std::optional<MemoriesVideoLocation>> localVideo(MemoriesDomain group, std::optional<URL> remoteUrl,
                                                           std::string recapName) {
  co_return group.getLocalVideoLocation(remoteUrl, recapName);
}

awaitable<void> deleteLocalVideo(MemoriesDomain group, std::optional<URL> remoteUrl, std::string recapName) {
  group.deleteLocalVideo(remoteUrl, recapName);
  co_return;
}

awaitable<ProfileDto> updatePicture(ProfileDomain group, Bytes data, std::string name, HTTPProgress::Function sent) {
  return group.updateProfilePicture(std::move(data.value), std::move(name), std::move(sent));
}

awaitable<void> upload(UploadDomain group, Bytes data, UploadUrlDto with, HTTPProgress::Function sent) {
  return group.upload(std::move(data.value), std::move(with), std::move(sent));
}

std::vector<Operation> makeCatalogue() {
  return {
      bind("analytics", "send", &AnalyticsDomain::send, {"events"}),

      bind("content", "createMyPost", &ContentDomain::createMyPost, {"post"}),
      bind("content", "post", &ContentDomain::post, {"for"}),
      bind("content", "deleteMyPost", &ContentDomain::deleteMyPost, {}),
      bind("content", "updateCaption", &ContentDomain::updateCaption, {"caption"}),
      bind("content", "updateVisibility", &ContentDomain::updateVisibility, {"visibility"}),
      bind("content", "notifyScreenshot", &ContentDomain::notifyScreenshot, {"forPostId", "by"}),
      bind("content", "addComment", &ContentDomain::addComment, {"comment", "on", "by"}),
      bind("content", "deleteComments", &ContentDomain::deleteComments, {"commentIds", "on", "by"}),
      bind("content", "addEmoji", &ContentDomain::addEmoji, {"emoji", "on", "by"}),
      bind("content", "addInstant", &ContentDomain::addInstant, {"instant", "on", "by"}),
      bind("content", "deleteQuiblets", &ContentDomain::deleteQuiblets, {"quibletIds", "from", "by"}),
      bind("feeds", "fetchFriends", &FeedsDomain::fetchFriends, {}),
      bind("feeds", "fetchDiscovery", &FeedsDomain::fetchDiscovery, {"lastIndex?"}),
      bind("feeds", "fetchFof", &FeedsDomain::fetchFof, {"cursor?"}),
      bind("memories", "fetchAll", &MemoriesDomain::fetchAll, {}),
      bind("memories", "fetchFirst", &MemoriesDomain::fetchFirst, {"limit"}),
      bind("memories", "deleteMemory", &MemoriesDomain::deleteMemory, {"memoryId"}),
      bind("memories", "fetchRecaps", &MemoriesDomain::fetchRecaps, {}),
      bind("memories", "generateVideo", &MemoriesDomain::generateVideo, {"for"}),
      bind("memories", "deleteVideos", &MemoriesDomain::deleteVideos, {"for"}),
      bind("memories", "getVideo", &MemoriesDomain::getVideo, {"url", "force", "recapName"}),
      bind("memories", "getLocalVideoLocation", &localVideo, {"remoteUrl", "recapName"}),
      bind("memories", "deleteLocalVideo", &deleteLocalVideo, {"remoteUrl", "recapName"}),
      bind("memories", "downloadPhoto", &MemoriesDomain::downloadPhoto, {"url", "destination"}),
      bind("moderationBlock", "fetchBlockedUsers", &ModerationBlockDomain::fetchBlockedUsers, {"cursor?"}),
      bind("moderationBlock", "blockUser", &ModerationBlockDomain::blockUser, {"id"}),
      bind("moderationBlock", "unblockUser", &ModerationBlockDomain::unblockUser, {"id"}),
      bind("moderationReport", "reportProfile", &ModerationReportDomain::reportProfile,
           {"userID", "reason", "comment?"}),
      bind("moderationReport", "reportPost", &ModerationReportDomain::reportPost, {"postID", "reason", "comment?"}),
      bind("moment", "fetch", &MomentDomain::fetch, {"region"}),
      bind("person", "fetch", FetchPerson<UserId>(&PersonDomain::fetch), {"userId"}),
      bind("person", "fetch", FetchPerson<Username>(&PersonDomain::fetch), {"username"}),
      bind("person", "fetchMutualFriends", &PersonDomain::fetchMutualFriends, {"userId", "cursor?"}),
      bind("profile", "create", &ProfileDomain::create, {"infos", "parentalConsentRequestId?"}),
      bind("profile", "fetch", &ProfileDomain::fetch, {}),
      bind("profile", "update", &ProfileDomain::update, {"infos"}),
      bind("profile", "updateUsername", &ProfileDomain::updateUsername, {"username"}),
      bind("profile", "updateRegion", &ProfileDomain::updateRegion, {"region"}),
      bind("profile", "updateProfilePicture", &updatePicture, {"data", "name"}),
      bind("profile", "deleteProfilePicture", &ProfileDomain::deleteProfilePicture, {}),
      bind("profile", "updateQuiblet", &ProfileDomain::updateQuiblet, {"quiblet"}),
      bind("profile", "deleteQuiblet", &ProfileDomain::deleteQuiblet, {"quiblet"}),
      bind("profile", "deleteAccount", &ProfileDomain::deleteAccount, {}),
      bind("profile", "cancelAccountDeletion", &ProfileDomain::cancelAccountDeletion, {}),
      bind("regions", "fetch", &RegionsDomain::fetch, {"language?"}),
      bind("relationships", "fetchFriends", &RelationshipsDomain::fetchFriends, {"cursor?"}),
      bind("relationships", "fetchSuggestions", &RelationshipsDomain::fetchSuggestions, {"cursor?"}),
      bind("relationships", "fetchFriendsRequestSent", &RelationshipsDomain::fetchFriendsRequestSent, {"cursor?"}),
      bind("relationships", "fetchFriendsRequestReceived", &RelationshipsDomain::fetchFriendsRequestReceived,
           {"cursor?"}),
      bind("relationships", "sendFriendRequest", &RelationshipsDomain::sendFriendRequest, {"id", "source"}),
      bind("relationships", "cancelFriendRequest", &RelationshipsDomain::cancelFriendRequest, {"id"}),
      bind("relationships", "acceptFriendRequest", &RelationshipsDomain::acceptFriendRequest, {"id"}),
      bind("relationships", "rejectFriendRequest", &RelationshipsDomain::rejectFriendRequest, {"id"}),
      bind("relationships", "hideSuggestion", &RelationshipsDomain::hideSuggestion, {"id"}),
      bind("relationships", "removeFriend", &RelationshipsDomain::removeFriend, {"id"}),
      bind("relationships", "retrieveExistingContacts", &RelationshipsDomain::retrieveExistingContacts,
           {"phoneNumbers"}),
      bind("search", "searchPersons", &SearchDomain::searchPersons, {"query", "limit"}),
      bind("settings", "fetch", &SettingsDomain::fetch, {}),
      bind("settings", "fetchPush", &SettingsDomain::fetchPush, {}),
      bind("settings", "updatePush", &SettingsDomain::updatePush, {"settings"}),
      bind("stats", "fetch", &StatsDomain::fetch, {"language?"}),
      bind("terms", "fetch", &TermsDomain::fetch, {}),
      bind("terms", "update", &TermsDomain::update, {"code", "with"}),
      bind("upload", "askPostUploadUrls", &UploadDomain::askPostUploadUrls, {}),
      bind("upload", "askProfileQuibletUploadUrl", &UploadDomain::askProfileQuibletUploadUrl, {}),
      bind("upload", "askInstantQuibletUploadUrl", &UploadDomain::askInstantQuibletUploadUrl, {}),
      bind("upload", "upload", &upload, {"data", "with"}),
      bind("upload", "uploadFile", &UploadDomain::uploadFile, {"file", "with"}),
      bind("vonage", "requestCode", &VonageDomain::requestCode, {"for"}),
      bind("vonage", "checkCode", &VonageDomain::checkCode, {"for", "and"}),
  };
}

/// The first argument that is not among the known; null when there is none.
const std::string* firstUnknown(const nlohmann::json& arguments, const std::vector<Argument>& known) {
  for (const auto& [name, value] : arguments.get_ref<const nlohmann::json::object_t&>()) {
    const auto isName = [&, &text = name](const Argument& argument) { return argument.name == text; };
    if (std::none_of(known.begin(), known.end(), isName)) return &name;
  }
  return nullptr;
}

}  // namespace

const std::vector<Operation>& catalogue() {
  static const std::vector<Operation> operations = makeCatalogue();
  return operations;
}

const Operation& find(std::string_view fullName, const nlohmann::json& arguments) {
  if (!arguments.is_object()) throw UsageError("the arguments must be one JSON object");
  std::string problem = "no operation \"" + std::string(fullName) + "\"; `zvkit list` tells which there are";
  for (const Operation& operation : catalogue()) {
    if (operation.fullName() != fullName) continue;
    const std::string* const unknown = firstUnknown(arguments, operation.arguments);
    if (!unknown) return operation;
    problem = "unknown argument \"" + *unknown + "\"";
  }
  throw UsageError(problem);
}

}  // namespace zvkit

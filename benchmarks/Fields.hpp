#pragma once

#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/PostDto.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/RelationshipsPersonDto.hpp>

/// The fields of the measured records as a host would write them out by hand, apart from the kit's own tables: `field`
/// takes a key and the member, and returns itself. An optional member may be missing.
namespace Bench {

template <class Field>
void fields(Field& field, ZAK::MediaDto& media) {
  field("url", media.url)("width", media.width)("height", media.height);
}

template <class Field>
void fields(Field& field, ZAK::PostPerson& person) {
  field("id", person.id)("username", person.username)("fullname", person.fullname);
  field("profilePicture", person.profilePicture)("status", person.status);
}

template <class Field>
void fields(Field& field, ZAK::PostMomentDto& moment) {
  field("id", moment.id)("region", moment.region);
}

template <class Field>
void fields(Field& field, ZAK::PostLocationDto& location) {
  field("latitude", location.latitude)("longitude", location.longitude);
}

template <class Field>
void fields(Field& field, ZAK::PostQuibletDto& quiblet) {
  field("id", quiblet.id)("user", quiblet.user)("emoji", quiblet.emoji)("isInstant", quiblet.isInstant);
  field("media", quiblet.media)("postedAt", quiblet.postedAt);
}

template <class Field>
void fields(Field& field, ZAK::PostCommentDto& comment) {
  field("id", comment.id)("user", comment.user)("postedAt", comment.postedAt)("content", comment.content);
}

template <class Field>
void fields(Field& field, ZAK::PostScreenshotDto& screenshot) {
  field("id", screenshot.id)("user", screenshot.user);
}

template <class Field, class Element>
void fields(Field& field, ZAK::SampleCollectionDto<Element>& collection) {
  field("sample", collection.sample)("total", collection.total);
}

template <class Field>
void fields(Field& field, ZAK::PostDto& post) {
  field("id", post.id)("user", post.user)("moment", post.moment)("visibility", post.visibility);
  field("location", post.location)("caption", post.caption)("retakeCounter", post.retakeCounter);
  field("isLate", post.isLate)("lateInSeconds", post.lateInSeconds)("primary", post.primary);
  field("secondary", post.secondary)("quiblets", post.quiblets)("comments", post.comments);
  field("screenshots", post.screenshots)("takenAt", post.takenAt)("createdAt", post.createdAt);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostUserDto& user) {
  field("id", user.id)("username", user.username)("profilePicture", user.profilePicture);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostDateDto& date) {
  field("_seconds", date._seconds)("_nanoseconds", date._nanoseconds);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostLocation& location) {
  field("_latitude", location._latitude)("_longitude", location._longitude);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostQuibletDto& quiblet) {
  field("id", quiblet.id)("uid", quiblet.uid)("user", quiblet.user)("date", quiblet.date);
  field("emoji", quiblet.emoji)("type", quiblet.type)("uri", quiblet.uri)("userName", quiblet.userName);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostCommentDto& comment) {
  field("id", comment.id)("uid", comment.uid)("user", comment.user)("creationDate", comment.creationDate);
  field("text", comment.text)("userName", comment.userName);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostScreenshotDto& screenshot) {
  field("id", screenshot.id)("user", screenshot.user);
}

template <class Field>
void fields(Field& field, ZAK::LegacyPostDto& post) {
  field("id", post.id)("user", post.user)("notificationID", post.notificationID)("region", post.region);
  field("creationDate", post.creationDate)("takenAt", post.takenAt)("updatedAt", post.updatedAt);
  field("lateInSeconds", post.lateInSeconds)("photoURL", post.photoURL)("imageHeight", post.imageHeight);
  field("imageWidth", post.imageWidth)("secondaryPhotoURL", post.secondaryPhotoURL);
  field("secondaryImageHeight", post.secondaryImageHeight)("secondaryImageWidth", post.secondaryImageWidth);
  field("geoHash", post.geoHash)("location", post.location)("caption", post.caption);
  field("screenshots", post.screenshots)("screenshotsV2", post.screenshotsV2)("comment", post.comment);
  field("quiblets", post.quiblets)("visibility", post.visibility)("retakeCounter", post.retakeCounter);
}

template <class Field>
void fields(Field& field, ZAK::FofCommonFriendDto& friend_) {
  field("id", friend_.id)("username", friend_.username)("fullname", friend_.fullname);
  field("profilePicture", friend_.profilePicture);
}

template <class Field>
void fields(Field& field, ZAK::FofRelationshipDto& relationship) {
  field("commonFriends", relationship.commonFriends);
}

template <class Field>
void fields(Field& field, ZAK::FofUserDto& user) {
  field("id", user.id)("username", user.username)("fullname", user.fullname);
  field("profilePicture", user.profilePicture)("relationship", user.relationship);
}

template <class Field>
void fields(Field& field, ZAK::FofMomentDto& moment) {
  field("id", moment.id)("region", moment.region);
}

template <class Field>
void fields(Field& field, ZAK::FofLocationDto& location) {
  field("latitude", location.latitude)("longitude", location.longitude);
}

template <class Field>
void fields(Field& field, ZAK::FofQuibletUserDto& user) {
  field("id", user.id)("username", user.username);
}

template <class Field>
void fields(Field& field, ZAK::FofQuibletDto& quiblet) {
  field("id", quiblet.id)("user", quiblet.user)("media", quiblet.media)("emoji", quiblet.emoji);
  field("isInstant", quiblet.isInstant)("postedAt", quiblet.postedAt);
}

template <class Field>
void fields(Field& field, ZAK::FofQuibletsRootDto& quiblets) {
  field("total", quiblets.total)("self", quiblets.mine)("sample", quiblets.sample);
}

template <class Field>
void fields(Field& field, ZAK::FofPostDto& post) {
  field("id", post.id)("user", post.user)("moment", post.moment)("primary", post.primary);
  field("secondary", post.secondary)("location", post.location)("caption", post.caption)("takenAt", post.takenAt);
  field("postedAt", post.postedAt)("lateInSeconds", post.lateInSeconds)("quiblets", post.quiblets);
}

template <class Field>
void fields(Field& field, ZAK::RelationshipsPersonDto& person) {
  field("id", person.id)("username", person.username)("fullname", person.fullname);
  field("mutualFriends", person.mutualFriends)("profilePicture", person.profilePicture);
  field("hashedPhoneNumber", person.hashedPhoneNumber)("createdAt", person.createdAt);
  field("updatedAt", person.updatedAt)("status", person.status);
}

template <class Field>
void fields(Field& field, ZAK::ProfileDeviceDto& device) {
  field("deviceId", device.deviceId)("clientVersion", device.clientVersion)("device", device.device);
  field("pushToken", device.pushToken)("language", device.language)("platform", device.platform);
  field("timezone", device.timezone);
}

template <class Field>
void fields(Field& field, ZAK::ProfileQuibletDto& quiblet) {
  field("emoji", quiblet.emoji)("media", quiblet.media);
}

template <class Field>
void fields(Field& field, ZAK::ProfileDto& profile) {
  field("id", profile.id)("username", profile.username)("devices", profile.devices)("quiblets", profile.quiblets);
  field("fullname", profile.fullname)("phoneNumber", profile.phoneNumber);
  field("profilePicture", profile.profilePicture)("biography", profile.biography)("location", profile.location);
  field("countryCode", profile.countryCode)("region", profile.region)("canPost", profile.canPost);
  field("canUpdateRegion", profile.canUpdateRegion)("newUsername", profile.newUsername);
  field("accountDeleteScheduledAt", profile.accountDeleteScheduledAt)("createdAt", profile.createdAt);
}

template <class Field, class Element>
void fields(Field& field, ZAK::CollectionDto<Element>& page) {
  field("data", page.data)("next", page.next);
}

struct AnyField;

/// Whether a type has fields.
template <class Record>
concept HasFields = requires(Record& record, AnyField& field) {
  fields(field, record);
};

}  // namespace Bench

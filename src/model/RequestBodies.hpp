#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/RelationshipsActionSourceDto.hpp>
#include <zvapikit/model/RelationshipsStatusDto.hpp>
#include <zvapikit/model/ReportPostReasonDto.hpp>
#include <zvapikit/model/ReportProfileReasonDto.hpp>
#include <zvapikit/model/TermDto.hpp>

#include <array>
#include <optional>
#include <string>
#include <vector>

/// Bodies that operations make of their arguments and that no host sees.
namespace ZAK {

/// Asks somebody to be a friend.
struct FriendRequestBody {
  std::string userId;
  RelationshipsActionSourceDto source;

  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&FriendRequestBody::userId>("userId"),
                      JSONField::of<&FriendRequestBody::source>("source")};
  }
};

/// Cancels, accepts or rejects a friend request.
struct FriendRequestStatusBody {
  RelationshipsStatusDto status;

  static constexpr auto jsonFields() { return std::array{JSONField::of<&FriendRequestStatusBody::status>("status")}; }
};

/// Looks for users among the contacts of an address book.
struct ContactsBody {
  std::vector<std::string> phoneNumbers;

  static constexpr auto jsonFields() { return std::array{JSONField::of<&ContactsBody::phoneNumbers>("phoneNumbers")}; }
};

/// Accepts or declines a term.
struct TermStatusBody {
  TermStatusDto status;

  static constexpr auto jsonFields() { return std::array{JSONField::of<&TermStatusBody::status>("status")}; }
};

/// Reports a profile.
struct ReportProfileBody {
  std::string userId;
  ReportProfileReasonDto reason;
  std::optional<std::string> comment;

  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ReportProfileBody::userId>("userId"),
                      JSONField::of<&ReportProfileBody::reason>("reason"),
                      JSONField::of<&ReportProfileBody::comment>("comment")};
  }
};

/// Reports a post.
struct ReportPostBody {
  std::string postId;
  ReportPostReasonDto reason;
  std::optional<std::string> comment;

  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&ReportPostBody::postId>("postId"),
                      JSONField::of<&ReportPostBody::reason>("reason"),
                      JSONField::of<&ReportPostBody::comment>("comment")};
  }
};

/// Blocks a user.
struct BlockUserBody {
  std::string blockedUserId;

  static constexpr auto jsonFields() {
    return std::array{JSONField::of<&BlockUserBody::blockedUserId>("blockedUserId")};
  }
};

}  // namespace ZAK

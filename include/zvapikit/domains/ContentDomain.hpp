#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/CreatePostDto.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/PostActionDto.hpp>
#include <zvapikit/model/PostDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <string>
#include <vector>

namespace ZAK {

/// The user's own post of the day, and the reactions on anybody's post. Every operation is made as the signed-in user.
/// Thread safety, executors, lifetimes, cancellation and errors are those of `MobileApiDomain` and `Client`; only what
/// an operation adds to them is told here.
///
/// Repeats: when a connection fails the kit itself sends `post`, `addEmoji`, `addInstant` and the deletions again. The
/// host may repeat what is said to be safe to repeat, also after the server carried it out although the call failed (a
/// lost connection, a cancellation).
class ZVAPIKIT_API ContentDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// Publishes the user's post of the current moment, whose pictures have been uploaded before (`UploadDomain`). Not
  /// safe to repeat blindly: a second post of one moment fails with the key `userAlreadyPosted`.
  boost::asio::awaitable<PostDto> createMyPost(CreatePostDto post);
  /// Reads a post. Safe to repeat.
  boost::asio::awaitable<NewPostDto> post(PostId postId);
  /// Deletes the user's post of the current moment. Limited by the server: `tooManyDeletions`. Safe to repeat as long
  /// as the user does not post again: then the new post would go.
  boost::asio::awaitable<void> deleteMyPost();
  /// Replaces the caption of the user's post. Safe to repeat.
  boost::asio::awaitable<PostDto> updateCaption(std::string caption);
  /// Changes who may see the user's post. Limited by the server: `changeVisibilityTooMuch`. Safe to repeat.
  boost::asio::awaitable<PostDto> updateVisibility(PostVisibilityDto visibility);

  /// Tells that the user took a screenshot of the post `forPostId` of the author `by`. Not safe to repeat: each call
  /// counts a screenshot.
  boost::asio::awaitable<PostDto> notifyScreenshot(PostId forPostId, UserId by);

  /// Comments on the post `on` of the author `by`, as the further operations name it too. Not safe to repeat: each call
  /// adds a comment.
  boost::asio::awaitable<PostCommentDto> addComment(std::string comment, PostId on, UserId by);
  /// Deletes comments by their identifiers; none is sent as none. Safe to repeat.
  boost::asio::awaitable<void> deleteComments(std::vector<std::string> commentIds, PostId on, UserId by);

  /// Reacts with the selfie stored for an emoji, or replaces the user's reaction. Safe to repeat.
  boost::asio::awaitable<PostQuibletDto> addEmoji(std::string emoji, PostId on, UserId by);
  /// Reacts with a selfie that has been uploaded before, or replaces the user's reaction. Safe to repeat.
  boost::asio::awaitable<PostQuibletDto> addInstant(AddInstantQuibletDto instant, PostId on, UserId by);
  /// Deletes reactions by their identifiers; none is sent as none. Safe to repeat.
  boost::asio::awaitable<void> deleteQuiblets(std::vector<std::string> quibletIds, PostId from, UserId by);
};

}  // namespace ZAK

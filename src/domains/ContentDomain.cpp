#include "core/Endpoint.hpp"

#include <zvapikit/domains/ContentDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

namespace {

/// Names a post and its author in the query.
Endpoint about(PostId post, UserId author, Endpoint endpoint) {
  return std::move(endpoint).query("postId", std::move(post.value)).query("postUserId", std::move(author.value));
}

}  // namespace

awaitable<PostDto> ContentDomain::createMyPost(CreatePostDto post) {
  return fire<PostDto>(weakClient(), Endpoint::post("/content/posts").json(post));
}

awaitable<NewPostDto> ContentDomain::post(PostId postId) {
  return fire<NewPostDto>(weakClient(), Endpoint::get("/content/posts/{postId}", {{"postId", postId.value}}));
}

awaitable<void> ContentDomain::deleteMyPost() { return fire<void>(weakClient(), Endpoint::delete_("/content/posts")); }

awaitable<PostDto> ContentDomain::updateCaption(std::string caption) {
  const CaptionDto body{std::move(caption)};
  return fire<PostDto>(weakClient(), Endpoint::patch("/content/posts/caption").json(body));
}

awaitable<PostDto> ContentDomain::updateVisibility(PostVisibilityDto visibility) {
  const VisibilityDto body{std::string(rawValue(visibility))};
  return fire<PostDto>(weakClient(), Endpoint::patch("/content/posts/visibility").json(body));
}

awaitable<PostDto> ContentDomain::notifyScreenshot(PostId forPostId, UserId by) {
  return fire<PostDto>(weakClient(), about(forPostId, by, Endpoint::post("/content/screenshots")));
}

awaitable<PostCommentDto> ContentDomain::addComment(std::string comment, PostId on, UserId by) {
  const AddCommentDto body{std::move(comment)};
  return fire<PostCommentDto>(weakClient(), about(on, by, Endpoint::post("/content/comments").json(body)));
}

awaitable<void> ContentDomain::deleteComments(std::vector<std::string> commentIds, PostId on, UserId by) {
  const DeleteCommentsDto body{std::move(commentIds)};
  return fire<void>(weakClient(), about(on, by, Endpoint::delete_("/content/comments").json(body)));
}

awaitable<PostQuibletDto> ContentDomain::addEmoji(std::string emoji, PostId on, UserId by) {
  const AddQuibletDto body{std::move(emoji)};
  return fire<PostQuibletDto>(weakClient(), about(on, by, Endpoint::put("/content/quiblets").json(body)));
}

awaitable<PostQuibletDto> ContentDomain::addInstant(AddInstantQuibletDto instant, PostId on, UserId by) {
  return fire<PostQuibletDto>(weakClient(), about(on, by, Endpoint::put("/content/quiblets/instant").json(instant)));
}

awaitable<void> ContentDomain::deleteQuiblets(std::vector<std::string> quibletIds, PostId from, UserId by) {
  const DeleteQuibletsDto body{std::move(quibletIds)};
  return fire<void>(weakClient(), about(from, by, Endpoint::delete_("/content/quiblets").json(body)));
}

}  // namespace ZAK

#pragma once

#include <zvapikit/json/JSONType.hpp>
#include <zvapikit/model/MediaDto.hpp>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace ZAK {

/// Body that sets the caption of a post.
struct CaptionDto {
  std::string caption;  ///< the new one, in place of the old

  bool operator==(const CaptionDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&CaptionDto::caption>("caption")}; }
};

/// Body that sets who may see a post.
struct VisibilityDto {
  std::string visibility;  ///< raw value of a `PostVisibilityDto`

  bool operator==(const VisibilityDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&VisibilityDto::visibility>("visibility")}; }
};

/// Body that comments on a post.
struct AddCommentDto {
  std::string content;  ///< in the author's words

  bool operator==(const AddCommentDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&AddCommentDto::content>("content")}; }
};

/// Body that deletes comments of a post.
struct DeleteCommentsDto {
  std::vector<std::string> commentIds;  ///< identifiers of the comments

  bool operator==(const DeleteCommentsDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&DeleteCommentsDto::commentIds>("commentIds")}; }
};

/// Body that reacts to a post with a stored selfie.
struct AddQuibletDto {
  std::string emoji;  ///< what the reaction stands for

  bool operator==(const AddQuibletDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&AddQuibletDto::emoji>("emoji")}; }
};

/// Body that reacts to a post with a selfie just taken.
struct AddInstantQuibletDto {
  AddInstantQuibletDto() = default;
  /// A reaction with this selfie.
  explicit AddInstantQuibletDto(MediaBucketDto media_) : media(std::move(media_)) {}

  MediaBucketDto media;  ///< the uploaded selfie

  bool operator==(const AddInstantQuibletDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&AddInstantQuibletDto::media>("media")}; }
};

/// Body that deletes reactions to a post.
struct DeleteQuibletsDto {
  std::vector<std::string> quibletIds;  ///< identifiers of the reactions

  bool operator==(const DeleteQuibletsDto&) const = default;
  static constexpr auto jsonFields() { return std::array{JSONField::of<&DeleteQuibletsDto::quibletIds>("quibletIds")}; }
};

}  // namespace ZAK

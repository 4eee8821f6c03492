#pragma once

#include <zvapikit/json/RawValue.hpp>

#include <array>
#include <string_view>

namespace ZAK {

/// Why a post is reported. An unknown text fails to decode.
enum class ReportPostReasonDto {
  spam,                  ///< unwanted advertising, or the same again and again
  scamOrUntrue,          ///< meant to deceive
  inappropriateCaption,  ///< the words, not the pictures
  justNotForMe,          ///< against no rule, but unwelcome
  nudityOrSexual,        ///< naked people or sexual content
  violentOrDangerous,    ///< violence, weapons, dangerous acts
  hateSpeechOrSymbols,   ///< hatred of a group of people
  suicideOrSelfHarm,     ///< somebody may need help
  other                  ///< see the comment
};

template <>
struct RawValues<ReportPostReasonDto> {
  static constexpr std::string_view name = "ReportPostReasonDto";
  static constexpr std::array cases = {RawCase{ReportPostReasonDto::spam, "spam"},
                                       RawCase{ReportPostReasonDto::scamOrUntrue, "scam-or-untrue"},
                                       RawCase{ReportPostReasonDto::inappropriateCaption, "inappropriate-caption"},
                                       RawCase{ReportPostReasonDto::justNotForMe, "just-not-for-me"},
                                       RawCase{ReportPostReasonDto::nudityOrSexual, "nudity-or-sexual"},
                                       RawCase{ReportPostReasonDto::violentOrDangerous, "violent-or-dangerous"},
                                       RawCase{ReportPostReasonDto::hateSpeechOrSymbols, "hate-speech-or-symbols"},
                                       RawCase{ReportPostReasonDto::suicideOrSelfHarm, "suicide-or-self-harm"},
                                       RawCase{ReportPostReasonDto::other, "other"}};
};

}  // namespace ZAK

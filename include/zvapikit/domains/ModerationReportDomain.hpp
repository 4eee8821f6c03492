#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/model/Identifiers.hpp>
#include <zvapikit/model/ReportPostReasonDto.hpp>
#include <zvapikit/model/ReportProfileReasonDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// Reports to the moderators. Not safe to repeat blindly: repeated after a lost answer a call may make a second report.
/// The kit itself does not send it again when the connection fails. Thread safety, executors, lifetimes, cancellation
/// and errors are those of `MobileApiDomain` and `Client`.
class ZVAPIKIT_API ModerationReportDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// Reports a user. The server decides whether a reason needs a comment.
  boost::asio::awaitable<void> reportProfile(UserId userID, ReportProfileReasonDto reason,
                                             std::optional<std::string> comment = {});
  /// Reports a post. The server decides whether a reason needs a comment.
  boost::asio::awaitable<void> reportPost(PostId postID, ReportPostReasonDto reason,
                                          std::optional<std::string> comment = {});
};

}  // namespace ZAK

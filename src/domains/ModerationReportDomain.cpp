#include "core/Endpoint.hpp"
#include "model/RequestBodies.hpp"

#include <zvapikit/domains/ModerationReportDomain.hpp>

namespace ZAK {

using boost::asio::awaitable;

awaitable<void> ModerationReportDomain::reportProfile(UserId userID, ReportProfileReasonDto reason,
                                                      std::optional<std::string> comment) {
  const ReportProfileBody body{std::move(userID.value), reason, std::move(comment)};
  return fire<void>(weakClient(), Endpoint::post("/moderation/reports/profile").json(body));
}

awaitable<void> ModerationReportDomain::reportPost(PostId postID, ReportPostReasonDto reason,
                                                   std::optional<std::string> comment) {
  const ReportPostBody body{std::move(postID.value), reason, std::move(comment)};
  return fire<void>(weakClient(), Endpoint::post("/moderation/reports/post").json(body));
}

}  // namespace ZAK

#include <zvapikit/json/JSONErrors.hpp>
#include <zvapikit/model/ProfileInformationDto.hpp>

namespace ZAK {
namespace {

template <class T>
T required(std::optional<T>&& value, const char* field) {
  if (!value) throw EncodingError({field}, "A new profile needs a value here.");
  return std::move(*value);
}

}  // namespace

ProfileCreateInformationDto ProfileCreateInformationDto::of(ProfileInformationDto infos,
                                                            std::optional<std::string> parentalConsentRequestId_) {
  ProfileCreateInformationDto body;
  body.username = required(std::move(infos.username), "username");
  body.fullname = required(std::move(infos.fullname), "fullname");
  body.birthdate = required(std::move(infos.birthdate), "birthdate");
  body.device = std::move(infos.device);
  body.deviceId = std::move(infos.deviceId);
  body.platform = std::move(infos.platform);
  body.timezone = std::move(infos.timezone);
  body.pushToken = std::move(infos.pushToken);
  body.language = std::move(infos.language);
  body.clientVersion = std::move(infos.clientVersion);
  body.parentalConsentRequestId = std::move(parentalConsentRequestId_);
  return body;
}

}  // namespace ZAK

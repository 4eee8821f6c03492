#include "core/Endpoint.hpp"
#include "platform/PrivateFiles.hpp"

#include <zvapikit/domains/ProfileDomain.hpp>
#include <zvapikit/model/RegionDto.hpp>

namespace ZAK {

using boost::asio::awaitable;

namespace {

bool isPictureName(const std::string& name) {
  constexpr std::string_view separators("/\0", 2);
  return name != "." && name.find("..") == std::string::npos && name.find_first_of(separators) == std::string::npos &&
         URL::parse(name);
}

awaitable<ProfileDto> sendPicture(std::weak_ptr<MobileApiClient> client, std::filesystem::path directory,
                                  std::string data, std::string name, HTTPProgress::Function sent) {
  if (!isPictureName(name)) throw ZAKError(ZAKError::uploadfileNameNotValid);
  (void)locked(client);  // without it nothing is written either
  PrivateDirectory::create(directory).replace(name, data);
  HTTPBodyPart picture("file", HTTPBody::file(directory / name, MIMEType::uploadImage), name);
  Endpoint endpoint = Endpoint::put("/person/me/profile-picture");
  endpoint.request.body = HTTPBody::multipart({std::move(picture)});
  endpoint.request.progress.sent = std::move(sent);
  co_return co_await fire<ProfileDto>(std::move(client), std::move(endpoint));
}

}  // namespace

awaitable<ProfileDto> ProfileDomain::create(ProfileInformationDto infos,
                                            std::optional<std::string> parentalConsentRequestId) {
  return fire<ProfileDto>(weakClient(), Endpoint::post("/person/me").body([&] {
    return HTTPBody::json(ProfileCreateInformationDto::of(std::move(infos), std::move(parentalConsentRequestId)));
  }));
}

awaitable<ProfileDto> ProfileDomain::fetch() { return fire<ProfileDto>(weakClient(), Endpoint::get("/person/me")); }

awaitable<ProfileDto> ProfileDomain::update(ProfileInformationDto infos) {
  return fire<ProfileDto>(weakClient(), Endpoint::patch("/person/me").json(infos));
}

awaitable<ProfileDto> ProfileDomain::updateUsername(std::optional<std::string> username) {
  const ProfileInformationUsernameDto body{std::move(username)};
  return fire<ProfileDto>(weakClient(), Endpoint::patch("/person/me/username").json(body));
}

awaitable<ProfileDto> ProfileDomain::updateRegion(RegionCodeDto region) {
  const RegionUpdateDto body{std::move(region)};
  return fire<ProfileDto>(weakClient(), Endpoint::patch("/person/me/region").json(body));
}

awaitable<ProfileDto> ProfileDomain::updateProfilePicture(std::string data, std::string name,
                                                          HTTPProgress::Function sent) {
  return sendPicture(weakClient(), directories().temporary, std::move(data), std::move(name), std::move(sent));
}

awaitable<ProfileDto> ProfileDomain::deleteProfilePicture() {
  return fire<ProfileDto>(weakClient(), Endpoint::delete_("/person/me/profile-picture"));
}

awaitable<ProfileDto> ProfileDomain::updateQuiblet(ProfileQuibletUploadDto quiblet) {
  return fire<ProfileDto>(weakClient(), Endpoint::put("person/me/quiblets").json(quiblet));
}

awaitable<ProfileDto> ProfileDomain::deleteQuiblet(std::string emoji) {
  const ProfileQuibletDeleteDto body{std::move(emoji)};
  return fire<ProfileDto>(weakClient(), Endpoint::delete_("person/me/quiblets").json(body));
}

awaitable<ProfileDto> ProfileDomain::deleteAccount() {
  return fire<ProfileDto>(weakClient(), Endpoint::delete_("/person/me"));
}

awaitable<ProfileDto> ProfileDomain::cancelAccountDeletion() {
  return fire<ProfileDto>(weakClient(), Endpoint::patch("/person/me/cancel-delete"));
}

}  // namespace ZAK

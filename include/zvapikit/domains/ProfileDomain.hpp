#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/MobileApiDomain.hpp>
#include <zvapikit/http/HTTPProgress.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/ProfileInformationDto.hpp>
#include <zvapikit/model/ProfileQuibletUploadDto.hpp>
#include <zvapikit/model/RegionCodeDto.hpp>

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>

namespace ZAK {

/// The user's own profile. Every operation yields the profile as it is afterwards, and is safe to repeat unless it says
/// otherwise. When a connection fails the kit itself sends again what reads, replaces or removes: `fetch`,
/// `updateProfilePicture`, `updateQuiblet`, and what begins with `delete`. Thread safety, executors, lifetimes,
/// cancellation and errors are those of `MobileApiDomain` and `Client`; only what an operation adds to them is told
/// here.
class ZVAPIKIT_API ProfileDomain : public MobileApiDomain {
 public:
  using MobileApiDomain::MobileApiDomain;

  /// Creates the profile. `infos` must hold a user name, a full name and a birth date; its biography and location are
  /// not part of a new profile. Not safe to repeat blindly: the first attempt may have taken the user name.
  /// \throws EncodingError that names the value missing, before anything is sent.
  boost::asio::awaitable<ProfileDto> create(ProfileInformationDto infos,
                                            std::optional<std::string> parentalConsentRequestId = {});
  /// Reads the profile.
  boost::asio::awaitable<ProfileDto> fetch();
  /// Changes what `infos` holds and leaves the rest alone.
  boost::asio::awaitable<ProfileDto> update(ProfileInformationDto infos);
  /// Changes the user name, or clears it when there is none. One that somebody else has fails with the key
  /// `usernameNotAvailable`.
  boost::asio::awaitable<ProfileDto> updateUsername(std::optional<std::string> username);
  /// Moves the user to another region.
  boost::asio::awaitable<ProfileDto> updateRegion(RegionCodeDto region);
  /// Replaces the profile picture. `data` is a JPEG. It is kept as the file `name` in `directories().temporary`, which
  /// takes the place of an earlier one of that name and stays there, and sent as a form with that file
  /// (RFC 7578). `sent` is told of the bytes that have gone out, as `HTTPProgress` does.
  /// \throws ZAKError `uploadfileNameNotValid`, before anything is written, when the name is empty, forms no URL, or
  ///   holds `/`, `..` or NUL; std::system_error when the file cannot be written. Nothing is sent then.
  boost::asio::awaitable<ProfileDto> updateProfilePicture(std::string data, std::string name,
                                                          HTTPProgress::Function sent = {});
  /// Removes the profile picture.
  boost::asio::awaitable<ProfileDto> deleteProfilePicture();

  /// Stores an uploaded selfie for an emoji, or replaces it.
  boost::asio::awaitable<ProfileDto> updateQuiblet(ProfileQuibletUploadDto quiblet);
  /// Removes the selfie stored for an emoji.
  boost::asio::awaitable<ProfileDto> deleteQuiblet(std::string emoji);

  /// Marks the account for deletion. Until the server carries that out `cancelAccountDeletion` restores it.
  boost::asio::awaitable<ProfileDto> deleteAccount();
  /// Restores an account marked for deletion.
  boost::asio::awaitable<ProfileDto> cancelAccountDeletion();
};

}  // namespace ZAK

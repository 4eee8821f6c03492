#pragma once

#include <zvapikit/Export.hpp>
#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/http/HTTPError.hpp>

#include <exception>
#include <memory>
#include <string>

namespace ZAK {

/// Why an operation of the kit failed. What an operation may throw besides it: `boost::system::system_error` of
/// `operation_aborted` when it was cancelled, `DecodingError` when an answer is not the record that was expected,
/// `EncodingError` when an argument has no JSON form, and whatever the host's own objects throw.
///
/// Whether the call may be made again, the operation says; a `ZAKError` itself tells only what went wrong.
///
/// Thread safety: immutable; copies share their contents.
class ZVAPIKIT_API ZAKError : public std::exception {
 public:
  /// What went wrong. Those marked "for hosts" the kit itself never throws.
  enum Case {
    apiError,                     ///< the server described the failure: `errorDto()`
    httpError,                    ///< no answer, or a failing one without a description: `underlyingError()`
    alreadyInitialized,           ///< for hosts
    notInitialized,               ///< for hosts
    noHTTPResponse,               ///< for hosts
    uploadfileNameNotValid,       ///< a file name that would leave its directory
    noClientAvailable,            ///< the group outlived its client
    failedToUploadWithSignedUrl,  ///< the storage refused an upload; its words are in the log
    failedToRequestCode,          ///< for hosts: no code was sent to the phone
    requestFailed,                ///< for hosts
    urlNotValid,                  ///< a URL that cannot be formed, or a path variable that would climb the path
    failedToDownloadData          ///< no whole file came; the reason is in the log
  };

  /// One of the cases without a payload.
  /// \throws std::invalid_argument for `apiError` and `httpError`.
  explicit ZAKError(Case kind);
  /// An `apiError`.
  explicit ZAKError(ErrorDto error);
  /// An `httpError`.
  explicit ZAKError(HTTPError error);

  /// What went wrong.
  [[nodiscard]] Case kind() const noexcept { return state_->kind; }
  /// The server's own words; null unless `kind()` is `apiError`.
  [[nodiscard]] const ErrorDto* errorDto() const noexcept { return state_->errorDto.get(); }
  /// What the HTTP layer found; null unless `kind()` is `httpError`.
  [[nodiscard]] const HTTPError* underlyingError() const noexcept { return state_->underlying.get(); }

  /// The failure in words, for people; never empty.
  [[nodiscard]] const std::string& errorDescription() const noexcept { return state_->description; }
  /// Same text as `errorDescription()`.
  [[nodiscard]] const char* what() const noexcept override { return state_->description.c_str(); }

 private:
  struct State {
    Case kind;
    std::string description;
    std::unique_ptr<const ErrorDto> errorDto;
    std::unique_ptr<const HTTPError> underlying;
  };
  std::shared_ptr<const State> state_;
};

}  // namespace ZAK

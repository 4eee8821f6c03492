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
/// Thread safety: immutable; copies share their contents.
class ZVAPIKIT_API ZAKError : public std::exception {
 public:
  enum Case {
    apiError,   ///< the server described the failure: `errorDto()`
    httpError,  ///< no answer, or a failing one without a description: `underlyingError()`
    alreadyInitialized,
    notInitialized,
    noHTTPResponse,
    uploadfileNameNotValid,  ///< a file name that would leave its directory
    noClientAvailable,       ///< the group outlived its client
    failedToUploadWithSignedUrl,
    failedToRequestCode,
    requestFailed,
    urlNotValid,  ///< a URL that cannot be formed, or a path variable that would climb the path
    failedToDownloadData
  };

  /// One of the cases without a payload.
  /// \throws std::invalid_argument for `apiError` and `httpError`.
  explicit ZAKError(Case kind);
  explicit ZAKError(ErrorDto error);
  explicit ZAKError(HTTPError error);

  [[nodiscard]] Case kind() const noexcept { return state_->kind; }
  /// The server's own words; null unless `kind()` is `apiError`.
  [[nodiscard]] const ErrorDto* errorDto() const noexcept { return state_->errorDto.get(); }
  /// Null unless `kind()` is `httpError`.
  [[nodiscard]] const HTTPError* underlyingError() const noexcept { return state_->underlying.get(); }

  /// For people; never empty.
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

#include <zvapikit/core/ZAKError.hpp>

#include <stdexcept>

namespace ZAK {
namespace {

std::string describe(ZAKError::Case kind) {
  switch (kind) {
    case ZAKError::alreadyInitialized:
      return "already Initialized";
    case ZAKError::notInitialized:
      return "not initialized";
    case ZAKError::noHTTPResponse:
      return "No HTTPResponse";
    case ZAKError::uploadfileNameNotValid:
      return "Upload file name not valid";
    case ZAKError::noClientAvailable:
      return "No client available";
    case ZAKError::failedToUploadWithSignedUrl:
      return "Upload with signed url failed";
    case ZAKError::failedToRequestCode:
      return "Request code to API Failed";
    case ZAKError::requestFailed:
      return "Request failed";
    case ZAKError::urlNotValid:
      return "URL not valid";
    case ZAKError::failedToDownloadData:
      return "Failed to download data";
    case ZAKError::apiError:
    case ZAKError::httpError:
      break;
  }
  throw std::invalid_argument("this case of ZAKError has a payload");
}

std::string describe(const ErrorDto& error) {
  return error.error + " (" + std::to_string(error.statusCode) +
         ") : " + error.errorKey.value_or(error.message.value_or(std::string()));
}

}  // namespace

ZAKError::ZAKError(Case kind) : state_(std::make_shared<const State>(State{kind, describe(kind), nullptr, nullptr})) {}

ZAKError::ZAKError(ErrorDto error) {
  std::string description = describe(error);
  state_ = std::make_shared<const State>(
      State{apiError, std::move(description), std::make_unique<const ErrorDto>(std::move(error)), nullptr});
}

ZAKError::ZAKError(HTTPError error)
    : state_(std::make_shared<const State>(
          State{httpError, error.description(), nullptr, std::make_unique<const HTTPError>(error)})) {}

}  // namespace ZAK

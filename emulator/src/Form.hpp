#pragma once

#include <zvapikit/emulator/EmulatorRequest.hpp>

#include <string>
#include <vector>

namespace ZAK {

/// One part of a form that was sent as `multipart/form-data` (RFC 7578).
struct FormPart {
  std::string name;
  std::string fileName;
  std::string contentType;
  std::string content;
};

/// The parts of the request's body. Anything but a well-formed form whose parts all have a name is refused with 400.
[[nodiscard]] std::vector<FormPart> parseForm(const EmulatorRequest& request);

}  // namespace ZAK

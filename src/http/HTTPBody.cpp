#include "http/BodyReader.hpp"
#include "platform/RandomText.hpp"

#include <zvapikit/http/HTTPBody.hpp>

#include <stdexcept>

namespace ZAK {
namespace {

constexpr std::size_t randomBoundaryDigits = 40;
constexpr std::size_t longestBoundary = 70;

/// As browsers write the names of a form's fields and files.
std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"') {
      result += "%22";
    } else if (c == '\r') {
      result += "%0D";
    } else if (c == '\n') {
      result += "%0A";
    } else {
      result += c;
    }
  }
  return result + '"';
}

bool isBoundary(std::string_view text) {
  constexpr std::string_view allowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789'+_.-";  // those that need no quotes
  return !text.empty() && text.size() <= longestBoundary && text.find_first_not_of(allowed) == std::string_view::npos;
}

std::string partHead(const HTTPBodyPart& part) {
  const std::string& type = part.body().contentType();
  if (type.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos) {
    throw std::invalid_argument("the type of a part holds a line break or NUL");
  }
  std::string head = "Content-Disposition: form-data; name=" + inQuotes(part.name());
  if (part.fileName()) head += "; filename=" + inQuotes(*part.fileName());
  if (!type.empty()) head += "\r\nContent-Type: " + type;
  return head + "\r\n\r\n";
}

HTTPBody::Piece inMemory(std::string bytes) { return {std::make_shared<const std::string>(std::move(bytes)), {}}; }

}  // namespace

HTTPBody HTTPBody::data(std::string bytes, std::string_view type) {
  return HTTPBody({inMemory(std::move(bytes))}, std::string(type));
}

HTTPBody HTTPBody::file(std::filesystem::path path, std::string_view type) {
  return HTTPBody({Piece{nullptr, std::move(path)}}, std::string(type));
}

HTTPBody HTTPBody::multipart(std::vector<HTTPBodyPart> parts, std::string boundary) {
  if (boundary.empty()) boundary = randomText(randomBoundaryDigits);
  if (!isBoundary(boundary)) throw std::invalid_argument("no boundary of a multipart body");
  std::vector<Piece> pieces;
  std::string delimiter = "--" + boundary;
  for (const HTTPBodyPart& part : parts) {
    pieces.push_back(inMemory(delimiter + "\r\n" + partHead(part)));
    pieces.insert(pieces.end(), part.body().pieces().begin(), part.body().pieces().end());
    delimiter = "\r\n--" + boundary;
  }
  pieces.push_back(inMemory(delimiter + "--\r\n"));
  return HTTPBody(std::move(pieces), "multipart/form-data; boundary=" + boundary);
}

const std::vector<HTTPBody::Piece>& HTTPBody::pieces() const noexcept {
  static const std::vector<Piece> none;
  return pieces_ ? *pieces_ : none;
}

std::string HTTPBody::bytes() const {
  if (const std::string* whole = bytesInMemory(*this)) return *whole;
  BodyReader reader(*this);
  std::string result(reader.size(), '\0');
  for (std::span<char> room(result); !room.empty();) room = room.subspan(reader.read(room));
  return result;
}

}  // namespace ZAK

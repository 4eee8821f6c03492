#include "Delivery.hpp"

#include "Call.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>
#include <zlib.h>

namespace ZAK {

namespace {

/// Gzip that unpacks to an empty JSON object among blanks, `size` bytes in all.
std::string gzipBomb(std::size_t size) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, MAX_WBITS + 16, 9, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("zlib cannot start");
  }
  std::string result;
  std::vector<unsigned char> blanks(std::size_t{64} << 10, ' ');
  std::array<unsigned char, 4096> packed{};
  const auto feed = [&](unsigned char* bytes, std::size_t count, int flush) {
    stream.next_in = bytes;
    stream.avail_in = static_cast<uInt>(count);
    do {
      stream.next_out = packed.data();
      stream.avail_out = static_cast<uInt>(packed.size());
      deflate(&stream, flush);
      result.append(packed.begin(), packed.end() - stream.avail_out);
    } while (stream.avail_out == 0);
  };
  std::array<unsigned char, 2> object{'{', '}'};
  for (std::size_t left = size - std::min(size, object.size()); left > 0;) {
    const std::size_t count = std::min(left, blanks.size());
    feed(blanks.data(), count, Z_NO_FLUSH);
    left -= count;
  }
  feed(object.data(), object.size(), Z_FINISH);
  deflateEnd(&stream);
  return result;
}

bool holds(const EmulatorHeaders& headers, std::string_view name) {
  return std::any_of(headers.begin(), headers.end(),
                     [&](const auto& header) { return EmulatorText::equalIgnoringCase(header.first, name); });
}

std::string httpText(EmulatorResponse response, std::ptrdiff_t contentLengthError) {
  EmulatorHeaders& headers = response.headers;
  if (!holds(headers, "Content-Type")) headers.emplace_back("Content-Type", "application/json; charset=utf-8");
  const auto length = static_cast<std::ptrdiff_t>(response.body.size()) + contentLengthError;
  headers.emplace_back("Content-Length", std::to_string(std::max<std::ptrdiff_t>(length, 0)));
  std::string text = "HTTP/1.1 " + std::to_string(response.status) + " " + reasonPhrase(response.status) + "\r\n";
  for (const auto& [name, value] : headers) text.append(name).append(": ").append(value).append("\r\n");
  return text + "\r\n" + response.body;
}

}  // namespace

Delivery::Delivery(EmulatorResponse response, const EmulatorFault* fault) {
  if (!fault) {
    bytes = httpText(std::move(response), 0);
    chunk = bytes.size();
    return;
  }
  if (fault->gzipBomb) {
    response.body = gzipBomb(*fault->gzipBomb);
    response.headers.emplace_back("Content-Encoding", "gzip");
  }
  bytes = fault->raw ? *fault->raw : httpText(std::move(response), fault->contentLengthError);
  if (fault->cutAfter) bytes.resize(std::min(bytes.size(), *fault->cutAfter));
  delay = fault->delay;
  chunk = fault->dripBytes == 0 ? bytes.size() : fault->dripBytes;
  interval = fault->dripInterval;
  ending = fault->ending;
}

}  // namespace ZAK

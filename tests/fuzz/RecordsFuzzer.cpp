// Bodies: one that decodes as a record can be written and read again, and an error tells no more than it should.
#include "fuzz/Fuzzing.hpp"

#include <zvapikit/auth/TokenDto.hpp>
#include <zvapikit/auth/TokenRequestDto.hpp>
#include <zvapikit/core/CollectionDto.hpp>
#include <zvapikit/core/ErrorDto.hpp>
#include <zvapikit/json/JSONDecoder.hpp>
#include <zvapikit/json/JSONEncoder.hpp>
#include <zvapikit/json/JSONPrinting.hpp>
#include <zvapikit/model/CreatePostDto.hpp>
#include <zvapikit/model/FofPostDto.hpp>
#include <zvapikit/model/LegacyPostDto.hpp>
#include <zvapikit/model/MemoriesDto.hpp>
#include <zvapikit/model/MemoriesRecapDto.hpp>
#include <zvapikit/model/MemoriesVideoLocation.hpp>
#include <zvapikit/model/PostDto.hpp>
#include <zvapikit/model/ProfileDto.hpp>
#include <zvapikit/model/UploadUrlDto.hpp>

#include <simdjson.h>

using namespace ZAK;
using Fuzzing::require;

namespace {

void checkError(const DecodingError& error) {
  const std::string& description = error.debugDescription();
  // The longest quotation is 64 bytes of an unknown enumeration text; a key that names a record's field is not quoted.
  require(description.size() <= 160, "a description quotes little", description);
  require(simdjson::validate_utf8(description), "a description is UTF-8", description);
  require(!description.starts_with("The data could not") && !description.starts_with("Cannot be read"),
          "what one reader refuses the other explains", description);
  require(std::string_view(error.what()).size() > 0, "an error says something");
}

template <class T>
bool check(std::string_view body, JSONDateStrategy dates = JSONDateStrategy::javaScriptISO8601) {
  const JSONDecoder decoder(dates, [] { return Date(std::chrono::seconds(1'680'000'000)); });
  std::optional<T> value;
  try {
    value = decoder.decode<T>(body);
  } catch (const DecodingError& error) {
    checkError(error);
    return false;
  }
  const std::string written = JSONEncoder(dates).encode(*value);
  require(decoder.decode<T>(written) == *value, "what is read is written and read again", written);
  return true;
}

void checkPrinting(std::string_view body, bool isToken) {
  const std::string whole = prettyPrinted(body);
  require(simdjson::validate_utf8(whole), "printed text is UTF-8", whole);
  const std::string redacted = prettyPrinted(body, JSONPrinting::redacted);
  if (!isToken) return;
  require(prettyPrinted(whole) == whole, "what is printed is printed the same again", whole);
  const auto shown = JSONDecoder(JSONDateStrategy::secondsSince2001).decode<TokenDto>(redacted);
  const std::optional<std::string> hidden = "<redacted>";
  require(shown.accessToken == hidden && shown.refreshToken == hidden, "tokens are redacted", redacted);
  require(!shown.firebaseToken || shown.firebaseToken == hidden, "tokens are redacted", redacted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view body = Fuzzing::text(data, size);
  check<PostDto>(body);
  check<CollectionDto<PostDto>>(body);
  check<CreatePostDto>(body);
  check<UploadUrlDto>(body);
  check<TokenRequestDto>(body);
  check<std::vector<LegacyPostDto>>(body);
  check<CollectionDto<FofPostDto>>(body);
  check<MemoriesDto>(body);
  check<MemoriesRecapsDto>(body);
  check<MemoriesVideoLocation>(body);
  check<ProfileDto>(body);
  check<ErrorDto>(body);
  checkPrinting(body, check<TokenDto>(body, JSONDateStrategy::secondsSince2001));
  return 0;
}

#include "json/JSONReader.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

namespace ZAK {
namespace {

constexpr std::size_t maximumDepth = 512;
/// Above this a parser is not kept for the next body.
constexpr std::size_t retainedCapacity = std::size_t{1} << 20;

/// The thread's parser, whose buffers serve one body after another; a parser of its own where a hook decodes while its
/// thread's parser still holds the body around it.
class Parser {
 public:
  Parser() : parser_(busy ? own_ : shared), borrowed_(!busy) {
    if (borrowed_) busy = true;
  }
  ~Parser() {
    if (!borrowed_) return;
    if (parser_.capacity() > retainedCapacity) parser_ = simdjson::dom::parser();
    busy = false;
  }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  simdjson::dom::element parse(std::string_view text, std::size_t padding) {
    simdjson::dom::element root;
    simdjson::error_code error = simdjson::SUCCESS;
    // The parser counts a scalar at the bottom as a level.
    if (parser_.max_depth() != maximumDepth + 1) error = parser_.allocate(0, maximumDepth + 1);
    if (!error) error = parser_.parse(text.data(), text.size(), padding < simdjson::SIMDJSON_PADDING).get(root);
    if (error == simdjson::MEMALLOC) throw std::bad_alloc();
    if (error) {
      throw DecodingError(DecodingError::Kind::dataCorrupted, {}, "The given data was not valid JSON.",
                          std::string("not valid JSON (") + simdjson::error_message(error) + ")");
    }
    return root;
  }

 private:
  static thread_local simdjson::dom::parser shared;
  static thread_local bool busy;

  simdjson::dom::parser own_;
  simdjson::dom::parser& parser_;
  const bool borrowed_;
};

thread_local simdjson::dom::parser Parser::shared;
thread_local bool Parser::busy = false;

}  // namespace

JSONDecoder::JSONDecoder(JSONDateStrategy dates, std::function<Date()> now) : dates_(dates), now_(std::move(now)) {}

void JSONDecoder::decode(JSONBody body, const JSONType& type, void* value) const {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  std::string_view text = body.text();
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());

  Parser parser;
  const simdjson::dom::element root = parser.parse(text, body.padding());
  const detail::JSONDecodingContext context{dates_, now_};
  if (detail::JSONReader(context, false).read(type, root, value)) return;
  detail::JSONReader(context, true).read(type, root, value);
  // Only a hook that fails the first time and not the second comes this far.
  throw DecodingError(DecodingError::Kind::dataCorrupted, {}, "The data could not be read.");
}

}  // namespace ZAK

#include "json/JSONReader.hpp"
#include "json/NestingDepth.hpp"

#include <zvapikit/json/JSONDecoder.hpp>

namespace ZAK {
namespace {

static_assert(JSONBody::wantedPadding >= simdjson::SIMDJSON_PADDING);

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
    // The parser counts the body as a level and an empty array or object as none. So at this depth it takes every body
    // within the limit but those that fill it with a value at the bottom, which are counted and tried once more.
    simdjson::dom::element root;
    simdjson::error_code error = parse(text, padding, detail::maximumNesting, root);
    if (error == simdjson::DEPTH_ERROR && detail::nestingDepth(text) <= detail::maximumNesting) {
      error = parse(text, padding, detail::maximumNesting + 1, root);
    }
    if (error == simdjson::MEMALLOC) throw std::bad_alloc();
    if (error) {
      throw DecodingError(DecodingError::Kind::dataCorrupted, {}, "The given data was not valid JSON.",
                          std::string("not valid JSON (") + simdjson::error_message(error) + ")");
    }
    return root;
  }

 private:
  simdjson::error_code parse(std::string_view text, std::size_t padding, std::size_t depth,
                             simdjson::dom::element& root) {
    if (parser_.max_depth() != depth) {
      if (const auto error = parser_.allocate(parser_.capacity(), depth)) return error;
    }
    return parser_.parse(text.data(), text.size(), padding < JSONBody::wantedPadding).get(root);
  }

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

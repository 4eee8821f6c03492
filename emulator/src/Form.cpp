#include "Form.hpp"

#include "Call.hpp"

namespace ZAK {
namespace {

/// What stands before the separator, which is taken off the text as well.
std::string_view take(std::string_view& text, std::string_view separator, const char* missing) {
  const std::size_t end = text.find(separator);
  if (end == std::string_view::npos) throw Refusal(400, std::string("the form lacks ") + missing);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end + separator.size());
  return taken;
}

/// The value of a quoted parameter such as `name="file"`; empty when there is none.
std::string parameter(std::string_view header, std::string_view name) {
  const std::string start = "; " + std::string(name) + "=\"";
  const std::size_t found = header.find(start);
  if (found == std::string_view::npos) return {};
  header.remove_prefix(found + start.size());
  return std::string(take(header, "\"", "a closing quote"));
}

FormPart parsePart(std::string_view text) {
  FormPart part;
  for (;;) {
    const std::string_view line = take(text, "\r\n", "the blank line before a part's content");
    if (line.empty()) break;
    const std::size_t colon = std::min(line.find(": "), line.size());
    const std::string_view name = line.substr(0, colon);
    if (EmulatorText::equalIgnoringCase(name, "Content-Disposition") && line.find(": form-data;") == colon) {
      part.name = parameter(line, "name");
      part.fileName = parameter(line, "filename");
    } else if (EmulatorText::equalIgnoringCase(name, "Content-Type") && colon < line.size()) {
      part.contentType = line.substr(colon + 2);
    } else {
      throw Refusal(400, "a part of the form has the header line " + std::string(line));
    }
  }
  if (part.name.empty()) throw Refusal(400, "a part of the form has no name");
  part.content = text;
  return part;
}

}  // namespace

std::vector<FormPart> parseForm(const EmulatorRequest& request) {
  constexpr std::string_view type = "multipart/form-data; boundary=";
  const std::string* const header = request.header("Content-Type");
  if (!header || !header->starts_with(type) || header->size() == type.size()) {
    throw Refusal(415, "the body must be multipart/form-data");
  }
  const std::string delimiter = "\r\n--" + header->substr(type.size());
  // The first delimiter has no line break of its own before it.
  const std::string body = "\r\n" + request.body;
  std::string_view rest = body;
  if (!take(rest, delimiter, "its first delimiter").empty()) throw Refusal(400, "the form begins with other text");
  std::vector<FormPart> parts;
  while (rest.starts_with("\r\n")) {
    rest.remove_prefix(2);
    parts.push_back(parsePart(take(rest, delimiter, "a closing delimiter")));
  }
  if (rest != "--\r\n") throw Refusal(400, "the form does not end behind its closing delimiter");
  return parts;
}

}  // namespace ZAK

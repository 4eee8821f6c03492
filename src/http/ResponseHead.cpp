#include "http/ResponseHead.hpp"

#include <algorithm>
#include <charconv>

namespace ZAK {
namespace {

std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// The number after the version of a status line; 0 when there is none.
int statusOf(std::string_view line) {
  const auto blank = line.find(' ');
  if (blank == std::string_view::npos) return 0;
  const auto text = trimmed(line.substr(blank));
  int status = 0;
  std::from_chars(text.data(), text.data() + text.size(), status);
  return status;
}

}  // namespace

void ResponseHead::add(std::string_view line) {
  started_ = true;
  size_ += line.size();
  if (line.starts_with("HTTP/")) {
    const int status = statusOf(line);
    inHead_ = status >= 200;
    statusCode_ = HTTPStatusCode(inHead_ ? status : 0);
    headers_ = {};
    lastName_.clear();
    return;
  }
  if (!inHead_) return;
  const auto text = trimmed(line);
  if (text.empty()) {
    inHead_ = false;
  } else if (line.front() == ' ' || line.front() == '\t') {
    if (!lastName_.empty()) headers_.set({lastName_, headers_.value(lastName_).value_or("") + ' ' + std::string(text)});
  } else if (const auto colon = text.find(':'); colon != std::string_view::npos) {
    lastName_ = trimmed(text.substr(0, colon));
    headers_.add({lastName_, std::string(trimmed(text.substr(colon + 1)))});
  }
}

bool ResponseHead::contradictsItself() const {
  const std::string lengths = headers_.value("Content-Length").value_or("");
  const std::string_view first = std::string_view(lengths).substr(0, lengths.find(','));
  for (auto comma = first.size(); comma < lengths.size();) {
    const auto end = std::min(lengths.find(',', comma + 1), lengths.size());
    if (trimmed(std::string_view(lengths).substr(comma + 1, end - comma - 1)) != first) return true;
    comma = end;
  }
  return false;
}

}  // namespace ZAK

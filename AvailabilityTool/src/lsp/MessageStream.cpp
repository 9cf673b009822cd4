#include "lsp/MessageStream.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <utility>

#include <tarn/StringUtilities.h>

namespace tarn::tool {

namespace {

constexpr std::string_view lengthHeader = "content-length";

/// The number after `Content-Length:` in a line of headers. False if the line is not that header or has no number.
bool readLength(std::string_view line, std::size_t& length) {
  std::size_t const colon = line.find(':');
  if (colon == std::string_view::npos) return false;
  if (!StringUtilities::equalIgnoringCase(StringUtilities::trimmed(line.substr(0, colon)), lengthHeader)) return false;
  std::string_view const number = StringUtilities::trimmed(line.substr(colon + 1));
  auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), length);
  return error == std::errc() && end == number.data() + number.size();
}

/// The end of the headers and the number of bytes of the line end there; npos if they have no end yet.
std::pair<std::size_t, std::size_t> endOfHeaders(std::string_view text) {
  std::size_t const strict = text.find("\r\n\r\n");
  std::size_t const plain = text.find("\n\n");
  if (strict < plain) return {strict, 4};
  return {plain, 2};
}

}  // namespace

void MessageStream::take(std::string_view bytes, Handlers const& handlers) {
  std::size_t const passed = std::min(skipped_, bytes.size());
  skipped_ -= passed;
  waiting_ += bytes.substr(passed);
  while (isInBody_ ? takeBody(handlers) : takeHeaders(handlers)) {
  }
}

bool MessageStream::takeHeaders(Handlers const& handlers) {
  auto const [end, endLength] = endOfHeaders(waiting_);
  if (end == std::string_view::npos) {
    if (waiting_.size() <= mostHeaderBytes) return false;
    handlers.fault("the header of the message has no end");
    waiting_.clear();
    return false;
  }
  std::size_t length = 0;
  bool hasLength = false;
  std::string_view headers = std::string_view(waiting_).substr(0, end);
  while (!headers.empty()) {
    std::size_t const lineEnd = std::min(headers.find('\n'), headers.size());
    hasLength = readLength(headers.substr(0, lineEnd), length) || hasLength;
    headers.remove_prefix(std::min(lineEnd + 1, headers.size()));
  }
  waiting_.erase(0, end + endLength);
  if (!hasLength) {
    handlers.fault("the message has no header \"Content-Length\" with a number");
    return true;
  }
  if (length > mostBytes_) {
    handlers.fault("the message has more than " + std::to_string(mostBytes_) + " bytes");
    std::size_t const here = std::min(length, waiting_.size());
    waiting_.erase(0, here);
    skipped_ = length - here;
    return true;
  }
  length_ = length;
  isInBody_ = true;
  return true;
}

bool MessageStream::takeBody(Handlers const& handlers) {
  if (waiting_.size() < length_) return false;
  std::string message = waiting_.substr(0, length_);
  waiting_.erase(0, length_);
  isInBody_ = false;
  handlers.message(std::move(message));
  return true;
}

void writeMessage(std::ostream& out, std::string_view message) {
  out << "Content-Length: " << message.size() << "\r\n\r\n" << message << std::flush;
}

}  // namespace tarn::tool

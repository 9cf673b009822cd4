#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace tarn::tool {

/// Takes messages of the base protocol of language servers apart: headers, an empty line, and so many bytes as
/// `Content-Length` says.
class MessageStream {
 public:
  /// A message that is longer than `mostBytes` is passed over.
  explicit MessageStream(std::size_t mostBytes) : mostBytes_(mostBytes) {}

  struct Handlers {
    std::function<void(std::string message)> message;
    /// Something that is no message, or one that is too long; a sentence about it.
    std::function<void(std::string const& reason)> fault;
  };
  /// Takes the next bytes of the input. Calls a handler for each message and fault in them, in their order. After a
  /// fault in the headers, reading goes on at the next line that begins with "Content-Length".
  void take(std::string_view bytes, Handlers const& handlers);

 private:
  bool takeHeaders(Handlers const& handlers);
  bool takeBody(Handlers const& handlers);

  static constexpr std::size_t mostHeaderBytes = 4096;

  std::size_t mostBytes_;
  std::string waiting_;
  std::size_t length_ = 0;
  std::size_t skipped_ = 0;  // bytes of a message that is too long that still come
  bool isInBody_ = false;
};

/// Writes a message with its header, and flushes.
void writeMessage(std::ostream& out, std::string_view message);

}  // namespace tarn::tool

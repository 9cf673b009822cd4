#pragma once

#include <functional>
#include <optional>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// The buffer of an input stream that reads from a source of lines. It asks for a line only when a reader needs one.
class LineBuffer final : public std::streambuf {
 public:
  /// Returns the next line without its line end, or nothing at the end of the input.
  using Source = std::function<std::optional<std::string>()>;

  explicit LineBuffer(Source source) : source_(std::move(source)) {}

 protected:
  /// A source that throws is at its end. The stream would only remember that reading failed, and a reader that waits
  /// for the end of the input would wait for ever.
  int_type underflow() override;

 private:
  Source source_;
  std::string line_;
};

}  // namespace tarn::tool

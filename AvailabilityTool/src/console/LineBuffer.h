#pragma once

#include <functional>
#include <optional>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// Stands under an input stream and gets what is read from a source of lines. A line is asked for only when a reader
/// needs it.
class LineBuffer final : public std::streambuf {
 public:
  /// The next line, without its end; nothing at the end of the input.
  using Source = std::function<std::optional<std::string>()>;

  explicit LineBuffer(Source source) : source_(std::move(source)) {}

 protected:
  /// A source that throws has come to its end: a stream would only remember that reading went wrong, and a reader that
  /// looks for the end of the input would never find it.
  int_type underflow() override;

 private:
  Source source_;
  std::string line_;
};

}  // namespace tarn::tool

#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <tarn/ModelState.h>
#include <tarn/PhysicsValidator2.h>

#include "tree/ShortTexts.h"

namespace tarn {

/// The text of a state, a line for each parameter, in map order; objects without parameters give none. It is made in
/// the place of the text of the state before and compared with it on the way: a large model is most often the same, or
/// one of a few other lines.
class [[gnu::visibility("hidden")]] PhysicsValidator2::StateText {
 public:
  explicit StateText(std::string & text) noexcept : text_(text), left_(text), movesAllowed_(2 * text.size()) {}

  /// Returns whether the lines of the object are those that stood there, and were all that it had.
  bool add(std::string_view path, ObjectState const& values) {
    bool agrees = true;
    for (auto const& [name, value] : values) {
      std::string_view const before = left_;
      if (take(path) && take('/') && take(name) && take('=') && take(value) && take('\n')) continue;
      agrees = false;
      left_ = before;
      put(path, name, value);
    }
    return agrees && !(left_.size() > path.size() && left_[path.size()] == '/' && left_.starts_with(path));
  }

  /// To be called behind the last object. Returns whether the text is another.
  bool finish() {
    if (left_.empty()) return differs_;
    text_.resize(text_.size() - left_.size());
    return true;
  }

 private:
  bool take(std::string_view piece) noexcept {
    if (left_.size() < piece.size() || !sameBytes(left_.data(), piece.data(), piece.size())) return false;
    left_.remove_prefix(piece.size());
    return true;
  }
  bool take(char byte) noexcept {
    if (left_.empty() || left_.front() != byte) return false;
    left_.remove_prefix(1);
    return true;
  }

  /// Puts a line in the place of the one that stands there, so that what lies behind may agree again. Where lines of
  /// other sizes have moved the rest often enough, it is given up instead.
  void put(std::string_view path, std::string_view name, std::string_view value) {
    differs_ = true;
    std::size_t const start = text_.size() - left_.size();
    std::size_t const newSize = path.size() + name.size() + value.size() + 3;
    std::size_t const oldSize = std::min(left_.find('\n'), left_.size() - 1) + 1;
    if (left_.empty() || (newSize != oldSize && left_.size() > movesAllowed_)) {
      text_.resize(start);
      text_.append(path).append(1, '/').append(name).append(1, '=').append(value).append(1, '\n');
      left_ = {};
      return;
    }
    if (newSize != oldSize) movesAllowed_ -= left_.size();
    line_.assign(path).append(1, '/').append(name).append(1, '=').append(value).append(1, '\n');
    text_.replace(start, oldSize, line_);
    left_ = std::string_view(text_).substr(start + newSize);
  }

  std::string& text_;
  /// What has not been looked at. Before it stands the text of what has been added.
  std::string_view left_;
  /// In bytes; a few times the text, so that all of it stays linear.
  std::size_t movesAllowed_;
  bool differs_ = false;
  std::string line_;
};

}  // namespace tarn

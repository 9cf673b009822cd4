#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <tarn/ModelState.h>

#include "tree/ShortTexts.h"

namespace tarn {

/// The text of a state, and what is known of its lines.
struct LinesOfState {
  std::string text;
  /// A name in a line has held a "/", so the lines do not show where the path of an object ends.
  bool hasSlashInName = false;
};

/// Makes the text of a state: one line per parameter, in map order. Objects without parameters have no line. The text
/// replaces that of the previous state and is compared with it on the way, because a large model is mostly the same or
/// differs in a few lines.
class StateText {
 public:
  explicit StateText(LinesOfState& lines) noexcept
      : lines_(lines), text_(lines.text), left_(text_), movesAllowed_(2 * text_.size()) {}

  /// Returns whether the lines of the object are the same as before and the object had no others.
  bool add(std::string_view path, ObjectState const& values) {
    bool agrees = true;
    for (auto const& [name, value] : values) {
      if (takeLine(path, name, value)) continue;
      agrees = false;
      put(path, name, value);
    }
    return agrees && !isNextLineOf(path);
  }

  /// Call this after the last object. Returns whether the text has changed.
  bool finish() {
    if (left_.empty()) return differs_;
    text_.resize(text_.size() - left_.size());
    return true;
  }

 private:
  /// Whether the next line may be one of the object. A line of an object below it has a "/" before the "=", too.
  [[nodiscard]] bool isNextLineOf(std::string_view path) const noexcept {
    if (left_.size() <= path.size() || left_[path.size()] != '/' || !left_.starts_with(path)) return false;
    std::size_t const mark = left_.find_first_of("/=", path.size() + 1);
    return lines_.hasSlashInName || mark == std::string_view::npos || left_[mark] == '=';
  }

  /// Passes the line if it comes next.
  bool takeLine(std::string_view path, std::string_view name, std::string_view value) noexcept {
    std::size_t const size = path.size() + name.size() + value.size() + 3;
    if (left_.size() < size) return false;
    char const* const line = left_.data();
    char const* const ownName = line + path.size() + 1;
    char const* const ownValue = ownName + name.size() + 1;
    if (line[size - 1] != '\n' || ownValue[-1] != '=' || ownName[-1] != '/' ||
        !sameBytes(ownValue, value.data(), value.size()) || !sameBytes(ownName, name.data(), name.size()) ||
        !sameBytes(line, path.data(), path.size())) {
      return false;
    }
    left_.remove_prefix(size);
    return true;
  }

  /// Replaces the line at this position, so that the lines after it may agree again. After lines of other sizes have
  /// moved the rest often enough, the rest is dropped instead.
  void put(std::string_view path, std::string_view name, std::string_view value) {
    differs_ = true;
    if (name.find('/') != std::string_view::npos) lines_.hasSlashInName = true;
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

  LinesOfState& lines_;
  std::string& text_;
  /// The rest of the old text that has not been compared yet. The new text ends where it begins.
  std::string_view left_;
  /// In bytes. A few times the size of the text, so that the whole comparison stays linear.
  std::size_t movesAllowed_;
  bool differs_ = false;
  std::string line_;
};

}  // namespace tarn

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// The message of libyaml about a part of a file that is not YAML.
struct YamlProblem {
  std::string_view problem;
  Place at;
  std::string_view context;  // what it was reading; can be empty
  Place contextAt;
};

/// The same in words that help: the mistake that most likely caused it.
struct YamlAdvice {
  std::string message;
  Place at;
  /// Whether a note about the context adds something.
  bool needsContext = true;
  /// The line with the mistake, when it is another one than the line of the problem; otherwise 0.
  std::size_t line = 0;
  /// The lines of a merge that was not finished: reported once in a file.
  bool isConflict = false;
};

/// The message about a value that begins with '!', also where libyaml takes it for a tag and has no problem with it.
[[nodiscard]] std::string adviceForTag();

/// The warning about `word` in front of a value, which YAML takes for an anchor or a tag. `text` is the value when it
/// is a text without quotes, of which the word may be meant to be the beginning; otherwise nothing.
[[nodiscard]] std::string adviceForWord(std::string_view word, std::optional<std::string_view> const& text);

/// `text` as a value in quotes. Empty when it is too long to be shown or has quotes of both kinds.
[[nodiscard]] std::string inYamlQuotes(std::string_view text);

[[nodiscard]] YamlAdvice adviceFor(SourceText const& source, YamlProblem const& problem);

/// Whether a line is one of those that a version control system writes around two versions of the same lines.
[[nodiscard]] bool isConflictMarker(std::string_view line);

}  // namespace tarn::rules

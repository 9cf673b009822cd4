#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// Where the reading of a file as YAML failed. Lines count from 1; 0 means that there is no such line.
struct YamlFailure {
  std::size_t line = 0;       // of the problem
  std::size_t openLine = 0;   // where the bracket or quote stands that has no end
  std::size_t quoteLine = 0;  // where the text in quotes begins that ends in the line of the problem

  /// The first line that is known to be part of the problem.
  [[nodiscard]] std::size_t first() const noexcept;
};

/// Leaves out the lines of a file that are not YAML, so that the rest can be read. Entries are left out as a whole: a
/// line goes together with the lines below it that are indented deeper, and with the line above it whose value it
/// continues.
class YamlRecovery {
 public:
  /// Lines from `first` to `last`.
  struct Lines {
    std::size_t first = 0;
    std::size_t last = 0;
  };

  /// `source` must stay valid.
  explicit YamlRecovery(SourceText const& source) : source_(source), leftOut_(source.lineCount() + 1) {}

  /// The parts to leave out, in the order of trial: from the entry with the problem to the whole section.
  [[nodiscard]] std::vector<Lines> candidates(YamlFailure const& failure) const;
  /// The entry that begins in a line.
  [[nodiscard]] Lines entryAt(std::size_t line) const;
  /// The text of the file with blanks in place of these lines and those that were left out before, so that all
  /// positions stay the same.
  [[nodiscard]] std::string textWithout(Lines const& lines) const;
  void leaveOut(Lines const& lines);
  /// True when nothing is left to read from line `first` up to, but not including, line `end`.
  [[nodiscard]] bool isLeftOut(std::size_t first, std::size_t end) const;

  /// True when lines that belonged to the entry in this line were left out.
  [[nodiscard]] bool lacksPartOf(std::size_t line) const { return above_.contains(line); }
  /// True when the anchor was in lines that were left out.
  [[nodiscard]] bool hadAnchor(std::string_view name) const { return anchors_.find(name) != anchors_.end(); }

 private:
  static constexpr std::size_t noParent = 0;

  /// True for a line with nothing but blanks and a comment, and for one that was left out.
  [[nodiscard]] bool isEmpty(std::size_t line) const;
  [[nodiscard]] std::size_t indentOf(std::size_t line) const;
  [[nodiscard]] bool isIndentedWithTab(std::size_t line) const;
  /// The line above with less indentation.
  [[nodiscard]] std::size_t parentOf(std::size_t line) const;
  /// The last line of the entry that begins in `line`.
  [[nodiscard]] std::size_t lastOf(std::size_t line) const;

  SourceText const& source_;
  std::vector<bool> leftOut_;
  std::set<std::size_t> above_;
  std::set<std::string, std::less<>> anchors_;
};

}  // namespace tarn::rules

#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

#include "edit/ResultText.h"

namespace tarn::tool {

/// The place where the editor shows its texts: a terminal, with its width, colours and pager, or any other output,
/// which gets the same texts without them.
class Screen {
 public:
  /// `out` and `err` must live longer. On a terminal everything goes to `out`. Otherwise `err` gets what went wrong.
  Screen(std::ostream& out, std::ostream& err, bool isTerminal);

  [[nodiscard]] bool isTerminal() const noexcept { return isTerminal_; }
  /// The look for the terminal as it is now. A window can change its size at any time.
  [[nodiscard]] TextLook look() const;

  /// Lines that are longer than the terminal is wide are divided between words.
  void print(std::string const& text);
  /// As `print`. A text that is longer than the screen goes through the pager: the program that the environment
  /// variable PAGER names, otherwise `less`. There is none if PAGER is empty or `cat`.
  void page(std::string const& text);
  /// Shows why something was not done. Without a terminal, it begins with the line of the command.
  void complain(std::string const& text);
  /// The commands that follow are in this line of the input.
  void setLine(std::size_t line) noexcept { line_ = line; }

 private:
  void write(std::string const& lines);
  [[nodiscard]] bool runPager(std::string const& text);

  std::ostream& out_;
  std::ostream& err_;
  bool const isTerminal_;
  bool const canMoveCursor_;
  bool const hasColour_;
  std::size_t line_ = 0;
};

}  // namespace tarn::tool

#pragma once

#include <cwchar>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "console/Completion.h"
#include "console/ReadingSignals.h"

struct editline;
struct history;

namespace tarn::tool {

/// Reads lines that a user types on the terminal that is the standard input and output: with editing, with what was
/// typed before, and with completion by TAB.
///
/// Ctrl-C while a line is typed drops it and begins a new one. From one line to the next the first Ctrl-C is passed
/// over, so that work that is under way is finished; a second one ends the program, as it does elsewhere.
///
/// One object at a time. When it goes, signals and terminal are as they were.
class LineEditor {
 public:
  /// How a line can go on at a cursor, which counts bytes.
  using Completer = std::function<Completion(std::string_view line, std::size_t cursor)>;

  /// Whether lines can be edited here: standard input and output are a terminal, and one that can move its cursor.
  [[nodiscard]] static bool isPossible() noexcept;

  /// `historySize` is how many lines are remembered.
  LineEditor(Completer completer, std::size_t historySize);
  ~LineEditor();
  LineEditor(LineEditor const&) = delete;
  LineEditor& operator=(LineEditor const&) = delete;

  /// False when the terminal could not be taken hold of; then `read` finds the end of the input.
  [[nodiscard]] bool isReady() const noexcept { return edit_ != nullptr; }

  /// The next line, without its end. Nothing at the end of the input, which Ctrl-D on an empty line makes.
  [[nodiscard]] std::optional<std::string> read(std::string const& prompt);

  /// Makes `line` the latest of those that can be called up.
  void remember(std::string const& line);

 private:
  struct Closer {
    void operator()(editline* edit) const noexcept;
    void operator()(history* lines) const noexcept;
  };
  /// How many rows of the screen the line takes above and below the one with the cursor.
  struct Rows {
    std::size_t above;
    std::size_t below;
  };

  static char* promptOf(editline* edit);
  static int onRead(editline* edit, wchar_t* character);
  static unsigned char onTab(editline* edit, int key);

  void bindKeys();
  [[nodiscard]] int readCharacter(wchar_t& character);
  [[nodiscard]] unsigned char complete();
  void answer(int signal);
  void resize();
  [[nodiscard]] std::size_t columns() const;
  [[nodiscard]] Rows rows() const;
  /// Writes a text on the rows below the line.
  void writeBelow(std::string const& text) const;
  /// Makes room for the rows above the cursor. To display a line once more libedit first goes up by as many.
  void writeRowsAbove() const;

  Completer const completer_;
  InterruptGrace const grace_;
  std::unique_ptr<history, Closer> lines_;
  std::unique_ptr<editline, Closer> edit_;

  // Of the line that is being read.
  std::string prompt_;
  ReadingSignals const* signals_ = nullptr;
  std::mbstate_t decoding_{};
  bool dropped_ = false;
};

}  // namespace tarn::tool

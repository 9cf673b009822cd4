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

/// Reads lines that a user types on the terminal, which is both standard input and output: with editing, with history,
/// and with completion by TAB.
///
/// Ctrl-C while a line is typed drops the line and begins a new one. Between two lines the first Ctrl-C is ignored, so
/// that the current work is finished; the second ends the program as usual, unless `Interrupts::NeverEnd` is given.
///
/// There can be one object at a time. Its destructor restores signals and terminal.
class LineEditor {
 public:
  /// How a line can continue at a cursor. The cursor counts bytes.
  using Completer = std::function<Completion(std::string_view line, std::size_t cursor)>;

  /// Whether Ctrl-C between two lines can end the program.
  enum class Interrupts { SecondEnds, NeverEnd };

  struct Signals {
    Interrupts interrupts = Interrupts::SecondEnds;
    /// Called while a line is read and before SIGTERM, SIGHUP or SIGQUIT ends the program. It is not called within a
    /// signal handler, so it may do anything.
    std::function<void()> beforeEnd;
  };

  /// Whether lines can be edited: standard input and output are a terminal that can move its cursor.
  [[nodiscard]] static bool isPossible() noexcept;

  /// `historySize` is the number of lines that are remembered.
  LineEditor(Completer completer, std::size_t historySize);
  LineEditor(Completer completer, std::size_t historySize, Signals signals);
  ~LineEditor();
  LineEditor(LineEditor const&) = delete;
  LineEditor& operator=(LineEditor const&) = delete;

  /// False if the terminal could not be prepared. Then `read` returns nothing.
  [[nodiscard]] bool isReady() const noexcept { return edit_ != nullptr; }

  /// The next line without its line end. Nothing at the end of the input; Ctrl-D on an empty line is that end.
  [[nodiscard]] std::optional<std::string> read(std::string const& prompt);

  /// Adds `line` to the history as its latest line.
  void remember(std::string const& line);

 private:
  struct Closer {
    void operator()(editline* edit) const noexcept;
    void operator()(history* lines) const noexcept;
  };
  /// The number of screen rows of the line above and below the row of the cursor.
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
  /// Writes a text below the line.
  void writeBelow(std::string const& text) const;
  /// Makes room for the rows above the cursor. To display a line again, libedit first moves up by that number of rows.
  void writeRowsAbove() const;

  Completer const completer_;
  std::function<void()> const beforeEnd_;
  InterruptGrace const grace_;
  std::unique_ptr<history, Closer> lines_;
  std::unique_ptr<editline, Closer> edit_;

  // State of the line that is being read.
  std::string prompt_;
  ReadingSignals const* signals_ = nullptr;
  std::mbstate_t decoding_{};
  bool dropped_ = false;
};

}  // namespace tarn::tool

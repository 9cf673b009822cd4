#pragma once

#include <iostream>
#include <memory>

#include "console/HistoryFile.h"
#include "console/LineBuffer.h"
#include "console/LineCompleter.h"
#include "console/LineEditor.h"
#include "console/PromptBuffer.h"

namespace tarn::tool {

/// While it lives, `std::cin` gives lines that are edited on the terminal, with history and completion, and the text
/// without a line end that was written to `std::cout` last is the prompt. A loop that writes a prompt and reads a line
/// needs to know nothing of it.
class TerminalInput {
 public:
  /// Null where there is no terminal on which lines can be edited; then nothing is changed. `state` is what completion
  /// is about, and must outlive it.
  [[nodiscard]] static std::unique_ptr<TerminalInput> open(ProvisionalTDF const& state);

  ~TerminalInput();
  TerminalInput(TerminalInput const&) = delete;
  TerminalInput& operator=(TerminalInput const&) = delete;

 private:
  explicit TerminalInput(ProvisionalTDF const& state);
  [[nodiscard]] std::optional<std::string> nextLine();

  LineCompleter const completer_;
  HistoryFile const history_;
  LineEditor editor_;
  std::streambuf* const outBefore_;
  std::streambuf* const inBefore_;
  PromptBuffer out_;
  LineBuffer in_;
};

}  // namespace tarn::tool

#pragma once

#include <iostream>
#include <memory>

#include "console/HistoryFile.h"
#include "console/LineBuffer.h"
#include "console/LineCompleter.h"
#include "console/LineEditor.h"
#include "console/PromptBuffer.h"

namespace tarn::tool {

/// While an object exists, `std::cin` returns lines that are edited on the terminal, with history and completion. The
/// last text written to `std::cout` without a line end is the prompt. A loop that writes a prompt and reads a line
/// works unchanged.
class TerminalInput {
 public:
  /// Null, and nothing changes, if there is no terminal on which lines can be edited. Completion uses `state`, which
  /// must outlive the object.
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

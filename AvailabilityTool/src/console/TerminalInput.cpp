#include "console/TerminalInput.h"

#include <cstdlib>

namespace tarn::tool {

std::unique_ptr<TerminalInput> TerminalInput::open(ProvisionalTDF const& state) {
  if (!LineEditor::isPossible()) return nullptr;
  std::unique_ptr<TerminalInput> input(new TerminalInput(state));
  return input->editor_.isReady() ? std::move(input) : nullptr;
}

TerminalInput::TerminalInput(ProvisionalTDF const& state)
    : completer_(state),
      history_(HistoryFile::usualPath(std::getenv("XDG_STATE_HOME"), std::getenv("HOME"))),
      editor_([this](std::string_view line, std::size_t cursor) { return completer_.complete(line, cursor); },
              HistoryFile::maxLines),
      outBefore_(std::cout.rdbuf()),
      inBefore_(std::cin.rdbuf()),
      out_(*outBefore_),
      in_([this] { return nextLine(); }) {
  for (std::string const& line : history_.read()) editor_.remember(line);
  std::cout.flush();
  std::cout.rdbuf(&out_);
  std::cin.rdbuf(&in_);
}

TerminalInput::~TerminalInput() {
  std::cin.rdbuf(inBefore_);
  std::cout.rdbuf(outBefore_);
}

std::optional<std::string> TerminalInput::nextLine() {
  std::string const prompt = out_.takePrompt();
  std::cout.flush();
  std::optional<std::string> line = editor_.read(prompt);
  if (line && line->find_first_not_of(" \t") != std::string::npos) {
    editor_.remember(*line);
    history_.add(*line);
  }
  return line;
}

}  // namespace tarn::tool

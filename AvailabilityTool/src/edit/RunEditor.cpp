#include "edit/RunEditor.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <utility>

#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/Output.h"
#include "edit/Editor.h"
#include "edit/EditorCompleter.h"
#include "edit/EditorInput.h"
#include "edit/Screen.h"

namespace tarn::tool {

namespace {

using session::ModelFile;
using session::Session;

/// For the moment before the program ends: writes what is not saved, and says where. Throws nothing.
void rescueWork(Editor& editor, std::ostream& err) noexcept {
  try {
    std::string const sentence = editor.rescue();
    if (!sentence.empty()) err << "\nzev: " << sentence << std::endl;
  } catch (...) {
    std::fputs("\nzev: the work that was not saved could not be written\n", stderr);
  }
}

int runOnTerminal(Session& session, std::optional<ModelFile> file, ModelTextOrder order, std::ostream& out,
                  std::ostream& err) {
  Screen screen(out, err, true);
  std::unique_ptr<EditorInput> input;
  Editor editor(session, std::move(file), std::move(order), screen,
                [&](std::string const& question) { return input->ask(question); });
  EditorCompleter const completer(session, editor);
  input = terminalInput([&](std::string_view line, std::size_t cursor) { return completer.complete(line, cursor); },
                        [&] { rescueWork(editor, err); });
  editor.greet();
  while (out.good()) {
    auto const line = input->next(editor.prompt());
    Outcome outcome = Outcome::Failed;
    try {
      outcome = line ? editor.run(*line) : editor.endInput();
    } catch (std::bad_alloc const&) {
      screen.complain("There is not enough memory for that. Your edits are still here.\n");
    } catch (std::exception const& error) {
      screen.complain(std::string("That failed: ") + error.what() + ". Your edits are still here.\n");
    }
    if (outcome == Outcome::Quit) return NothingFound;
    if (outcome == Outcome::QuitUnsaved) break;
  }
  rescueWork(editor, err);
  return FindingsMade;
}

int runScript(Session& session, std::optional<ModelFile> file, ModelTextOrder order, std::ostream& out,
              std::ostream& err) {
  Screen screen(out, err, false);
  Editor editor(session, std::move(file), std::move(order), screen, nullptr);
  std::unique_ptr<EditorInput> const input = scriptInput();
  std::size_t number = 0;
  for (;;) {
    auto const line = input->next({});
    screen.setLine(line ? ++number : 0);
    switch (line ? editor.run(*line) : editor.endInput()) {
      case Outcome::Done:
        break;
      case Outcome::Quit:
        return NothingFound;
      case Outcome::Refused:
      case Outcome::QuitUnsaved:
        return FindingsMade;
      case Outcome::Failed:
        return Failed;
    }
    // Nobody reads the answers any more, so nobody would see a refusal.
    flushResults(out);
  }
}

}  // namespace

int runEditor(Session& session, std::optional<ModelFile> file, ModelTextOrder order, std::ostream& out,
              std::ostream& err) {
  return isOnATerminal() ? runOnTerminal(session, std::move(file), std::move(order), out, err)
                         : runScript(session, std::move(file), std::move(order), out, err);
}

}  // namespace tarn::tool

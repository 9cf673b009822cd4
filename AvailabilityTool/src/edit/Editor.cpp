// The frame of the editor: where the user is, which command a line means, and what has not been saved. The commands are
// in Editor.Edits.cpp, Editor.Looking.cpp and Editor.Saving.cpp.
#include "edit/Editor.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/WrittenItem.h>

#include "cli/Counted.h"
#include "edit/ShownText.h"

namespace tarn::tool {

using session::Refused;

Editor::Editor(session::Session& session, std::optional<session::ModelFile> file, ModelTextOrder order, Screen& screen,
               Ask ask)
    : session_(session),
      file_(std::move(file)),
      order_(std::move(order)),
      screen_(screen),
      ask_(std::move(ask)),
      here_(session.root()) {}

Editor::Editor(Editor const& other, Screen& silent)
    : session_(other.session_),
      rehearsal_(Rehearsal()),
      order_(other.order_),
      screen_(silent),
      here_(other.here_),
      done_(other.done_),
      undone_(other.undone_),
      saved_(other.saved_) {
  // It counts that there are a file and an edit, and not what is in them.
  if (other.file_) file_ = session::ModelFile::named(other.file_->name());
  if (other.last_) last_.emplace();
}

Outcome Editor::run(std::string_view line) {
  DividedLine const divided = divide(line);
  if (divided.word.empty() || divided.word.front() == '#') return Outcome::Done;
  // Scripts write whole words. A command that is added later would otherwise change what they mean.
  auto const found = findCommand(divided.word, screen_.isTerminal());
  if (auto const* const unknown = std::get_if<UnknownWord>(&found)) {
    if (unknown->meant.size() != 1) return fail(unknown->sentence, "help");
    std::string const meant(unknown->meant.front());
    constexpr std::size_t most = 200;
    bool const isWhole = divided.rest.size() <= most && harmless(divided.rest) == divided.rest;
    auto const known = findCommand(meant, false);
    bool const needsMore = divided.rest.empty() && needsArguments(std::get<Word>(known));
    if (!isWhole || needsMore) return fail(unknown->sentence, "help " + meant);
    return fail(unknown->sentence, meant + (divided.rest.empty() ? "" : ' ' + std::string(divided.rest)),
                "help " + meant);
  }
  return runCommand({std::get<Word>(found), divided.rest});
}

Outcome Editor::runCommand(Arguments const& arguments) {
  std::string_view const text = arguments.text;
  bool const takesNothing = infoOf(arguments.word).arguments.empty();
  if (takesNothing && !text.empty()) {
    std::string const name(infoOf(arguments.word).name);
    return fail("The command " + name + " has no arguments.", name);
  }
  // Lists can be long, and are always possible.
  if (takesNothing && rehearsal_) return Outcome::Done;
  switch (arguments.word) {
    case Word::Set:
    case Word::On:
    case Word::Off:
    case Word::Add:
    case Word::Remove:
    case Word::Copy:
    case Word::Rename:
      return edit(arguments);
    case Word::Show:
      return show(text);
    case Word::List:
      return list(text);
    case Word::Go:
      return go(text);
    case Word::Find:
      return find(text);
    case Word::Mine:
      return mine();
    case Word::Waiting:
      return waiting();
    case Word::Diff:
      return differences();
    case Word::Why:
      return why(text);
    case Word::How:
      return how(text);
    case Word::Try:
      return tryEdit(text);
    case Word::Effects:
      return effects(text);
    case Word::Findings:
      return findings();
    case Word::Undo:
      return undo(text, false);
    case Word::Redo:
      return undo(text, true);
    case Word::Save:
      return save(text);
    case Word::Help:
      return help(text);
    case Word::Quit:
      return quit(text);
  }
  return Outcome::Failed;
}

std::string Editor::absolute(std::string_view typed) const {
  typed = StringUtilities::trimmed(typed);
  if (typed.starts_with('/')) return std::string(typed);
  std::string at = here_;
  while (typed == ".." || typed.starts_with("../")) {
    at = PathUtils::parentOf(at);
    typed.remove_prefix(std::min<std::size_t>(3, typed.size()));
  }
  if (typed == "." || typed.empty()) return at.empty() ? "/" : at;
  return at + '/' + std::string(typed);
}

std::string Editor::pathOf(std::string_view typed) const {
  return session::absolutePath(session_, absolute(typed));
}

std::string Editor::prompt() const {
  constexpr std::size_t most = 40;
  std::string place = shownPath(here_);
  if (charactersOf(place) > most) place = "..." + shortened(here_.substr(here_.rfind('/')), most);
  return place + (unsavedSteps() > 0 ? " *> " : "> ");
}

std::size_t Editor::unsavedSteps() const {
  auto const [now, before] = std::mismatch(done_.begin(), done_.end(), saved_.begin(), saved_.end());
  return static_cast<std::size_t>((done_.end() - now) + (saved_.end() - before));
}

Outcome Editor::fail(std::string const& sentence, std::string const& meant, std::string const& instead) {
  std::string proposed = workingCommand(meant);
  if (proposed.empty()) proposed = instead;
  if (rehearsal_) {
    rehearsal_->proposed = std::move(proposed);
    return Outcome::Failed;
  }
  std::string text = screen_.isTerminal() ? painted("not done", Colour::Red, screen_.look()) + ": " : "";
  text += sentence + '\n';
  if (!proposed.empty()) text += "  nearest: " + painted(unbroken(proposed), Colour::Green, screen_.look()) + '\n';
  screen_.complain(text);
  return Outcome::Failed;
}

/// The command, if it would be done. Otherwise the one that it would propose, and "" if that would fail as well.
std::string Editor::workingCommand(std::string command) const {
  if (rehearsal_) return command;
  constexpr int mostProposals = 3;
  for (int i = 0; i < mostProposals && !command.empty(); ++i) {
    std::ostringstream nowhere;
    Screen silent(nowhere, nowhere, false);
    Editor rehearsal(*this, silent);
    Outcome const outcome = rehearsal.run(command);
    if (outcome == Outcome::Done || outcome == Outcome::Quit || outcome == Outcome::QuitUnsaved) return command;
    command = std::move(rehearsal.rehearsal_->proposed);
  }
  return {};
}

Outcome Editor::refuse(Refused refused) {
  proposeObject(refused);
  if (rehearsal_) {
    if (refused.nearest && isTypeable(*refused.nearest)) rehearsal_->proposed = commandText(*refused.nearest);
    return Outcome::Refused;
  }
  screen_.complain(refusalText(refused, resultOptions()));
  return Outcome::Refused;
}

ResultTextOptions Editor::resultOptions() const {
  ResultTextOptions options;
  options.look = screen_.look();
  options.command = [](Edit const& edit) { return unbroken(commandText(edit)); };
  options.opener = [](std::optional<Section> section) {
    return "effects " + (section ? std::string(sectionWord(*section)) : std::string("all"));
  };
  return options;
}

bool Editor::asksYes(std::string const& question, std::string const& listed) {
  std::string const choices = listed.empty() ? " [y/N] " : " [y/N/list] ";
  for (;;) {
    auto const answer = ask_(question + choices);
    if (!answer) return false;
    std::string const word = StringUtilities::toLower(StringUtilities::removeWhitespace(*answer));
    if (word == "y" || word == "yes") return true;
    if (listed.empty() || (word != "l" && word != "list")) return false;
    screen_.page(listed);
  }
}

void Editor::greet() {
  std::size_t params = 0;
  ModelState const& state = session_.provisional().getActiveTDFState();
  for (auto const& [path, values] : state) params += values.size();
  auto const objects =
      std::count_if(state.begin(), state.end(), [](auto const& object) { return !object.second.empty(); });
  std::string text = (file_ ? shortened(file_->name()) : std::string("a new model")) + ", " +
                     shownPath(session_.root()) + ": " + counted(params, "parameter") + " in " +
                     counted(static_cast<std::size_t>(objects), "object") + '\n';
  if (std::size_t const changes = session_.differences().size(); changes > 0 && file_) {
    text += "The rules change " + counted(changes, "item") + " of the file: \"diff\" lists what\n";
  }
  session::Findings const& findings = session_.review();
  if (findings.any()) text += counted(findings.list.size(), "finding") + ": \"findings\" lists them\n";
  text += "\"help\" lists the commands, and Tab completes them\n";
  screen_.print(text);
}

}  // namespace tarn::tool

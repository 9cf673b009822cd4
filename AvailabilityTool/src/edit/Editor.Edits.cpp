// The commands that change the model, and those that try, show, take back and repeat changes.
#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/WrittenItem.h>

#include "cli/Counted.h"
#include "edit/Editor.h"
#include "edit/ItemText.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using session::EditResult;
using session::Item;
using session::OwnValue;
using session::Refused;

std::string findingLines(std::string_view mark, std::vector<session::Finding> const& findings) {
  std::string text;
  for (session::Finding const& finding : findings) {
    text += "    " + std::string(mark) + ' ' + std::string(session::severityName(finding.severity)) + ": " +
            harmless(finding.message) + '\n';
  }
  return text;
}

}  // namespace

std::optional<Edit> Editor::readEdit(Arguments const& arguments) {
  std::string_view const text = arguments.text;
  CommandInfo const& info = infoOf(arguments.word);
  if (text.empty()) {
    (void)fail("Arguments are missing: " + std::string(info.name) + ' ' + std::string(info.arguments),
               "help " + std::string(info.name));
    return std::nullopt;
  }
  switch (arguments.word) {
    case Word::Set: {
      std::size_t const equals = text.find('=');
      if (equals == std::string_view::npos) {
        (void)fail("A = is missing between the path and the value: set PATH = VALUE", "help set");
        return std::nullopt;
      }
      std::string_view const path = StringUtilities::trimmed(text.substr(0, equals));
      if (path.empty()) {
        (void)fail("A path is missing before the =: set PATH = VALUE", "help set");
        return std::nullopt;
      }
      Item item = session::paramAt(pathOf(path));
      return Edit::setParam(std::move(item.path), std::move(*item.name),
                            std::string(StringUtilities::trimmed(text.substr(equals + 1))));
    }
    case Word::On:
    case Word::Off:
      return session::switchEdit(session_, pathOf(text), arguments.word == Word::On);
    case Word::Add:
      return Edit::addObject(pathOf(text));
    case Word::Remove:
      return Edit::removeObject(pathOf(text));
    case Word::Copy:
    case Word::Rename:
      return readNaming(arguments);
    default:
      return std::nullopt;
  }
}

/// "OBJECT = NAME". "OBJECT NAME" will do where only one division of it begins with an object that is there.
std::optional<Edit> Editor::readNaming(Arguments const& arguments) {
  bool const isCopy = arguments.word == Word::Copy;
  auto const make = [&](std::string path, std::string_view name) {
    std::string newName(StringUtilities::trimmed(name));
    return isCopy ? Edit::duplicateObject(std::move(path), std::move(newName))
                  : Edit::renameObject(std::move(path), std::move(newName));
  };
  std::string_view const text = arguments.text;
  if (std::size_t const equals = text.find('='); equals != std::string_view::npos) {
    return make(pathOf(text.substr(0, equals)), text.substr(equals + 1));
  }
  std::vector<Edit> possible;
  constexpr std::size_t longestPath = 10'000;
  for (std::size_t blank = text.find(' '); blank < longestPath && possible.size() < 2;
       blank = text.find(' ', blank + 1)) {
    std::string path = pathOf(text.substr(0, blank));
    if (!session_.provisional().getActiveTree().hasObject(path)) continue;
    possible.push_back(make(std::move(path), text.substr(blank + 1)));
  }
  if (possible.size() == 1) return possible.front();
  std::string const name(infoOf(arguments.word).name);
  (void)fail("Write = between the object and its new name: " + name + " OBJECT = NAME",
             possible.empty() ? "help " + name : commandText(possible.front()));
  return std::nullopt;
}

/// Asks before values of the user are lost, and returns whether to stop.
bool Editor::mayLose(Edit const& edit) {
  if (edit.kind != Edit::Kind::RemoveObject || !ask_) return true;
  std::vector<std::pair<std::string, std::string>> lost;
  for (OwnValue const& own : session_.own()) {
    if (!PathUtils::isChildPath(edit.path, own.item.path)) continue;
    lost.emplace_back(own.item.path, shortened(*own.item.name) + " = " + shortened(own.value));
  }
  if (lost.empty()) return true;
  if (session_.tryEdit(edit).refused) return true;  // it says why
  return asksYes("Remove " + shownPath(edit.path) + " with " + counted(lost.size(), "value") + " that you have set?",
                 groupedText(lost));
}

Outcome Editor::edit(Arguments const& arguments) {
  std::optional<Edit> const edit = readEdit(arguments);
  if (!edit) return Outcome::Refused;
  if (rehearsal_) {
    EditResult tried = session_.tryEdits(std::span(&*edit, 1), session::References::Follow);
    return tried.refused ? refuse(std::move(*tried.refused)) : Outcome::Done;
  }
  if (!mayLose(*edit)) {
    screen_.print("Nothing has changed.\n");
    return Outcome::Refused;
  }
  ResultTextOptions options = resultOptions();
  for (OwnValue& own : session_.own()) options.own.insert(std::move(own.item));
  EditResult result = session_.edit(std::span(&*edit, 1), session::References::Follow);
  if (result.refused) return refuse(std::move(*result.refused));
  if (result.step != 0) {
    done_.push_back(nextStep_++);
    undone_.clear();
  }
  note(result);
  options.remark = remarkOn(session_, std::span(&*edit, 1));
  showResult(std::move(result), std::move(options));
  stayInTheModel();
  return Outcome::Done;
}

/// Adds the edit with the object that was probably meant, if the refusal has no proposal and that edit would be made.
void Editor::proposeObject(Refused& refused) const {
  if (refused.nearest || refused.code != session::RefusalCode::UnknownObject) return;
  auto const resolved = session_.resolve(refused.edit.path);
  auto const* const other = std::get_if<Refused>(&resolved);
  if (other == nullptr || !other->nearest || other->nearest->kind != Edit::Kind::ActivateObject) return;
  Edit meant = refused.edit;
  meant.path = other->nearest->path;
  EditResult const tried = session_.tryEdits(std::span(&meant, 1), session::References::Follow);
  refused.nearest = tried.refused ? tried.refused->nearest : std::optional(std::move(meant));
}

/// Follows the object where the user is to its new name.
void Editor::note(EditResult const& result) {
  for (Edit const& made : result.made) {
    if (made.kind != Edit::Kind::RenameObject || !PathUtils::isChildPath(made.path, here_)) continue;
    std::string const stem = made.path.substr(0, made.path.size() - PathUtils::lastName(made.path).size());
    here_ = stem + made.name + here_.substr(made.path.size());
  }
}

/// Goes up to an object that is there.
void Editor::stayInTheModel() {
  std::string const before = here_;
  auto const& tree = session_.provisional().getActiveTree();
  while (here_.size() > session_.root().size() && !tree.hasObject(here_)) here_ = PathUtils::parentOf(here_);
  if (here_ != before) screen_.print("You are in " + shownPath(here_) + " now.\n");
}

void Editor::showResult(EditResult result, ResultTextOptions options) {
  screen_.print(resultText(result, options));
  last_ = std::move(result);
  lastOptions_ = std::move(options);
}

Outcome Editor::tryEdit(std::string_view text) {
  DividedLine const divided = divide(text);
  auto const found = findCommand(divided.word, screen_.isTerminal());
  auto const* const word = std::get_if<Word>(&found);
  if (divided.word.empty() || word == nullptr || !isEdit(*word)) {
    return fail("An edit is missing: try set PATH = VALUE", "help try");
  }
  if (rehearsal_) return edit({*word, divided.rest});
  std::optional<Edit> const edit = readEdit({*word, divided.rest});
  if (!edit) return Outcome::Refused;
  session::TryResult tried = session_.tryWithFindings(std::span(&*edit, 1), session::References::Follow);
  if (tried.result.refused) return refuse(std::move(*tried.result.refused));
  ResultTextOptions options = resultOptions();
  options.done = "tried";
  showResult(std::move(tried.result), std::move(options));
  std::string after;
  if (!tried.findingsGained.empty()) {
    after += painted("! " + counted(tried.findingsGained.size(), "finding") + " would come", Colour::Yellow,
                     screen_.look()) +
             '\n' + findingLines("+", tried.findingsGained);
  }
  if (!tried.findingsLost.empty()) {
    after +=
        painted("~ " + counted(tried.findingsLost.size(), "finding") + " would go", Colour::Green, screen_.look()) +
        '\n' + findingLines("-", tried.findingsLost);
  }
  after += "Nothing has changed.";
  if (isTypeable(*edit)) after += " \"" + unbroken(shortened(commandText(*edit), 1000)) + "\" does it.";
  screen_.print(after + '\n');
  return Outcome::Done;
}

Outcome Editor::effects(std::string_view text) {
  if (!last_) return fail("There was no edit yet.");
  ResultTextOptions options = lastOptions_;
  options.look = screen_.look();
  std::string const word = StringUtilities::toLower(std::string(text));
  if (word == "all") {
    options.isOpen = true;
  } else if (!word.empty()) {
    std::vector<std::string> words = {"all"};
    for (Section const section : allSections) {
      words.emplace_back(sectionWord(section));
      if (sectionWord(section) == word) options.only = section;
    }
    if (!options.only) {
      std::string const near = StringUtilities::nearMatch(word, words);
      return fail("An effect has no section \"" + shortened(text, 40) + "\".",
                  near.empty() ? "help effects" : "effects " + near);
    }
  }
  screen_.page(resultText(*last_, options));
  return Outcome::Done;
}

Outcome Editor::undo(std::string_view text, bool isRedo) {
  std::string const name = isRedo ? "redo" : "undo";
  std::size_t count = 1;
  if (!text.empty()) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error != std::errc() || end != text.data() + text.size() || count == 0) {
      return fail("Write a number of steps: " + name + " 2", "help " + name);
    }
  }
  std::vector<std::size_t>& from = isRedo ? undone_ : done_;
  std::vector<std::size_t>& to = isRedo ? done_ : undone_;
  if (from.empty()) return fail(isRedo ? "There is no step to redo." : "There is no step to undo.");
  if (rehearsal_) return Outcome::Done;
  std::size_t const possible = from.size();
  bool const isOne = std::min(count, possible) == 1;
  Outcome outcome = Outcome::Done;
  for (; count > 0 && !from.empty(); --count) {
    std::size_t const number = isRedo ? session_.steps().size() + 1 : session_.steps().size();
    std::optional<EditResult> result = isRedo ? session_.redo() : session_.undo();
    if (!result) break;
    if (result->refused) return refuse(std::move(*result->refused));
    to.push_back(from.back());
    from.pop_back();
    ResultTextOptions options = resultOptions();
    options.done = isRedo ? "redone" : "undone";
    options.step = number;
    if (isOne) {
      showResult(std::move(*result), std::move(options));
    } else {
      std::string const all = resultText(*result, options);
      screen_.print(all.substr(0, all.find('\n') + 1));
      last_ = std::move(*result);
      lastOptions_ = std::move(options);
    }
  }
  if (count > 0) {
    screen_.print("There " +
                  std::string(possible == 1 ? "was only 1 step" : "were only " + std::to_string(possible) + " steps") +
                  " to " + name + ".\n");
  }
  stayInTheModel();
  return outcome;
}

}  // namespace tarn::tool

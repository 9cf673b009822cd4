// The commands that only look.
#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/WrittenItem.h>

#include "cli/Counted.h"
#include "edit/Editor.h"
#include "edit/ItemText.h"
#include "edit/ShownText.h"
#include "why/Asked.h"

namespace tarn::tool {

namespace {

using session::Item;
using session::Refused;

using Lines = std::vector<std::pair<std::string, std::string>>;

/// Whether all lines of `part` are lines of `text`.
bool hasLinesOf(std::string const& text, std::string_view part) {
  std::string const lines = '\n' + text;
  while (!part.empty()) {
    std::size_t const end = std::min(part.find('\n'), part.size());
    if (end > 0 && lines.find('\n' + std::string(part.substr(0, end)) + '\n') == std::string::npos) return false;
    part.remove_prefix(std::min(end + 1, part.size()));
  }
  return true;
}

/// The edit that asks for the goal itself.
Edit goalEdit(session::Goal const& goal) {
  if (!goal.item.isParam()) return Edit::activateObject(goal.item.path);
  return Edit::setParam(goal.item.path, *goal.item.name, goal.value.value_or(""));
}

}  // namespace

std::optional<Item> Editor::resolve(std::string_view text, std::string_view command) {
  auto resolved = session_.resolve(absolute(text));
  if (auto* const item = std::get_if<Item>(&resolved)) return std::move(*item);
  Refused& refused = std::get<Refused>(resolved);
  std::string nearest;
  if (refused.nearest && isTypeable(*refused.nearest)) {
    Edit const& edit = *refused.nearest;
    nearest = std::string(command) + ' ' + (edit.path.empty() ? "/" : edit.path);
    if (!edit.name.empty()) nearest += '/' + edit.name;
  }
  std::string sentence = harmless(refused.sentence);
  if (!refused.possible.empty()) sentence += "\n  " + possibleText(refused);
  (void)fail(sentence, nearest);
  return std::nullopt;
}

Outcome Editor::show(std::string_view text) {
  std::optional<Item> const item = resolve(text, "show");
  if (!item) return Outcome::Failed;
  if (item->name) {
    if (auto const param = session_.lookParam(item->path, *item->name)) {
      screen_.page(paramText(*param, screen_.look()));
      return Outcome::Done;
    }
  } else if (auto const object = session_.lookObject(item->path)) {
    screen_.page(objectText(session_, *object, screen_.look()));
    return Outcome::Done;
  }
  return fail("Nothing is known of " + shortened(item->text()) + '.');
}

std::optional<session::ObjectRecord> Editor::presentObject(std::string_view text, std::string_view command) {
  std::optional<Item> const item = resolve(text, command);
  if (!item) return std::nullopt;
  if (item->name) {
    std::string nearest = std::string(command) + ' ' + (item->path.empty() ? "/" : item->path);
    (void)fail(shortened(item->text()) + " is a parameter, and not an object.", nearest);
    return std::nullopt;
  }
  auto object = session_.lookObject(item->path);
  if (object && object->present) return object;
  (void)fail("The object " + shownPath(item->path) + " is not present.",
             object ? "show " + (item->path.empty() ? "/" : item->path) : "");
  return std::nullopt;
}

Outcome Editor::list(std::string_view text) {
  auto const top = presentObject(text, "list");
  if (!top) return Outcome::Failed;
  if (rehearsal_) return Outcome::Done;
  struct Open {
    std::string path;
    std::size_t depth;
  };
  auto const& tree = session_.provisional().getActiveTree();
  std::string listed;
  std::vector<Open> open = {{top->path, 0}};
  std::vector<std::string> names;
  std::vector<std::string> children;
  while (!open.empty()) {
    Open const at = std::move(open.back());
    open.pop_back();
    names.clear();
    (void)tree.getParameterNames(at.path, names);
    std::string const component =
        at.depth == 0 ? shownPath(at.path) : shortened(at.path.substr(at.path.rfind('/') + 1));
    listed += std::string(2 * at.depth, ' ') + component +
              (names.empty() ? "" : "   " + counted(names.size(), "parameter")) + '\n';
    children.clear();
    (void)tree.getChildObjectPaths(at.path, children);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      open.push_back({std::move(*child), at.depth + 1});
    }
  }
  screen_.page(listed);
  return Outcome::Done;
}

Outcome Editor::go(std::string_view text) {
  if (text.empty()) {
    here_ = session_.root();
  } else {
    auto const object = presentObject(text, "go");
    if (!object) return Outcome::Failed;
    here_ = object->path;
  }
  if (!screen_.isTerminal()) return Outcome::Done;
  screen_.page(objectText(session_, *session_.lookObject(here_), screen_.look()));
  return Outcome::Done;
}

Outcome Editor::find(std::string_view text) {
  if (text.empty()) return fail("A part of a name is missing: find TEXT", "help find");
  constexpr std::size_t most = 100;
  std::vector<session::Found> const found = session_.find(text, most + 1);
  if (found.empty()) {
    return fail("No object or parameter has a name with \"" + shortened(text, 40) + "\" in it.", "list");
  }
  std::string lines;
  for (std::size_t i = 0; i < std::min(found.size(), most); ++i) {
    Item const& item = found[i].item;
    std::string line = shortened(item.text());
    if (item.name) {
      auto const param = session_.lookParam(item.path, *item.name);
      if (param && param->value) {
        line += param->value->empty() ? "   needs a value" : " = " + shortened(*param->value);
      } else if (param) {
        line += param->offered ? "   on offer" : "   not available";
      }
    }
    lines += line + '\n';
  }
  if (found.size() > most) lines += "... and more; a longer text finds fewer\n";
  screen_.page(lines);
  return Outcome::Done;
}

Outcome Editor::mine() {
  Lines lines;
  for (session::OwnValue const& own : session_.own()) {
    lines.emplace_back(own.item.path, shortened(*own.item.name) + " = " + shortened(own.value) + "   step " +
                                          std::to_string(own.step) + (own.inForce ? "" : ", not in force"));
  }
  screen_.page(lines.empty() ? "You have set no values yet.\n" : groupedText(lines));
  return Outcome::Done;
}

Outcome Editor::waiting() {
  Lines lines;
  for (session::Waiting const& waits : session_.waiting()) {
    std::string line = waits.item.name ? shortened(*waits.item.name) : std::string();
    if (waits.value) line += " = " + shortened(*waits.value);
    lines.emplace_back(waits.item.path, (line.empty() ? "the object" : line) + "   " + whyWaiting(waits));
  }
  screen_.page(lines.empty() ? "Nothing waits.\n" : groupedText(lines));
  return Outcome::Done;
}

Outcome Editor::differences() {
  Lines lines;
  for (session::Difference const& difference : session_.differences()) {
    if (!difference.item.isParam()) {
      lines.emplace_back(difference.item.path, difference.isNewObject ? "+ the object is new" : "- the object is gone");
      continue;
    }
    std::string const name = shortened(*difference.item.name);
    std::string const now =
        difference.now && difference.now->empty() ? "(no value)" : shortened(difference.now.value_or(""));
    std::string line;
    if (!difference.inModel) {
      line = "+ " + name + " = " + now;
    } else if (!difference.now) {
      line = "- " + name + " (was " + shortened(*difference.inModel) + ')';
    } else {
      line = "~ " + name + ": " + shortened(*difference.inModel) + " -> " + now;
    }
    lines.emplace_back(difference.item.path, std::move(line));
  }
  screen_.page(lines.empty() ? "Nothing differs from the model as it was opened.\n" : groupedText(lines));
  return Outcome::Done;
}

Outcome Editor::findings() {
  session::Findings const& findings = session_.review();
  std::string text;
  TextLook const look = screen_.look();
  for (session::Finding const& finding : findings.list) {
    bool const isError = finding.severity == session::Severity::Error;
    text += painted(session::severityName(finding.severity), isError ? Colour::Red : Colour::Yellow, look) + ": ";
    std::string const where = finding.path + (finding.name ? '/' + *finding.name : std::string());
    if (!where.empty()) text += shortened(where) + ": ";
    text += harmless(finding.message) + '\n';
  }
  std::size_t const errors = findings.count(session::Severity::Error);
  if (findings.any()) {
    text += counted(errors, "error") + ", " + counted(findings.list.size() - errors, "warning") + '\n';
  } else {
    text = "Nothing is wrong with the model.\n";
  }
  screen_.page(text);
  return Outcome::Done;
}

/// "PATH", or "PATH = VALUE".
std::optional<session::Goal> Editor::readGoal(std::string_view text, std::string_view command) {
  if (text.empty()) {
    (void)fail("A path is missing: " + std::string(command) + " PATH", "help " + std::string(command));
    return std::nullopt;
  }
  Asked asked = dividedAtEquals(text);
  session::KnownItem found = session::knownItem(session_, absolute(asked.path));
  if (!found.item) {
    (void)resolve(asked.path, command);  // says why
    return std::nullopt;
  }
  session::Goal goal = {std::move(*found.item), std::move(asked.value)};
  if (goal.value && !goal.item.isParam()) {
    (void)fail(shownPath(goal.item.path) + " is an object, and has no value.",
               std::string(command) + ' ' + goal.item.path);
    return std::nullopt;
  }
  return goal;
}

Outcome Editor::why(std::string_view text) {
  auto const goal = readGoal(text, "why");
  if (!goal) return Outcome::Failed;
  if (rehearsal_) return Outcome::Done;
  constexpr std::size_t mostLines = 40;
  constexpr std::size_t depth = 2;
  session::Proof const proof = proofOf(session_, *goal, depth);
  std::string answer = whyText(proof, remarksOn(session_, *goal, proof), mostLines);
  if (!goal->value && !session_.steps().empty()) {
    session::WhyOptions options;
    options.depth = depth;
    options.question = session::Question::LastEdit;
    session::Proof const last = session_.why(goal->item, options);
    if (last.answer().fact != session::Fact::NotChanged) {
      std::string const because = textOf(last, mostLines);
      // The rules that decide now are mostly those that decided then.
      if (hasLinesOf(because, answer.substr(firstLine(answer).size()))) answer = firstLine(answer) + '\n';
      answer += because;
    }
  }
  if (isWorthHow(proof) && isTypeable(goalEdit(*goal))) {
    std::string const value = goal->value ? " = " + *goal->value : "";
    answer += "next: " + painted(unbroken("how " + goal->item.text() + value), Colour::Green, screen_.look()) + '\n';
  }
  screen_.page(answer);
  return Outcome::Done;
}

Outcome Editor::how(std::string_view text) {
  auto const goal = readGoal(text, "how");
  if (!goal) return Outcome::Failed;
  if (rehearsal_) return Outcome::Done;
  screen_.page(howText(session_.how(*goal), [&](std::vector<Edit> const& edits) {
    std::vector<std::string> commands;
    if (!std::all_of(edits.begin(), edits.end(), isTypeable)) return commands;
    for (Edit const& edit : edits)
      commands.push_back(painted(unbroken(commandText(edit)), Colour::Green, screen_.look()));
    return commands;
  }));
  return Outcome::Done;
}

Outcome Editor::help(std::string_view text) {
  if (text.empty()) {
    std::string all;
    std::size_t widest = 0;
    for (CommandInfo const& info : allCommands()) {
      widest = std::max(widest, info.name.size() + 1 + info.arguments.size());
    }
    for (CommandInfo const& info : allCommands()) {
      std::string form(info.name);
      if (!info.arguments.empty()) form += ' ' + std::string(info.arguments);
      all += padded(std::move(form), widest + 2) + std::string(info.meaning) + '\n';
    }
    all += "\"help COMMAND\" says more. A path begins with \"/\", or at the object where you are.\n";
    screen_.page(all);
    return Outcome::Done;
  }
  auto const found = findCommand(text, screen_.isTerminal());
  auto const* const word = std::get_if<Word>(&found);
  if (word == nullptr) {
    auto const& unknown = std::get<UnknownWord>(found);
    return fail(unknown.sentence, "help" + (unknown.meant.size() == 1 ? ' ' + std::string(unknown.meant.front()) : ""));
  }
  CommandInfo const& info = infoOf(*word);
  std::string form(info.name);
  if (!info.arguments.empty()) form += ' ' + std::string(info.arguments);
  std::string all = form + "\n  " + std::string(info.meaning) + '\n';
  for (std::string_view rest = info.details; !rest.empty();) {
    std::size_t const end = rest.find('\n') + 1;
    all += "  " + std::string(rest.substr(0, end));
    rest.remove_prefix(end);
  }
  screen_.page(all);
  return Outcome::Done;
}

}  // namespace tarn::tool

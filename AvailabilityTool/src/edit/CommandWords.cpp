// The words of the editor, in one table: help, completion and the manual all follow it.
#include "edit/CommandWords.h"

#include <algorithm>
#include <array>

#include <tarn/StringUtilities.h>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

constexpr std::array<CommandInfo, 24> commands = {{
    {Word::Set, "set", "PATH = VALUE", "give a parameter a value",
     "Everything after the first \"=\" is the value. Blanks need no quotes.\n"
     "A number may have any units that can be converted: \"25 mm\" and \"25 [mm]\" are the same.\n"
     "A value for a parameter that is not available now is kept and waits.\n"
     "A value that can never be right is refused.\n"},
    {Word::On, "on", "PATH", "switch on a parameter or an object that is on offer", ""},
    {Word::Off, "off", "PATH", "switch off a parameter or an object that is optional",
     "Its value is kept and waits: \"on PATH\" brings it back.\n"},
    {Word::Add, "add", "OBJECT", "add an object with a name of your choice: add Boundary:inlet", ""},
    {Word::Remove, "remove", "OBJECT", "remove an object with a name, and everything in it",
     "On a terminal it asks first if that loses values that you have set.\n"
     "\"undo\" brings everything back.\n"},
    {Word::Copy, "copy", "OBJECT = NAME", "copy an object with everything in it, under a new name", ""},
    {Word::Rename, "rename", "OBJECT = NAME", "give an object another name",
     "Values that name the object follow, and the answer lists them.\n"},
    {Word::Show, "show", "[PATH]", "show all about a parameter, or what is in an object",
     "Without a path it shows the object where you are.\n"
     "Parameters that are not available are shown too, with the reason that the rules give.\n"},
    {Word::List, "list", "[OBJECT]", "list the objects at and below an object", ""},
    {Word::Go, "go", "[OBJECT]", "go to an object: paths without \"/\" in front begin there",
     "\"go ..\" goes to the object above, and \"go\" to the object that is edited as a whole.\n"},
    {Word::Find, "find", "TEXT", "find objects and parameters by a part of their name",
     "Also finds parameters that are not present.\n"
     "The best matches come first.\n"},
    {Word::Mine, "mine", "", "list the values that you have set", ""},
    {Word::Waiting, "waiting", "", "list what was asked for and is not in force, with the reason",
     "It comes into force by itself when the rules allow it.\n"
     "It is not part of the file that \"save\" writes.\n"},
    {Word::Diff, "diff", "", "list what differs from the model as it was opened", ""},
    {Word::Why, "why", "PATH [= VALUE]", "explain why something is as it is, or why a value is not allowed",
     "The answer has the rule with its place, the values that decided, and where they come from.\n"},
    {Word::How, "how", "PATH [= VALUE]", "find the shortest edits after which something is there, or has a value",
     "Each answer was tried. Nothing changes.\n"},
    {Word::Try, "try", "EDIT", "show what an edit would do, without doing it: try off Domain:rotor/Heat",
     "Also shows the findings that would come and go.\n"},
    {Word::Effects, "effects", "[all | SECTION]", "show again what the last edit did, or all of it",
     "Sections: waiting, gone, changed, new, objects, choices, defaults, bounds, units, offers.\n"},
    {Word::Findings, "findings", "", "list everything that is wrong with the model", ""},
    {Word::Undo, "undo", "[NUMBER]", "take back the last step, or so many", ""},
    {Word::Redo, "redo", "[NUMBER]", "make the step again that was taken back, or so many", ""},
    {Word::Save, "save", "[over] [FILE]", "write the model to its file, or to another one",
     "Everything that was not touched stays as it is in the file, byte for byte.\n"
     "A file that someone else has changed meanwhile is not overwritten; \"save over\" does that.\n"
     "Requests that wait are not written.\n"},
    {Word::Help, "help", "[COMMAND]", "list the commands, or describe one", ""},
    {Word::Quit, "quit", "[unsaved]", "end the editor",
     "On a terminal it asks if there is work that is not saved.\n"
     "\"quit unsaved\" drops the work without asking.\n"},
}};

struct ForeignWord {
  std::string_view word;
  std::string_view command;
};

/// Words that other programs use for the same.
constexpr std::array<ForeignWord, 27> foreignWords = {{
    {"exit", "quit"},  {"bye", "quit"},          {"q", "quit"},         {"ls", "list"},
    {"dir", "list"},   {"tree", "list"},         {"cd", "go"},          {"goto", "go"},
    {"open", "go"},    {"rm", "remove"},         {"delete", "remove"},  {"del", "remove"},
    {"mv", "rename"},  {"move", "rename"},       {"cp", "copy"},        {"duplicate", "copy"},
    {"get", "show"},   {"print", "show"},        {"cat", "show"},       {"search", "find"},
    {"grep", "find"},  {"validate", "findings"}, {"check", "findings"}, {"review", "findings"},
    {"write", "save"}, {"new", "add"},           {"?", "help"},
}};

}  // namespace

std::span<CommandInfo const> allCommands() noexcept {
  return commands;
}

CommandInfo const& infoOf(Word word) noexcept {
  return *std::find_if(commands.begin(), commands.end(), [&](CommandInfo const& info) { return info.word == word; });
}

bool isEdit(Word word) noexcept {
  switch (word) {
    case Word::Set:
    case Word::On:
    case Word::Off:
    case Word::Add:
    case Word::Remove:
    case Word::Copy:
    case Word::Rename:
      return true;
    default:
      return false;
  }
}

bool needsArguments(Word word) noexcept {
  std::string_view const arguments = infoOf(word).arguments;
  return !arguments.empty() && arguments.front() != '[';
}

std::variant<Word, UnknownWord> findCommand(std::string_view typed, bool mayShorten) {
  std::string const word = StringUtilities::toLower(std::string(typed));
  for (CommandInfo const& info : commands) {
    if (info.name == word) return info.word;
  }
  UnknownWord unknown;
  unknown.sentence = "There is no command \"" + shortened(typed, 40) + "\".";
  std::vector<CommandInfo const*> begun;
  for (CommandInfo const& info : commands) {
    if (!word.empty() && info.name.starts_with(word)) begun.push_back(&info);
  }
  if (mayShorten && begun.size() == 1) return begun.front()->word;
  for (CommandInfo const* info : begun) unknown.meant.push_back(info->name);
  if (begun.size() > 1 && mayShorten) {
    unknown.sentence = '"' + word + "\" can be the beginning of several commands: ";
    for (CommandInfo const* info : begun) {
      unknown.sentence += std::string(info->name) + (info == begun.back() ? "." : ", ");
    }
  }
  if (!unknown.meant.empty()) return unknown;
  for (ForeignWord const& foreign : foreignWords) {
    if (foreign.word == word) unknown.meant.push_back(foreign.command);
  }
  if (!unknown.meant.empty() || word.size() > 40) return unknown;
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (CommandInfo const& info : commands) names.emplace_back(info.name);
  std::string const near = StringUtilities::nearMatch(word, names);
  for (CommandInfo const& info : commands) {
    if (info.name == near) unknown.meant.push_back(info.name);
  }
  return unknown;
}

DividedLine divide(std::string_view line) noexcept {
  line = StringUtilities::trimmed(line);
  auto const* const blank = std::find_if(line.begin(), line.end(), StringUtilities::isSpace);
  auto const length = static_cast<std::size_t>(blank - line.begin());
  return {line.substr(0, length), StringUtilities::trimmed(line.substr(length))};
}

}  // namespace tarn::tool

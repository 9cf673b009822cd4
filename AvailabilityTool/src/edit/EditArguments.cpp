// The edits of a command line. The parser gathers the values of each option; the order in which they were given across
// options is put together again here.
#include "edit/EditArguments.h"

#include <array>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include <tarn/StringUtilities.h>
#include <tarn/session/WrittenItem.h>

#include "cli/EmptyPath.h"
#include "cli/ShellWord.h"

namespace tarn::tool {

namespace {

using Option = EditArgument::Option;

struct OptionInfo {
  Option option;
  char const* name;
  char const* arguments;
  char const* help;
  std::size_t count;
};

constexpr std::array<OptionInfo, 7> options = {
    {{Option::Set, "--set", "PATH=VALUE", "Set a parameter", 1},
     {Option::On, "--on", "PATH", "Switch on an optional parameter or object", 1},
     {Option::Off, "--off", "PATH", "Switch off an optional parameter or object", 1},
     {Option::Add, "--add", "OBJECT", "Add an object with a name of your choice", 1},
     {Option::Remove, "--remove", "OBJECT", "Remove a named object", 1},
     {Option::Copy, "--copy", "OBJECT NAME", "Copy a named object under a new name", 2},
     {Option::Rename, "--rename", "OBJECT NAME", "Give a named object a new name", 2}}};

void requirePath(OptionInfo const& info, EditArgument const& edit) {
  std::string const form = std::string(info.name) + ' ' + info.arguments;
  std::string_view path = edit.text;
  if (edit.option == Option::Set) {
    std::size_t const equals = edit.text.find('=');
    if (equals == std::string::npos) {
      throw CLI::ValidationError(info.name, '"' + edit.text + "\" has no \"=\"; write " + form);
    }
    path = path.substr(0, equals);
  }
  if (StringUtilities::trimmed(path).empty()) throw emptyPath(info.name, edit.option == Option::Set, form);
}

}  // namespace

void addEditOptions(CLI::App& command) {
  for (OptionInfo const& info : options) {
    CLI::Option* const option =
        command.add_option(info.name, CLI::callback_t([](CLI::results_t const&) { return true; }), info.help);
    option->type_name(info.arguments)->group("Edits, made as one, in the order given");
    option->type_size(static_cast<int>(info.count))->expected(1, CLI::detail::expected_max_vector_size);
    option->allow_extra_args(false)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
}

std::vector<EditArgument> editArguments(CLI::App const& command) {
  std::map<CLI::Option const*, OptionInfo const*> infos;
  for (OptionInfo const& info : options) infos.emplace(command.get_option(info.name), &info);
  std::map<CLI::Option const*, std::size_t> taken;
  std::vector<EditArgument> edits;
  // The parser notes an option once for each of its values.
  for (CLI::Option const* option : command.parse_order()) {
    auto const found = infos.find(option);
    if (found == infos.end()) continue;
    OptionInfo const& info = *found->second;
    std::size_t const index = taken[option]++;
    if (index % info.count != 0) continue;
    std::vector<std::string> const& values = option->results();
    EditArgument edit{info.option, values.at(index), info.count == 2 ? values.at(index + 1) : std::string()};
    requirePath(info, edit);
    edits.push_back(std::move(edit));
  }
  return edits;
}

Edit editOf(EditArgument const& argument, session::Session const& session) {
  if (argument.option == Option::Set) {
    std::string_view const text = argument.text;
    std::size_t const equals = text.find('=');
    session::Item item = session::paramAt(session::absolutePath(session, text.substr(0, equals)));
    return Edit::setParam(std::move(item.path), std::move(*item.name),
                          std::string(StringUtilities::trimmed(text.substr(equals + 1))));
  }
  std::string path = session::absolutePath(session, argument.text);
  switch (argument.option) {
    case Option::On:
    case Option::Off:
      return session::switchEdit(session, path, argument.option == Option::On);
    case Option::Add:
      return Edit::addObject(std::move(path));
    case Option::Remove:
      return Edit::removeObject(std::move(path));
    case Option::Copy:
      return Edit::duplicateObject(std::move(path), argument.newName);
    case Option::Rename:
      return Edit::renameObject(std::move(path), argument.newName);
    case Option::Set:
      break;
  }
  return {};
}

std::string argumentText(Edit const& edit) {
  std::string const path = shellWord(edit.path.empty() ? "/" : edit.path);
  std::string const param = edit.path + '/' + edit.name;
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      return "--set " + shellWord(param + '=' + edit.value);
    case Edit::Kind::ActivateParam:
      return "--on " + shellWord(param);
    case Edit::Kind::DeactivateParam:
      return "--off " + shellWord(param);
    case Edit::Kind::ActivateObject:
      return "--on " + path;
    case Edit::Kind::DeactivateObject:
      return "--off " + path;
    case Edit::Kind::AddObject:
      return "--add " + path;
    case Edit::Kind::RemoveObject:
      return "--remove " + path;
    case Edit::Kind::DuplicateObject:
      return "--copy " + path + ' ' + shellWord(edit.name);
    case Edit::Kind::RenameObject:
      return "--rename " + path + ' ' + shellWord(edit.name);
  }
  return {};
}

}  // namespace tarn::tool

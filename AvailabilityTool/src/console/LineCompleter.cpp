// Splits a line as the loop of the console does, and finds what its last part can become.
#include "console/LineCompleter.h"

#include <algorithm>
#include <array>

#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>

#include "console/Candidates.h"
#include "console/PathCompletion.h"

namespace tarn::tool {

namespace {

enum class Argument { None, PresentParameter, Setting, PotentialParameter, PotentialObject, PresentObject, File };

struct KnownCommand {
  std::string_view name;
  Argument argument;
};

constexpr std::array<KnownCommand, 17> knownCommands = {{
    {"ao", Argument::PotentialObject},
    {"ap", Argument::PotentialParameter},
    {"do", Argument::PresentObject},
    {"dp", Argument::PresentParameter},
    {"e", Argument::None},
    {"h", Argument::None},
    {"l", Argument::File},
    {"lb", Argument::File},
    {"no", Argument::PresentObject},
    {"po", Argument::PresentObject},
    {"pp", Argument::PresentParameter},
    {"ps", Argument::PresentObject},
    {"q", Argument::None},
    {"ro", Argument::PresentObject},
    {"sp", Argument::Setting},
    {"v", Argument::None},
    {"vf", Argument::File},
}};

/// A longer value is not inserted into the line: nobody edits it there.
constexpr std::size_t longestValue = 1000;

/// Drops a candidate that would not reach the command unchanged.
bool arrivesWhole(std::string const& argument) {
  return StringUtilities::stringToVector(argument, ',') == std::vector{argument};
}
/// The same for a path before "=": its parts are joined again, and it ends at the first "=".
bool arrivesJoined(std::string const& path) {
  std::string const text = path + '=';
  return StringUtilities::vectorToString(StringUtilities::stringToVector(text, ','), ',') == text &&
         path.find('=') == std::string::npos;
}

/// `completePath` for the paths of a model, which begin with "/".
Completion completeModelPath(std::string const& typed, PathLevel const& level, Arrives const& arrives,
                             std::string_view end) {
  if (!typed.empty()) return typed.starts_with('/') ? completePath(typed, level, arrives, end) : Completion{};
  Completion completion = completePath("/", level, arrives, end);
  if (completion.total > 0) completion.insert.insert(0, 1, '/');
  return completion;
}

std::string_view withoutLeadingBlanks(std::string_view text) {
  auto const begin = std::find_if_not(text.begin(), text.end(), StringUtilities::isSpace);
  return text.substr(static_cast<std::size_t>(begin - text.begin()));
}

}  // namespace

std::vector<std::string> LineCompleter::commands() {
  std::vector<std::string> names;
  names.reserve(knownCommands.size());
  for (KnownCommand const& command : knownCommands) names.emplace_back(command.name);
  return names;
}

Completion LineCompleter::complete(std::string_view line, std::size_t cursor) const {
  std::string_view const text = withoutLeadingBlanks(line.substr(0, cursor));
  auto const blank = std::find_if(text.begin(), text.end(), StringUtilities::isSpace);
  if (blank != text.end()) {
    auto const length = static_cast<std::size_t>(blank - text.begin());
    return completeArgument(text.substr(0, length), std::string(withoutLeadingBlanks(text.substr(length))));
  }
  Completion completion = completeWord(commands(), text);
  if (completion.total == 1) {
    auto const* const only = std::find_if(knownCommands.begin(), knownCommands.end(), [&](KnownCommand const& command) {
      return command.name == completion.choices.front();
    });
    if (only->argument != Argument::None) completion.insert += ' ';
  }
  return completion;
}

Completion LineCompleter::completeArgument(std::string_view command, std::string const& argument) const {
  auto const* const known = std::find_if(knownCommands.begin(), knownCommands.end(),
                                         [&](KnownCommand const& candidate) { return candidate.name == command; });
  if (known == knownCommands.end()) return {};
  auto const of = [this](Candidates (*source)(ProvisionalTDF const&, std::string const&, std::string const&)) {
    return
        [this, source](std::string const& folder, std::string const& start) { return source(state_, folder, start); };
  };
  switch (known->argument) {
    case Argument::None:
      return {};
    case Argument::PresentParameter:
      return completeModelPath(argument, of(presentParameters), arrivesWhole, "");
    case Argument::PotentialParameter:
      return completeModelPath(argument, of(potentialParameters), arrivesWhole, "");
    case Argument::PotentialObject:
      return completeModelPath(argument, of(potentialObjects), arrivesWhole, "");
    case Argument::PresentObject:
      return completeModelPath(argument, of(presentObjects), arrivesWhole, "");
    case Argument::File:
      return completePath(argument, files, arrivesWhole, "");
    case Argument::Setting:
      if (auto const equals = argument.find('='); equals != std::string::npos) {
        return completeValue(argument.substr(0, equals),
                             withoutLeadingBlanks(std::string_view(argument).substr(equals + 1)));
      }
      return completeModelPath(argument, of(presentParameters), arrivesJoined, "=");
  }
  return {};
}

Completion LineCompleter::completeValue(std::string const& paramPath, std::string_view value) const {
  std::string object;
  std::string parameter;
  StringUtilities::splitPathName(StringUtilities::removeWhitespace(paramPath), &object, &parameter);
  std::vector<std::string> allowed = state_.getSubsetAllowedParamValues(object, parameter);
  if (allowed.empty()) allowed = state_.getAllowedParamValues(object, parameter);
  if (allowed.empty()) {
    std::string const& present = state_.getParamValue(object, parameter);
    if (present.empty() || present.size() > longestValue) return {};
    return completeWord({present}, value);
  }
  Completion completion = completeWord(allowed, value);
  // An allowed value can contain a comma. So the text is a list only if it is not the beginning of a value.
  auto const comma = value.rfind(',');
  if (completion.total > 0 || comma == std::string_view::npos) return completion;
  return completeWord(allowed, withoutLeadingBlanks(value.substr(comma + 1)));
}

}  // namespace tarn::tool

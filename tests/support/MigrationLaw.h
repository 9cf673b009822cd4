#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Migration.h>

namespace tarn::test {

/// The rules of a plant, in which some items have new names: those whose former names `isRenamed` accepts.
///
/// A name in the text is written "@former|new@".
template <typename IsRenamed>
std::string renamedPlant(IsRenamed const& isRenamed) {
  constexpr std::string_view form = R"yaml(Rule Database: 1
Pertinent Roots: ["@System|Plant@"]
Objects:
  /@System|Plant@:
    %System|Plant%
    Parameters:
      @Supply|Flow Temperature@: {Parameter Type: Real, Lower Bound: 0, Upper Bound: 90, %Supply|Flow Temperature%}
      @Mode|State@: {Required: yes, Parameter Type: String, Ordered Allowed String List: [eco, comfort], %Mode|State%}
      @First|First Circuit@:
        Available: ${@Mode|State@} == 'eco'
        Parameter Type: String List
        Value List Source: names({@Loop|Circuit@:*})
        %First|First Circuit%
      Note: {Parameter Type: String}
    Children:
      @Loop|Circuit@:
        Coupled: yes
        Minimum Count: 1
        Maximum Count: 3
        %Loop|Circuit%
    Checks:
      a valve is open: {Check: "any({@Loop|Circuit@:*}, ${@Valve|Mixer@} == 'open')", Message: No valve is open.}
  /@System|Plant@/@Loop|Circuit@:
    Parameters:
      @Valve|Mixer@: {Parameter Type: String, Pattern: '[a-z]*', %Valve|Mixer%}
      @Size|Width@: {Parameter Type: Integer, Upper Bound: "= ${../@Supply|Flow Temperature@}", %Size|Width%}
    Children:
      @Fan|Blower@: {Coupled: yes, %Fan|Blower%}
  /@System|Plant@/@Loop|Circuit@/@Fan|Blower@:
    Parameters:
      @Power|Effort@: {Parameter Type: Real, Upper Bound: 5, %Power|Effort%}
)yaml";
  std::string text;
  std::size_t begin = 0;
  for (std::size_t at = form.find_first_of("@%"); at != std::string_view::npos; at = form.find_first_of("@%", begin)) {
    std::size_t const bar = form.find('|', at);
    std::size_t const end = form.find(form[at], at + 1);
    std::string const former(form.substr(at + 1, bar - at - 1));
    text += form.substr(begin, at - begin);
    if (form[at] == '@') {
      text += isRenamed(former) ? std::string(form.substr(bar + 1, end - bar - 1)) : former;
    } else if (isRenamed(former)) {
      text += "Renamed From: " + former;
    } else {
      text += former == "System" || former == "First" || former == "Loop" ? "" : "Advanced: no";
    }
    begin = end + 1;
  }
  return text += form.substr(begin);
}

/// The laws of migration for a model text without malformed lines. Returns the first that does not hold, or "".
///
/// A migrated model is a model, and migrating it again changes nothing. Comments stay, and so do values and the order
/// of lines, except for values that follow a renamed object and for lines that are removed.
inline std::string brokenLawOfMigration(PhysicsData const& rules, std::string const& text) {
  using session::Migration;
  using session::MigrationEntry;
  using session::MigrationFate;
  ModelText const model("model.tdf", text);
  Migration const migration = session::migrate(rules, model, text);
  ModelText const migrated("migrated.tdf", migration.text);
  if (!migrated.faults().empty()) return "a migrated model is a model: " + migrated.faults().front().reason;
  if (!migration.changesText() && migration.text != text) return "without changes every byte stays";
  Migration const again = session::migrate(rules, migrated, migration.text);
  if (again.text != migration.text || again.changesText()) return "migrating twice changes nothing more";

  auto const count = [&](MigrationFate fate) {
    return static_cast<std::size_t>(std::count_if(migration.entries.begin(), migration.entries.end(),
                                                  [&](MigrationEntry const& entry) { return entry.fate == fate; }));
  };
  auto const params = [](ModelText const& one) {
    std::size_t number = 0;
    for (auto const& [path, values] : one.state()) number += values.size();
    return number;
  };
  if (params(migrated) + count(MigrationFate::Removed) != params(model)) return "no parameter is lost";

  struct Lines {
    std::vector<std::string> comments;
    std::vector<std::string> values;
  };
  auto const linesOf = [](std::string_view all) {
    Lines lines;
    while (!all.empty()) {
      std::size_t const end = std::min(all.find('\n'), all.size());
      std::string_view const line = all.substr(0, end);
      std::size_t const equals = line.find('=');
      if (StringUtilities::trimmed(line).starts_with('#')) {
        lines.comments.emplace_back(line);
      } else if (equals != std::string_view::npos) {
        lines.values.emplace_back(line.substr(equals));
      }
      all.remove_prefix(std::min(end + 1, all.size()));
    }
    return lines;
  };
  Lines const before = linesOf(text);
  Lines const after = linesOf(migration.text);
  if (before.comments != after.comments) return "comments stay";
  if (count(MigrationFate::ValueChanged) > 0) return {};
  auto next = before.values.begin();
  for (std::string const& value : after.values) {
    next = std::find(next, before.values.end(), value);
    if (next == before.values.end()) return "values stay, in their order: " + value;
    ++next;
  }
  bool const isShorter = after.values.size() < before.values.size();
  return isShorter && count(MigrationFate::Removed) == 0 ? "no line is lost" : "";
}

}  // namespace tarn::test

// Findings about parameters that a model text gives more than once. Only the first value counts, so different values
// are an error: the author of the text may rely on another one.
#include "review/RepeatedParameters.h"

#include <algorithm>
#include <utility>

#include <tarn/PertinentRoots.h>
#include <tarn/StringUtilities.h>

#include "review/ReviewJudge.h"

namespace tarn::session {

namespace {

constexpr std::size_t mostShown = 4;

// "line 2, line 5 and line 9", with the values before the lines when they differ.
std::string listOf(std::vector<ModelText::Occurrence> const& occurrences, bool withValues) {
  std::string list;
  std::size_t const count = std::min(occurrences.size(), mostShown);
  for (std::size_t i = 0; i < count; ++i) {
    bool const isLast = i + 1 == occurrences.size();
    if (i > 0) list += isLast ? " and " : ", ";
    if (withValues) list += shown(occurrences[i].value) + " in ";
    list += "line " + std::to_string(occurrences[i].place.line());
  }
  if (count < occurrences.size()) list += " and others";
  return list;
}

std::string timesOf(std::size_t count) {
  if (count == 2) return "twice";
  if (count == ModelText::mostOccurrences) return std::to_string(count) + " times or more";
  return std::to_string(count) + " times";
}

Finding findingOf(ModelText::Item const& item, std::vector<ModelText::Occurrence> const& occurrences) {
  std::string const& first = occurrences.front().value;
  bool const differ = std::any_of(occurrences.begin(), occurrences.end(),
                                  [&first](ModelText::Occurrence const& one) { return one.value != first; });
  std::string const where = item.path.empty() ? " at the root of the model" : " in the object \"" + item.path + '"';
  std::string sentence = "The parameter \"" + *item.name + '"' + where + " is given " + timesOf(occurrences.size());
  sentence += differ ? " with different values: " + listOf(occurrences, true) + ". The first value counts."
                     : " with the same value: in " + listOf(occurrences, false) + '.';
  Finding finding = makeFinding(differ ? FindingCode::ConflictingValues : FindingCode::RepeatedParameter, item.path,
                                std::move(sentence));
  finding.name = item.name;
  finding.value = first;
  for (ModelText::Occurrence const& one : occurrences) finding.places.push_back(one.place);
  return finding;
}

}  // namespace

std::vector<Finding> findRepeatedParameters(PhysicsData const& rules, std::vector<std::string> const& roots,
                                            ModelText const& text) {
  PertinentRoots const types(rules);
  auto const isJudged = [&](ModelText::Item const& item) {
    if (roots.empty()) return item.path.empty() || types.covers(item.path);
    return std::any_of(roots.begin(), roots.end(),
                       [&item](std::string const& root) { return StringUtilities::isPathRootedAt(root, item.path); });
  };
  std::vector<ModelText::Item> items;
  std::copy_if(text.repeated().begin(), text.repeated().end(), std::back_inserter(items), isJudged);
  std::vector<std::vector<ModelText::Occurrence>> const occurrences = text.locate(items);
  std::vector<Finding> findings;
  for (std::size_t i = 0; i < items.size(); ++i) findings.push_back(findingOf(items[i], occurrences[i]));
  return findings;
}

}  // namespace tarn::session

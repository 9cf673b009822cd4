// Which item of a model text a finding is about. All items are searched in one pass over the text.
#include "review/FindingPlaces.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>

namespace tarn::session {

namespace {

using Items = std::vector<ModelText::Item>;

// The items that a finding is about. A parameter that is missing is located by its object.
Items itemsOf(Finding const& finding) {
  if (finding.name && finding.code != FindingCode::MissingParameter) return {{finding.path, finding.name}};
  switch (finding.code) {
    case FindingCode::ObjectNotAvailable:
    case FindingCode::ObjectNameNotAllowed: {
      std::string const child = finding.path + '/' + finding.type.value_or("");
      if (finding.wrong.empty()) return {{child, std::nullopt}};
      Items items;
      for (std::string const& name : finding.wrong) {
        items.push_back({child + ':' + name, std::nullopt});
        if (items.size() == ModelText::mostOccurrences) break;
      }
      return items;
    }
    case FindingCode::BetaMessage: {
      // The last component is an object or a parameter.
      std::string const parent(PathUtils::parentOf(finding.path));
      return {{finding.path, std::nullopt}, {parent, finding.path.substr(parent.size() + 1)}};
    }
    default:
      if (finding.path.empty()) return {};
      return {{finding.path, std::nullopt}};
  }
}

}  // namespace

void locateFindings(ModelText const& text, Findings& findings) {
  std::vector<std::pair<Finding*, std::size_t>> about;  // a finding, and the number of its items
  Items items;
  auto const add = [&](Finding& finding) {
    if (!finding.places.empty()) return;
    Items itsItems = itemsOf(finding);
    about.emplace_back(&finding, itsItems.size());
    std::move(itsItems.begin(), itsItems.end(), std::back_inserter(items));
  };
  std::for_each(findings.list.begin(), findings.list.end(), add);
  std::for_each(findings.beta.begin(), findings.beta.end(), add);

  std::vector<std::vector<ModelText::Occurrence>> const found = text.locate(items);
  std::size_t next = 0;
  for (auto const& [finding, count] : about) {
    for (std::size_t i = next; i < next + count; ++i) {
      for (ModelText::Occurrence const& one : found[i]) finding->places.push_back(one.place);
    }
    next += count;
  }
}

}  // namespace tarn::session

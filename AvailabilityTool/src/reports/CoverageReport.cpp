#include "reports/CoverageReport.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/StringUtilities.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using workbench::CoverageCount;
using workbench::CoverageItem;
using workbench::CoverageKind;

constexpr CoverageKind kinds[] = {CoverageKind::Entry,    CoverageKind::Context,      CoverageKind::Condition,
                                  CoverageKind::Operand,  CoverageKind::AllowedValue, CoverageKind::Default,
                                  CoverageKind::Override, CoverageKind::Bound,        CoverageKind::Check,
                                  CoverageKind::Pattern};

std::string countText(CoverageCount const& count) {
  return std::to_string(count.percent()) + " %  (" + std::to_string(count.seen) + " of " + std::to_string(count.all) +
         ')';
}

/// "allowed values" for `allowed-value`.
std::string titleOf(CoverageKind kind) {
  switch (kind) {
    case CoverageKind::Entry:
      return "entries";
    case CoverageKind::Context:
      return "contexts";
    case CoverageKind::Condition:
      return "conditions";
    case CoverageKind::Operand:
      return "operands";
    case CoverageKind::AllowedValue:
      return "allowed values";
    case CoverageKind::Default:
      return "defaults";
    case CoverageKind::Override:
      return "overrides";
    case CoverageKind::Bound:
      return "bounds";
    case CoverageKind::Pattern:
      return "patterns";
    case CoverageKind::Check:
      break;
  }
  return "checks";
}

/// The outcomes that were not seen: "never true".
std::string missingText(CoverageItem const& item) {
  bool const isValue = item.kind == CoverageKind::AllowedValue || item.kind == CoverageKind::Context;
  std::string text;
  for (auto const& outcome : item.outcomes) {
    if (outcome.times > 0) continue;
    text += (text.empty() ? "never " : ", ") + (isValue ? '\'' + harmless(outcome.name) + '\'' : outcome.name);
  }
  return text;
}

/// Each run of white space becomes one blank.
std::string onOneLine(std::string_view text) {
  std::string line;
  for (char const c : text) {
    if (!StringUtilities::isSpace(c)) {
      line += c;
    } else if (!line.ends_with(' ')) {
      line += ' ';
    }
  }
  return line;
}

std::string uncoveredLine(CoverageItem const& item) {
  std::string line = item.place.isKnown() ? harmless(item.place.text()) + ": " : std::string();
  line += item.typePath.empty() ? "" : harmless(item.typePath) + ": ";
  line += harmless(item.entry) + ": " + item.attribute;
  if (!item.value.empty()) line += " '" + harmless(item.value) + '\'';
  if (!item.text.empty()) line += ": " + shortened(onOneLine(item.text));
  return line + ": " + missingText(item);
}

Json itemAsJson(CoverageItem const& item) {
  Json json;
  json["kind"] = workbench::coverageKindName(item.kind);
  if (!item.typePath.empty()) json["type"] = item.typePath;
  json["entry"] = item.entry;
  json["attribute"] = item.attribute;
  if (!item.value.empty()) json["value"] = item.value;
  if (!item.text.empty()) json["text"] = item.text;
  if (item.place.isKnown()) json["place"] = service::placeAsJson(item.place);
  json["covered"] = item.isCovered();
  json["outcomes"] = service::jsonList(item.outcomes, [](CoverageItem::Outcome const& outcome) {
    return Json{{"name", outcome.name}, {"times", outcome.times}};
  });
  return json;
}

Json countAsJson(CoverageCount const& count) {
  return {{"seen", count.seen}, {"all", count.all}, {"percent", count.percent()}};
}

struct Line {
  std::size_t times = 0;
  std::vector<CoverageItem const*> items;
};

}  // namespace

void writeCoverageAsText(std::ostream& out, std::vector<CoverageItem> const& items) {
  out << "coverage          " << countText(countOf(items)) << '\n';
  for (CoverageKind const kind : kinds) {
    CoverageCount const count = countOf(items, kind);
    if (count.all > 0) out << "  " << padded(titleOf(kind), 16) << countText(count) << '\n';
  }
  bool isFirst = true;
  for (CoverageItem const& item : items) {
    if (item.isCovered()) continue;
    if (isFirst) out << "\nnot covered:\n";
    isFirst = false;
    out << "  " << uncoveredLine(item) << '\n';
  }
}

void writeCoverageAsJson(std::ostream& out, std::vector<CoverageItem> const& items) {
  Json json;
  json["schema"] = 1;
  json["total"] = countAsJson(countOf(items));
  for (CoverageKind const kind : kinds) {
    json["kinds"][std::string(workbench::coverageKindName(kind))] = countAsJson(countOf(items, kind));
  }
  json["items"] = service::jsonList(items, itemAsJson);
  out << service::jsonLine(json) << '\n';
}

void writeCoverageAsLcov(std::ostream& out, std::vector<CoverageItem> const& items) {
  std::map<std::string, std::map<std::size_t, Line>> files;
  for (CoverageItem const& item : items) {
    if (!item.place.isKnown()) continue;
    Line& line = files[item.place.source()][item.place.line()];
    line.items.push_back(&item);
    for (auto const& outcome : item.outcomes) line.times += outcome.times;
  }
  for (auto const& [source, lines] : files) {
    std::size_t branches = 0;
    std::size_t branchesSeen = 0;
    std::size_t linesSeen = 0;
    out << "TN:\nSF:" << source << '\n';
    for (auto const& [number, line] : lines) {
      out << "DA:" << number << ',' << line.times << '\n';
      linesSeen += line.times > 0 ? 1 : 0;
      for (std::size_t block = 0; block < line.items.size(); ++block) {
        auto const& outcomes = line.items[block]->outcomes;
        for (std::size_t i = 0; i < outcomes.size(); ++i) {
          out << "BRDA:" << number << ',' << block << ',' << i << ',' << outcomes[i].times << '\n';
        }
        branches += outcomes.size();
        branchesSeen += line.items[block]->seen();
      }
    }
    out << "BRF:" << branches << "\nBRH:" << branchesSeen << "\nLF:" << lines.size() << "\nLH:" << linesSeen
        << "\nend_of_record\n";
  }
}

}  // namespace tarn::tool

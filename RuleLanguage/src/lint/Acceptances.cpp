#include "lint/Acceptances.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/StringUtilities.h>

#include "diagnostics/NearMatch.h"
#include "yaml/MapReader.h"

namespace tarn::rules {

namespace {

/// Whether the range of a node holds a position. The end counts, because something may be missing there.
bool holds(Item const& item, Diagnostic const& diagnostic) {
  if (!item) return false;
  auto const range = item.node->range();
  std::pair const place(diagnostic.line, diagnostic.column);
  return std::pair(range.begin.line, range.begin.column) <= place &&
         place <= std::pair(range.end.line, range.end.column);
}

void reportUnknown(Item const& item, DiagnosticList& diagnostics) {
  std::string const& name = item.node->value;
  if (findCode(name) != nullptr) {
    diagnostics.add(Code::UnknownCode, *item.source, item.node->range(),
                    inQuotes(name) + " cannot be accepted; correct what it reports");
    return;
  }
  std::vector<std::string> names;
  for (auto const& code : diagnosticCodes()) {
    if (code.isOfLint) names.emplace_back(code.name);
  }
  auto const near = StringUtilities::nearMatch(name, names);
  auto& diagnostic =
      diagnostics.add(Code::UnknownCode, *item.source, item.node->range(),
                      "there is no code " + inQuotes(std::string_view(name).substr(0, 60)) +
                          (near.empty() ? "; write a code of a warning or note of lint" : didYouMean(near)));
  if (!near.empty()) MapReader::fixText(diagnostic, item, near);
}

bool canBeAccepted(std::string_view name) {
  auto const* code = findCode(name);
  return code != nullptr && code->isOfLint && name != infoOf(Code::UnknownCode).name &&
         name != infoOf(Code::NeedlessAcceptance).name;
}

}  // namespace

std::size_t applyAcceptances(RuleIndex const& rules, DiagnosticList& diagnostics) {
  struct Scope {
    Acceptance const* acceptance;
    bool isNeeded = false;
  };
  std::map<std::pair<std::string_view, std::string_view>, std::vector<Scope>> byCode;  // code and file
  std::vector<Item> unknown;
  for (auto const& acceptance : rules.acceptances()) {
    std::string_view const code = acceptance.code.node->value;
    if (canBeAccepted(code)) {
      byCode[{code, acceptance.scope.source->name()}].push_back({&acceptance});
    } else {
      unknown.push_back(acceptance.code);
    }
  }
  std::size_t const accepted = diagnostics.removeIf([&](Diagnostic const& one) {
    auto const scopes = byCode.find({one.code, one.source});
    if (scopes == byCode.end()) return false;
    bool isAccepted = false;
    for (auto& scope : scopes->second) {
      auto const& [code, name, map] = *scope.acceptance;
      if (name && !holds(name, one) && !holds(map, one)) continue;
      scope.isNeeded = true;
      isAccepted = true;
    }
    return isAccepted;
  });
  for (auto const& item : unknown) reportUnknown(item, diagnostics);
  for (auto const& [key, scopes] : byCode) {
    for (auto const& scope : scopes) {
      if (scope.isNeeded) continue;
      auto const& item = scope.acceptance->code;
      diagnostics.add(Code::NeedlessAcceptance, *item.source, item.node->range(),
                      "lint finds no " + inQuotes(item.node->value) + " here; remove this acceptance");
    }
  }
  return accepted;
}

}  // namespace tarn::rules

#include "why/Asked.h"

#include <algorithm>
#include <span>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/session/Item.h>

#include "cli/Counted.h"
#include "edit/ResultText.h"
#include "edit/ShownText.h"

namespace tarn::tool {

using session::Fact;

Asked dividedAtEquals(std::string_view text) {
  std::size_t const equals = text.find('=');
  Asked asked{StringUtilities::trimmed(text.substr(0, equals)), std::nullopt};
  if (equals != std::string_view::npos) asked.value = StringUtilities::trimmed(text.substr(equals + 1));
  return asked;
}

std::string goalText(session::Goal const& goal) {
  std::string const item = goal.item.text();
  return goal.value ? item + '=' + *goal.value : item;
}

session::Proof proofOf(session::Session const& session, session::Goal const& goal, std::size_t depth) {
  session::WhyOptions options;
  options.depth = depth;
  if (!goal.item.isParam()) options.question = session::Question::Presence;
  if (goal.value) {
    auto const param = session.lookParam(goal.item.path, *goal.item.name);
    bool const isItsValue = param && param->value == goal.value;
    options.question = isItsValue ? session::Question::Value : session::Question::Allowed;
    options.value = *goal.value;
  }
  return session.why(goal.item, options);
}

ValueRemarks remarksOn(session::Session& session, session::Goal const& goal, session::Proof const& proof) {
  Fact const fact = proof.answer().fact;
  if (!goal.value || (fact != Fact::ValueAllowed && fact != Fact::AnyValueAllowed)) return {};
  Edit const edit = Edit::setParam(goal.item.path, *goal.item.name, *goal.value);
  session::TryResult tried = session.tryWithFindings(std::span(&edit, 1));
  ValueRemarks remarks;
  if (!tried.result.refused) {
    remarks.findings = std::move(tried.findingsGained);
    return remarks;
  }
  using session::RefusalCode;
  RefusalCode const code = tried.result.refused->code;
  bool const isOfValue = code == RefusalCode::WrongType || code == RefusalCode::UnknownUnits ||
                         code == RefusalCode::ValueNotAllowed || code == RefusalCode::FixedByTheRules;
  if (isOfValue) remarks.refused = std::move(tried.result.refused);
  return remarks;
}

std::string whyText(session::Proof const& proof, ValueRemarks const& remarks, std::size_t maxLines) {
  if (remarks.refused) {
    std::string const text = harmless(remarks.refused->sentence) + '\n';
    return remarks.refused->possible.empty() ? text : text + "  " + possibleText(*remarks.refused) + '\n';
  }
  if (proof.answer().fact != Fact::AnyValueAllowed && remarks.findings.empty()) return textOf(proof, maxLines);
  std::string text = '\'' + shortened(proof.answer().value) + "' is allowed for " + shortened(proof.item.text());
  if (remarks.findings.empty()) return text + '\n';
  text += ", but brings " + counted(remarks.findings.size(), "finding") + ":\n";
  for (session::Finding const& finding : remarks.findings) {
    text += "  " + std::string(session::severityName(finding.severity)) + ": " + harmless(finding.message) + '\n';
  }
  return text;
}

bool isWorthHow(session::Proof const& proof) {
  switch (proof.answer().fact) {
    case Fact::ObjectAbsent:
    case Fact::NotLive:
    case Fact::NotAvailable:
    case Fact::NoAllowedValue:
    case Fact::NotAskedFor:
    case Fact::NeverSwitchedOn:
    case Fact::SwitchedOff:
    case Fact::ValueRefused:
      return true;
    case Fact::NotInList:
    case Fact::CheckFails:
    case Fact::OutsideSubset: {
      // A list that is written out in the rules is always the same.
      auto const& rules = proof.answer().rules;
      return std::any_of(rules.begin(), rules.end(), [](auto const& rule) { return !rule.reads.empty(); });
    }
    default:
      return false;
  }
}

std::string howText(session::HowResult const& result,
                    std::function<std::vector<std::string>(std::vector<Edit> const&)> const& commands) {
  std::string text = textOf(result);
  char const* before = "type:\n";
  for (session::Way const& way : result.ways) {
    std::vector<std::string> const lines = commands(way.edits);
    if (lines.empty()) continue;
    text += before;
    for (std::string const& line : lines) text += "  " + line + '\n';
    before = "or:\n";
  }
  return text;
}

std::string firstLine(std::string const& text) {
  std::string line = text.substr(0, text.find('\n'));
  if (line.ends_with(':')) line.pop_back();
  return line;
}

}  // namespace tarn::tool

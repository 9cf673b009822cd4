#include "review/ReviewJudge.h"

#include <utility>

#include <tarn/PathUtils.h>

#include "review/CheckJudge.h"
#include "review/CountJudge.h"
#include "review/HistoryJudge.h"
#include "review/PatternJudge.h"
#include "review/UnitJudge.h"
#include "review/ValueJudge.h"

namespace tarn::session {

std::vector<std::unique_ptr<ReviewJudge>> makeReviewJudges() {
  std::vector<std::unique_ptr<ReviewJudge>> judges;
  judges.push_back(std::make_unique<ValueJudge>());
  judges.push_back(std::make_unique<UnitJudge>());
  judges.push_back(std::make_unique<PatternJudge>());
  judges.push_back(std::make_unique<CountJudge>());
  judges.push_back(std::make_unique<CheckJudge>());
  judges.push_back(std::make_unique<HistoryJudge>());
  return judges;
}

TextPlace placeOfParamRule(PhysicsData const& rules, std::string_view path, std::string_view name) {
  ObjDependDef const* const object = rules.getObjDependDef(PathUtils::typePathOf(path), false);
  ParamAvail const* const entry = object ? object->findParam(name) : nullptr;
  return entry ? entry->rulePlace : TextPlace();
}

TextPlace placeOfChildRule(PhysicsData const& rules, std::string_view path, std::string_view type) {
  ObjDependDef const* const object = rules.getObjDependDef(PathUtils::typePathOf(path), false);
  ChildAvail const* const entry = object ? object->findChild(type) : nullptr;
  return entry ? entry->rulePlace : TextPlace();
}

std::string shown(std::string_view value) {
  constexpr std::size_t longest = 100;
  if (value.size() <= longest) return '"' + std::string(value) + '"';
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0u) == 0x80u) --end;  // do not split a character
  return '"' + std::string(value.substr(0, end)) + "...\"";
}

Finding makeFinding(FindingCode code, std::string path, std::string message) {
  Finding finding;
  finding.code = code;
  finding.severity = describe(code).severity;
  finding.path = std::move(path);
  finding.message = std::move(message);
  return finding;
}

}  // namespace tarn::session

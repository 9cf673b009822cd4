#include "review/CountJudge.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "review/JudgedItems.h"

namespace tarn::session {

namespace {

std::size_t numberOfChildren(ChildAvailInfo const& info, ModelTDF const& model) {
  if (info.isSingleton()) return model.hasObject(info.getObjPath() + '/' + info.getType()) ? 1 : 0;
  std::vector<std::string> paths;
  (void)model.getChildObjectPathsByType(info.getObjPath(), info.getType(), paths);
  return paths.size();
}

std::string objects(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " object" : " objects");
}

Finding& report(FindingCode code, JudgedChildren const& children, std::string message, TextPlace const& rule,
                ReviewContext& context) {
  Finding finding = makeFinding(code, children.info.getObjPath(), std::move(message));
  finding.type = children.info.getType();
  finding.rule = rule.isKnown() ? rule : children.entry.rulePlace;
  return context.findings.emplace_back(std::move(finding));
}

// The whole number of a count. Empty when there is no limit. A computed number that is not whole is rounded to the
// limit that it sets: at least 1.5 objects are 2.
std::optional<std::size_t> limit(TextExpression const* expression, bool isMinimum, JudgedChildren const& children,
                                 ReviewContext& context) {
  if (expression == nullptr) return std::nullopt;
  std::string const text = expression->evaluate(TDFContext(children.info.getObjPath()), &context.evaluation);
  if (text.empty()) return std::nullopt;
  auto const quantity = TDFParam::asQuantity(text);
  if (!quantity || quantity->number < 0) {
    (void)report(FindingCode::InvalidCount, children,
                 std::string("The rules give ") + (isMinimum ? "the minimum" : "the maximum") +
                     " number of objects of the type \"" + children.info.getType() + "\" in the object \"" +
                     children.info.getObjPath() + "\" as " + shown(text) + ", which is not a number from 0 on.",
                 expression->rulePlace(), context);
    return std::nullopt;
  }
  constexpr double largest = 1e15;  // more than any model holds, and exact
  double const number = isMinimum ? std::ceil(quantity->number) : std::floor(quantity->number);
  return static_cast<std::size_t>(std::min(number, largest));
}

}  // namespace

void CountJudge::judgeChildren(JudgedChildren const& children, ReviewContext& context) {
  ChildAvail const& entry = children.entry;
  if ((!entry.minimumCount && !entry.maximumCount) || !children.info.isAvailable()) return;
  auto const minimum = limit(entry.minimumCount.get(), true, children, context);
  auto const maximum = limit(entry.maximumCount.get(), false, children, context);
  if (!minimum && !maximum) return;

  std::size_t const count = numberOfChildren(children.info, context.model);
  bool const tooFew = minimum && count < *minimum;
  bool const tooMany = !tooFew && maximum && count > *maximum;
  if (!tooFew && !tooMany) return;
  std::string message = "The object \"" + children.info.getObjPath() + "\" has " + objects(count) + " of the type \"" +
                        children.info.getType() + "\", but ";
  message += tooFew ? "needs at least " + std::to_string(*minimum) : "may have at most " + std::to_string(*maximum);
  auto const& rule = tooFew ? entry.minimumCount->rulePlace() : entry.maximumCount->rulePlace();
  Finding& finding =
      report(tooFew ? FindingCode::TooFewObjects : FindingCode::TooManyObjects, children, message + '.', rule, context);
  finding.expected.minimumCount = minimum;
  finding.expected.maximumCount = maximum;
}

}  // namespace tarn::session

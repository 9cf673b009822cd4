#include "review/HistoryJudge.h"

#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>

namespace tarn::session {

namespace {

void reportObject(std::string const& path, std::string type, std::string const& message, TextPlace const& rule,
                  ReviewContext& context) {
  Finding finding = makeFinding(FindingCode::DeprecatedObject, path,
                                "The object \"" + path + "\" should no longer be used. " + message);
  finding.type = std::move(type);
  finding.rule = rule;
  context.findings.push_back(std::move(finding));
}

}  // namespace

void HistoryJudge::judgeParam(JudgedParam const& param, ReviewContext& context) {
  std::string const& message = param.entry.history.deprecated;
  if (message.empty()) return;
  std::string const& path = param.info.getObjPath();
  Finding finding = makeFinding(
      FindingCode::DeprecatedParameter, path,
      "The parameter \"" + param.entry.name + "\" of the object \"" + path + "\" should no longer be used. " + message);
  finding.name = param.entry.name;
  finding.value = param.value;
  finding.rule = param.entry.rulePlace;
  context.findings.push_back(std::move(finding));
}

// The history of other types is in the child entries of their parents.
void HistoryJudge::judgeObject(JudgedObject const& object, ReviewContext& context) {
  std::string const& message = object.rules.history.deprecated;
  if (message.empty() || !PathUtils::parentOf(object.path).empty()) return;
  reportObject(object.path, object.rules.typePath().substr(1), message, object.rules.rulePlace, context);
}

void HistoryJudge::judgeChildren(JudgedChildren const& children, ReviewContext& context) {
  std::string const& message = children.entry.history.deprecated;
  if (message.empty()) return;
  std::vector<std::string> paths;
  if (children.entry.singleton) {
    paths.push_back(children.info.getObjPath() + '/' + children.entry.type);
    if (!context.model.hasObject(paths.front())) return;
  } else {
    (void)context.model.getChildObjectPathsByType(children.info.getObjPath(), children.entry.type, paths);
  }
  for (std::string const& path : paths) {
    reportObject(path, children.entry.type, message, children.entry.rulePlace, context);
  }
}

}  // namespace tarn::session

// The walk that all judges share. The rules of each open object are looked up once, so a judge need not search for the
// entry that an item belongs to.
#include "review/ReviewWalk.h"

#include <utility>

#include <tarn/ObjBeginInfo.h>
#include <tarn/PathUtils.h>

namespace tarn::session {

ReviewWalk::ReviewWalk(ReviewContext& context, std::vector<std::unique_ptr<ReviewJudge>> judges)
    : DependencyAnalyser(&context.rules), context_(context), judges_(std::move(judges)) {}

void ReviewWalk::from(std::string const& root) {
  open_.clear();
  analyse(root, &context_.evaluation);
}

ReviewWalk::HandlerStatus ReviewWalk::onBeginObject(ObjBeginInfo const* info) {
  limitParams(ParamScope::Present);
  open_.push_back({context_.rules.getObjDependDef(PathUtils::typePathOf(info->getObjPath()), false), false});
  return Continue;
}

ReviewWalk::HandlerStatus ReviewWalk::onBeginParam(std::string const& /*objPath*/, std::string const& /*name*/) {
  return Continue;
}

ReviewWalk::HandlerStatus ReviewWalk::onParamCheck(ParamAvailInfo const* info) {
  std::string const& path = info->getObjPath();
  std::string const& name = info->getName();
  if (!context_.model.hasParameter(path, name)) return Continue;
  ParamAvail const* const entry = open_.back().rules->findParam(name);
  if (!entry || !entry->valueDef()) return Continue;
  JudgedParam const param = {*info, *entry, *entry->valueDef(), context_.model.getParameterValue(path, name)};
  for (auto const& judge : judges_) judge->judgeParam(param, context_);
  return Continue;
}

ReviewWalk::HandlerStatus ReviewWalk::onChildCheck(ChildAvailInfo const* info) {
  judgeOpenObject(info->getObjPath());
  ChildAvail const* const entry = open_.back().rules->findChild(info->getType());
  if (!entry) return Continue;
  JudgedChildren const children = {*info, *entry};
  for (auto const& judge : judges_) judge->judgeChildren(children, context_);
  return Continue;
}

ReviewWalk::HandlerStatus ReviewWalk::onEndObject(std::string const& objPath, bool /*required*/) {
  judgeOpenObject(objPath);
  open_.pop_back();
  return Continue;
}

// The walk has no hook between the parameters and the children of an object. So the first child entry, or the end of
// the object, does it.
void ReviewWalk::judgeOpenObject(std::string const& path) {
  OpenObject& object = open_.back();
  if (object.isJudged || !object.rules) return;
  object.isJudged = true;
  JudgedObject const judged = {path, *object.rules};
  for (auto const& judge : judges_) judge->judgeObject(judged, context_);
}

}  // namespace tarn::session

#pragma once

#include <string>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/EvalContext.h>

#include "failures/Injection.h"

namespace tarn::test {

/// A walk that records the arguments of its hooks, and in which each hook may fail.
class RecordingWalk final : public DependencyAnalyser {
 public:
  using DependencyAnalyser::DependencyAnalyser;

  std::vector<std::string> const& walk(std::string const& root, ModelTDF const& model) {
    events_.clear();
    EvalContext context(&model);
    analyse(root, &context);
    return events_;
  }

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const* info) override {
    mayFail();
    events_.push_back("begin " + info->getObjPath() + (info->isRequired() ? " required" : ""));
    return Continue;
  }
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override {
    mayFail();
    events_.push_back("parameter " + objPath + "/" + name);
    return Continue;
  }
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
    mayFail();
    std::string event = "check " + info->getName() + (info->isAvailable() ? " available" : " unavailable");
    event += " default " + info->getDefault() + " bounds " + info->getBounds().first + ".." + info->getBounds().second;
    for (std::string const& value : info->getAllowedValues().allowedValues) event += " [" + value + "]";
    event += " override " + info->getValueOverride().second;
    events_.push_back(event);
    return Continue;
  }
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override {
    mayFail();
    std::string event = "children " + info->getType() + (info->isAvailable() ? " available" : " unavailable");
    for (auto [name, end] = info->getAllowedNames(); name != end; ++name) event += " [" + *name + "]";
    for (auto [name, end] = info->getDefaultNames(); name != end; ++name) event += " (" + *name + ")";
    events_.push_back(event);
    return Continue;
  }
  HandlerStatus onEndObject(std::string const& path, bool /*required*/) override {
    mayFail();
    events_.push_back("end " + path);
    return Continue;
  }

  std::vector<std::string> events_;
};

}  // namespace tarn::test

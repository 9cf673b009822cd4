#pragma once

#include <string>

#include <tarn/DependencyAnalyser.h>

namespace tarn::test {

/// A walk that visits everything and does nothing. A test overrides the hooks that it looks at.
///
///     class ParamNames final : public ContinuingWalk {
///      public:
///       using ContinuingWalk::ContinuingWalk;
///       std::vector<std::string> names;
///
///      private:
///       HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
///         names.push_back(info->getName());
///         return Continue;
///       }
///     };
class ContinuingWalk : public DependencyAnalyser {
 public:
  using DependencyAnalyser::DependencyAnalyser;

 protected:
  ~ContinuingWalk() = default;

  HandlerStatus onBeginObject(ObjBeginInfo const* /*info*/) override { return Continue; }
  HandlerStatus onBeginParam(std::string const& /*objPath*/, std::string const& /*name*/) override { return Continue; }
  HandlerStatus onParamCheck(ParamAvailInfo const* /*info*/) override { return Continue; }
  HandlerStatus onChildCheck(ChildAvailInfo const* /*info*/) override { return Continue; }
  HandlerStatus onEndObject(std::string const& /*objPath*/, bool /*required*/) override { return Continue; }
};

}  // namespace tarn::test

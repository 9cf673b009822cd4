#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/DependencyAnalyser.h>

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Walks a model along the rules and shows what it meets to judges.
class ReviewWalk final : private DependencyAnalyser {
 public:
  /// `context` must outlive the walk.
  ReviewWalk(ReviewContext& context, std::vector<std::unique_ptr<ReviewJudge>> judges);

  /// Walks from the object at `root` downwards. Throws what a rule throws; start no further walk then.
  void from(std::string const& root);

 private:
  struct OpenObject {
    ObjDependDef const* rules;  // null when there are none
    bool isJudged;              // `judgeObject` was called
  };

  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  void judgeOpenObject(std::string const& path);

  ReviewContext& context_;
  std::vector<std::unique_ptr<ReviewJudge>> judges_;
  std::vector<OpenObject> open_;
};

}  // namespace tarn::session

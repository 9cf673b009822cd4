#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ChildAvailInfo.h>
#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ParamAvailInfo.h>
#include <tarn/PhysicsData.h>
#include <tarn/session/Finding.h>

namespace tarn::session {

/// The things that a judge reads, and the list where it reports. All of it is valid for one walk.
struct ReviewContext {
  PhysicsData const& rules;
  /// The model that the rules see: objects that the rules look at, and no parameters without a value.
  ModelTDF const& model;
  EvalContext& evaluation;
  /// A judge appends to it.
  std::vector<Finding>& findings;
};

/// A parameter that the model holds and that the rules know, available or not.
struct JudgedParam {
  ParamAvailInfo const& info;
  ParamAvail const& entry;
  ParamValueDef const& declaration;
  /// As the model gives it; white space at the ends was dropped when the model was read.
  std::string const& value;
};

/// An object that the walk has entered.
struct JudgedObject {
  std::string const& path;
  ObjDependDef const& rules;
};

/// A child entry of the rules of an object that the walk has entered.
struct JudgedChildren {
  ChildAvailInfo const& info;
  ChildAvail const& entry;
};

/// One question that a review asks while it walks the model along the rules. The walk is shared by all judges. To add a
/// judge, derive from this class and add it to `makeReviewJudges`.
///
/// Order of the calls for an object: `judgeParam` for each parameter that it holds, in the order of the rules; then
/// `judgeObject`; then for each child entry `judgeChildren`, directly followed by the calls for those children. Objects
/// that are not available are not entered. Each run makes its own judges, so a judge may keep what it learns on the
/// way. All references are valid until the call returns.
class ReviewJudge {
 public:
  virtual ~ReviewJudge() = default;
  virtual void judgeParam(JudgedParam const& /*param*/, ReviewContext& /*context*/) {}
  virtual void judgeObject(JudgedObject const& /*object*/, ReviewContext& /*context*/) {}
  virtual void judgeChildren(JudgedChildren const& /*children*/, ReviewContext& /*context*/) {}
};

/// All judges, in the order in which each item is shown to them.
[[nodiscard]] std::vector<std::unique_ptr<ReviewJudge>> makeReviewJudges();

/// Where the rules write the entry of a parameter, or of a child type, of the object at `path`. Not known when there is
/// no such entry.
[[nodiscard]] TextPlace placeOfParamRule(PhysicsData const& rules, std::string_view path, std::string_view name);
[[nodiscard]] TextPlace placeOfChildRule(PhysicsData const& rules, std::string_view path, std::string_view type);

/// A value between double quotes for a sentence, shortened when it is long.
[[nodiscard]] std::string shown(std::string_view value);

/// A finding of this code and its usual severity.
[[nodiscard]] Finding makeFinding(FindingCode code, std::string path, std::string message);

}  // namespace tarn::session

#include "lint/ConstantExpression.h"

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>

namespace tarn::rules {

namespace {

/// A model in which nothing exists, for expressions that read nothing.
class EmptyModel final : public ModelTDF {
 public:
  bool hasObject(std::string const& /*path*/) const override { return false; }
  bool hasParameter(std::string const& /*paramPath*/) const override { return false; }
  bool hasParameter(std::string const& /*objPath*/, std::string const& /*name*/) const override { return false; }
  std::string const& getObjectName(std::string const& /*path*/) const override { return empty_; }
  std::string const& getObjectType(std::string const& /*path*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*paramPath*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*objPath*/, std::string const& /*name*/) const override {
    return empty_;
  }
  bool getParamValueAsList(std::string const& /*paramPath*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParamValueAsList(std::string const& /*objPath*/, std::string const& /*name*/,
                           std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParameterNames(std::string const& /*path*/, std::vector<std::string>& /*out*/) const override {
    return false;
  }
  bool getChildObjectPaths(std::string const& /*path*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectNamesByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectPathsByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }

 private:
  std::string empty_;
};

/// Calls `question` with a frame in which nothing can be read.
template <typename Question>
auto inNothing(Question question) {
  EmptyModel const model;
  TDFContext const root{std::string{}};
  EvalContext evalContext(&model);
  return question(Frame{model, root, &evalContext});
}

}  // namespace

bool readsNothing(Expression const& expression) {
  RuleReads reads;
  expression.collectReads(reads, PathPattern());
  return !reads.readsModel() && !reads.contextIdentity;
}

bool constantTruth(Expression const& expression) {
  return inNothing([&](Frame const& frame) { return expression.truth(frame); });
}

double constantNumber(Expression const& expression) {
  return inNothing([&](Frame const& frame) { return expression.number(frame); });
}

}  // namespace tarn::rules

#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/ModelTDF.h>
#include <tarn/StringUtilities.h>

namespace tarn::rules {

/// A model of a few parameters and no objects, for the evaluation of single expressions.
class ValueModel final : public ModelTDF {
 public:
  struct Parameter {
    std::string path;
    std::string name;
    std::string value;
    bool isThere = true;
  };
  ValueModel() = default;
  explicit ValueModel(std::vector<Parameter> parameters) : parameters_(std::move(parameters)) {}
  /// To change values between two evaluations.
  [[nodiscard]] std::vector<Parameter>& parameters() noexcept { return parameters_; }

  bool hasObject(std::string const& /*path*/) const override { return false; }
  bool hasParameter(std::string const& /*paramPath*/) const override { return false; }
  bool hasParameter(std::string const& objPath, std::string const& name) const override {
    return find(objPath, name) != nullptr;
  }
  std::string const& getObjectName(std::string const& /*path*/) const override { return empty_; }
  std::string const& getObjectType(std::string const& /*path*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*paramPath*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& objPath, std::string const& name) const override {
    auto const* found = find(objPath, name);
    return found != nullptr ? found->value : empty_;
  }
  bool getParamValueAsList(std::string const& /*paramPath*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParamValueAsList(std::string const& objPath, std::string const& name,
                           std::vector<std::string>& out) const override {
    out = StringUtilities::splitValue(getParameterValue(objPath, name), ',');
    return !out.empty();
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
  [[nodiscard]] Parameter const* find(std::string const& path, std::string const& name) const {
    for (auto const& one : parameters_) {
      if (one.isThere && one.name == name && one.path == path) return &one;
    }
    return nullptr;
  }

  std::vector<Parameter> parameters_;
  std::string empty_;
};

}  // namespace tarn::rules

#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include <tarn/ChildAvailInfo.h>
#include <tarn/ObjBeginInfo.h>
#include <tarn/ObjDependency.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/ParamAvailInfo.h>
#include <tarn/TDFParam.h>

namespace tarn {

/// Returns whether the text can be a type or a name in a path.
inline bool isPlainWord(std::string_view text) noexcept {
  return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) { return c == '/' || c == ':'; });
}

// The records that hooks get. They are thin adapters of the cursor: a question goes to the rules when it is asked. So a
// hook pays only for its questions and sees the model as it has changed it.

class ObjBeginInfoAdapter final : public ObjBeginInfo {
 public:
  ObjBeginInfoAdapter(std::string const& path, ObjDependency const& dep, bool required, bool coupled)
      : path_(path), dep_(dep), required_(required), coupled_(coupled) {}

  std::string const& getObjPath() const override { return path_; }
  ObjectHandle getObject() const override { return dep_.getObject(); }
  bool isValid() const override { return dep_.isValid(); }
  bool isRequired() const override { return required_; }
  bool isCoupled() const override { return coupled_; }

 private:
  std::string const& path_;
  ObjDependency const& dep_;
  bool required_;
  bool coupled_;
};

class ParamAvailInfoAdapter final : public ParamAvailInfo {
 public:
  ParamAvailInfoAdapter(std::string const& path, bool available, ObjDependency const& dep,
                        ParamAllowedValues const& allowed)
      : path_(path),
        available_(available),
        dep_(dep),
        allowed_(allowed),
        completeListRequired_(dep.isCompleteListRequired()) {}

  std::string const& getName() const override { return dep_.getParamName(); }
  std::string const& getObjPath() const override { return path_; }
  ObjectHandle getObject() const override { return dep_.getObject(); }
  TDFParam::Type getType() const override { return dep_.getParamType(); }
  bool isListType() const override { return TDFParam::isListType(getType()); }
  bool isCompleteListRequired() const override { return completeListRequired_; }
  bool isAvailable() const override { return available_; }
  bool isRequired() const override { return dep_.isParamRequired(); }
  bool hasValidationRelaxed() const override { return dep_.hasParamValidationRelaxed(); }
  bool hasDynamicBounds() const override { return dep_.hasParamDynamicBounds(); }
  std::pair<std::string, std::string> const& getBounds() const override { return dep_.getParamBounds(); }
  bool hasDefault() const override { return dep_.hasParamDefault(); }
  std::string const& getDefault(ParamAllowedValues const& allowed) const override {
    return dep_.getParamDefault(allowed);
  }
  std::string const& getDefault() const override { return dep_.getParamDefault(); }
  bool hasValueOverride() const override { return dep_.hasParamValueOverride(); }
  std::pair<bool, std::string> getValueOverride(ParamAllowedValues const& allowed) const override {
    return dep_.getParamValueOverride(allowed);
  }
  std::pair<bool, std::string> getValueOverride() const override { return dep_.getParamValueOverride(); }
  ParamAllowedValues const& getAllowedValues() const override { return allowed_; }

 private:
  std::string const& path_;
  bool available_;
  ObjDependency const& dep_;
  ParamAllowedValues const& allowed_;
  bool completeListRequired_;
};

class ChildAvailInfoAdapter final : public ChildAvailInfo {
 public:
  ChildAvailInfoAdapter(std::string const& path, bool available, ObjDependency const& dep,
                        ObjDependency::AllowedNameData const& names)
      : path_(path), available_(available), dep_(dep), names_(names) {}

  std::string const& getType() const override { return dep_.getChildType(); }
  std::string const& getObjPath() const override { return path_; }
  ObjectHandle getObject() const override { return dep_.getObject(); }
  bool isAvailable() const override { return available_; }
  bool isRequired() const override { return dep_.isChildRequired(); }
  bool isSingleton() const override { return dep_.isChildSingleton(); }
  bool hasValidationRelaxed() const override { return dep_.hasChildValidationRelaxed(); }
  bool isCoupled() const override { return dep_.isChildCoupled(); }
  bool hasAllowedNames() const override { return !isSingleton() && names_.hasAllowedNames; }
  NameRange getAllowedNames() const override { return {names_.allowedNames.begin(), names_.allowedNames.end()}; }
  NameRange getDefaultNames() const override { return {names_.defaultNames.begin(), names_.defaultNames.end()}; }

 private:
  std::string const& path_;
  bool available_;
  ObjDependency const& dep_;
  ObjDependency::AllowedNameData const& names_;
};

}  // namespace tarn

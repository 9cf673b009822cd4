#pragma once

#include <string>
#include <utility>

#include <tarn/ParamAvailInfo.h>

namespace tarn::test {

/// A parameter record that says what a test states, for classes that are handed one outside of a walk. Counts how often
/// its bounds are asked for.
class StatedParam final : public ParamAvailInfo {
 public:
  explicit StatedParam(TDFParam::Type type) : type_(type) {}

  StatedParam& dynamicBounds(std::string lower, std::string upper) {
    hasDynamicBounds_ = true;
    return fixedBounds(std::move(lower), std::move(upper));
  }
  StatedParam& fixedBounds(std::string lower, std::string upper) {
    bounds_ = {std::move(lower), std::move(upper)};
    return *this;
  }
  [[nodiscard]] int boundsAsked() const { return boundsAsked_; }

  [[nodiscard]] std::string const& getName() const override { return none_; }
  [[nodiscard]] std::string const& getObjPath() const override { return none_; }
  [[nodiscard]] TDFParam::Type getType() const override { return type_; }
  [[nodiscard]] bool isListType() const override { return TDFParam::isListType(type_); }
  [[nodiscard]] bool isCompleteListRequired() const override { return false; }
  [[nodiscard]] bool isAvailable() const override { return true; }
  [[nodiscard]] bool isRequired() const override { return false; }
  [[nodiscard]] bool hasValidationRelaxed() const override { return false; }
  [[nodiscard]] bool hasDynamicBounds() const override { return hasDynamicBounds_; }
  [[nodiscard]] std::pair<std::string, std::string> const& getBounds() const override {
    ++boundsAsked_;
    return bounds_;
  }
  [[nodiscard]] bool hasDefault() const override { return false; }
  [[nodiscard]] std::string const& getDefault(ParamAllowedValues const&) const override { return none_; }
  [[nodiscard]] std::string const& getDefault() const override { return none_; }
  [[nodiscard]] bool hasValueOverride() const override { return false; }
  [[nodiscard]] std::pair<bool, std::string> getValueOverride(ParamAllowedValues const&) const override { return {}; }
  [[nodiscard]] std::pair<bool, std::string> getValueOverride() const override { return {}; }
  [[nodiscard]] ParamAllowedValues const& getAllowedValues() const override { return noAllowedValues_; }

 private:
  TDFParam::Type type_;
  bool hasDynamicBounds_ = false;
  std::pair<std::string, std::string> bounds_;
  mutable int boundsAsked_ = 0;
  std::string none_;
  ParamAllowedValues noAllowedValues_;
};

}  // namespace tarn::test

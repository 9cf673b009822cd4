#pragma once

#include <string>
#include <utility>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/TDFParam.h>

namespace tarn {

/// What `DependencyAnalyser::onParamCheck` is told about one parameter entry of the rules. It says what the rules say;
/// whether the model holds the parameter, and with which value, is for the hook to ask of the model.
///
/// The record lives as long as the hook runs, and so does everything it refers to; copy what is needed for longer.
///
/// What is evaluated when:
///
/// | Asked                             | Evaluated                                                            |
/// |-----------------------------------|----------------------------------------------------------------------|
/// | `isAvailable`, `getAllowedValues` | once, before the hook; of an unavailable parameter only as far as it |
/// |                                   | took to see that                                                     |
/// | `getBounds`                       | at the first question, then kept                                     |
/// | `getDefault`, both forms          | at the first question, then kept: the form asked first decides       |
/// | `getValueOverride`, both forms    | at every question                                                    |
/// | `hasDynamicBounds`                | nothing, but the bounds are asked at every question what they read   |
/// | all others                        | nothing                                                              |
///
/// What is evaluated during the hook reads the model as it stands at that moment, with what the hook has done to it.
/// An unavailable parameter answers every question as well, so a hook may learn what it would get. Only a parameter
/// entry without a value rule, which no well-formed rules have, makes questions about values throw
/// `std::runtime_error`; those that evaluate pass on what the rule throws.
class TARN_EXPORT ParamAvailInfo {
 public:
  ParamAvailInfo() = default;
  ParamAvailInfo(ParamAvailInfo const&) = default;
  ParamAvailInfo& operator=(ParamAvailInfo const&) = default;

  [[nodiscard]] virtual std::string const& getName() const = 0;
  /// The object that the parameter belongs to.
  [[nodiscard]] virtual std::string const& getObjPath() const = 0;
  [[nodiscard]] virtual TDFParam::Type getType() const = 0;
  [[nodiscard]] virtual bool isListType() const = 0;
  /// A list value must name all allowed values.
  [[nodiscard]] virtual bool isCompleteListRequired() const = 0;

  /// The entry is live under the context rule value in force, its condition holds, and when it has allowed values there
  /// is at least one of them (or the rules say that none is fine).
  [[nodiscard]] virtual bool isAvailable() const = 0;
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool hasValidationRelaxed() const = 0;

  /// The bounds depend on the model.
  [[nodiscard]] virtual bool hasDynamicBounds() const = 0;
  /// Lower and upper bound as value texts; "" where there is none.
  [[nodiscard]] virtual std::pair<std::string, std::string> const& getBounds() const = 0;

  [[nodiscard]] virtual bool hasDefault() const = 0;
  /// The default in the light of `allowed`, and the default by itself. The two share one memory: after either has been
  /// asked, both return that text, whatever `allowed` holds then. "" when there is no default.
  [[nodiscard]] virtual std::string const& getDefault(ParamAllowedValues const& allowed) const = 0;
  [[nodiscard]] virtual std::string const& getDefault() const = 0;

  [[nodiscard]] virtual bool hasValueOverride() const = 0;
  /// Whether an override is in force, and its value; in the light of `allowed`, and by itself.
  [[nodiscard]] virtual std::pair<bool, std::string> getValueOverride(ParamAllowedValues const& allowed) const = 0;
  [[nodiscard]] virtual std::pair<bool, std::string> getValueOverride() const = 0;

  /// The allowed values now. `hasAllowedValues` is clear when the parameter may take any text, and when it was found
  /// unavailable before its allowed values were looked at. A parameter that is unavailable because its list came out
  /// empty has the evaluated, empty record.
  [[nodiscard]] virtual ParamAllowedValues const& getAllowedValues() const = 0;

 protected:
  ~ParamAvailInfo() = default;
};

}  // namespace tarn

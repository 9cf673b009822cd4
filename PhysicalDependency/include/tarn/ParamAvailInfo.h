#pragma once

#include <string>
#include <utility>

#include <tarn/Export.h>
#include <tarn/ObjectReader.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/TDFParam.h>

namespace tarn {

/// The record that `DependencyAnalyser::onParamCheck` gets about one parameter entry of the rules. The hook itself asks
/// the model whether it holds the parameter, and with which value.
///
/// The record and everything it refers to are valid until the hook returns. Copy what is needed for longer.
///
/// Times of evaluation:
///
/// | Operation                         | Evaluated                                                            |
/// |-----------------------------------|----------------------------------------------------------------------|
/// | `isAvailable`, `getAllowedValues` | once, before the hook; for an unavailable parameter only as far as   |
/// |                                   | was necessary to find that out                                       |
/// | `getBounds`                       | at the first call, then kept                                         |
/// | `getDefault`, both forms          | at the first call, then kept: the form that is called first decides  |
/// | `getValueOverride`, both forms    | at every call                                                        |
/// | `hasDynamicBounds`                | nothing, but every call asks the bounds what they read               |
/// | all others                        | nothing                                                              |
///
/// An evaluation during the hook reads the model as it is at that moment, with the changes that the hook has made. An
/// unavailable parameter answers every call too, so a hook can find out what it would get. Calls about values throw
/// `std::runtime_error` only for a parameter entry without a value rule, which no well-formed rules have. Exceptions of
/// a rule reach the caller.
class TARN_EXPORT ParamAvailInfo {
 public:
  ParamAvailInfo() = default;
  ParamAvailInfo(ParamAvailInfo const&) = default;
  ParamAvailInfo& operator=(ParamAvailInfo const&) = default;

  [[nodiscard]] virtual std::string const& getName() const = 0;
  /// The object to which the parameter belongs.
  [[nodiscard]] virtual std::string const& getObjPath() const = 0;
  /// The object in the model of the walk, for reads without a look-up. Empty, the default, when it was not found.
  [[nodiscard]] virtual ObjectHandle getObject() const { return {}; }
  [[nodiscard]] virtual TDFParam::Type getType() const = 0;
  [[nodiscard]] virtual bool isListType() const = 0;
  /// A list value must name all allowed values.
  [[nodiscard]] virtual bool isCompleteListRequired() const = 0;

  /// The entry is live under the current context rule value, its condition holds, and if it has allowed values, there
  /// is at least one or the rules permit none.
  [[nodiscard]] virtual bool isAvailable() const = 0;
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool hasValidationRelaxed() const = 0;

  /// The bounds depend on the model.
  [[nodiscard]] virtual bool hasDynamicBounds() const = 0;
  /// Lower and upper bound as value strings; "" for no bound.
  [[nodiscard]] virtual std::pair<std::string, std::string> const& getBounds() const = 0;

  [[nodiscard]] virtual bool hasDefault() const = 0;
  /// The default under the allowed values `allowed`, and the default on its own. Both share one result: after one form
  /// has been called, both return its string, whatever `allowed` holds then. "" when there is no default.
  [[nodiscard]] virtual std::string const& getDefault(ParamAllowedValues const& allowed) const = 0;
  [[nodiscard]] virtual std::string const& getDefault() const = 0;

  [[nodiscard]] virtual bool hasValueOverride() const = 0;
  /// Whether an override is in force, and its value: under the allowed values `allowed`, and on its own.
  [[nodiscard]] virtual std::pair<bool, std::string> getValueOverride(ParamAllowedValues const& allowed) const = 0;
  [[nodiscard]] virtual std::pair<bool, std::string> getValueOverride() const = 0;

  /// The allowed values, as evaluated before the hook. `hasAllowedValues` is false when the parameter may take any
  /// string, and when it was found unavailable before its allowed values were evaluated. A parameter that is
  /// unavailable because its list is empty has the evaluated, empty record.
  [[nodiscard]] virtual ParamAllowedValues const& getAllowedValues() const = 0;

 protected:
  ~ParamAvailInfo() = default;
};

}  // namespace tarn

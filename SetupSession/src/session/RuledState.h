#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/ChildAvail.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ObjDependency.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/ParamAvail.h>
#include <tarn/ParamValueDef.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/QuantityType.h>
#include <tarn/session/Waiting.h>

namespace tarn::session {

/// The rules of a parameter. All null when the rules do not know it.
struct ParamRules {
  ObjDependDef const* object = nullptr;
  ParamAvail const* entry = nullptr;
  ParamValueDef const* value = nullptr;
  [[nodiscard]] explicit operator bool() const noexcept { return value != nullptr; }
};

/// The rules of a type of children in its parent. All null when the rules do not know it.
struct ChildRules {
  ObjDependDef const* parent = nullptr;
  ChildAvail const* entry = nullptr;
  std::size_t place = 0;
  [[nodiscard]] explicit operator bool() const noexcept { return entry != nullptr; }
};

/// Answers about one provisional state under its rules. Everything is read or evaluated when it is asked for, so the
/// answers are those of the present state. Throws what a rule throws.
class RuledState {
 public:
  /// Both must outlive this object.
  RuledState(PhysicsData const& rules, ProvisionalTDF const& state) noexcept : rules_(&rules), state_(&state) {}

  [[nodiscard]] PhysicsData const& rules() const noexcept { return *rules_; }
  [[nodiscard]] ProvisionalTDF const& state() const noexcept { return *state_; }

  /// @name The rules
  /// @{
  [[nodiscard]] ObjDependDef const* rulesOfObject(std::string const& path) const;
  [[nodiscard]] ParamRules rulesOfParam(std::string const& path, std::string const& name) const;
  /// The entry of the object's type in the rules of its parent.
  [[nodiscard]] ChildRules rulesOfChild(std::string const& path) const;
  /// Children of the type are taken from the model as they are: they are neither required nor coupled.
  [[nodiscard]] static bool isMirrored(ChildAvail const& entry) noexcept;
  /// The object, or one above it and below the root of the state, is taken from the model as it is.
  [[nodiscard]] bool isInMirroredBranch(std::string const& path) const;
  /// @}

  /// @name What the state has
  /// @{
  [[nodiscard]] bool hasObject(std::string const& path) const;
  /// The present objects of a type path.
  [[nodiscard]] std::vector<std::string> presentObjects(std::string_view typePath) const;
  [[nodiscard]] std::string const* value(std::string const& path, std::string const& name) const;
  /// The value that the user or the model asks for, or an override has left.
  [[nodiscard]] std::string const* askedValue(std::string const& path, std::string const& name) const;
  /// The highest object at or above `path` that is not present; "" when `path` is present.
  [[nodiscard]] std::string missingObject(std::string const& path) const;
  /// Whether an asked value is in force where the parameter has `value`. The rules may add units or items to it.
  [[nodiscard]] static bool isInForce(TDFParam::Type type, std::string const& asked, std::string const& value);
  /// Waiting requests. `isOffered` says whether the item is on offer.
  [[nodiscard]] std::optional<Waiting> waitingParam(std::string const& path, std::string const& name,
                                                    bool isOffered) const;
  [[nodiscard]] std::optional<Waiting> waitingObject(std::string const& path, bool isOffered) const;
  /// @}

  /// @name What the rules say now
  /// @{
  /// The allowed values of a parameter, whether or not it is available.
  [[nodiscard]] ParamAllowedValues allowedValues(ParamRules const& rules, std::string const& path) const;
  [[nodiscard]] std::string defaultValue(ParamRules const& rules, std::string const& path,
                                         ParamAllowedValues const& allowed) const;
  [[nodiscard]] std::pair<bool, std::string> override(ParamRules const& rules, std::string const& path,
                                                      ParamAllowedValues const& allowed) const;
  [[nodiscard]] std::pair<std::string, std::string> bounds(ParamRules const& rules, std::string const& path) const;
  [[nodiscard]] std::string quantityType(ParamRules const& rules, std::string const& path) const;
  /// Whether children of the type are available in the parent, and their names.
  [[nodiscard]] bool isChildAvailable(ChildRules const& rules, std::string const& parent,
                                      ObjDependency::AllowedNameData& names) const;
  /// The names that children of the type may have, whether or not it is available. Empty when any name will do.
  [[nodiscard]] std::optional<std::vector<std::string>> allowedNames(ChildRules const& rules,
                                                                     std::string const& parent) const;
  /// @}

 private:
  [[nodiscard]] std::string contextRuleValue(ObjDependDef const& rules, std::string const& path) const;

  PhysicsData const* rules_;
  ProvisionalTDF const* state_;
  /// The names of the parameters that select entries, in the order of the rules.
  mutable std::unordered_map<ObjDependDef const*, std::vector<std::string const*>> contextRules_;
};

}  // namespace tarn::session

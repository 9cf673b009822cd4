#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// What `DependencyAnalyser::onChildCheck` is told about one child entry of the rules: a type of children, not one
/// child. Which children of the type there are is for the hook to ask of the model.
///
/// The record lives as long as the hook runs, and so does everything it refers to; copy what is needed for longer.
/// Availability and names are evaluated before the hook; nothing is evaluated here.
class TARN_EXPORT ChildAvailInfo {
 public:
  /// Begin and end of a list of names.
  using NameRange = std::pair<std::vector<std::string>::const_iterator, std::vector<std::string>::const_iterator>;

  ChildAvailInfo() = default;
  ChildAvailInfo(ChildAvailInfo const&) = default;
  ChildAvailInfo& operator=(ChildAvailInfo const&) = default;

  /// The type of the children.
  [[nodiscard]] virtual std::string const& getType() const = 0;
  /// The parent.
  [[nodiscard]] virtual std::string const& getObjPath() const = 0;

  /// The entry is live under the context rule value that the parent's parameters left, its condition holds, and when
  /// it has allowed names there is at least one of them.
  [[nodiscard]] virtual bool isAvailable() const = 0;
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool isSingleton() const = 0;
  [[nodiscard]] virtual bool hasValidationRelaxed() const = 0;
  /// The entry is marked coupled or has allowed names, be it a singleton or not.
  [[nodiscard]] virtual bool isCoupled() const = 0;

  /// The entry has allowed names and they were evaluated, so false of an entry whose condition does not hold. A
  /// singleton has no name of its own, so of a singleton always false.
  [[nodiscard]] virtual bool hasAllowedNames() const = 0;
  /// The allowed names; empty when the entry has none or its condition does not hold.
  [[nodiscard]] virtual NameRange getAllowedNames() const = 0;
  /// The names to start with; empty when the entry has none, when it has allowed names instead, and when its condition
  /// does not hold.
  [[nodiscard]] virtual NameRange getDefaultNames() const = 0;

 protected:
  ~ChildAvailInfo() = default;
};

}  // namespace tarn

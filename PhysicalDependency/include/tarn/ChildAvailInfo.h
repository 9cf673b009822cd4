#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ObjectReader.h>

namespace tarn {

/// The record that `DependencyAnalyser::onChildCheck` gets about one child entry of the rules. The entry is about a
/// type of children, not about one child. The hook itself asks the model which children of the type exist.
///
/// The record and everything it refers to are valid until the hook returns. Copy what is needed for longer.
/// Availability and names are evaluated before the hook. Nothing is evaluated here.
///
/// Singletons. A singleton has no name of its own, so `hasAllowedNames` is always false for it. The entry of a
/// singleton may still have allowed names. They are evaluated then: the singleton is available only if there is
/// at least one, `isCoupled` is true, and `getAllowedNames` returns them. So test `hasAllowedNames` before you treat
/// them as names of children.
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
  /// The parent in the model of the walk, for reads without a look-up. Empty, the default, when it was not found.
  [[nodiscard]] virtual ObjectHandle getObject() const { return {}; }

  /// The entry is live under the context rule value that the parent's parameters left, its condition holds, and if it
  /// has allowed names, there is at least one. This holds for singletons too.
  [[nodiscard]] virtual bool isAvailable() const = 0;
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool isSingleton() const = 0;
  [[nodiscard]] virtual bool hasValidationRelaxed() const = 0;
  /// The entry is marked coupled or has allowed names, whether or not it is a singleton.
  [[nodiscard]] virtual bool isCoupled() const = 0;

  /// The entry has allowed names and they were evaluated. False for an entry whose condition does not hold, and always
  /// false for a singleton.
  [[nodiscard]] virtual bool hasAllowedNames() const = 0;
  /// The allowed names. Empty when the entry has none or its condition does not hold.
  [[nodiscard]] virtual NameRange getAllowedNames() const = 0;
  /// The names to start with. Empty when the entry has none, when it has allowed names instead, and when its condition
  /// does not hold.
  [[nodiscard]] virtual NameRange getDefaultNames() const = 0;

 protected:
  ~ChildAvailInfo() = default;
};

}  // namespace tarn

#pragma once

#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn {

/// The context of an evaluation: the object where relative paths start, and the object that owns the rule. They differ
/// only while a rule looks at other objects one by one, as `any` and `filter` do.
class TARN_EXPORT TDFContext {
 public:
  /// A context in which both are the object at `objPath`. The root is the empty path.
  explicit TDFContext(std::string objPath) : objPath_(std::move(objPath)) {}

  /// Relative paths start at `objPath`; the object at `ownerPath` owns the rule.
  TDFContext(std::string objPath, std::string ownerPath)
      : objPath_(std::move(objPath)), ownerPath_(std::move(ownerPath)), hasOwner_(true) {}

  [[nodiscard]] std::string const& objPath() const noexcept { return objPath_; }
  [[nodiscard]] std::string const& ownerPath() const noexcept { return hasOwner_ ? ownerPath_ : objPath_; }

 private:
  std::string objPath_;
  // A walk makes a context for every object. So the usual case holds only one string.
  std::string ownerPath_;
  bool hasOwner_ = false;
};

}  // namespace tarn

#pragma once

#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn {

/// Where a rule is evaluated: the object that relative paths start from, and the object that owns the rule. The two
/// are the same unless a rule looks at other objects one by one, as `any` and `filter` do.
class TARN_EXPORT TDFContext {
 public:
  /// The object at `objPath` is both. The root is the empty path.
  explicit TDFContext(std::string objPath) : objPath_(std::move(objPath)) {}

  /// A context at `objPath` for a rule that the object at `ownerPath` owns.
  TDFContext(std::string objPath, std::string ownerPath)
      : objPath_(std::move(objPath)), ownerPath_(std::move(ownerPath)), hasOwner_(true) {}

  [[nodiscard]] std::string const& objPath() const noexcept { return objPath_; }
  [[nodiscard]] std::string const& ownerPath() const noexcept { return hasOwner_ ? ownerPath_ : objPath_; }

 private:
  std::string objPath_;
  // A context is made for every object of a walk, so the usual case holds one text.
  std::string ownerPath_;
  bool hasOwner_ = false;
};

}  // namespace tarn

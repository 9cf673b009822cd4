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
  explicit TDFContext(std::string objPath) : objPath_(std::move(objPath)), ownerPath_(objPath_) {}

  /// A context at `objPath` for a rule that the object at `ownerPath` owns.
  TDFContext(std::string objPath, std::string ownerPath)
      : objPath_(std::move(objPath)), ownerPath_(std::move(ownerPath)) {}

  [[nodiscard]] std::string const& objPath() const noexcept { return objPath_; }
  [[nodiscard]] std::string const& ownerPath() const noexcept { return ownerPath_; }

 private:
  std::string objPath_;
  std::string ownerPath_;
};

}  // namespace tarn

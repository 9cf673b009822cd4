#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <tarn/Export.h>
#include <tarn/ObjectReader.h>

namespace tarn {

/// The context of an evaluation: the object where relative paths start, and the object that owns the rule. They differ
/// only while a rule looks at other objects one by one, as `any` and `filter` do.
class TARN_EXPORT TDFContext {
 public:
  /// A context in which both are the object at `objPath`. The root is the empty path.
  explicit TDFContext(std::string objPath) : objPath_(std::move(objPath)) {}
  /// The same for a caller who has the object. An empty handle is always right.
  TDFContext(std::string objPath, ObjectHandle object) : objPath_(std::move(objPath)), object_(object) {}

  /// Relative paths start at `objPath`; the object at `ownerPath` owns the rule.
  TDFContext(std::string objPath, std::string ownerPath)
      : objPath_(std::move(objPath)), ownerPath_(std::move(ownerPath)), hasOwner_(true) {}

  /// Makes this what the constructor would make of the same arguments, but exchanges the path with `objPath`. So a
  /// caller who goes through many objects can use the memory of the last path for the next one.
  void moveTo(std::string& objPath, ObjectHandle const& object) noexcept {
    objPath_.swap(objPath);
    hasOwner_ = false;
    object_ = object;
  }

  [[nodiscard]] std::string const& objPath() const noexcept { return objPath_; }
  [[nodiscard]] std::string const& ownerPath() const noexcept { return hasOwner_ ? ownerPath_ : objPath_; }
  /// The object at `objPath`, if it was found in some model. See `ObjectHandle::readerIn`.
  [[nodiscard]] ObjectHandle const& object() const noexcept { return object_; }

 private:
  std::string objPath_;
  // A walk makes a context for every object. So the usual case holds only one string.
  std::string ownerPath_;
  bool hasOwner_ = false;
  ObjectHandle object_;
};

}  // namespace tarn

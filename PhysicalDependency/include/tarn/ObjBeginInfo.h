#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// What `DependencyAnalyser::onBeginObject` is told about the object that the walk is about to enter.
///
/// The record lives as long as the hook runs, and so does the path it refers to; copy what is needed for longer.
/// Nothing here evaluates a rule or reads the model.
class TARN_EXPORT ObjBeginInfo {
 public:
  ObjBeginInfo() = default;
  ObjBeginInfo(ObjBeginInfo const&) = default;
  ObjBeginInfo& operator=(ObjBeginInfo const&) = default;

  [[nodiscard]] virtual std::string const& getObjPath() const = 0;

  /// Whether there are rules for objects of this type. Without them the walk goes straight on to `onEndObject`.
  [[nodiscard]] virtual bool isValid() const = 0;

  /// What the child entry says through which the walk came here: it is required; it is coupled to its parent, which an
  /// entry with allowed names always is. The object that a walk starts from is required and not coupled.
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool isCoupled() const = 0;

 protected:
  ~ObjBeginInfo() = default;
};

}  // namespace tarn

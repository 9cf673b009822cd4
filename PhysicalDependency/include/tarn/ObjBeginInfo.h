#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/ObjectReader.h>

namespace tarn {

/// The record that `DependencyAnalyser::onBeginObject` gets about the object that the walk is about to enter.
///
/// The record and the path it refers to are valid until the hook returns. Copy what is needed for longer.
/// Nothing here evaluates a rule or reads the model.
class TARN_EXPORT ObjBeginInfo {
 public:
  ObjBeginInfo() = default;
  ObjBeginInfo(ObjBeginInfo const&) = default;
  ObjBeginInfo& operator=(ObjBeginInfo const&) = default;

  [[nodiscard]] virtual std::string const& getObjPath() const = 0;
  /// The object in the model of the walk, for reads without a look-up. Empty, the default, when it was not found.
  [[nodiscard]] virtual ObjectHandle getObject() const { return {}; }

  /// Whether there are rules for objects of this type. Without rules the walk goes directly to `onEndObject`.
  [[nodiscard]] virtual bool isValid() const = 0;

  /// The marks of the child entry through which the walk came here: required, and coupled to its parent. An entry with
  /// allowed names is always coupled. The object at which a walk starts is required and not coupled.
  [[nodiscard]] virtual bool isRequired() const = 0;
  [[nodiscard]] virtual bool isCoupled() const = 0;

 protected:
  ~ObjBeginInfo() = default;
};

}  // namespace tarn

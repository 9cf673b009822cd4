#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Read access to a model: a tree of typed, named objects that hold string parameters.
///
/// Paths. A component is a type, or a type, ":" and a name; components are joined by "/" and every path but the root's
/// begins with "/". The root is the empty path. `/Case/Domain:rotor` is the object of type Domain that is named rotor,
/// `/Case/Domain:rotor/Motion` its parameter Motion. Types and names may hold blanks. A parameter at the root has the
/// object path "" and the parameter path "/" + name.
///
/// Nothing here fails. What does not exist reads as false, as an empty list or as a reference to an empty string.
/// A returned reference stays valid until the model is changed.
///
/// Rules, walks and views read a model through this interface only. To let the library work on a model of your own,
/// derive from it; every operation may be called very often, so each should cost no more than a look-up.
class TARN_EXPORT ModelTDF {
 public:
  [[nodiscard]] virtual bool hasObject(std::string const& path) const = 0;

  /// `paramPath` is divided at its last "/".
  [[nodiscard]] virtual bool hasParameter(std::string const& paramPath) const = 0;
  [[nodiscard]] virtual bool hasParameter(std::string const& objPath, std::string const& name) const = 0;

  /// The name of the object; of a singleton, its type. Empty when there is no such object.
  [[nodiscard]] virtual std::string const& getObjectName(std::string const& path) const = 0;
  /// The type of the object. Empty when there is no such object.
  [[nodiscard]] virtual std::string const& getObjectType(std::string const& path) const = 0;

  /// The value as text. Empty when there is no such parameter, so ask `hasParameter` to tell an empty value from none.
  [[nodiscard]] virtual std::string const& getParameterValue(std::string const& paramPath) const = 0;
  [[nodiscard]] virtual std::string const& getParameterValue(std::string const& objPath,
                                                             std::string const& name) const = 0;

  /// Puts the value, divided at commas, into `out`, replacing what it held; items are not trimmed.
  /// Returns whether `out` holds anything.
  virtual bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const = 0;
  virtual bool getParamValueAsList(std::string const& objPath, std::string const& name,
                                   std::vector<std::string>& out) const = 0;

  /// Puts the names of the object's parameters into `out`, replacing what it held, and returns true, also when there
  /// are none. With no such object it returns false and `out` stays as it is.
  virtual bool getParameterNames(std::string const& path, std::vector<std::string>& out) const = 0;

  /// The three listings empty `out` first, fill it in the order of the model, and return whether it holds anything.
  virtual bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const = 0;
  virtual bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                         std::vector<std::string>& out) const = 0;
  virtual bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                         std::vector<std::string>& out) const = 0;

 protected:
  ModelTDF() = default;
  ModelTDF(ModelTDF const&) = default;
  ModelTDF& operator=(ModelTDF const&) = default;
  virtual ~ModelTDF();
};

}  // namespace tarn

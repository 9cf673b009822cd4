#pragma once

#include <functional>
#include <string>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

class ObjectReader;

/// Read access to a model: a tree of typed, named objects that hold string parameters.
///
/// Paths. A component is a type, or a type, ":" and a name; components are joined by "/" and every path but the root's
/// begins with "/". The root is the empty path. `/Case/Domain:rotor` is the object of type Domain that is named rotor,
/// `/Case/Domain:rotor/Motion` its parameter Motion. Types and names may hold blanks. A parameter at the root has the
/// object path "" and the parameter path "/" + name.
///
/// No operation fails. For an item that does not exist, it returns false, an empty list or a reference to an empty
/// string. A returned reference is valid until the model changes.
///
/// Rules, walks and views read a model only through this interface. Derive from it to let the library work on a model
/// of your own. Each operation may be called very often, so it should cost no more than a look-up. A model that is
/// asked about many parameters of one object can also offer reads without a look-up, see `objectReader`.
class TARN_EXPORT ModelTDF {
 public:
  [[nodiscard]] virtual bool hasObject(std::string const& path) const = 0;

  /// `paramPath` is split at its last "/".
  [[nodiscard]] virtual bool hasParameter(std::string const& paramPath) const = 0;
  [[nodiscard]] virtual bool hasParameter(std::string const& objPath, std::string const& name) const = 0;

  /// The name of the object; the name of a singleton is its type. Empty when there is no such object.
  [[nodiscard]] virtual std::string const& getObjectName(std::string const& path) const = 0;
  /// The type of the object. Empty when there is no such object.
  [[nodiscard]] virtual std::string const& getObjectType(std::string const& path) const = 0;

  /// The value as text. Empty when there is no such parameter; `hasParameter` distinguishes that from an empty value.
  [[nodiscard]] virtual std::string const& getParameterValue(std::string const& paramPath) const = 0;
  [[nodiscard]] virtual std::string const& getParameterValue(std::string const& objPath,
                                                             std::string const& name) const = 0;

  /// Splits the value at commas and assigns the items to `out`. Items are not trimmed. Returns whether there are any.
  virtual bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const = 0;
  virtual bool getParamValueAsList(std::string const& objPath, std::string const& name,
                                   std::vector<std::string>& out) const = 0;

  /// Assigns the names of the object's parameters to `out` and returns true, also when there are none. When there is no
  /// such object, returns false and leaves `out` as it is.
  virtual bool getParameterNames(std::string const& path, std::vector<std::string>& out) const = 0;

  /// These three clear `out`, fill it in the order of the model, and return whether there is an item.
  virtual bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const = 0;
  virtual bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                         std::vector<std::string>& out) const = 0;
  virtual bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                         std::vector<std::string>& out) const = 0;

  /// Looks for one child of this type, without a list of all of them. Calls `visit` with the path of each object that
  /// `getChildObjectPathsByType` lists, in the same order, and ends at the first for which `visit` returns true.
  /// Returns whether there was one; so false when there is no such child. `visit` must not be empty.
  ///
  /// During a call of `visit` the string `child` is valid, and the model must not change. `visit` may read the model,
  /// and may call this operation again. An exception of `visit` ends the call.
  ///
  /// For a model that records what a rule reads, one call is one read: the whole list, also when `visit` ended early.
  /// So a rule counts as affected when any child of this type comes or goes. The reads of `visit` are recorded as
  /// usual.
  ///
  /// The default makes the list and then visits its items. `DynamicTDF` makes none, so its cost is that of the visited
  /// children; a view of the library makes one only where it merges two models. A class that overrides
  /// `getChildObjectPathsByType` of another class must override this operation too, or else the two differ.
  virtual bool anyChildOfType(std::string const& path, std::string const& type,
                              std::function<bool(std::string const& child)> const& visit) const;

  /// Reads of this model by handles, or null, the default, when it offers none. Its answers must be those of the
  /// operations above. So a class that overrides one of them must not pass on the reader of another model. The answer
  /// may change with the model: ask again after a change.
  [[nodiscard]] virtual ObjectReader const* objectReader() const noexcept;

 protected:
  ModelTDF() = default;
  ModelTDF(ModelTDF const&) = default;
  ModelTDF& operator=(ModelTDF const&) = default;
  virtual ~ModelTDF();
};

}  // namespace tarn

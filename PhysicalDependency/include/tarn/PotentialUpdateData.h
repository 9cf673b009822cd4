#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/PathUtils.h>

namespace tarn {

/// The potential items that one walk over a model found: what the rules offer and the model does not hold, so that the
/// user can activate it. Objects by their paths, parameters by object path and name, those of allowed value type with
/// their values.
///
/// A plain record that says nothing about whether its items make sense together. What it is given twice it holds twice.
class TARN_EXPORT PotentialUpdateData {
 public:
  /// Object path to name of the parameter, in byte order of the paths; of one object in the order of addition.
  using Params = std::multimap<std::string, std::string>;

  void addObject(std::string const& path);
  void addParam(std::string const& objPath, std::string const& name);
  /// With allowed values. Those that were given first for a parameter stand.
  void addParam(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues);

  void clear();

  /// Removes the object at `path`, everything below it, and the parameters of all of these. Costs little when nothing
  /// refers to the path, and otherwise the number of objects here and of what is removed.
  void clearObjectReferences(std::string const& path);

  /// Whether `allowedValues` are those that the parameter was added with. Of a parameter that was added without, or not
  /// at all, whether they are empty.
  [[nodiscard]] bool compareAllowedValues(std::string const& objPath, std::string const& name,
                                          ParamAllowedValues const& allowedValues) const;
  /// The allowed values that the parameter was added with, or an empty record. Valid until the parameter goes.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;

  /// In the order of addition. Valid as long as the record, like `getParams`.
  [[nodiscard]] std::vector<std::string> const& getObjects() const noexcept { return objects_; }
  [[nodiscard]] Params const& getParams() const noexcept { return params_; }

  /// Whether there is a potential object below `path`, or a potential parameter of the object at `path` or one below.
  [[nodiscard]] bool hasObjPotentialChildren(std::string const& path) const;

 private:
  void resetParents(std::string const& parentOfRemoved);
  [[nodiscard]] ParamAllowedValues const* findAllowedValues(std::string const& objPath, std::string const& name) const;

  std::vector<std::string> objects_;
  // The parents of the objects and the objects of the parameters. In this order everything below a path stands behind
  // it with nothing in between.
  std::set<std::string, PathUtils::PathOrder> parents_;
  Params params_;
  std::map<std::string, std::map<std::string, ParamAllowedValues>, PathUtils::PathOrder> allowedValues_;
};

}  // namespace tarn

#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/PathUtils.h>

namespace tarn {

/// The potential items that one walk over a model found: items that the rules offer and the model does not hold, so the
/// user can activate them. Objects are held by path, parameters by object path and name, and parameters of allowed
/// value type also with their allowed values.
///
/// This is a plain record. It does not check whether its items make sense together. An item that is added twice is held
/// twice.
class TARN_EXPORT PotentialUpdateData {
 public:
  /// Object path to parameter name, in byte order of the paths, and for one object in the order of addition.
  using Params = std::multimap<std::string, std::string>;

  void addObject(std::string const& path);
  void addParam(std::string const& objPath, std::string const& name);
  /// Adds a parameter with allowed values. When a parameter is added twice, its first allowed values count.
  void addParam(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues);

  void clear();

  /// Removes the object at `path`, everything below it, and the parameters of all of these. Logarithmic when nothing
  /// refers to the path; otherwise linear in the number of objects held and of items removed.
  void clearObjectReferences(std::string const& path);

  /// Returns whether `allowedValues` equal those with which the parameter was added. For a parameter that was added
  /// without allowed values, or not at all, returns whether they are empty.
  [[nodiscard]] bool compareAllowedValues(std::string const& objPath, std::string const& name,
                                          ParamAllowedValues const& allowedValues) const;
  /// Returns the allowed values with which the parameter was added, or an empty record. Valid until the parameter is
  /// removed.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;

  /// Returns the objects in the order of addition. Valid as long as the record, like `getParams`.
  [[nodiscard]] std::vector<std::string> const& getObjects() const noexcept { return objects_; }
  [[nodiscard]] Params const& getParams() const noexcept { return params_; }

  /// Returns whether there is a potential object below `path`, or a potential parameter of the object at `path` or of
  /// one below.
  ///
  /// Write the root as "", not as "/". It answers true while any item is held, except that a potential parameter of the
  /// root itself no longer counts after `clearObjectReferences` has removed something.
  [[nodiscard]] bool hasObjPotentialChildren(std::string const& path) const;

 private:
  friend class FollowedOffers;  // for the library's own sources
  void resetParents(std::string const& parentOfRemoved);
  [[nodiscard]] ParamAllowedValues const* findAllowedValues(std::string const& objPath, std::string const& name) const;

  std::vector<std::string> objects_;
  // The parents of the objects and the objects of the parameters. In this order everything below a path follows it
  // directly.
  std::set<std::string, PathUtils::PathOrder> parents_;
  Params params_;
  std::map<std::string, std::map<std::string, ParamAllowedValues>, PathUtils::PathOrder> allowedValues_;
};

}  // namespace tarn

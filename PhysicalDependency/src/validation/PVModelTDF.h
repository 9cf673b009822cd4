#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelTDF.h>

namespace tarn {

/// The model that rules and walk see during a validation. It shows the base model and, while the walk tries out absent
/// required objects, a second model that holds their placeholders. Showing and hiding the second model costs nothing
/// and changes neither model.
///
/// Placeholders are the children of one type in one object. While they are shown:
/// - `hasObject` finds an object that either model has;
/// - listings by type of that object give the placeholders before the real children;
/// - paths in the placeholders' subtree (see `isInMissingSubtree`) are read from the second model;
/// - everything else, and the names of parameters everywhere, is read from the base model.
///
/// A returned reference is valid as long as the model that answered says.
class PVModelTDF final : public ModelTDF {
 public:
  /// A plain view of `baseModel`, which must not be null, and must offer the same reader as long as this exists.
  explicit PVModelTDF(ModelTDF const* baseModel) noexcept;
  ~PVModelTDF() override;

  /// Shows the children of type `type` that `missingModel` has at `objPath`. For named children, also pass their names
  /// to `addMissingName`. Names that were passed before stay.
  void setMissing(std::string const& objPath, std::string const& type, ModelTDF const* missingModel);
  void addMissingName(std::string const& name);
  /// Back to the plain view.
  void clearMissing() noexcept;

  /// Returns whether `path` is read from the second model. Ask only while there is one. For a singleton, these are all
  /// paths that begin with the text of the placeholder's path. For named children, these are the paths below the
  /// placeholder that have a later component whose name is one of theirs. So a named placeholder itself is seen, but
  /// its content is read from the base model.
  [[nodiscard]] bool isInMissingSubtree(std::string_view path) const;

  [[nodiscard]] bool hasObject(std::string const& path) const override;
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override;
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override;
  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override;
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override;
  bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const override;
  bool getParamValueAsList(std::string const& objPath, std::string const& name,
                           std::vector<std::string>& out) const override;
  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override;
  /// The placeholders come before the first real child of their type. Without such a child they are not listed here.
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool anyChildOfType(std::string const& path, std::string const& type,
                      std::function<bool(std::string const& child)> const& visit) const override;
  /// That of the base model, and none while placeholders are shown: then the path of an object decides who answers.
  [[nodiscard]] ObjectReader const* objectReader() const noexcept override;

 private:
  using ListingByType = bool (ModelTDF::*)(std::string const&, std::string const&, std::vector<std::string>&) const;

  [[nodiscard]] ModelTDF const& sourceOf(std::string_view path) const;
  bool mergeByType(ListingByType listing, std::string const& path, std::string const& type,
                   std::vector<std::string>& out) const;
  void mergeMissingChildPaths(std::vector<std::string>& out) const;

  ModelTDF const* baseModel_;
  ObjectReader const* baseReader_;

  // Set while placeholders are shown.
  ModelTDF const* missingModel_ = nullptr;
  std::string missingPrefix_;
  std::string missingObjPath_;
  std::string missingType_;
  std::set<std::string, std::less<>> missingNames_;
};

}  // namespace tarn

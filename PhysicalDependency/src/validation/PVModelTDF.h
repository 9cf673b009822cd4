#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelTDF.h>
#include <tarn/PhysicsValidator2.h>

namespace tarn {

/// The model as rules and walk see it during a validation: the base model and, while absent required objects are tried
/// out, a second model that holds their placeholders. Opening and closing the second costs nothing and changes neither.
///
/// Placeholders are the children of one type of one object. While they are shown,
/// - `hasObject` finds an object that either model has;
/// - listings by type of that object give the placeholders ahead of the real children;
/// - what lies in the placeholders' subtree, see `isInMissingSubtree`, is read from the second model;
/// - everything else, and the names of parameters everywhere, is read from the base model.
///
/// Returned references are those of the model that answered.
class [[gnu::visibility("hidden")]] PhysicsValidator2::PVModelTDF final : public ModelTDF {
 public:
  /// A plain view of `baseModel`, which must not be null.
  explicit PVModelTDF(ModelTDF const* baseModel) noexcept;
  ~PVModelTDF() override;

  /// Shows the children of type `type` that `missingModel` has at `objPath`. For named children say the names as well,
  /// by `addMissingName`; those that were said before stay.
  void setMissing(std::string const& objPath, std::string const& type, ModelTDF const* missingModel);
  void addMissingName(std::string const& name);
  /// Back to the plain view.
  void clearMissing() noexcept;

  /// Whether `path` is read from the second model; to be asked only while there is one. For a singleton that is every
  /// path that begins with the text of the placeholder's path. For named children it is a path below the placeholder
  /// that has a later component whose name is one of theirs. So a named placeholder is seen itself, but what would be
  /// in it is read from the base model.
  [[nodiscard]] bool isInMissingSubtree(std::string_view path) const;

  [[nodiscard]] bool hasObject(std::string const& path) const override;
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override;
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override;
  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override;
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath, std::string const& name)
      const override;
  bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const override;
  bool getParamValueAsList(std::string const& objPath, std::string const& name, std::vector<std::string>& out)
      const override;
  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override;
  /// The placeholders stand ahead of the first real child of their type. When there is none they do not show here.
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectNamesByType(std::string const& path, std::string const& type, std::vector<std::string>& out)
      const override;
  bool getChildObjectPathsByType(std::string const& path, std::string const& type, std::vector<std::string>& out)
      const override;

 private:
  using ListingByType = bool (ModelTDF::*)(std::string const&, std::string const&, std::vector<std::string>&) const;

  [[nodiscard]] ModelTDF const& sourceOf(std::string_view path) const;
  bool mergeByType(ListingByType listing, std::string const& path, std::string const& type,
                   std::vector<std::string>& out) const;
  void mergeMissingChildPaths(std::vector<std::string> & out) const;

  ModelTDF const* baseModel_;

  // Set while placeholders are shown.
  ModelTDF const* missingModel_ = nullptr;
  std::string missingPrefix_;
  std::string missingObjPath_;
  std::string missingType_;
  std::set<std::string, std::less<>> missingNames_;
};

}  // namespace tarn

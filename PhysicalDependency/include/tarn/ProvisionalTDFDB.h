#pragma once

#include <functional>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelTDF.h>

namespace tarn {

/// Two models read as one. Everything at or below one path, the active root, comes from the active model. Everything
/// else comes from the base model. So the rules can judge an object that is being edited in its place in the whole
/// model, although neither model is copied.
///
///     ProvisionalTDFDB view("/Case/Domain:rotor", &edited, &whole);
///     view.getParameterValue("/Case/Domain:rotor", "Motion");    // from edited
///     view.getParameterValue("/Case/Domain:stator", "Motion");   // from whole
///     view.getChildObjectPaths("/Case", paths);                  // from whole, with the rotor as edited has it
///
/// The two models are merged in one place only: in the children of the parent of the active root. The children are
/// those of the base model, but the active root is listed exactly if the active model has it. It is listed at its place
/// in the base model if it exists there too, and otherwise at the end. This holds for the listing of all children and
/// for the listings by the type of the active root.
///
/// Every other question about the parent is answered by the base model, also the parameters of the parent and whether
/// it exists. So what the active model holds at the parent or above it, for example objects that it made on the way to
/// the active root, is never seen.
///
/// Both models must outlive the view. The view keeps no answers, so a change in one of the models shows at once. A copy
/// reads the same two models. References are valid as long as those of the model that answers.
class TARN_EXPORT ProvisionalTDFDB : public ModelTDF {
 public:
  /// An empty `activeRoot` is the root of the tree; "/" is not another way to write it. The active model then answers
  /// for every path. There is one exception: the root counts as its own parent, so the list of all its children comes
  /// from the base model. The lists by type come from the active model. Throws the `Error` of `TDFPath` for an active
  /// root that it cannot read.
  ProvisionalTDFDB(std::string activeRoot, ModelTDF const* activeModel, ModelTDF const* baseModel);
  ProvisionalTDFDB(ProvisionalTDFDB const&) = default;
  ~ProvisionalTDFDB() override;

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
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool anyChildOfType(std::string const& path, std::string const& type,
                      std::function<bool(std::string const& child)> const& visit) const override;

  /// Whether `path`, of an object or a parameter, is at or below the active root, so that the active model answers.
  [[nodiscard]] bool isActivePath(std::string const& path) const noexcept;
  /// Whether a list of children of the object at `path` comes from the base model, in whole or in part.
  [[nodiscard]] bool listsBaseChildren(std::string const& path) const noexcept;

 private:
  [[nodiscard]] ModelTDF const* switchDB(std::string const& path) const noexcept;
  bool getActiveParentChildItems(std::string const& item, std::vector<std::string>& out) const;

  std::string activeRoot_;
  std::string parentPath_;
  std::string lastType_;
  std::string lastName_;
  unsigned long long activeRootLength_;
  ModelTDF const* activeModel_;
  ModelTDF const* baseModel_;
};

}  // namespace tarn

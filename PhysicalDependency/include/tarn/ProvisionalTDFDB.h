#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelTDF.h>

namespace tarn {

/// Two models, read as one: everything at or below one path, the active root, comes from the active model, and all else
/// from the base model. So the rules can judge an object that is being edited in its place in the whole model, though
/// neither model is copied.
///
///     ProvisionalTDFDB view("/Case/Domain:rotor", &edited, &whole);
///     view.getParameterValue("/Case/Domain:rotor", "Motion");    // of edited
///     view.getParameterValue("/Case/Domain:stator", "Motion");   // of whole
///     view.getChildObjectPaths("/Case", paths);                  // of whole, with the rotor as edited has it
///
/// The parent of the active root is the one place where the two are merged and not chosen between. Its children are
/// those of the base model, but the active root is among them exactly if the active model has it: at its place in the
/// base model if it is there too, else at the end. That holds for the listing of all children and for those by the type
/// of the active root. All else that is asked about the parent, its parameters too, is answered by the base model, even
/// if the active model has an object at that path.
///
/// Both models must outlive the view, which reads them anew with each question: a change in one of them shows at once.
/// A copy reads the same two models. References live as long as those of the model that answers.
class TARN_EXPORT ProvisionalTDFDB : public ModelTDF {
 public:
  /// An empty `activeRoot` is the root of the tree, and "/" is no other way to write it. Then the active model answers
  /// for every path, but for one thing: the root counts as its own parent, so the list of all its children (not that of
  /// one type) is the base model's. Throws the `Error` of `TDFPath` for a path that it refuses.
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

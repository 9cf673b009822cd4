#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelTDF.h>
#include <tarn/session/Effect.h>
#include <tarn/session/Item.h>

#include "session/RuledState.h"

namespace tarn::session {

/// The state before its last walk.
class FormerState {
 public:
  /// `effect` is that of the last walk; null before the first edit: then nothing was there. Must outlive this.
  FormerState(RuledState const& state, Effect const* effect);

  [[nodiscard]] bool isChanged(std::string const& path, std::string const& name) const;
  /// The value before the walk, or null when there was none.
  [[nodiscard]] std::string const* value(std::string const& path, std::string const& name) const;
  [[nodiscard]] bool hadObject(std::string const& path) const;
  [[nodiscard]] bool isFirstWalk() const noexcept { return effect_ == nullptr; }
  /// Objects that the walk deleted, and that it created.
  [[nodiscard]] std::vector<std::string> const& deleted() const;
  [[nodiscard]] bool isCreated(std::string const& path) const;
  [[nodiscard]] RuledState const& state() const noexcept { return state_; }

 private:
  RuledState const& state_;
  Effect const* effect_;
};

/// The model as the rules of one item saw it in the last walk: what the walk decides before the item is new, and the
/// item and everything after it is as it was before the walk.
class DecisionModel final : public ModelTDF {
 public:
  /// `item` is the parameter whose rules are asked, or the child object.
  DecisionModel(FormerState const& former, Item const& item);

  /// Whether the walk decides on a parameter, or on children of a type, before it decides on the item.
  [[nodiscard]] bool isBefore(std::string const& path, std::string const& name, bool isChildType) const;

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

 private:
  /// Whether a parameter reads as it was before the walk, and differs.
  [[nodiscard]] bool isOld(std::string const& path, std::string const& name) const;
  [[nodiscard]] bool isOldObject(std::string const& path) const;
  [[nodiscard]] bool isInside(std::string const& path) const;

  FormerState const& former_;
  ModelTDF const& model_;
  std::string root_;
  std::string path_;  // of the object whose entry is asked
  std::string name_;  // of the parameter, or the type of the children
  bool isChildType_;
  /// The answer for the objects of one type and everything in them, which are in another branch than the item. A rule
  /// over a set asks about very many of them.
  mutable std::string branch_;
  mutable bool isBranchBefore_ = false;
};

}  // namespace tarn::session

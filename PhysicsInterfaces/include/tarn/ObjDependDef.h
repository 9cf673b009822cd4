#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/ChildAvail.h>
#include <tarn/Export.h>
#include <tarn/ItemHistory.h>
#include <tarn/NameSlots.h>
#include <tarn/ObjectCheck.h>
#include <tarn/ParamAvail.h>
#include <tarn/ParamValueDef.h>
#include <tarn/RulePlace.h>

namespace tarn {

class PhysicsData;

/// A position in the list of an object's parameter entries. A new cursor is before the first entry.
class TARN_EXPORT PACursor {
 private:
  friend class ObjDependDef;
  std::size_t next_ = 0;
};

/// A position in the list of an object's child entries. It keeps the context rule value that `firstChildAvail` got.
class TARN_EXPORT CACursor {
 private:
  friend class ObjDependDef;
  std::size_t next_ = 0;
  std::string context_;
};

/// The rules of one object type: its parameters and its child types, in the order in which a walk visits them.
/// `PhysicsData::addObject` makes it. Pointers to entries are valid as long as the `PhysicsData`. The name of an entry,
/// its former names, and whether it is required, must not change after it was added.
class TARN_EXPORT ObjDependDef {
 public:
  ObjDependDef(PhysicsData const* data, std::string typePath);
  ObjDependDef(ObjDependDef const&) = delete;
  ObjDependDef& operator=(ObjDependDef const&) = delete;
  ~ObjDependDef();

  /// For people: what the object is.
  std::string description;
  /// Only for object types at the root of a model; the history of others is in the child entry of the parent.
  ItemHistory history;
  /// Where the object's first entry in the rules is written: its type path.
  RulePlace rulePlace;

  [[nodiscard]] std::string const& typePath() const noexcept { return typePath_; }

  /// Adds an entry at the end. Returns false, and changes nothing, if the object has an entry of that name and kind.
  /// Throws `std::bad_alloc`, and adds nothing, when memory runs out.
  [[nodiscard]] bool addParam(ParamAvail entry, ParamValueDef valueDef);
  /// Adds an entry without a value rule. Operations that need its values then throw. Meant for tests of that case.
  [[nodiscard]] bool addParam(ParamAvail entry);
  [[nodiscard]] bool addChild(ChildAvail entry);
  [[nodiscard]] bool addCheck(ObjectCheck check);

  /// The entries one by one, as a walk visits them. The pointer is null at the end. The bool says whether the entry is
  /// live: its `contexts` contain `contextRuleValue`, the value of the last context rule parameter before it, which is
  /// "" if there was none. Entries that are not live are returned too.
  [[nodiscard]] std::pair<ParamAvail const*, bool> firstParamAvail(PACursor& cursor) const;
  [[nodiscard]] std::pair<ParamAvail const*, bool> nextParamAvail(PACursor& cursor,
                                                                  std::string const& contextRuleValue) const;
  [[nodiscard]] std::pair<ChildAvail const*, bool> firstChildAvail(CACursor& cursor,
                                                                   std::string const& contextRuleValue) const;
  [[nodiscard]] std::pair<ChildAvail const*, bool> nextChildAvail(CACursor& cursor) const;

  /// All entries, live or not, in order.
  [[nodiscard]] std::vector<std::unique_ptr<ParamAvail>> const& params() const noexcept { return params_; }
  [[nodiscard]] std::vector<std::unique_ptr<ChildAvail>> const& children() const noexcept { return children_; }

  /// The checks of every object of the type, in the order in which they were added.
  [[nodiscard]] std::vector<std::unique_ptr<ObjectCheck>> const& checks() const noexcept { return checks_; }

  /// The entry at index `place` of `params`, and whether it is live with this context rule value.
  [[nodiscard]] std::pair<ParamAvail const*, bool> paramAvailAt(std::size_t place,
                                                                std::string const& contextRuleValue) const;
  /// The entry at index `place` of `children`, and whether it is live with this context rule value.
  [[nodiscard]] std::pair<ChildAvail const*, bool> childAvailAt(std::size_t place,
                                                                std::string const& contextRuleValue) const;
  /// The index in `params` of the entry of that name, or `noPlace`. One hash look-up.
  [[nodiscard]] std::size_t placeOfParam(std::string_view name) const;
  /// The index in `children` of the entry of that type, or `noPlace`. One hash look-up.
  [[nodiscard]] std::size_t placeOfChild(std::string_view type) const;
  static constexpr std::size_t noPlace = static_cast<std::size_t>(-1);
  /// The indices in `params` of the entries that were added as required, ascending.
  [[nodiscard]] std::vector<std::size_t> const& requiredParams() const noexcept { return requiredParams_; }

  /// The entry of that name or type, or null. One hash look-up.
  [[nodiscard]] ParamAvail const* findParam(std::string_view name) const;
  [[nodiscard]] ChildAvail const* findChild(std::string_view type) const;
  /// The entry that has this name among its `ItemHistory::formerNames`, or null; the first one when several have it. An
  /// entry whose present name it is does not matter. One hash look-up.
  [[nodiscard]] ParamAvail const* findRenamedParam(std::string_view formerName) const;
  [[nodiscard]] ChildAvail const* findRenamedChild(std::string_view formerType) const;
  /// The value rule of the parameter, or null.
  [[nodiscard]] ParamValueDef const* findValueDef(std::string_view name) const;

 private:
  PhysicsData const* data_;
  std::string typePath_;
  std::vector<std::unique_ptr<ParamAvail>> params_;
  std::vector<std::unique_ptr<ChildAvail>> children_;
  std::vector<std::unique_ptr<ObjectCheck>> checks_;
  std::vector<std::unique_ptr<ParamValueDef>> valueDefs_;
  std::vector<std::size_t> requiredParams_;
  // Places by name. An object may have very many parameters.
  NameSlots slotsOfParams_;
  // The keys are the names of the entries themselves.
  std::unordered_map<std::string_view, std::size_t> byType_;
  // By former name; the keys are those of the entries.
  std::unordered_map<std::string_view, ParamAvail const*> renamedParams_;
  std::unordered_map<std::string_view, ChildAvail const*> renamedChildren_;
  std::unordered_set<std::string_view> checkNames_;
};

}  // namespace tarn

#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/ChildAvail.h>
#include <tarn/Export.h>
#include <tarn/ParamAvail.h>
#include <tarn/ParamValueDef.h>

namespace tarn {

class PhysicsData;

/// A place in the list of an object's parameter entries. Made afresh it stands before the first.
class TARN_EXPORT PACursor {
 private:
  friend class ObjDependDef;
  std::size_t next_ = 0;
};

/// A place in the list of an object's child entries. It keeps the context value that it was started with.
class TARN_EXPORT CACursor {
 private:
  friend class ObjDependDef;
  std::size_t next_ = 0;
  std::string context_;
};

/// The rules of one object type: its parameters and its child types, in the order in which a walk visits them.
/// Made by `PhysicsData::addObject`. Entries stay where they are as long as the `PhysicsData`.
class TARN_EXPORT ObjDependDef {
 public:
  ObjDependDef(PhysicsData const* data, std::string typePath);
  ObjDependDef(ObjDependDef const&) = delete;
  ObjDependDef& operator=(ObjDependDef const&) = delete;
  ~ObjDependDef();

  /// For people: what the object is.
  std::string description;

  [[nodiscard]] std::string const& typePath() const noexcept { return typePath_; }

  /// Adds an entry behind the others. Returns false, and changes nothing, when the object has an entry of that name.
  bool addParam(ParamAvail entry, ParamValueDef valueDef);
  /// Adds an entry without a value rule; what asks for its values then throws. For tests of that case.
  bool addParam(ParamAvail entry);
  bool addChild(ChildAvail entry);

  /// The entries one by one, as a walk visits them. The bool says whether the entry is live: its `contexts` hold the
  /// value of the last context rule parameter seen, "" when there has been none. An entry that is not live is handed
  /// out all the same. Null at the end.
  [[nodiscard]] std::pair<ParamAvail const*, bool> firstParamAvail(PACursor& cursor) const;
  [[nodiscard]] std::pair<ParamAvail const*, bool> nextParamAvail(PACursor& cursor,
                                                                  std::string const& contextRuleValue) const;
  [[nodiscard]] std::pair<ChildAvail const*, bool> firstChildAvail(CACursor& cursor,
                                                                   std::string const& contextRuleValue) const;
  [[nodiscard]] std::pair<ChildAvail const*, bool> nextChildAvail(CACursor& cursor) const;

  /// All entries, live or not, in order.
  [[nodiscard]] std::vector<std::unique_ptr<ParamAvail>> const& params() const noexcept { return params_; }
  [[nodiscard]] std::vector<std::unique_ptr<ChildAvail>> const& children() const noexcept { return children_; }

  /// The entry of that name or type, or null. Logarithmic in the number of entries.
  [[nodiscard]] ParamAvail const* findParam(std::string const& name) const;
  [[nodiscard]] ChildAvail const* findChild(std::string const& type) const;
  /// The value rule of the parameter, or null.
  [[nodiscard]] ParamValueDef const* findValueDef(std::string const& name) const;

 private:
  PhysicsData const* data_;
  std::string typePath_;
  std::vector<std::unique_ptr<ParamAvail>> params_;
  std::vector<std::unique_ptr<ChildAvail>> children_;
  struct Values {
    ParamAvail const* entry;
    std::unique_ptr<ParamValueDef> def;
  };
  std::map<std::string, Values, std::less<>> byName_;
  std::map<std::string, ChildAvail const*, std::less<>> byType_;
};

}  // namespace tarn

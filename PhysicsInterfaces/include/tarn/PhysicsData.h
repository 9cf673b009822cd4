#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/BetaLoggingController.h>
#include <tarn/Check.h>
#include <tarn/Export.h>
#include <tarn/GlobalCheck.h>
#include <tarn/List.h>
#include <tarn/ModelRules.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ParamValueDef.h>
#include <tarn/QuantityType.h>
#include <tarn/RuleExpressions.h>
#include <tarn/UnitConverter.h>

namespace tarn {

/// The rule database: the rules of every object type, named checks, lists and values, and the checks of a whole model.
///
/// Fill a database with the operations at the end, using the expressions of `<tarn/RuleLambdas.h>`, or load it from
/// rule files (`tarn::rules::loadRules`). Once it is filled, several threads may read it at once, as long as no
/// `BetaLoggingController` is attached. Every pointer that it returns is valid as long as the database. The database
/// keeps ownership.
///
/// The bool of some look-ups has no effect. It is there for callers that share an interface with other databases.
class TARN_EXPORT PhysicsData {
 public:
  PhysicsData();
  PhysicsData(PhysicsData const&) = delete;
  PhysicsData& operator=(PhysicsData const&) = delete;
  ~PhysicsData();

  /// The rules of an object type, by its type path: `/Case/Domain`. `PathUtils::typePathOf` gives the type path of an
  /// object. Null if there are none.
  [[nodiscard]] ObjDependDef const* getObjDependDef(std::string const& objectTypePath, bool flag) const;
  /// The value rule of a parameter of that type. Null if there is none.
  [[nodiscard]] ParamValueDef const* getParamValueDef(std::string const& objectTypePath, std::string const& paramName,
                                                      bool flag) const;
  [[nodiscard]] ModelRules const* getRules() const noexcept { return &rules_; }

  /// Null if there is none of that name.
  [[nodiscard]] Check const* getCheck(std::string const& name, bool flag) const;
  [[nodiscard]] List const* getList(std::string const& name, bool flag) const;
  [[nodiscard]] GlobalCheck const* getGlobalCheck(std::string const& name, bool flag) const;

  /// The names of the global checks in the order in which they are evaluated.
  [[nodiscard]] std::vector<std::string> getGlobalCheckNames() const;
  /// The types of the objects at the root of a model that validation looks at. `PertinentRoots` answers questions about
  /// them.
  [[nodiscard]] std::vector<std::string> const& getPertinentGlobalCheckRoots() const noexcept { return roots_; }

  /// Every quantity type by its name.
  [[nodiscard]] std::map<std::string, QuantityType, std::less<>> const& quantityTypes() const noexcept {
    return quantityTypes_;
  }
  /// The quantity type of that name, or null.
  [[nodiscard]] QuantityType const* findQuantityType(std::string_view name) const;
  /// Converts units that no quantity type lists. Null if nobody set it.
  [[nodiscard]] UnitConverter const* unitConverter() const noexcept { return unitConverter_.get(); }
  /// The object types that have rules, in the order in which they were added.
  [[nodiscard]] std::vector<ObjDependDef const*> const& objects() const noexcept { return objectOrder_; }
  [[nodiscard]] std::vector<std::string> getCheckNames() const;
  [[nodiscard]] std::vector<std::string> getListNames() const;
  /// The named value, a number or a text, that rules call by its name; null if there is none.
  [[nodiscard]] TextExpression const* findValue(std::string_view name) const;
  [[nodiscard]] std::vector<std::string> getValueNames() const;

  /// Attaches a controller that collects the beta messages of all evaluations whose `EvalContext` names none; null
  /// detaches. Not owned. A validator does not need it: `BetaLoggingController` says when it is of use.
  void attach(BetaLoggingController* controller) noexcept { beta_ = controller; }
  [[nodiscard]] BetaLoggingController* attachedController() const noexcept { return beta_; }

  // Filling. When memory runs out, these throw `std::bad_alloc` and add nothing.

  /// Returns the rules of that object type. Makes them if there are none. The reference is valid as long as the
  /// database.
  ///
  /// `objectTypePath` is "/Case/Domain" for the objects Domain of a Case. It is not checked. The rules of "" are those
  /// of the root of the model; a walk applies them only if it starts there. Rules under a path without a leading "/",
  /// or with names, are never applied, because no object has such a type path.
  ObjDependDef& addObject(std::string const& objectTypePath);
  /// Each adds an entry that must not be null. Each returns false, and changes nothing, if the name is taken.
  [[nodiscard]] bool addCheck(std::string const& name, std::unique_ptr<Check> check);
  [[nodiscard]] bool addList(std::string const& name, std::unique_ptr<List> list);
  [[nodiscard]] bool addValue(std::string const& name, std::unique_ptr<TextExpression> value);
  [[nodiscard]] bool addGlobalCheck(std::string const& name, std::unique_ptr<GlobalCheck> check);
  [[nodiscard]] bool addQuantityType(std::string const& name, QuantityType type);
  /// The same for a type whose units have no conversions.
  [[nodiscard]] bool addQuantityType(std::string const& name, std::vector<std::string> const& units);
  void setUnitConverter(std::unique_ptr<UnitConverter> converter) noexcept { unitConverter_ = std::move(converter); }
  /// Adds a type, unless it is there already.
  void addPertinentRoot(std::string const& type);

 private:
  ModelRules rules_;
  std::unordered_map<std::string, std::unique_ptr<ObjDependDef>> objects_;
  std::vector<ObjDependDef const*> objectOrder_;
  std::map<std::string, std::unique_ptr<Check>> checks_;
  std::map<std::string, std::unique_ptr<List>> lists_;
  std::map<std::string, std::unique_ptr<TextExpression>, std::less<>> values_;
  std::map<std::string, std::unique_ptr<GlobalCheck>> globalChecks_;
  std::vector<std::string> globalCheckOrder_;
  std::vector<std::string> roots_;
  std::map<std::string, QuantityType, std::less<>> quantityTypes_;
  std::unique_ptr<UnitConverter> unitConverter_;
  BetaLoggingController* beta_ = nullptr;
};

}  // namespace tarn

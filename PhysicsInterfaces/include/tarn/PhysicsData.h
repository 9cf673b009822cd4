#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <tarn/BetaLoggingController.h>
#include <tarn/Check.h>
#include <tarn/Export.h>
#include <tarn/GlobalCheck.h>
#include <tarn/List.h>
#include <tarn/ModelRules.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ParamValueDef.h>

namespace tarn {

/// The rule database: the rules of every object type, named checks and lists, and the checks of a whole model.
///
/// Fill one by the operations at the end, or have it loaded from rule files (`tarn::rules::loadRules`). Once it is
/// filled, reading it from many threads at once is safe, as long as no `BetaLoggingController` is attached. Every
/// pointer it hands out stays valid as long as the database and is not the caller's to free.
///
/// The bool that some look-ups take is for callers that share an interface with other databases; here a look-up is
/// exact and quiet whatever it is.
class TARN_EXPORT PhysicsData {
 public:
  PhysicsData();
  PhysicsData(PhysicsData const&) = delete;
  PhysicsData& operator=(PhysicsData const&) = delete;
  ~PhysicsData();

  /// The rules of an object type, by its path of type names: `/Case/Domain`. Null when there are none.
  [[nodiscard]] ObjDependDef const* getObjDependDef(std::string const& objectTypePath, bool flag) const;
  /// The value rule of a parameter of that type. Null when there is none.
  [[nodiscard]] ParamValueDef const* getParamValueDef(std::string const& objectTypePath, std::string const& paramName,
                                                      bool flag) const;
  [[nodiscard]] ModelRules const* getRules() const noexcept { return &rules_; }

  /// Null when there is none of that name.
  [[nodiscard]] Check const* getCheck(std::string const& name, bool flag) const;
  [[nodiscard]] List const* getList(std::string const& name, bool flag) const;
  [[nodiscard]] GlobalCheck const* getGlobalCheck(std::string const& name, bool flag) const;

  /// The names of the global checks in the order in which they are evaluated.
  [[nodiscard]] std::vector<std::string> getGlobalCheckNames() const;
  /// The types of the objects at the root of a model that validation looks at.
  [[nodiscard]] std::vector<std::string> const& getPertinentGlobalCheckRoots() const noexcept { return roots_; }

  /// Every quantity type with its units; the first of the units is what a value without usable units gets.
  [[nodiscard]] std::map<std::string, std::vector<std::string>> const& quantityTypes() const noexcept {
    return quantityTypes_;
  }
  /// The object types that have rules, in the order in which they were added.
  [[nodiscard]] std::vector<ObjDependDef const*> const& objects() const noexcept { return objectOrder_; }
  [[nodiscard]] std::vector<std::string> getCheckNames() const;
  [[nodiscard]] std::vector<std::string> getListNames() const;

  /// The controller that gathers beta messages of evaluations whose `EvalContext` names none. Not owned; null detaches.
  void attach(BetaLoggingController* controller) noexcept { beta_ = controller; }
  [[nodiscard]] BetaLoggingController* attachedController() const noexcept { return beta_; }

  // Filling. Without memory, nothing is added.

  /// The rules of that type, made when they are not there yet. `objectTypePath` begins with "/".
  ObjDependDef& addObject(std::string const& objectTypePath);
  /// Each returns false, and changes nothing, when the name is taken.
  bool addCheck(std::string const& name, std::unique_ptr<Check> check);
  bool addList(std::string const& name, std::unique_ptr<List> list);
  bool addGlobalCheck(std::string const& name, std::unique_ptr<GlobalCheck> check);
  bool addQuantityType(std::string const& name, std::vector<std::string> const& units);
  /// A root that is there already is not added again.
  void addPertinentRoot(std::string const& type);

 private:
  ModelRules rules_;
  std::unordered_map<std::string, std::unique_ptr<ObjDependDef>> objects_;
  std::vector<ObjDependDef const*> objectOrder_;
  std::map<std::string, std::unique_ptr<Check>> checks_;
  std::map<std::string, std::unique_ptr<List>> lists_;
  std::map<std::string, std::unique_ptr<GlobalCheck>> globalChecks_;
  std::vector<std::string> globalCheckOrder_;
  std::vector<std::string> roots_;
  std::map<std::string, std::vector<std::string>> quantityTypes_;
  BetaLoggingController* beta_ = nullptr;
};

}  // namespace tarn

// Named checks and lists on demand. Every call makes its own evaluation context without a cache, so the results for one
// model cannot affect those for another.
#include <tarn/EvalCheckList.h>

#include <tarn/Check.h>
#include <tarn/EvalContext.h>
#include <tarn/List.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFContext.h>

namespace tarn {

PhysicsEvaluator::~PhysicsEvaluator() = default;

EvalCheckList::~EvalCheckList() = default;

std::pair<bool, bool> EvalCheckList::evaluateCheck(std::string const& name, std::string const& path,
                                                   ModelTDF const* model) const {
  auto const* check = physicsData_->getCheck(name, false);
  if (check == nullptr) return {false, false};
  EvalContext evalContext(model);
  return {check->evaluate(TDFContext(path), &evalContext), true};
}

std::pair<std::vector<std::string>, bool> EvalCheckList::evaluateList(std::string const& name, std::string const& path,
                                                                      ModelTDF const* model) const {
  auto const* list = physicsData_->getList(name, false);
  if (list == nullptr) return {{}, false};
  EvalContext evalContext(model);
  return {list->evaluate(TDFContext(path), &evalContext), true};
}

bool EvalCheckList::hasCheck(std::string const& name, bool flag) const {
  return physicsData_->getCheck(name, flag) != nullptr;
}

bool EvalCheckList::hasList(std::string const& name, bool flag) const {
  return physicsData_->getList(name, flag) != nullptr;
}

}  // namespace tarn

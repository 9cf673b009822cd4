#include "expression/Quantities.h"

#include <algorithm>
#include <utility>

#include "diagnostics/NearMatch.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

thread_local bool isDetermining = false;

}  // namespace

DeterminingQuantityType::DeterminingQuantityType() noexcept : wasActive_(isDetermining) {
  isDetermining = true;
}

DeterminingQuantityType::~DeterminingQuantityType() {
  isDetermining = wasActive_;
}

bool DeterminingQuantityType::isActive() noexcept {
  return isDetermining;
}

QuantityIndex::QuantityIndex(PhysicsData const& data) : data_(data) {
  if (data.quantityTypes().empty()) return;
  std::unordered_map<std::string, std::shared_ptr<ParameterQuantity>> found;
  for (auto const* object : data.objects()) {
    for (auto const& param : object->params()) {
      auto const* def = param->valueDef();
      if (def == nullptr || !def->quantityType) continue;
      auto const* fixed = dynamic_cast<FixedText const*>(def->quantityType.get());
      auto const* type = fixed != nullptr ? data.findQuantityType(fixed->text()) : nullptr;
      // A name that no quantity type has converts nothing.
      if (fixed != nullptr && type == nullptr) continue;
      auto& quantity = found[param->name];
      if (!quantity) quantity = std::make_shared<ParameterQuantity>();
      quantity->each.emplace(def, type);
    }
  }
  if (found.empty()) return;

  std::unordered_map<std::string_view, std::size_t> all;
  for (auto const* object : data.objects()) {
    for (auto const& param : object->params()) {
      if (found.contains(param->name)) ++all[param->name];
    }
  }
  for (auto& [name, quantity] : found) {
    auto const* first = quantity->each.begin()->second;
    bool const same =
        std::all_of(quantity->each.begin(), quantity->each.end(), [&](auto const& one) { return one.second == first; });
    if (same) quantity->likely = first;
    if (same && first != nullptr && all[name] == quantity->each.size()) {
      quantity->sure = first;
      quantity->each.clear();
    }
    byName_.emplace(name, std::move(quantity));
  }
}

std::shared_ptr<ParameterQuantity const> QuantityIndex::of(std::string const& parameter) const {
  auto const found = byName_.find(parameter);
  return found == byName_.end() ? nullptr : found->second;
}

std::string const& QuantityIndex::nameOf(QuantityType const& type) const {
  static std::string const none;
  auto const found = std::find_if(data_.quantityTypes().begin(), data_.quantityTypes().end(),
                                  [&](auto const& entry) { return &entry.second == &type; });
  return found == data_.quantityTypes().end() ? none : found->first;
}

std::vector<Issue> QuantityBinding::bind(Expression& expression) {
  expression.bind(*this);
  for (auto* literal : open_) literal->settle(*this);
  open_.clear();
  std::stable_sort(issues_.begin(), issues_.end(),
                   [](Issue const& a, Issue const& b) { return a.range.offset < b.range.offset; });
  return std::exchange(issues_, {});
}

std::string listedUnits(QuantityType const& type) {
  constexpr std::size_t most = 10;
  std::string result;
  for (std::size_t i = 0; i < type.units().size() && i < most; ++i) {
    result += (i == 0 ? "[" : ", [") + type.units()[i].text + "]";
  }
  return type.units().size() > most ? result + ", ..." : result;
}

}  // namespace tarn::rules

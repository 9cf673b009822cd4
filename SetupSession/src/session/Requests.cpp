#include "session/Requests.h"

#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>

namespace tarn::session {

void Requests::add(Step const& step) {
  Added added;
  added.values.reserve(step.made.size());
  added.decided.reserve(step.made.size());
  added.made.reserve(step.made.size());
  if (added_.size() == added_.capacity()) added_.reserve(2 * added_.size() + 1);
  try {
    for (Edit const& edit : step.made) {
      switch (edit.kind) {
        case Edit::Kind::SetParam: {
          auto const entry = values_.try_emplace(Item{edit.path, edit.name}).first;
          entry->second.push_back({step.number, edit.value});
          added.values.push_back(entry);
          break;
        }
        case Edit::Kind::ActivateParam:
        case Edit::Kind::DeactivateParam:
        case Edit::Kind::ActivateObject:
        case Edit::Kind::DeactivateObject: {
          bool const isOfParam = edit.kind == Edit::Kind::ActivateParam || edit.kind == Edit::Kind::DeactivateParam;
          Item item = {edit.path, isOfParam ? std::optional(edit.name) : std::nullopt};
          auto const entry = decided_.try_emplace(std::move(item)).first;
          ++entry->second;
          added.decided.push_back(entry);
          break;
        }
        case Edit::Kind::AddObject:
        case Edit::Kind::DuplicateObject:
        case Edit::Kind::RenameObject: {
          std::string path = edit.path;
          if (edit.kind != Edit::Kind::AddObject) {
            path.replace(path.size() - PathUtils::lastName(path).size(), std::string::npos, edit.name);
          }
          auto const entry = made_.try_emplace(std::move(path)).first;
          entry->second.push_back(step.number);
          added.made.push_back(entry);
          break;
        }
        case Edit::Kind::RemoveObject:
          break;
      }
    }
  } catch (...) {
    remove(added);
    throw;
  }
  added_.push_back(std::move(added));
}

void Requests::remove(Added const& added) noexcept {
  for (auto const& entry : added.values) entry->second.pop_back();
  for (auto const& entry : added.decided) --entry->second;
  for (auto const& entry : added.made) entry->second.pop_back();
}

void Requests::removeLast() noexcept {
  remove(added_.back());
  added_.pop_back();
}

void Requests::clear() noexcept {
  added_.clear();
  values_.clear();
  decided_.clear();
  made_.clear();
}

Requests::Given const* Requests::lastValue(Item const& item) const {
  auto const entry = values_.find(item);
  return entry == values_.end() || entry->second.empty() ? nullptr : &entry->second.back();
}

std::size_t Requests::lastCopy(std::string_view path) const {
  std::size_t last = 0;
  for (; !path.empty(); path = PathUtils::parentOf(path)) {
    auto const entry = made_.find(path);
    if (entry != made_.end() && !entry->second.empty()) last = std::max(last, entry->second.back());
  }
  return last;
}

}  // namespace tarn::session

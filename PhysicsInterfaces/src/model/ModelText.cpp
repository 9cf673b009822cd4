// The state is filled while the text is read, without a list of items between. Positions are not kept: few items are
// asked for, if any, and reading the text once more takes less time than remembering all of them would.
#include <tarn/ModelText.h>

#include <algorithm>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "model/ModelTextFile.h"
#include "model/ModelTextReader.h"

namespace tarn {

namespace {

using Item = ModelText::Item;
using Occurrence = ModelText::Occurrence;

// Fills a state, and keeps what is wrong with the text.
class Filling final : private ModelTextSink {
 public:
  Filling(ModelState& state, std::vector<ModelText::Fault>& faults, std::vector<Item>& repeated)
      : state_(state), faults_(faults), repeated_(repeated) {}

  // Returns the number of faults.
  std::size_t read(std::string_view text) {
    readModelText(text, *this);
    // The reader finds a block that is left open only at the end.
    std::stable_sort(faults_.begin(), faults_.end(), [](auto const& a, auto const& b) { return a.line < b.line; });
    auto const key = [](Item const& item) { return std::tie(item.path, item.name); };
    std::sort(repeated_.begin(), repeated_.end(), [&](Item const& a, Item const& b) { return key(a) < key(b); });
    auto const same = [&](Item const& a, Item const& b) { return key(a) == key(b); };
    repeated_.erase(std::unique(repeated_.begin(), repeated_.end(), same), repeated_.end());
    return faultCount_;
  }

 private:
  void onItem(std::string_view path, std::string_view name, std::string_view value, ModelTextPlace const& /*place*/,
              bool /*isPathInLine*/) override {
    // Most items of one object are adjacent, and most objects come in the order of the state.
    if (!object_ || path != *path_) {
      auto const entry = state_.try_emplace(state_.end(), std::string(path));
      path_ = &entry->first;
      object_ = &entry->second;
    }
    if (name.empty()) return;
    std::size_t const before = object_->size();
    object_->try_emplace(object_->end(), std::string(name), value);
    if (object_->size() == before) repeated_.push_back({std::string(path), std::string(name)});
  }

  void onFault(std::string const& reason, std::size_t column, std::size_t line) override {
    if (faultCount_++ < ModelText::mostFaults) faults_.push_back({line, column, reason});
  }

  ModelState& state_;
  std::string const* path_ = nullptr;
  ObjectState* object_ = nullptr;
  std::vector<ModelText::Fault>& faults_;
  std::size_t faultCount_ = 0;
  std::vector<Item>& repeated_;
};

// Finds the occurrences of items.
class Search final : private ModelTextSink {
 public:
  Search(std::vector<Item> const& items, std::shared_ptr<std::string const> source)
      : source_(std::move(source)), found_(items.size()) {
    for (std::size_t i = 0; i < items.size(); ++i) {
      Wanted& wanted = wanted_[items[i].path];
      if (items[i].name) {
        wanted.params.emplace(*items[i].name, i);
      } else {
        wanted.objects.push_back(i);
      }
      lengths_.insert(items[i].path.size());
    }
  }

  std::vector<std::vector<Occurrence>> in(std::string_view text) {
    readModelText(text, *this);
    return std::move(found_);
  }

 private:
  // The items that were asked for under one path, by their index.
  struct Wanted {
    std::vector<std::size_t> objects;  // emptied when they have been found
    std::unordered_multimap<std::string_view, std::size_t> params;
  };

  void onItem(std::string_view path, std::string_view name, std::string_view value, ModelTextPlace const& place,
              bool isPathInLine) override {
    if (isPathInLine && path != path_) mentionAll(path, place);
    if (!isKept_ || path != path_) {
      path_ = path;
      params_ = find(path);
      isKept_ = true;
    }
    if (!params_) return;
    auto const [begin, end] = params_->params.equal_range(name);
    for (auto one = begin; one != end; ++one) {
      auto& occurrences = found_[one->second];
      if (occurrences.size() < ModelText::mostOccurrences) {
        occurrences.push_back({placeOf(name, place), std::string(value)});
      }
    }
  }

  void onOpening(std::string_view path, std::string_view label, ModelTextPlace const& place) override {
    mention(path, label, place);
  }

  void onFault(std::string const&, std::size_t, std::size_t) override {}

  // The line mentions the object at `path` and all above it. Those that the previous path shares are known.
  void mentionAll(std::string_view path, ModelTextPlace const& place) {
    auto const [differs, unused] = std::mismatch(path.begin(), path.end(), path_.begin(), path_.end());
    auto const shared = static_cast<std::size_t>(differs - path.begin());
    for (std::size_t begin = 0; begin < path.size();) {
      std::size_t const end = std::min(path.find('/', begin + 1), path.size());
      if (end >= shared) mention(path.substr(0, end), path.substr(begin + 1), place);
      begin = end;
    }
  }

  void mention(std::string_view path, std::string_view component, ModelTextPlace const& place) {
    Wanted* const wanted = find(path);
    if (!wanted) return;
    for (std::size_t const i : wanted->objects) found_[i].push_back({placeOf(component, place), {}});
    wanted->objects.clear();
  }

  [[nodiscard]] TextPlace placeOf(std::string_view part, ModelTextPlace const& place) const {
    return {source_, place.number, place.columnOf(part)};
  }

  // Most paths are not wanted, and of most of them the length shows it.
  [[nodiscard]] Wanted* find(std::string_view path) {
    if (!lengths_.contains(path.size())) return nullptr;
    auto const entry = wanted_.find(path);
    return entry == wanted_.end() ? nullptr : &entry->second;
  }

  std::shared_ptr<std::string const> const source_;
  std::unordered_map<std::string_view, Wanted> wanted_;
  std::unordered_set<std::size_t> lengths_;
  std::vector<std::vector<Occurrence>> found_;

  // The path of the previous item, and what is wanted there.
  std::string path_;
  bool isKept_ = false;
  Wanted* params_ = nullptr;
};

}  // namespace

ModelText ModelText::read(std::string const& file) {
  ModelTextFile read = ModelTextFile::read(file);
  return {std::move(read.source), std::move(read.text)};
}

ModelText::ModelText(std::string source, std::string text)
    : source_(std::make_shared<std::string const>(std::move(source))), text_(ModelTextFile::cleaned(std::move(text))) {
  faultCount_ = Filling(state_, faults_, repeated_).read(text_);
}

std::vector<std::vector<ModelText::Occurrence>> ModelText::locate(std::vector<Item> const& items) const {
  if (items.empty()) return {};
  return Search(items, source_).in(text_);
}

}  // namespace tarn

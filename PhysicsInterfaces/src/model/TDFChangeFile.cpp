// Collects the items of model text. The path of an item is parsed only if it differs from that of the item before.
#include <tarn/TDFChangeFile.h>

#include <iostream>
#include <string_view>
#include <type_traits>
#include <utility>

#include <tarn/Error.h>

#include "model/ModelTextFile.h"
#include "model/ModelTextReader.h"

namespace tarn {

namespace {

// Appends the items of one text.
class Items final : private ModelTextSink {
 public:
  Items(std::string source, TDFChangeFile::InputMode mode, std::vector<TDFChange>& items)
      : source_(std::move(source)), strict_(mode == TDFChangeFile::Strict), items_(items) {}

  void read(std::string_view text) { readModelText(text, *this); }

 private:
  void onItem(std::string_view path, std::string_view name, std::string_view value, ModelTextPlace const& /*place*/,
              bool /*isPathInLine*/) override {
    if (path != lastPath_.getFullPath()) lastPath_ = TDFPath(std::string(path));
    items_.emplace_back(lastPath_, std::string(name), std::string(value));
  }

  // Strict mode stops here.
  void onFault(std::string const& reason, std::size_t column, std::size_t line) override {
    std::string const text = source_ + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + reason;
    if (strict_) throw ParseError("TDFChangeFile", "TDFChangeFile", text);
    std::cerr << text << '\n';
  }

  std::string const source_;
  bool const strict_;
  TDFPath lastPath_;
  std::vector<TDFChange>& items_;
};

/// The items as a state. Takes the strings of items that are handed over.
template <class Items>
ModelState stateOf(Items&& items) {
  constexpr bool areHandedOver = !std::is_lvalue_reference_v<Items>;
  ModelState state;
  std::string const* path = nullptr;
  ObjectState* object = nullptr;
  for (auto& item : items) {
    // The items of one object are mostly adjacent, and then share their path. Objects and names mostly come in order.
    if (path != &item.getFullPath()) {
      path = &item.getFullPath();
      object = &state.try_emplace(state.end(), *path)->second;
    }
    if (item.name.empty()) continue;
    if constexpr (areHandedOver) {
      object->try_emplace(object->end(), std::move(item.name), std::move(item.value));
    } else {
      object->try_emplace(object->end(), item.name, item.value);
    }
  }
  return state;
}

}  // namespace

TDFChangeFile::TDFChangeFile(std::vector<std::string> const& files, std::vector<std::string> const& extra,
                             InputMode mode) {
  for (std::string const& name : files) {
    ModelTextFile const file = ModelTextFile::read(name);
    Items(file.source, mode, items_).read(file.text);
  }
  for (std::size_t i = 0; i < extra.size(); ++i) {
    Items("<text " + std::to_string(i + 1) + '>', mode, items_).read(ModelTextFile::cleaned(extra[i]));
  }
}

ModelState TDFChangeFile::toModelState() const& {
  return stateOf(items_);
}

ModelState TDFChangeFile::toModelState() && {
  return stateOf(std::move(items_));
}

}  // namespace tarn

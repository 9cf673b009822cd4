// Collects the items of model text. The path of an item is parsed only if it differs from that of the item before.
#include <tarn/TDFChangeFile.h>

#include <iostream>
#include <string_view>
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

ModelState TDFChangeFile::toModelState() const {
  ModelState state;
  std::string const* path = nullptr;
  ObjectState* object = nullptr;
  for (TDFChange const& item : items_) {
    // Most items of one object are adjacent.
    if (!path || *path != item.getFullPath()) {
      path = &item.getFullPath();
      object = &state[*path];
    }
    if (!item.name.empty()) object->emplace(item.name, item.value);
  }
  return state;
}

}  // namespace tarn

// Each line is copied, and only the words in it that are names are replaced. The outline says which object and which
// parameter a line is about; the parts of the line say where the words are.
#include <tarn/ModelTextRename.h>

#include <algorithm>
#include <vector>

#include "model/ModelTextLine.h"
#include "model/ModelTextOutline.h"

namespace tarn {

namespace {

using Outline = ModelTextOutline;
using Kind = ModelTextOutline::Kind;

/// Replaces parts of one line, from left to right.
class LineCopy {
 public:
  LineCopy(std::string_view line, std::string& out) noexcept : rest_(line), out_(out) {}
  ~LineCopy() { out_ += rest_; }
  LineCopy(LineCopy const&) = delete;
  LineCopy& operator=(LineCopy const&) = delete;

  /// `part` must point into what was not replaced yet.
  void replace(std::string_view part, std::string_view replacement) {
    std::size_t const before = static_cast<std::size_t>(part.data() - rest_.data());
    out_ += rest_.substr(0, before);
    out_ += replacement;
    rest_.remove_prefix(before + part.size());
  }

 private:
  std::string_view rest_;
  std::string& out_;
};

class Renaming {
 public:
  Renaming(std::string_view text, ModelTextNames const& names) : outline_(text), names_(names) {}

  [[nodiscard]] std::string run() {
    std::string result(outline_.mark());
    for (Outline::Line const& line : outline_.lines()) {
      if (line.kind == Kind::Other) {
        result += line.raw;
        continue;
      }
      if (line.kind == Kind::Parameter && isRemoved(line)) continue;
      ModelTextLine const parts = ModelTextLine::parse(line.raw);
      LineCopy copy(line.raw, result);
      if (line.kind == Kind::Opening || line.kind == Kind::Closing) {
        renameLabel(parts, outline_.objects()[outline_.blocks()[line.block].object].path, copy);
        continue;
      }
      if (line.isPathInLine) renamePath(parts.path, copy);
      if (line.kind == Kind::Parameter) renameParam(line, parts, copy);
    }
    return result;
  }

 private:
  [[nodiscard]] std::optional<std::string> const* newNameOf(Outline::Line const& line) const {
    if (names_.params.empty()) return nullptr;
    auto const object = names_.params.find(outline_.objects()[line.object].path);
    if (object == names_.params.end()) return nullptr;
    auto const param = object->second.find(line.name);
    return param == object->second.end() ? nullptr : &param->second;
  }

  [[nodiscard]] bool isRemoved(Outline::Line const& line) const {
    auto const* const name = newNameOf(line);
    return name != nullptr && !name->has_value();
  }

  void renameParam(Outline::Line const& line, ModelTextLine const& parts, LineCopy& copy) const {
    if (auto const* const name = newNameOf(line)) copy.replace(parts.name, **name);
  }

  void renamePath(std::string_view path, LineCopy& copy) const {
    if (names_.objects.empty()) return;
    for (std::size_t begin = 0; begin < path.size();) {
      std::size_t const end = std::min(path.find('/', begin + 1), path.size());
      auto const found = names_.objects.find(Outline::canonicalPath(path.substr(0, end)));
      if (found != names_.objects.end()) copy.replace(path.substr(begin + 1, end - begin - 1), found->second);
      begin = end;
    }
  }

  // Type and name are divided by a colon and blanks, which stay.
  void renameLabel(ModelTextLine const& parts, std::string const& path, LineCopy& copy) const {
    auto const found = names_.objects.find(path);
    if (found == names_.objects.end()) return;
    std::string_view const component = found->second;
    std::size_t const colon = component.find(':');
    copy.replace(parts.label.type, component.substr(0, colon));
    if (parts.label.name.empty()) return;
    copy.replace(parts.label.name, colon == std::string_view::npos ? std::string_view() : component.substr(colon + 1));
  }

  Outline const outline_;
  ModelTextNames const& names_;
};

}  // namespace

std::string renameInModelText(std::string_view text, ModelTextNames const& names) {
  return Renaming(text, names).run();
}

}  // namespace tarn

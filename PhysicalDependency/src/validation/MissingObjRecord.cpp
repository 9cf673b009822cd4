// The group of absent required objects that a validation is trying out. It only keeps count. The validator decides what
// makes an object needed and what is reported.
//
// A singleton is entered under its type as its name, so that both kinds of group are handled in the same way.

#include "validation/MissingObjRecord.h"

namespace tarn {

void MissingObjRecord::beginSingleton(std::string const& objPath, std::string const& type) {
  active_ = true;
  isSingleton_ = true;
  objPath_ = objPath;
  type_ = type;
  pending_.insert(type);
}

void MissingObjRecord::beginNamed(std::string const& objPath, std::string const& type,
                                  std::vector<std::string> const& names) {
  active_ = true;
  isSingleton_ = false;
  objPath_ = objPath;
  type_ = type;
  pending_.insert(names.begin(), names.end());
}

bool MissingObjRecord::matches(std::string_view path) {
  if (!active_) return false;
  parse(path);
  return parsedParent_ == objPath_ && parsedType_ == type_ && pending_.count(parsedName_) != 0;
}

void MissingObjRecord::finishObject(bool confirmed) {
  if (confirmed) reported_.insert(parsedName_);
  pending_.erase(parsedName_);
}

std::vector<std::string> MissingObjRecord::getReportedNames() const {
  if (!active_) return {};
  return {reported_.begin(), reported_.end()};
}

void MissingObjRecord::clear() noexcept {
  pending_.clear();
  reported_.clear();
  active_ = false;
}

void MissingObjRecord::parse(std::string_view path) {
  // The root has no parts, so the parts of the previous path stay.
  if (path.empty()) return;

  std::size_t const slash = path.rfind('/');
  std::size_t const component = slash == std::string_view::npos ? 0 : slash + 1;
  parsedParent_ = path.substr(0, slash == std::string_view::npos ? 0 : slash);

  // A colon before the last component belongs to an object above this one.
  std::size_t const colon = path.rfind(':');
  if (colon == std::string_view::npos || colon < component) {
    parsedType_ = path.substr(component);
    parsedName_ = parsedType_;
  } else {
    parsedType_ = path.substr(component, colon - component);
    parsedName_ = path.substr(colon + 1);
  }
}

}  // namespace tarn

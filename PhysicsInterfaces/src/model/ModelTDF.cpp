// Defines the destructor here, so that there is one virtual table and every library of the family sees the same type.
// Models derive from the interface elsewhere.
#include <tarn/ModelTDF.h>

#include <algorithm>

namespace tarn {

ModelTDF::~ModelTDF() = default;

bool ModelTDF::anyChildOfType(std::string const& path, std::string const& type,
                              std::function<bool(std::string const& child)> const& visit) const {
  std::vector<std::string> children;
  getChildObjectPathsByType(path, type, children);
  return std::any_of(children.begin(), children.end(), visit);
}

ObjectReader const* ModelTDF::objectReader() const noexcept {
  return nullptr;
}

}  // namespace tarn

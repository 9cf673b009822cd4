#pragma once

#include <string>
#include <string_view>

namespace tarn {

/// A parameter as a key: object path, "/" and name, without building that string.
struct ParamKey {
  std::string_view objPath;
  std::string_view name;

  [[nodiscard]] std::string text() const {
    std::string text;
    text.reserve(objPath.size() + 1 + name.size());
    return text.append(objPath).append("/").append(name);
  }
};

/// Byte order of keys. A `ParamKey` compares like its string. So a map by strings can be searched without building a
/// key for each parameter, most of which are not in the map.
struct ParamKeyOrder {
  using is_transparent = void;

  bool operator()(std::string_view a, std::string_view b) const noexcept { return a < b; }
  bool operator()(std::string_view a, ParamKey const& b) const noexcept { return compare(a, b) < 0; }
  bool operator()(ParamKey const& a, std::string_view b) const noexcept { return compare(b, a) > 0; }

 private:
  static int compare(std::string_view text, ParamKey const& key) noexcept {
    if (int const order = text.substr(0, key.objPath.size()).compare(key.objPath)) return order;
    text.remove_prefix(key.objPath.size());
    if (int const order = text.substr(0, 1).compare("/")) return order;
    return text.substr(1).compare(key.name);
  }
};

}  // namespace tarn

#pragma once

#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn::PathUtils {

/// The separator between the components of a path, and the one between type and name.
TARN_EXPORT extern std::string const pathSeparator;
TARN_EXPORT extern std::string const nameSeparator;

/// Three-way order of paths: negative, zero or positive. Goes component by component, each as bytes, the type before
/// the name and a component without a name before one with. All paths below `p` lie directly behind `p` in this order,
/// with nothing between them, which byte order does not give: `/A B` would come between `/A` and `/A/B`.
[[nodiscard]] TARN_EXPORT int comparePaths(std::string const& a, std::string const& b) noexcept;

/// Orders paths by `comparePaths`, for sorted containers.
struct PathOrder {
  bool operator()(std::string const& a, std::string const& b) const noexcept { return comparePaths(a, b) < 0; }
};

/// True when `candidate` equals `parent` or lies below it, at any depth.
[[nodiscard]] TARN_EXPORT bool isChildPath(std::string const& parent, std::string const& candidate) noexcept;

/// The path without its last component: the text before the last "/", or "" when there is none.
[[nodiscard]] TARN_EXPORT std::string_view parentOf(std::string_view path) noexcept;

/// The object type path of an object path: the types of its components with all names dropped, `/A:x/B` giving `/A/B`.
[[nodiscard]] TARN_EXPORT std::string typePathOf(std::string_view path);

/// The type and the name of the last component of `path`; of a component without a name, both are its type.
[[nodiscard]] TARN_EXPORT std::string_view lastType(std::string_view path) noexcept;
[[nodiscard]] TARN_EXPORT std::string_view lastName(std::string_view path) noexcept;

}  // namespace tarn::PathUtils

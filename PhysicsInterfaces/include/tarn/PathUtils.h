#pragma once

#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn::PathUtils {

/// The separator between the components of a path, and the one between type and name.
TARN_EXPORT extern std::string const pathSeparator;
TARN_EXPORT extern std::string const nameSeparator;

/// Compares two paths: negative, zero or positive. It compares component by component, each as bytes, first the type,
/// then the name; a component without a name comes before one with a name. In this order all paths below `p` come
/// directly after `p`. Byte order does not guarantee that: there `/A B` comes between `/A` and `/A/B`.
[[nodiscard]] TARN_EXPORT int comparePaths(std::string const& a, std::string const& b) noexcept;

/// Orders paths by `comparePaths`, for sorted containers.
struct PathOrder {
  bool operator()(std::string const& a, std::string const& b) const noexcept { return comparePaths(a, b) < 0; }
};

/// Returns whether `candidate` is `parent` or is below it, at any depth.
[[nodiscard]] TARN_EXPORT bool isChildPath(std::string const& parent, std::string const& candidate) noexcept;

/// The path without its last component: the text before the last "/", or "" if there is no "/".
[[nodiscard]] TARN_EXPORT std::string_view parentOf(std::string_view path) noexcept;

/// The object type path of an object path: its components without their names, `/A/B` for `/A:x/B`. `PhysicsData` holds
/// the rules of an object under this path. "" for the root.
[[nodiscard]] TARN_EXPORT std::string typePathOf(std::string_view path);

/// The type and the name of the last component of `path`. A component without a name has its type as name.
[[nodiscard]] TARN_EXPORT std::string_view lastType(std::string_view path) noexcept;
[[nodiscard]] TARN_EXPORT std::string_view lastName(std::string_view path) noexcept;

}  // namespace tarn::PathUtils

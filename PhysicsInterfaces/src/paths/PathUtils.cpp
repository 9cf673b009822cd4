// Compares and splits path strings character by character. Sorted containers call these for every comparison, so
// nothing is parsed and nothing allocated.
#include <tarn/PathUtils.h>

#include <algorithm>

namespace tarn::PathUtils {

std::string const pathSeparator = "/";
std::string const nameSeparator = ":";

namespace {

// The rank of a character at the first difference of two paths. The end of the path comes before "/", "/" before ":",
// and ":" before all others. With this order, comparing characters is the same as comparing components: a type or name
// that ends here is a prefix of the longer one, and a component without a name comes before one with a name.
int rankAt(std::string const& path, std::size_t i) noexcept {
  if (i == path.size()) return 0;
  char const c = path[i];
  if (c == '/') return 1;
  if (c == ':') return 2;
  return 3 + static_cast<unsigned char>(c);
}

std::string_view lastComponent(std::string_view path) noexcept {
  std::size_t const slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace

int comparePaths(std::string const& a, std::string const& b) noexcept {
  std::size_t const shorter = std::min(a.size(), b.size());
  auto const end = a.begin() + static_cast<std::string::difference_type>(shorter);
  auto const i = static_cast<std::size_t>(std::mismatch(a.begin(), end, b.begin()).first - a.begin());
  return rankAt(a, i) - rankAt(b, i);
}

bool isChildPath(std::string const& parent, std::string const& candidate) noexcept {
  if (parent.empty() || parent == "/") return true;
  return candidate.starts_with(parent) && (candidate.size() == parent.size() || candidate[parent.size()] == '/');
}

std::string_view parentOf(std::string_view path) noexcept {
  std::size_t const slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::string typePathOf(std::string_view path) {
  std::string types;
  types.reserve(path.size());
  bool inName = false;
  for (char const c : path) {
    if (c == '/') inName = false;
    if (c == ':') inName = true;
    if (!inName) types += c;
  }
  return types;
}

std::string_view lastType(std::string_view path) noexcept {
  std::string_view const last = lastComponent(path);
  return last.substr(0, last.find(':'));
}

std::string_view lastName(std::string_view path) noexcept {
  std::string_view const last = lastComponent(path);
  std::size_t const colon = last.find(':');
  return colon == std::string_view::npos ? last : last.substr(colon + 1);
}

}  // namespace tarn::PathUtils

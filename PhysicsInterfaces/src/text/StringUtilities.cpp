// Small text helpers. None depends on the locale of the process.
#include <tarn/StringUtilities.h>

#include <algorithm>
#include <utility>

namespace tarn::StringUtilities {

namespace {

// Longer texts are not misspelt names. The distance takes the product of the lengths.
constexpr std::size_t longestSlip = 200;

// How many wrong characters a text of this length may have and still be recognised.
std::size_t slipLimit(std::size_t length) noexcept {
  std::size_t const bySize = length <= 4 ? 1 : length <= 8 ? 2 : 3;
  return std::min(bySize, length / 3);
}

// The number of insertions, deletions, replacements and swaps of neighbours that change `a` into `b`, or `limit` + 1 as
// soon as it is certain to exceed `limit`.
std::size_t editDistance(std::string_view a, std::string_view b, std::size_t limit) {
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    std::size_t least = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      std::size_t const replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
      }
      least = std::min(least, row[j]);
    }
    // A later row depends on this row, or through a swap, which costs one more, on the row before. So no cell of the
    // last row can be less than the least of these two.
    if (least > limit && *std::min_element(last.begin(), last.end()) >= limit) return limit + 1;
    std::swap(beforeLast, last);
    std::swap(last, row);
  }
  return std::min(last[b.size()], limit + 1);
}

// Calls `take` with each item of `text`. An empty text has no items; otherwise every delimiter separates two.
template <typename Take>
void forEachItem(std::string_view text, char delimiter, Take take) {
  if (text.empty()) return;
  for (;;) {
    std::size_t const end = text.find(delimiter);
    take(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

}  // namespace

bool isPathRootedAt(std::string const& root, std::string const& path) noexcept {
  if (root.empty() || root == "/") return true;
  return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

bool leadingSubstrEqual(std::string const& a, std::string const& b, unsigned long long n) noexcept {
  auto const head = [n](std::string_view text) {
    return text.substr(0, n < text.size() ? static_cast<std::size_t>(n) : text.size());
  };
  return head(a) == head(b);
}

void splitPathName(std::string const& paramPath, std::string* objPath, std::string* name) {
  std::size_t const slash = paramPath.rfind('/');
  // Copy both parts before writing either: a result may be the text itself.
  std::string before = slash == std::string::npos ? std::string() : paramPath.substr(0, slash);
  std::string behind = slash == std::string::npos ? paramPath : paramPath.substr(slash + 1);
  if (objPath) *objPath = std::move(before);
  if (name) *name = std::move(behind);
}

std::string_view trimmed(std::string_view text) noexcept {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string removeWhitespace(std::string const& text) {
  return std::string(trimmed(text));
}

std::vector<std::string> splitValue(std::string const& value, char delimiter) {
  std::vector<std::string> items;
  forEachItem(value, delimiter, [&items](std::string_view item) { items.emplace_back(item); });
  return items;
}

std::vector<std::string> stringToVector(std::string const& text, char delimiter) {
  std::vector<std::string> items;
  forEachItem(text, delimiter, [&items](std::string_view item) { items.emplace_back(trimmed(item)); });
  return items;
}

std::string vectorToString(std::vector<std::string> const& items, char delimiter) {
  std::size_t length = items.size();
  for (std::string const& item : items) length += item.size();
  std::string text;
  text.reserve(length);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += delimiter;
    text += items[i];
  }
  return text;
}

std::string toLower(std::string text) {
  for (char& c : text) c = toLower(c);
  return text;
}

std::string toUpper(std::string text) {
  for (char& c : text) c = toUpper(c);
  return text;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return toLower(x) == toLower(y); });
}

std::optional<bool> asYesNo(std::string_view word) noexcept {
  for (std::string_view const yes : {"yes", "true", "on"}) {
    if (equalIgnoringCase(word, yes)) return true;
  }
  for (std::string_view const no : {"no", "false", "off"}) {
    if (equalIgnoringCase(word, no)) return false;
  }
  return std::nullopt;
}

std::string nearMatch(std::string_view text, std::vector<std::string> const& candidates) {
  if (text.size() > longestSlip) return {};
  for (std::string const& candidate : candidates) {
    if (candidate != text && equalIgnoringCase(candidate, text)) return candidate;
  }
  std::string const* nearest = nullptr;
  std::size_t limit = slipLimit(text.size());
  for (std::string const& candidate : candidates) {
    if (limit == 0) break;  // no candidate can be nearer
    auto const [shorter, longer] = std::minmax({candidate.size(), text.size()});
    if (longer - shorter > limit || candidate == text) continue;
    std::size_t const distance = editDistance(text, candidate, limit);
    if (distance > limit) continue;
    nearest = &candidate;
    limit = distance - 1;  // only a nearer one replaces it, so the first of several counts
  }
  return nearest ? *nearest : std::string();
}

}  // namespace tarn::StringUtilities

#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace tarn::tool {

/// Finds out whether rule files have changed, by looking at them. This also works where editors replace a file by
/// renaming another, where files come and go in a folder, and on network drives.
class RuleWatch {
 public:
  /// `paths` are rule files and folders, as `loadRules` takes them. They need not exist.
  explicit RuleWatch(std::vector<std::string> paths) : paths_(std::move(paths)), seen_(look()) {}

  /// Whether something differs from the last look that was reported. Reports a change once, and only when two looks in
  /// a row see the same, so that a file that is being written is not read.
  [[nodiscard]] bool hasChanged();

 private:
  /// Size, time of the last change and number of the file, by its name. A file that cannot be read has none.
  using Look = std::map<std::string, std::tuple<std::uintmax_t, std::int64_t, std::uintmax_t>>;
  [[nodiscard]] Look look() const;

  std::vector<std::string> paths_;
  Look seen_;
  Look former_ = seen_;
};

}  // namespace tarn::tool

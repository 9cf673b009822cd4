#include "lint/RuleWatch.h"

#include <sys/stat.h>

#include <system_error>
#include <utility>

namespace tarn::tool {

namespace fs = std::filesystem;

bool RuleWatch::hasChanged() {
  Look now = look();
  bool const isSettled = now == former_;
  former_ = std::move(now);
  if (!isSettled || former_ == seen_) return false;
  seen_ = former_;
  return true;
}

RuleWatch::Look RuleWatch::look() const {
  Look look;
  auto const add = [&look](std::string const& file) {
    struct stat status = {};
    if (::stat(file.c_str(), &status) != 0) {
      look[file] = {};
      return;
    }
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    look[file] = {static_cast<std::uintmax_t>(status.st_size),
                  static_cast<std::int64_t>(status.st_mtim.tv_sec) * nanoseconds + status.st_mtim.tv_nsec,
                  static_cast<std::uintmax_t>(status.st_ino)};
  };
  for (std::string const& path : paths_) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
      add(path);
      continue;
    }
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
      std::string name = entry->path().string();
      if (name.ends_with(".rules.yaml")) add(name);
    }
  }
  return look;
}

}  // namespace tarn::tool

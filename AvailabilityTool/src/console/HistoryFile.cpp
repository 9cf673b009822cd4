// Plain lines of text. Each is appended in one write. The file belongs to the user and can have become anything: a link
// to /dev/null, a pipe, a gigabyte of other data. So it is opened without waiting, used only if it is a regular file,
// and read from its end.
#include "console/HistoryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <system_error>

#include <tarn/StringUtilities.h>

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;

constexpr mode_t ownerOnly = 0600;
/// The part of a file that is read: more than twice the size of the kept lines, if they have the usual length.
constexpr off_t mostBytes = off_t{1} << 20;

class OpenFile {
 public:
  OpenFile(fs::path const& path, int flags)
      : descriptor_(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, ownerOnly)) {
    struct stat status {};
    if (descriptor_ != -1 && ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) size_ = status.st_size;
  }
  ~OpenFile() {
    if (descriptor_ != -1) ::close(descriptor_);
  }
  OpenFile(OpenFile const&) = delete;
  OpenFile& operator=(OpenFile const&) = delete;

  [[nodiscard]] bool isUsable() const { return size_ >= 0; }
  [[nodiscard]] off_t size() const { return size_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
  off_t size_ = -1;
};

std::string contentFrom(OpenFile const& file, off_t begin) {
  std::string content(static_cast<std::size_t>(file.size() - begin), '\0');
  std::size_t have = 0;
  while (have < content.size()) {
    ssize_t const count =
        ::pread(file.descriptor(), content.data() + have, content.size() - have, begin + static_cast<off_t>(have));
    if (count <= 0) break;
    have += static_cast<std::size_t>(count);
  }
  content.resize(have);
  return content;
}

bool writeAll(int descriptor, std::string const& text) {
  return ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// Whether the line is UTF-8 without control characters.
bool isPrintableText(std::string_view text) {
  std::size_t following = 0;
  for (char const c : text) {
    auto const byte = static_cast<unsigned char>(c);
    if (following > 0) {
      if ((byte & 0xC0U) != 0x80) return false;
      --following;
    } else if (byte >= 0x80) {
      if (byte < 0xC2 || byte > 0xF4) return false;
      following = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
    } else if (byte < 0x20 || byte == 0x7F) {
      return false;
    }
  }
  return following == 0;
}

}  // namespace

fs::path HistoryFile::usualPath(char const* stateHome, char const* home) {
  fs::path folder;
  if (stateHome != nullptr && fs::path(stateHome).is_absolute()) {
    folder = stateHome;
  } else if (home != nullptr && fs::path(home).is_absolute()) {
    folder = fs::path(home) / ".local" / "state";
  } else {
    return {};
  }
  return folder / "zev" / "history";
}

bool HistoryFile::isKept(std::string const& line) {
  return line.size() <= longestLine && !StringUtilities::trimmed(line).empty() && isPrintableText(line);
}

std::vector<std::string> HistoryFile::read() const {
  if (path_.empty()) return {};
  OpenFile const file(path_, O_RDONLY);
  if (!file.isUsable()) return {};
  off_t const begin = std::max<off_t>(0, file.size() - mostBytes);
  std::string content = contentFrom(file, begin);
  // The first line of this part can be the end of a longer line.
  if (begin > 0) content.erase(0, std::min(content.find('\n'), content.size() - 1) + 1);
  std::vector<std::string> lines = StringUtilities::splitValue(content, '\n');
  std::size_t const found = lines.size();
  std::erase_if(lines, [](std::string const& line) { return !isKept(line); });
  if (lines.size() > maxLines) lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(maxLines));
  if (begin > 0 || found > 2 * maxLines) replace(lines);
  return lines;
}

void HistoryFile::add(std::string const& line) const {
  if (path_.empty() || !isKept(line)) return;
  std::error_code error;
  fs::path const folder = path_.parent_path();
  if (!fs::exists(folder, error)) {
    fs::create_directories(folder, error);
    fs::permissions(folder, fs::perms::owner_all, error);
  }
  OpenFile const file(path_, O_RDWR | O_CREAT | O_APPEND);
  if (!file.isUsable()) return;
  if (::fchmod(file.descriptor(), ownerOnly) != 0) return;  // do not write to a file of another user
  // One write, and a line of its own. So the lines of two consoles do not mix, and neither does a line with the rest of
  // one that a full disk cut off.
  std::string const last = file.size() == 0 ? "\n" : contentFrom(file, file.size() - 1);
  (void)writeAll(file.descriptor(), (last == "\n" ? "" : "\n") + line + '\n');
}

void HistoryFile::replace(std::vector<std::string> const& lines) const {
  std::error_code error;
  // If the path is a link, replace its target, not the link.
  fs::path const target = fs::canonical(path_, error);
  if (error) return;
  fs::path const fresh = target.string() + '.' + std::to_string(::getpid());
  bool written = false;
  {
    OpenFile const file(fresh, O_WRONLY | O_CREAT | O_EXCL);
    written = file.isUsable() && writeAll(file.descriptor(), StringUtilities::vectorToString(lines, '\n') + '\n');
  }
  if (written) {
    fs::rename(fresh, target, error);
    if (!error) return;
  }
  fs::remove(fresh, error);
}

}  // namespace tarn::tool

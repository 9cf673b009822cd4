// A recovery file has a line of JSON with the lengths of three texts, these texts as they are, since a model and a path
// may hold any bytes, and then one line of JSON for each entry. A line that was cut off by a crash is the last one and
// lacks its end.
#include "documents/Journal.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <tarn/service/JsonText.h>

namespace tarn::service {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr mode_t ownerOnly = 0600;
constexpr char const* extension = ".recovery";

std::string pathOf(std::string const& folder, std::string const& id) {
  return (fs::path(folder) / (id + extension)).string();
}

/// An identifier is a name in the folder, and nothing that leads out of it.
bool isIdentifier(std::string const& id) {
  return !id.empty() && id.size() < 100 && std::all_of(id.begin(), id.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-';
  });
}

std::string bytesOf(RecoveryRecord const& record) {
  Json const head = {
      {"recovery", 1}, {"file", record.file.size()}, {"root", record.root.size()}, {"model", record.model.size()}};
  std::string bytes = jsonLine(head) + '\n' + record.file + record.root + record.model + '\n';
  for (std::string const& entry : record.entries) bytes += entry + '\n';
  return bytes;
}

/// Takes the first `size` bytes.
std::optional<std::string> take(std::string_view& bytes, std::size_t size) {
  if (size > bytes.size()) return std::nullopt;
  std::string taken(bytes.substr(0, size));
  bytes.remove_prefix(size);
  return taken;
}

/// Takes a line without its end. Nothing if it has none.
std::optional<std::string> takeLine(std::string_view& bytes) {
  std::size_t const end = bytes.find('\n');
  if (end == std::string_view::npos) return std::nullopt;
  auto line = take(bytes, end);
  bytes.remove_prefix(1);
  return line;
}

std::optional<RecoveryRecord> parse(std::string_view bytes) {
  auto const line = takeLine(bytes);
  if (!line) return std::nullopt;
  nlohmann::json const head = nlohmann::json::parse(*line, nullptr, false);
  if (!head.is_object() || head.value("recovery", 0) != 1) return std::nullopt;
  auto const text = [&](char const* key) -> std::optional<std::string> {
    auto const size = head.find(key);
    if (size == head.end() || !size->is_number_unsigned()) return std::nullopt;
    return take(bytes, size->get<std::size_t>());
  };
  auto file = text("file");
  auto root = text("root");
  auto model = text("model");
  if (!file || !root || !model || !takeLine(bytes)) return std::nullopt;
  RecoveryRecord record{std::move(*file), std::move(*root), std::move(*model), {}};
  while (auto entry = takeLine(bytes)) {
    if (!nlohmann::json::accept(*entry)) break;
    record.entries.push_back(std::move(*entry));
  }
  return record;
}

}  // namespace

std::size_t RecoveryRecord::unsaved() const {
  std::size_t count = 0;
  for (std::string const& entry : entries) count = entry == R"({"saved":true})" ? 0 : count + 1;
  return count;
}

RecoveryFile::~RecoveryFile() {
  ::close(descriptor_);  // and releases the lock
}

std::shared_ptr<RecoveryFile> RecoveryFile::create(std::string const& folder) {
  std::error_code failed;
  fs::create_directories(folder, failed);
  // Names of one process never repeat, and the number of the process keeps those of others apart.
  static std::atomic<unsigned> count{0};
  constexpr int mostNames = 1000;
  for (int i = 0; i < mostNames; ++i) {
    std::string path = pathOf(folder, std::to_string(::getpid()) + '-' + std::to_string(++count));
    int const descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, ownerOnly);
    if (descriptor != -1) {
      auto file = std::make_shared<RecoveryFile>(descriptor, std::move(path));
      if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0) return file;
      return nullptr;
    }
    if (errno != EEXIST) return nullptr;
  }
  return nullptr;
}

std::shared_ptr<RecoveryFile> RecoveryFile::take(std::string const& folder, std::string const& id) {
  if (!isIdentifier(id)) return nullptr;
  std::string path = pathOf(folder, id);
  int const descriptor = ::open(path.c_str(), O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor == -1) return nullptr;
  auto file = std::make_shared<RecoveryFile>(descriptor, std::move(path));
  struct stat status {};
  if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) return nullptr;
  return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? file : nullptr;
}

std::vector<std::string> RecoveryFile::list(std::string const& folder) {
  std::vector<std::string> ids;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (entry->path().extension() == extension) ids.push_back(entry->path().stem().string());
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

int RecoveryFile::append(std::string const& bytes) {
  std::string_view rest = bytes;
  while (!rest.empty()) {
    ssize_t const written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return errno != 0 ? errno : EIO;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  needsSync_ = true;
  return 0;
}

void RecoveryFile::remove() noexcept {
  ::unlink(path_.c_str());
}

void RecoveryFile::setAside() noexcept {
  ::rename(path_.c_str(), (path_ + ".kept").c_str());
}

void RecoveryFile::sync() noexcept {
  if (needsSync_.exchange(false)) ::fdatasync(descriptor_);
}

std::optional<RecoveryRecord> RecoveryFile::read(std::size_t mostBytes) const {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0 || status.st_size < 0) return std::nullopt;
  auto const size = static_cast<std::size_t>(status.st_size);
  if (size > mostBytes) return std::nullopt;
  std::string bytes(size, '\0');
  std::size_t have = 0;
  while (have < size) {
    ssize_t const count = ::pread(descriptor_, bytes.data() + have, size - have, static_cast<off_t>(have));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    have += static_cast<std::size_t>(count);
  }
  return parse(std::string_view(bytes).substr(0, have));
}

void Journal::add(nlohmann::ordered_json const& entry) {
  record_.entries.push_back(jsonLine(entry));
  if (folder_.empty()) return;
  if (!file_ || !failure_.empty()) return rewrite();
  if (int const error = file_->append(record_.entries.back() + '\n')) fail(error);
}

void Journal::setFile(std::string file) {
  if (file == record_.file) return;
  record_.file = std::move(file);
  if (file_) rewrite();
}

void Journal::rewrite() {
  if (folder_.empty() || record_.entries.empty()) return;
  errno = 0;
  auto file = RecoveryFile::create(folder_);
  if (!file) return fail(errno);
  if (int const error = file->append(bytesOf(record_))) {
    file->remove();
    return fail(error);
  }
  if (file_) file_->remove();
  file_ = std::move(file);
  failure_.clear();
}

void Journal::remove() noexcept {
  if (file_) file_->remove();
  file_.reset();
}

void Journal::fail(int error) {
  failure_ = "the recovery file in \"" + folder_ +
             "\" cannot be written: " + std::generic_category().message(error != 0 ? error : EIO) +
             "; unsaved edits would be lost with this process";
}

}  // namespace tarn::service

// Saving in steps that leave either the old or the new file: the whole text goes to a file beside, which then takes the
// place of the old one by renaming.
#include <tarn/session/ModelFile.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <system_error>
#include <utility>

#include <tarn/Error.h>
#include <tarn/ObjDependDef.h>
#include <tarn/PathUtils.h>

namespace tarn::session {

namespace {

namespace fs = std::filesystem;

struct Close {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, Close>;

std::string reasonOf(int error) {
  return std::generic_category().message(error);
}

std::string inQuotes(std::string const& name) {
  return '"' + name + '"';
}

/// Throws a `FileError`. Returns nothing if there is no such file.
std::optional<std::string> bytesOf(std::string const& name) {
  errno = 0;
  OpenFile const file(std::fopen(name.c_str(), "rb"));
  if (!file) {
    if (errno == ENOENT) return std::nullopt;
    throw FileError("ModelFile", "read", "cannot open " + inQuotes(name) + ": " + reasonOf(errno));
  }
  std::string bytes;
  std::size_t held = 0;
  do {
    bytes.resize(held + (std::size_t{1} << 16U) + held / 2);
    held += std::fread(bytes.data() + held, 1, bytes.size() - held, file.get());
  } while (held == bytes.size());
  if (std::ferror(file.get()) != 0) {
    throw FileError("ModelFile", "read", "cannot read " + inQuotes(name) + ": " + reasonOf(errno));
  }
  bytes.resize(held);
  return bytes;
}

/// Writes all bytes. Returns 0, or the number of the error.
int writeAll(OpenFile file, std::string const& bytes) {
  errno = 0;
  bool const isWritten =
      std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size() && std::fflush(file.get()) == 0;
  int const error = isWritten ? 0 : (errno != 0 ? errno : EIO);
  errno = 0;
  bool const isClosed = std::fclose(file.release()) == 0;
  if (error != 0) return error;
  return isClosed ? 0 : (errno != 0 ? errno : EIO);
}

/// A new file beside `target`. It is removed unless it has been renamed.
class FileBeside {
 public:
  explicit FileBeside(fs::path const& target) {
    constexpr int mostNames = 1000;
    for (int i = 1; i <= mostNames; ++i) {
      path_ = target;
      path_ += ".new-" + std::to_string(i);
      errno = 0;
      file_.reset(std::fopen(path_.c_str(), "wbx"));
      if (file_ || errno != EEXIST) break;
    }
    if (!file_) error_ = errno != 0 ? errno : EIO;
  }
  FileBeside(FileBeside const&) = delete;
  FileBeside& operator=(FileBeside const&) = delete;
  ~FileBeside() {
    file_.reset();
    std::error_code ignored;
    if (error_ == 0 && !isRenamed_) fs::remove(path_, ignored);
  }

  /// Each returns 0, or the number of the error.
  [[nodiscard]] int error() const noexcept { return error_; }
  [[nodiscard]] int write(std::string const& bytes) { return writeAll(std::move(file_), bytes); }
  [[nodiscard]] int replace(fs::path const& target) {
    std::error_code failed;
    fs::file_status const status = fs::status(target, failed);
    if (!failed && fs::exists(status)) fs::permissions(path_, status.permissions(), failed);
    if (failed && fs::exists(status)) return failed.value();
    fs::rename(path_, target, failed);
    isRenamed_ = !failed;
    return failed.value();
  }

 private:
  fs::path path_;
  OpenFile file_;
  int error_ = 0;
  bool isRenamed_ = false;
};

/// The file itself, for a symbolic link.
fs::path targetOf(std::string const& name) {
  std::error_code failed;
  fs::path resolved = fs::weakly_canonical(name, failed);
  return failed ? fs::path(name) : resolved;
}

/// Whether there may be an earlier model: not in a pipe or a device.
bool canHoldModel(std::string const& name) {
  std::error_code failed;
  fs::file_status const status = fs::status(name, failed);
  return !fs::exists(status) || fs::is_regular_file(status) || fs::is_directory(status);
}

/// Returns 0, or the number of the error.
int replaceFile(std::string const& name, std::string const& bytes) {
  fs::path const target = targetOf(name);
  std::error_code failed;
  fs::file_status const status = fs::status(target, failed);
  if (fs::is_directory(status)) return EISDIR;
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    errno = 0;
    OpenFile direct(std::fopen(target.c_str(), "wb"));
    return direct ? writeAll(std::move(direct), bytes) : errno;
  }
  FileBeside beside(target);
  if (beside.error() != 0) return beside.error();
  if (int const error = beside.write(bytes)) return error;
  return beside.replace(target);
}

SaveError noFile() {
  return {SaveFault::NoFile, "the model came from the standard input; say under which name to save it"};
}

}  // namespace

ModelFile::ModelFile(std::string name, std::string bytes, bool exists)
    : name_(std::move(name)), bytes_(std::move(bytes)), exists_(exists) {}

ModelFile ModelFile::read(std::string const& name) {
  if (name == "-") {
    std::string bytes(std::istreambuf_iterator<char>(std::cin), {});
    if (std::cin.bad()) throw FileError("ModelFile", "read", "cannot read the standard input");
    return {name, std::move(bytes), false};
  }
  auto bytes = bytesOf(name);
  if (!bytes) throw FileError("ModelFile", "read", "cannot open " + inQuotes(name) + ": " + reasonOf(ENOENT));
  return {name, std::move(*bytes), true};
}

ModelFile ModelFile::named(std::string name) {
  return {std::move(name), {}, false};
}

ModelFile ModelFile::remembered(std::string name, std::string bytes) {
  return {std::move(name), std::move(bytes), true};
}

ModelText ModelFile::text() const {
  return {name_ == "-" ? "<stdin>" : name_, bytes_};
}

std::optional<SaveError> ModelFile::save(ModelState const& state, ModelTextOrder const& order, Overwrite overwrite) {
  if (name_ == "-") {
    return noFile();
  }
  try {
    return saveText(rewriteModelText(bytes_, state, order), overwrite);
  } catch (ParseError const& error) {
    return SaveError{SaveFault::NotWritable, error.getMessage()};
  }
}

std::optional<SaveError> ModelFile::saveText(std::string text, Overwrite overwrite) {
  if (name_ == "-") return noFile();
  if (std::error_code failed; std::filesystem::is_directory(name_, failed)) {
    return SaveError{SaveFault::WriteFailed,
                     "cannot write " + inQuotes(name_) + ": it is a folder; give the name of a file"};
  }
  try {
    // A pipe or a device holds no earlier model, and reading it might never end.
    auto const onDisk = canHoldModel(name_) ? bytesOf(name_) : std::nullopt;
    bool const isOwn = onDisk && exists_ && *onDisk == bytes_;
    if (onDisk && *onDisk == text) {
      bytes_ = std::move(text);
      exists_ = true;
      return std::nullopt;
    }
    if (onDisk && !isOwn && overwrite == Overwrite::No) {
      std::string const what = exists_ ? " has been changed by someone else since it was read" : " exists already";
      return SaveError{SaveFault::FileChanged, inQuotes(name_) + what + "; save under another name, or overwrite it"};
    }
  } catch (FileError const& error) {
    return SaveError{SaveFault::WriteFailed, error.getMessage()};
  }
  if (int const error = replaceFile(name_, text)) {
    return SaveError{SaveFault::WriteFailed,
                     "cannot write " + inQuotes(name_) + ": " + reasonOf(error) + "; nothing was changed there"};
  }
  bytes_ = std::move(text);
  exists_ = true;
  return std::nullopt;
}

std::optional<SaveError> ModelFile::saveAs(std::string const& name, ModelState const& state,
                                           ModelTextOrder const& order, Overwrite overwrite) {
  bool const isSame = name_ != "-" && targetOf(name) == targetOf(name_);
  ModelFile other(name, bytes_, isSame && exists_);
  auto error = other.save(state, order, overwrite);
  if (!error) *this = std::move(other);
  return error;
}

ModelTextOrder orderOfRules(PhysicsData const& rules) {
  return [&rules](std::string const& path, std::string const& name) -> std::size_t {
    ObjDependDef const* const object = rules.getObjDependDef(PathUtils::typePathOf(path), true);
    if (object == nullptr) return 0;
    return object->placeOfParam(name);
  };
}

}  // namespace tarn::session

#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::service {

/// How a document came to be as it is: the model that was opened, and everything that was done since. It is enough to
/// make the document again, with its history.
struct RecoveryRecord {
  /// The model file. "" for a document without one.
  std::string file;
  std::string root;
  /// The bytes of the model that was opened.
  std::string model;
  /// One entry for each edit, renaming, undo, redo and save, in their order: see `Journal::add`.
  std::vector<std::string> entries;

  /// The number of entries since the last save.
  [[nodiscard]] std::size_t unsaved() const;
};

/// An open recovery file. Nobody else can take it as long as this exists.
class RecoveryFile {
 public:
  /// Takes ownership of a locked descriptor.
  RecoveryFile(int descriptor, std::string path) noexcept : descriptor_(descriptor), path_(std::move(path)) {}
  ~RecoveryFile();
  RecoveryFile(RecoveryFile const&) = delete;
  RecoveryFile& operator=(RecoveryFile const&) = delete;

  /// A new file that only its owner can read. Null and `errno` when that failed.
  [[nodiscard]] static std::shared_ptr<RecoveryFile> create(std::string const& folder);
  /// A file that was left. Null when it is not there, is not a regular file, or is in use.
  [[nodiscard]] static std::shared_ptr<RecoveryFile> take(std::string const& folder, std::string const& id);
  /// The identifiers of all files of a folder, sorted.
  [[nodiscard]] static std::vector<std::string> list(std::string const& folder);

  /// Each returns 0, or the number of the error.
  [[nodiscard]] int append(std::string const& bytes);
  void remove() noexcept;
  /// Keeps the file under another name, so that it is not offered any more.
  void setAside() noexcept;
  /// Waits for the disk, if there is something to wait for.
  void sync() noexcept;

  /// The content of the file, without a last entry that was not written to its end. Empty if it is not a recovery file,
  /// or is larger than `mostBytes`.
  [[nodiscard]] std::optional<RecoveryRecord> read(std::size_t mostBytes) const;

 private:
  int descriptor_;
  std::string path_;
  std::atomic<bool> needsSync_{false};
};

/// Writes the recovery file of one document. The file appears with the first entry.
class Journal {
 public:
  /// Nothing is written to an empty `folder`.
  Journal(std::string folder, RecoveryRecord record) : folder_(std::move(folder)), record_(std::move(record)) {}

  /// Adds {"edit":[…]}, {"rename":{"path":…,"name":…}}, {"undo":true}, {"redo":true} or {"saved":true}. When this
  /// returns, the operating system has it, or `failure` says why not. The next entry tries again.
  void add(nlohmann::ordered_json const& entry);
  /// The document has another file now.
  void setFile(std::string file);
  /// Writes everything to a new file, if there is an entry.
  void rewrite();
  void remove() noexcept;

  /// A sentence; "" when everything has been written.
  [[nodiscard]] std::string const& failure() const noexcept { return failure_; }
  /// Null when there is none.
  [[nodiscard]] std::shared_ptr<RecoveryFile> const& file() const noexcept { return file_; }

 private:
  void fail(int error);

  std::string folder_;
  RecoveryRecord record_;
  std::shared_ptr<RecoveryFile> file_;
  std::string failure_;
};

}  // namespace tarn::service

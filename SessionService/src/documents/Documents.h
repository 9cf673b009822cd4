#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/service/Service.h>

#include "documents/Document.h"
#include "documents/FolderGuard.h"

namespace tarn::service {

/// The open documents. Any thread may call it. Failures are `ProtocolError`s.
class Documents {
 public:
  Documents(PhysicsData const& rules, ServiceOptions const& options);
  /// Removes recovery files that hold nothing unsaved.
  ~Documents();
  Documents(Documents const&) = delete;
  Documents& operator=(Documents const&) = delete;

  [[nodiscard]] LockedDocument lock(std::string const& id);
  [[nodiscard]] std::vector<std::shared_ptr<Document>> all();
  [[nodiscard]] FolderGuard const& folders() const noexcept { return folders_; }

  struct Opened {
    std::shared_ptr<Document> document;
    bool wasOpen = false;
  };
  /// The document of a file. It may be open already.
  [[nodiscard]] Opened openFile(std::string const& path, std::optional<std::string> const& root);
  /// A document without a file.
  [[nodiscard]] Opened openText(std::string const& text, std::optional<std::string> const& root);
  /// Closes a document. Unsaved edits are lost, and must be meant to be.
  void close(std::string const& id, bool discard);
  /// Saves a document: to its own file when `path` is empty. A new file must not be that of another document.
  std::optional<session::SaveError> save(Document& document, std::string const& path, session::Overwrite overwrite);

  [[nodiscard]] std::vector<Service::Recoverable> recoverable() const;
  struct Recovered {
    std::shared_ptr<Document> document;
    std::size_t done = 0;
    std::size_t entries = 0;
    /// The file has been changed since.
    bool fileChanged = false;
  };
  /// Makes a document again. If its file is open without edits, the document takes the place of that. With `partial`,
  /// what cannot be done again is left out, and the recovery file is kept under another name.
  [[nodiscard]] Recovered recover(std::string const& recoveryId, bool partial);
  void discardRecovery(std::string const& recoveryId);

 private:
  [[nodiscard]] std::shared_ptr<Document> find(std::string const& id);
  [[nodiscard]] std::shared_ptr<Document> findFile(std::string const& path);
  [[nodiscard]] std::shared_ptr<Document> make(std::string id, session::ModelFile file, bool hasFile,
                                               std::optional<std::string> const& root);
  void add(std::shared_ptr<Document> const& document);
  void checkRoom();
  [[nodiscard]] std::string nextId();
  [[nodiscard]] std::shared_ptr<RecoveryFile> take(std::string const& recoveryId) const;
  [[nodiscard]] bool mayUse(RecoveryRecord const& record) const;

  PhysicsData const* rules_;
  ServiceOptions options_;
  FolderGuard folders_;
  /// Held while documents are opened, closed and recovered, so that no file is open twice. Taken before the mutex of a
  /// document, which is taken before `mutex_`.
  std::mutex changing_;
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Document>> documents_;
  /// The open files, with the documents that they belong to.
  std::map<std::string, std::string> files_;
  std::size_t lastId_ = 0;
};

}  // namespace tarn::service

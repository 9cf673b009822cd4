#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <tarn/Edit.h>
#include <tarn/ModelState.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

#include "documents/Journal.h"

namespace tarn::service {

/// A session with its file, its revision, its recovery file, and what is unsaved.
class Document {
 public:
  /// `session` was opened with the text of `file`, or of a model without a file.
  Document(std::string id, std::unique_ptr<session::Session> session, session::ModelFile file, bool hasFile,
           Journal journal);

  /// Held during every other operation.
  std::mutex mutex;
  /// Held while a review is made, so that nobody makes it twice. Taken before `mutex`.
  std::mutex reviewing;
  /// Set when the document was closed while somebody waited for the mutex.
  bool isClosed = false;

  [[nodiscard]] std::string const& id() const noexcept { return id_; }
  [[nodiscard]] session::Session& session() noexcept { return *session_; }
  /// Needs no lock.
  [[nodiscard]] PhysicsData const& rules() const noexcept { return session_->rules(); }
  [[nodiscard]] std::size_t revision() const noexcept { return revision_; }
  /// The path of the file. "" for a document without one.
  [[nodiscard]] std::string fileName() const { return hasFile_ ? file_.name() : std::string(); }
  [[nodiscard]] Journal& journal() noexcept { return journal_; }
  /// Whether the file lacks something that was done since it was opened or saved.
  [[nodiscard]] bool hasUnsaved() const noexcept { return (done_.empty() ? 0 : done_.back()) != saved_; }
  [[nodiscard]] nlohmann::ordered_json state() const;
  /// The model that the file held when it was opened or saved last.
  [[nodiscard]] ModelState const& modelInFile() const noexcept {
    return savedModel_ ? *savedModel_ : session_->model();
  }

  /// @name Changes
  /// As in `Session`. Each that does something raises the revision and is written to the recovery file.
  /// @{
  session::EditResult edit(std::span<Edit const> edits);
  session::EditResult renameFollowed(std::string const& path, std::string const& newName);
  std::optional<session::EditResult> undo();
  std::optional<session::EditResult> redo();
  /// To its own file when `name` is empty.
  std::optional<session::SaveError> save(std::string const& name, session::Overwrite overwrite);
  /// @}

  /// Does what the entries say. Stops at the first that cannot be done, and returns how many were.
  std::size_t replay(std::vector<std::string> const& entries);
  /// Whether the file on the disk holds what it held when it was opened or saved.
  [[nodiscard]] bool fileIsUnchanged() const;
  /// Takes over the place of another document: its revisions go on.
  void continueFrom(std::size_t revision) noexcept { revision_ = revision + 1; }

  /// The answer to an earlier edit with this identifier. Null when there is none.
  [[nodiscard]] nlohmann::ordered_json const* answered(std::string const& editId) const;
  /// Forgets the oldest when there are more than `most`.
  void remember(std::string const& editId, nlohmann::ordered_json answer, std::size_t most);

  /// Whether the findings of the present revision are known. Without them, the questions below make a review.
  [[nodiscard]] bool isReviewed() const noexcept { return reviewedRevision_ == revision_; }
  /// Takes the findings of a review of `session().result()`, if that was the result of the present revision.
  void takeReview(std::size_t revision, session::Findings findings);
  /// The findings at an object, and their number at and below it.
  struct FindingCounts {
    std::size_t errors = 0;
    std::size_t warnings = 0;
  };
  [[nodiscard]] std::vector<std::size_t> findingsAt(std::string const& path);
  [[nodiscard]] FindingCounts findingsBelow(std::string const& path);

 private:
  struct AtPath {
    std::vector<std::size_t> findings;
    FindingCounts before;
  };

  session::EditResult noteStep(session::EditResult result, nlohmann::ordered_json const& entry);
  void note(nlohmann::ordered_json const& entry);
  void noteSaved();
  void indexFindings();

  std::string id_;
  session::ModelFile file_;
  bool hasFile_;
  std::unique_ptr<session::Session> session_;
  Journal journal_;
  bool isReplaying_ = false;
  std::size_t revision_ = 0;

  /// The steps in force and the undone ones by numbers that never repeat, and the last step that is in the file.
  std::vector<std::size_t> done_;
  std::vector<std::size_t> undone_;
  std::size_t saved_ = 0;
  /// The model that was saved last. Empty before that.
  std::optional<ModelState> savedModel_;
  std::size_t lastStep_ = 0;

  std::deque<std::pair<std::string, nlohmann::ordered_json>> answers_;

  std::optional<std::size_t> reviewedRevision_;
  /// The findings by path, for `indexedRevision_`, with the numbers of those at all paths before.
  std::map<std::string, AtPath, std::less<>> findings_;
  FindingCounts allFindings_;
  std::optional<std::size_t> indexedRevision_;
};

/// A document that nobody else uses now.
class LockedDocument {
 public:
  explicit LockedDocument(std::shared_ptr<Document> document)
      : document_(std::move(document)), lock_(document_->mutex) {}

  [[nodiscard]] std::shared_ptr<Document> const& shared() const noexcept { return document_; }

  [[nodiscard]] Document& operator*() const noexcept { return *document_; }
  [[nodiscard]] Document* operator->() const noexcept { return document_.get(); }

 private:
  std::shared_ptr<Document> document_;
  std::unique_lock<std::mutex> lock_;
};

}  // namespace tarn::service

#include "documents/Documents.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <tarn/Error.h>
#include <tarn/service/SessionJson.h>

#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

namespace fs = std::filesystem;

/// The names of files and the roots are compared in one form.
session::ModelFile readFile(std::string const& path, std::size_t mostBytes) {
  std::error_code failed;
  auto const size = fs::file_size(path, failed);
  if (!failed && size > mostBytes) {
    throw ProtocolError(ErrorCode::LimitExceeded,
                        "\"" + path + "\" has more than " + std::to_string(mostBytes) + " bytes");
  }
  try {
    return session::ModelFile::read(path);
  } catch (FileError const& error) {
    throw ProtocolError(ErrorCode::FileFailed, error.getMessage());
  }
}

}  // namespace

Documents::Documents(PhysicsData const& rules, ServiceOptions const& options)
    : rules_(&rules), options_(options), folders_(options.folders) {}

Documents::~Documents() {
  for (auto const& [id, document] : documents_) {
    if (!document->hasUnsaved()) document->journal().remove();
    if (auto const& file = document->journal().file()) file->sync();
  }
}

std::shared_ptr<Document> Documents::find(std::string const& id) {
  std::lock_guard const lock(mutex_);
  auto const found = documents_.find(id);
  if (found == documents_.end()) {
    throw ProtocolError(ErrorCode::UnknownDocument, "there is no document \"" + id + "\"; it may have been closed");
  }
  return found->second;
}

LockedDocument Documents::lock(std::string const& id) {
  LockedDocument document(find(id));
  if (document->isClosed)
    throw ProtocolError(ErrorCode::UnknownDocument, "the document \"" + id + "\" has been closed");
  return document;
}

std::vector<std::shared_ptr<Document>> Documents::all() {
  std::lock_guard const lock(mutex_);
  std::vector<std::shared_ptr<Document>> list;
  for (auto const& [id, document] : documents_) list.push_back(document);
  return list;
}

std::shared_ptr<Document> Documents::findFile(std::string const& path) {
  std::lock_guard const lock(mutex_);
  auto const found = files_.find(path);
  return found == files_.end() ? nullptr : documents_.at(found->second);
}

std::string Documents::nextId() {
  std::string id = std::to_string(++lastId_);
  return options_.instance.empty() ? id : id + '-' + options_.instance;
}

void Documents::checkRoom() {
  std::lock_guard const lock(mutex_);
  if (documents_.size() < options_.limits.documents) return;
  throw ProtocolError(ErrorCode::LimitExceeded, std::to_string(options_.limits.documents) +
                                                    " documents are open already; close one of them first");
}

void Documents::add(std::shared_ptr<Document> const& document) {
  std::lock_guard const lock(mutex_);
  documents_[document->id()] = document;
  if (std::string file = document->fileName(); !file.empty()) files_[std::move(file)] = document->id();
}

std::shared_ptr<Document> Documents::make(std::string id, session::ModelFile file, bool hasFile,
                                          std::optional<std::string> const& root) {
  session::SessionOptions options;
  options.root = root;
  auto opened = session::Session::open(*rules_, file.text(), std::move(options));
  if (!opened.session) {
    throw ProtocolError(ErrorCode::OpenFailed, opened.error->sentence, openErrorAsJson(*opened.error));
  }
  RecoveryRecord record{hasFile ? file.name() : std::string(), opened.session->root(), file.bytes(), {}};
  return std::make_shared<Document>(std::move(id), std::move(opened.session), std::move(file), hasFile,
                                    Journal(options_.recoveryFolder, std::move(record)));
}

Documents::Opened Documents::openFile(std::string const& path, std::optional<std::string> const& root) {
  std::string const resolved = folders_.resolve(path);
  std::lock_guard const changing(changing_);
  if (auto present = findFile(resolved)) {
    // The root of a session never changes, so it can be read without the mutex.
    std::string const& itsRoot = present->session().root();
    if (root && *root != itsRoot) {
      throw ProtocolError(ErrorCode::OpenFailed, "\"" + path + "\" is open already, with the root \"" + itsRoot + '"');
    }
    return {present, true};
  }
  checkRoom();
  auto document = make(nextId(), readFile(resolved, options_.limits.modelBytes), true, root);
  add(document);
  return {std::move(document), false};
}

Documents::Opened Documents::openText(std::string const& text, std::optional<std::string> const& root) {
  std::lock_guard const changing(changing_);
  checkRoom();
  auto document = make(nextId(), session::ModelFile::remembered("<text>", text), false, root);
  add(document);
  return {std::move(document), false};
}

void Documents::close(std::string const& id, bool discard) {
  std::lock_guard const changing(changing_);
  LockedDocument const document = lock(id);
  if (document->hasUnsaved() && !discard) {
    throw ProtocolError(ErrorCode::UnsavedEdits,
                        "the document has unsaved edits; save it, or say \"discard\" to lose them", document->state());
  }
  document->journal().remove();
  document->isClosed = true;
  std::lock_guard const table(mutex_);
  documents_.erase(id);
  files_.erase(document->fileName());
}

std::optional<session::SaveError> Documents::save(Document& document, std::string const& path,
                                                  session::Overwrite overwrite) {
  std::string const before = document.fileName();
  if (path.empty() && !before.empty() && folders_.resolve(before) != before) {
    throw ProtocolError(ErrorCode::FileFailed, "\"" + before + "\" leads to another file now; save it as another file");
  }
  std::string const file = path.empty() ? before : folders_.resolve(path);
  if (file != before) {
    // The entry keeps others from opening the file, or saving to it, meanwhile.
    std::lock_guard const lock(mutex_);
    if (!files_.emplace(file, document.id()).second) {
      throw ProtocolError(ErrorCode::FileFailed, "\"" + path + "\" is the file of another open document");
    }
  }
  auto error = document.save(path.empty() ? path : file, overwrite);
  if (file != before) {
    std::lock_guard const lock(mutex_);
    files_.erase(error ? file : before);
  }
  return error;
}

bool Documents::mayUse(RecoveryRecord const& record) const {
  if (record.file.empty()) return true;
  try {
    return folders_.resolve(record.file) == record.file;
  } catch (ProtocolError const&) {
    return false;
  }
}

std::shared_ptr<RecoveryFile> Documents::take(std::string const& recoveryId) const {
  auto file = options_.recoveryFolder.empty() ? nullptr : RecoveryFile::take(options_.recoveryFolder, recoveryId);
  if (!file) {
    throw ProtocolError(ErrorCode::RecoveryFailed, "there is no recovery file \"" + recoveryId + "\", or it is in use");
  }
  return file;
}

std::vector<Service::Recoverable> Documents::recoverable() const {
  std::vector<Service::Recoverable> list;
  if (options_.recoveryFolder.empty()) return list;
  for (std::string const& id : RecoveryFile::list(options_.recoveryFolder)) {
    if (list.size() == options_.limits.page) break;
    auto const file = RecoveryFile::take(options_.recoveryFolder, id);
    auto const record = file ? file->read(options_.limits.modelBytes) : std::nullopt;
    if (record && record->unsaved() > 0 && mayUse(*record)) list.push_back({id, record->file, record->unsaved()});
  }
  return list;
}

Documents::Recovered Documents::recover(std::string const& recoveryId, bool partial) {
  std::lock_guard const changing(changing_);
  auto const left = take(recoveryId);
  auto record = left->read(options_.limits.modelBytes);
  if (!record || !mayUse(*record)) {
    throw ProtocolError(ErrorCode::RecoveryFailed, "the recovery file \"" + recoveryId + "\" cannot be used");
  }
  bool const hasFile = !record->file.empty();
  auto const present = hasFile ? findFile(record->file) : nullptr;
  if (!present) checkRoom();

  Recovered result;
  result.entries = record->entries.size();
  std::string const name = hasFile ? record->file : "<text>";
  auto const again = make(present ? present->id() : nextId(), session::ModelFile::remembered(name, record->model),
                          hasFile, record->root);
  result.done = again->replay(record->entries);
  if (result.done < result.entries && !partial) {
    throw ProtocolError(ErrorCode::RecoveryFailed,
                        "only " + std::to_string(result.done) + " of " + std::to_string(result.entries) +
                            " entries can be done again with these rules; say \"partial\" to recover those",
                        {{"done", result.done}, {"entries", result.entries}});
  }
  record->entries.resize(result.done);
  again->journal() = Journal(options_.recoveryFolder, std::move(*record));
  again->journal().rewrite();

  if (present) {
    LockedDocument const old(present);
    if (old->hasUnsaved()) {
      again->journal().remove();
      throw ProtocolError(ErrorCode::RecoveryFailed, "the file is open with unsaved edits; save or close it first",
                          old->state());
    }
    again->continueFrom(std::max(old->revision(), again->revision()));
    old->journal().remove();
    old->isClosed = true;
  }
  if (again->journal().failure().empty()) {
    if (result.done < result.entries) {
      left->setAside();
    } else {
      left->remove();
    }
  }
  if (hasFile) result.fileChanged = !again->fileIsUnchanged();
  add(again);
  result.document = again;
  return result;
}

void Documents::discardRecovery(std::string const& recoveryId) {
  std::lock_guard const changing(changing_);
  take(recoveryId)->remove();
}

}  // namespace tarn::service

#include "documents/Document.h"

#include <algorithm>

#include <tarn/Error.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>

#include "protocol/Arguments.h"
#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

}  // namespace

Document::Document(std::string id, std::unique_ptr<session::Session> session, session::ModelFile file, bool hasFile,
                   Journal journal)
    : id_(std::move(id)),
      file_(std::move(file)),
      hasFile_(hasFile),
      session_(std::move(session)),
      journal_(std::move(journal)) {}

Json Document::state() const {
  Json json = {{"document", id_}, {"revision", revision_}, {"root", session_->root()}};
  if (hasFile_) json["file"] = file_.name();
  json["unsaved"] = hasUnsaved();
  json["steps"] = done_.size();
  json["undoneSteps"] = undone_.size();
  if (!journal_.failure().empty()) json["recoveryFailure"] = journal_.failure();
  return json;
}

session::EditResult Document::edit(std::span<Edit const> edits) {
  session::EditResult result = session_->edit(edits);
  if (edits.empty()) return result;
  return noteStep(std::move(result), {{"edit", jsonList(edits, editAsJson)}});
}

session::EditResult Document::renameFollowed(std::string const& path, std::string const& newName) {
  return noteStep(session_->renameFollowed(path, newName), {{"rename", {{"path", path}, {"name", newName}}}});
}

session::EditResult Document::noteStep(session::EditResult result, Json const& entry) {
  if (!result.applied()) return result;
  done_.push_back(++lastStep_);
  undone_.clear();
  ++revision_;
  note(entry);
  return result;
}

std::optional<session::EditResult> Document::undo() {
  auto result = session_->undo();
  if (!result || !result->applied()) return result;
  undone_.push_back(done_.back());
  done_.pop_back();
  ++revision_;
  note({{"undo", true}});
  return result;
}

std::optional<session::EditResult> Document::redo() {
  auto result = session_->redo();
  if (!result || !result->applied()) return result;
  done_.push_back(undone_.back());
  undone_.pop_back();
  ++revision_;
  note({{"redo", true}});
  return result;
}

std::optional<session::SaveError> Document::save(std::string const& name, session::Overwrite overwrite) {
  auto const order = session::orderOfRules(session_->rules());
  if (name.empty() && !hasFile_) {
    return session::SaveError{session::SaveFault::NoFile, "the model has no file; say under which name to save it"};
  }
  auto error = name.empty() ? file_.save(session_->result(), order, overwrite)
                            : file_.saveAs(name, session_->result(), order, overwrite);
  if (error) return error;
  hasFile_ = true;
  journal_.setFile(file_.name());
  noteSaved();
  return std::nullopt;
}

void Document::noteSaved() {
  bool const hadUnsaved = hasUnsaved();
  saved_ = done_.empty() ? 0 : done_.back();
  savedModel_ = session_->result();
  if (hadUnsaved) note({{"saved", true}});
}

void Document::note(Json const& entry) {
  if (!isReplaying_) journal_.add(entry);
}

std::size_t Document::replay(std::vector<std::string> const& entries) {
  isReplaying_ = true;
  std::size_t count = 0;
  auto const order = session::orderOfRules(session_->rules());
  for (std::string const& line : entries) {
    try {
      nlohmann::json const entry = nlohmann::json::parse(line);
      bool isDone = false;
      if (entry.contains("edit")) {
        std::vector<Edit> edits;
        for (nlohmann::json const& one : entry.at("edit")) edits.push_back(editFromJson(one));
        isDone = edit(edits).applied();
      } else if (entry.contains("rename")) {
        Arguments const arguments(entry.at("rename"));
        isDone = renameFollowed(arguments.text("path"), arguments.text("name")).applied();
      } else if (entry.contains("undo")) {
        auto const result = undo();
        isDone = result && result->applied();
      } else if (entry.contains("redo")) {
        auto const result = redo();
        isDone = result && result->applied();
      } else if (entry.contains("saved")) {
        file_ =
            session::ModelFile::remembered(file_.name(), rewriteModelText(file_.bytes(), session_->result(), order));
        noteSaved();
        isDone = true;
      }
      if (!isDone) break;
    } catch (std::bad_alloc const&) {
      throw;
    } catch (std::exception const&) {
      break;  // an entry of another form, or a model that cannot be written any more
    }
    ++count;
  }
  isReplaying_ = false;
  return count;
}

bool Document::fileIsUnchanged() const {
  try {
    return session::ModelFile::read(file_.name()).bytes() == file_.bytes();
  } catch (FileError const&) {
    return false;
  }
}

Json const* Document::answered(std::string const& editId) const {
  auto const found =
      std::find_if(answers_.begin(), answers_.end(), [&](auto const& entry) { return entry.first == editId; });
  return found == answers_.end() ? nullptr : &found->second;
}

void Document::remember(std::string const& editId, Json answer, std::size_t most) {
  answers_.emplace_back(editId, std::move(answer));
  if (answers_.size() > most) answers_.pop_front();
}

void Document::takeReview(std::size_t revision, session::Findings findings) {
  if (revision != revision_) return;
  session_->setReview(std::move(findings));
  reviewedRevision_ = revision;
}

void Document::indexFindings() {
  if (indexedRevision_ == revision_) return;
  findings_.clear();
  auto const& list = session_->review().list;
  for (std::size_t i = 0; i < list.size(); ++i) findings_[list[i].path].findings.push_back(i);
  allFindings_ = {};
  for (auto& [path, entry] : findings_) {
    entry.before = allFindings_;
    for (std::size_t const i : entry.findings) {
      ++(list[i].severity == session::Severity::Error ? allFindings_.errors : allFindings_.warnings);
    }
  }
  indexedRevision_ = revision_;
}

std::vector<std::size_t> Document::findingsAt(std::string const& path) {
  indexFindings();
  auto const found = findings_.find(path);
  return found == findings_.end() ? std::vector<std::size_t>() : found->second.findings;
}

Document::FindingCounts Document::findingsBelow(std::string const& path) {
  indexFindings();
  auto const before = [&](std::string const& key) {
    auto const at = findings_.lower_bound(key);
    return at == findings_.end() ? allFindings_ : at->second.before;
  };
  if (path.empty()) return allFindings_;
  // Everything below begins with the path and "/". In the order of bytes, "0" is next after "/", and the path itself
  // with a zero byte behind it is next after the path.
  FindingCounts const below = before(path + '/');
  FindingCounts const behind = before(path + '0');
  FindingCounts const own = before(path);
  FindingCounts const afterOwn = before(path + '\0');
  return {behind.errors - below.errors + afterOwn.errors - own.errors,
          behind.warnings - below.warnings + afterOwn.warnings - own.warnings};
}

}  // namespace tarn::service

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "journal/Journal.h"

namespace tarn {

/// The log of a `DynamicTDF`: events in the order in which they happened, without any interpretation. While recording
/// is off no list changes, also not by clearing. `DynamicTDF` promises that to its callers.
class ChangeRecord {
 public:
  using ParamId = std::pair<std::string, std::string>;

  explicit ChangeRecord(bool recording) noexcept : recording_(recording) {}

  void setRecording(bool recording) noexcept { recording_ = recording; }
  [[nodiscard]] bool isRecording() const noexcept { return recording_; }

  void recordAdded(std::string_view objPath, std::string_view name) { append(addedParams_, objPath, name); }
  /// Undoes the last `recordAdded`.
  void takeBackAdded() noexcept {
    if (recording_) addedParams_.pop_back();
  }
  void recordModified(std::string_view objPath, std::string_view name) { append(modifiedParams_, objPath, name); }
  /// Undoes the last `recordModified`.
  void takeBackModified() noexcept {
    if (recording_) modifiedParams_.pop_back();
  }
  void recordDeleted(std::string_view objPath, std::string_view name) { append(deletedParams_, objPath, name); }
  /// Undoes the last calls of `recordDeleted` until `count` deletions are left.
  void takeBackDeleted(std::size_t count) noexcept {
    while (deletedParams_.size() > count) deletedParams_.pop_back();
  }
  /// Reserves memory so that the next `recordDeletedObject` cannot fail.
  void makeRoomForDeletedObject() {
    if (recording_ && deletedObjects_.size() == deletedObjects_.capacity()) {
      deletedObjects_.reserve(deletedObjects_.size() + deletedObjects_.size() / 2 + 1);
    }
  }
  void recordDeletedObject(std::string path) {
    if (recording_) deletedObjects_.push_back(std::move(path));
  }

  /// Adds the step that takes the lists back to what they hold now, as long as they only grow and shrink to it again.
  void noteAtMark(Journal& journal) {
    journal.add([this, recording = recording_, added = addedParams_.size(), deleted = deletedParams_.size(),
                 modified = modifiedParams_.size(), objects = deletedObjects_.size()]() noexcept {
      recording_ = recording;
      shorten(addedParams_, added);
      shorten(deletedParams_, deleted);
      shorten(modifiedParams_, modified);
      shorten(deletedObjects_, objects);
    });
  }

  /// `journal` keeps the lists, unless it is null. Without memory for that it throws and clears nothing.
  void clear(Journal* journal) {
    if (!recording_) return;
    if (journal != nullptr) {
      journal->add(Cleared{this, {}, {}, {}, {}})();
      return;
    }
    empty(addedParams_);
    empty(deletedParams_);
    empty(modifiedParams_);
    empty(deletedObjects_);
  }

  [[nodiscard]] std::vector<ParamId> const& addedParams() const noexcept { return addedParams_; }
  [[nodiscard]] std::vector<ParamId> const& deletedParams() const noexcept { return deletedParams_; }
  [[nodiscard]] std::vector<ParamId> const& modifiedParams() const noexcept { return modifiedParams_; }
  [[nodiscard]] std::vector<std::string> const& deletedObjects() const noexcept { return deletedObjects_; }

 private:
  static constexpr std::size_t much = 4096;

  /// The first batch holds a whole model. Its memory is not kept for the small batches after it.
  template <class Entry>
  static void empty(std::vector<Entry>& list) noexcept {
    if (list.capacity() > much) {
      std::vector<Entry>().swap(list);
    } else {
      list.clear();
    }
  }

  /// Lists to exchange with those of the log. So the step also clears them.
  struct Cleared {
    void operator()() noexcept {
      log->addedParams_.swap(addedParams);
      log->deletedParams_.swap(deletedParams);
      log->modifiedParams_.swap(modifiedParams);
      log->deletedObjects_.swap(deletedObjects);
    }

    ChangeRecord* log;
    std::vector<ParamId> addedParams, deletedParams, modifiedParams;
    std::vector<std::string> deletedObjects;
  };

  template <class Entry>
  static void shorten(std::vector<Entry>& list, std::size_t size) noexcept {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(size), list.end());
  }

  void append(std::vector<ParamId>& list, std::string_view objPath, std::string_view name) {
    if (!recording_) return;
    // A long list grows by less than double, because the log of a whole model stays until the next edit.
    if (list.size() == list.capacity() && list.size() >= much) list.reserve(list.size() + list.size() / 8);
    list.emplace_back(objPath, name);
  }

  bool recording_;
  std::vector<ParamId> addedParams_;
  std::vector<ParamId> deletedParams_;
  std::vector<ParamId> modifiedParams_;
  std::vector<std::string> deletedObjects_;
};

}  // namespace tarn

#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>

namespace tarn::service {

/// The limits that keep messages and documents from exhausting memory. docs/limits.md lists the defaults.
struct TARN_EXPORT ServiceLimits {
  /// The bytes of one message, which may be a batch of requests.
  std::size_t messageBytes = std::size_t{16} << 20U;
  /// The levels of nested lists and objects in a message.
  std::size_t messageDepth = 32;
  /// The requests of one batch.
  std::size_t batch = 100;
  /// The edits of one request. They are applied as one.
  std::size_t edits = 10'000;
  /// The documents that are open at once.
  std::size_t documents = 16;
  /// The bytes of a model file, or of a recovery file, that is opened.
  std::size_t modelBytes = std::size_t{256} << 20U;
  /// The entries of a list in one answer. Longer lists come in pages.
  std::size_t page = 1000;
  /// The levels of a proof.
  std::size_t whyDepth = 20;
  /// The time of one search for a way.
  std::chrono::milliseconds howTime{10'000};
  /// The clients that receive events at once.
  std::size_t streams = 128;
  /// The events that wait for one client. A client that is further behind gets one event that says so, instead of them.
  std::size_t waitingEvents = 1000;
  /// The answers to edits with an identifier that a document remembers.
  std::size_t rememberedEdits = 100;
};

struct TARN_EXPORT ServiceOptions {
  /// The version of the program, for `hello`.
  std::string version;
  /// Distinguishes the documents of this service from those of one that ran before: it becomes a part of their names.
  /// May be empty if clients cannot outlive the service.
  std::string instance;
  /// Models are read and written only in these folders and below them. Empty: no files at all.
  std::vector<std::string> folders;
  /// The folder of the recovery files; it is made when it is needed. Empty: nothing is kept.
  std::string recoveryFolder;
  ServiceLimits limits;
};

/// The events for one client. Each is a notification of the protocol on one line, without a line end. Any thread may
/// call it.
class TARN_EXPORT EventStream {
 public:
  explicit EventStream(std::size_t mostWaiting);
  ~EventStream();
  EventStream(EventStream const&) = delete;
  EventStream& operator=(EventStream const&) = delete;

  /// The next event. Waits for it, but no longer than `most`. Null when there was none, and when the stream is closed.
  [[nodiscard]] std::shared_ptr<std::string const> next(std::chrono::milliseconds most);
  /// No more events come.
  [[nodiscard]] bool isClosed() const;
  /// Wakes whoever waits.
  void close();

 private:
  friend class EventHub;
  void push(std::shared_ptr<std::string const> const& event);

  struct State;
  std::unique_ptr<State> state_;
};

/// Sessions for other programs: takes requests of JSON-RPC 2.0 and returns the answers. docs/protocol.md describes the
/// methods, and `protocolSchema()` all messages. How messages travel is the caller's business.
///
///     auto const rules = tarn::rules::loadRules("rules");
///     Service service(*rules, {.version = "1.0", .folders = {"models"}});
///     for (std::string line; std::getline(std::cin, line);) {
///       std::string const answer = service.answer(line);
///       if (!answer.empty()) std::cout << answer << '\n' << std::flush;
///     }
///
/// *Documents.* A document is a session with its file, if it has one. Several documents can be open, all with the same
/// rules. A file is open once at most: who opens it again gets the same document.
///
/// *Revisions.* Each edit, undo and redo raises the revision of its document by one. They must name the present
/// revision. Otherwise nothing is changed, and the answer is an error that names the present one.
///
/// *Recovery.* With a recovery folder, each edit is written to a file there before its answer is returned. So nothing
/// is lost when the process is killed. `sync` gives the files to the disk. A file is removed when its document is
/// closed or holds nothing unsaved at the end. Others are offered to clients by the next service with this folder.
///
/// *Files.* Symbolic links and ".." are resolved before the path is compared with the folders. A folder in which other
/// users may exchange files for links at any time gives no protection.
///
/// *Threads.* Any number of threads may call any operation at once. Requests for one document wait for each other;
/// requests for different documents do not. The rules must not be changed, and no `BetaLoggingController` may be
/// attached to them.
class TARN_EXPORT Service {
 public:
  /// `rules` must outlive the service. Nothing is read or written yet, except that folders are resolved. Throws a
  /// `FileError` for a folder that does not exist.
  explicit Service(PhysicsData const& rules, ServiceOptions options = {});
  /// Unsaved edits stay in the recovery folder.
  ~Service();
  Service(Service const&) = delete;
  Service& operator=(Service const&) = delete;

  /// The answer to one message: a request, a notification or a batch. One line without its end; empty if the message
  /// wants no answer. A mistake in the message or the request gets an answer, too. Throws nothing but
  /// `std::bad_alloc`, and that only when not even an answer could be made.
  [[nodiscard]] std::string answer(std::string_view message);
  /// The answer to a message that was longer than `ServiceLimits::messageBytes`, so that nobody has kept it.
  [[nodiscard]] std::string answerToTooLong() const;

  /// The events from now on. Null when there are `ServiceLimits::streams` already. The stream ends when the last
  /// pointer to it is dropped.
  [[nodiscard]] std::shared_ptr<EventStream> subscribe();
  /// Closes all streams. Further ones can be opened.
  void closeStreams();

  /// Waits until the disk has all recovery files. Call it about every second. Costs nothing if nothing has changed.
  void sync();

  /// A recovery file that an earlier service has left.
  struct Recoverable {
    /// Its name in `recover` and `discardRecovery`.
    std::string id;
    /// The model file. "" for a document without one.
    std::string file;
    /// The steps that were unsaved or undone.
    std::size_t steps = 0;
  };
  /// The recovery files that can be used now. Files that another process uses are left out.
  [[nodiscard]] std::vector<Recoverable> recoverable() const;

  [[nodiscard]] ServiceLimits const& limits() const noexcept;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn::service

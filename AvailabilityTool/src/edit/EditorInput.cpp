// Reads with `read`, because a stream would go on by itself after a signal, and would keep what was read ahead.
#include "edit/EditorInput.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/session/Session.h>

#include "cli/Failure.h"
#include "cli/Output.h"
#include "console/HistoryFile.h"
#include "console/ReadingSignals.h"

namespace tarn::tool {

namespace {

constexpr std::array<int, 3> endingSignals = {SIGTERM, SIGHUP, SIGQUIT};

volatile std::sig_atomic_t notedEnd = 0;

void noteEnd(int signal) {
  notedEnd = signal;
}

/// Keeps signals from ending the program while a command is at work. The program ends before the next line is read.
class EndingSignals {
 public:
  explicit EndingSignals(std::function<void()> beforeEnd) : beforeEnd_(std::move(beforeEnd)) {
    notedEnd = 0;
    struct sigaction action {};
    action.sa_handler = noteEnd;
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
      ::sigaction(endingSignals[i], nullptr, &before_[i]);
      if (before_[i].sa_handler != SIG_IGN) ::sigaction(endingSignals[i], &action, nullptr);
    }
  }
  ~EndingSignals() {
    for (std::size_t i = 0; i < endingSignals.size(); ++i) ::sigaction(endingSignals[i], &before_[i], nullptr);
  }
  EndingSignals(EndingSignals const&) = delete;
  EndingSignals& operator=(EndingSignals const&) = delete;

  void beforeEnd() const { beforeEnd_(); }

  /// Ends the program if a signal has asked for it.
  void endIfAsked() const {
    int const signal = notedEnd;
    if (signal == 0) return;
    beforeEnd_();
    std::signal(signal, SIG_DFL);
    ::raise(signal);
  }

 private:
  std::function<void()> const beforeEnd_;
  std::array<struct sigaction, endingSignals.size()> before_{};
};

class EditedLines final : public EditorInput {
 public:
  EditedLines(LineEditor::Completer completer, std::function<void()> beforeEnd)
      : ending_(std::move(beforeEnd)),
        completer_(std::move(completer)),
        history_(historyPath()),
        editor_([this](std::string_view line,
                       std::size_t cursor) { return isAsking_ ? Completion() : completer_(line, cursor); },
                HistoryFile::maxLines, {LineEditor::Interrupts::NeverEnd, [this] { ending_.beforeEnd(); }}) {
    for (std::string const& line : history_.read()) editor_.remember(line);
  }

  [[nodiscard]] bool isReady() const noexcept { return editor_.isReady(); }

  std::optional<std::string> next(std::string const& prompt) override {
    ending_.endIfAsked();
    std::optional<std::string> line = editor_.read(prompt);
    if (line && !StringUtilities::trimmed(*line).empty()) {
      editor_.remember(*line);
      history_.add(*line);
    }
    return line;
  }

  std::optional<std::string> ask(std::string const& question) override {
    ending_.endIfAsked();
    isAsking_ = true;
    std::optional<std::string> answer = editor_.read(question);
    isAsking_ = false;
    return answer;
  }

 private:
  static std::filesystem::path historyPath() {
    std::filesystem::path const usual = HistoryFile::usualPath(std::getenv("XDG_STATE_HOME"), std::getenv("HOME"));
    return usual.empty() ? usual : usual.parent_path() / "edit-history";
  }

  EndingSignals const ending_;
  LineEditor::Completer const completer_;
  HistoryFile const history_;
  bool isAsking_ = false;
  LineEditor editor_;
};

/// Lines as they come. A line that no command can have is cut off, so that memory does not grow without bound.
class PlainLines {
 public:
  /// `wait` waits for input and returns whether there is some; if not, what was read of the line is dropped.
  std::optional<std::string> next(std::function<bool()> const& wait) {
    std::string line;
    for (;;) {
      if (at_ == held_) {
        if (!wait()) {
          line.clear();
          continue;
        }
        ssize_t const count = ::read(STDIN_FILENO, buffer_.data(), buffer_.size());
        if (count == -1 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count == -1) {
          throw Failure("the standard input cannot be read" + becauseOf(errno) +
                        "; give it a terminal, a file of commands, or /dev/null");
        }
        if (count == 0) return line.empty() ? std::nullopt : std::optional(std::move(line));
        at_ = 0;
        held_ = static_cast<std::size_t>(count);
      }
      std::string_view const rest(buffer_.data() + at_, held_ - at_);
      std::size_t const end = rest.find('\n');
      std::string_view const piece = rest.substr(0, end);
      constexpr std::size_t longestLine = 3 * session::Session::mostCharacters;
      line += piece.substr(0, longestLine - std::min(longestLine, line.size()));
      at_ += piece.size() + (end == std::string_view::npos ? 0 : 1);
      if (end != std::string_view::npos) return line;
    }
  }

 private:
  std::array<char, std::size_t{1} << 16U> buffer_{};
  std::size_t at_ = 0;
  std::size_t held_ = 0;
};

/// A terminal that cannot move its cursor. It edits lines by itself, as far as it can.
class DumbLines final : public EditorInput {
 public:
  explicit DumbLines(std::function<void()> beforeEnd) : ending_(std::move(beforeEnd)) {}

  std::optional<std::string> next(std::string const& prompt) override {
    ending_.endIfAsked();
    ReadingSignals const signals;
    write(prompt);
    auto line = lines_.next([&] { return wait(signals, prompt); });
    if (!line) write("\n");
    return line;
  }

  std::optional<std::string> ask(std::string const& question) override { return next(question); }

 private:
  bool wait(ReadingSignals const& signals, std::string const& prompt) {
    int const signal = signals.waitForInput(STDIN_FILENO);
    switch (signal) {
      case SIGINT:
        write("\n" + prompt);
        return false;
      case SIGTERM:
      case SIGHUP:
      case SIGQUIT:
        ending_.beforeEnd();
        signals.letAct(signal);
        return true;
      case SIGTSTP:
        signals.letAct(signal);
        return true;
      default:
        return true;
    }
  }

  static void write(std::string const& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
  }

  EndingSignals const ending_;
  InterruptGrace const grace_{InterruptGrace::Ends::Never};
  PlainLines lines_;
};

class ScriptLines final : public EditorInput {
 public:
  std::optional<std::string> next(std::string const& /*prompt*/) override {
    return lines_.next([] { return true; });
  }
  std::optional<std::string> ask(std::string const& /*question*/) override { return std::nullopt; }

 private:
  PlainLines lines_;
};

}  // namespace

std::unique_ptr<EditorInput> terminalInput(LineEditor::Completer completer, std::function<void()> beforeEnd) {
  if (LineEditor::isPossible()) {
    auto edited = std::make_unique<EditedLines>(std::move(completer), beforeEnd);
    if (edited->isReady()) return edited;
  }
  return std::make_unique<DumbLines>(std::move(beforeEnd));
}

std::unique_ptr<EditorInput> scriptInput() {
  return std::make_unique<ScriptLines>();
}

bool isOnATerminal() noexcept {
  return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
}

}  // namespace tarn::tool

// libedit does the editing. This source says what each key does, and handles what libedit needs around it: signals, the
// locale, and the position of the cursor when something else is written.
//
// libedit's own signal handling is not used. It works inside the handlers, where memory must not be allocated. And when
// a window shrinks while a line has several rows, its cursor is outside the screen that it remembers. So characters are
// read here, signals are handled between two characters, and after a resize the line is removed and displayed again.
#include "console/LineEditor.h"

#include <histedit.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "console/CharacterLocale.h"
#include "console/ChoiceList.h"

namespace tarn::tool {

namespace {

LineEditor* editorOf(EditLine* edit) {
  void* data = nullptr;
  el_get(edit, EL_CLIENTDATA, &data);
  return static_cast<LineEditor*>(data);
}

void writeToTerminal(std::string const& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

}  // namespace

void LineEditor::Closer::operator()(EditLine* edit) const noexcept {
  el_end(edit);
}
void LineEditor::Closer::operator()(History* lines) const noexcept {
  history_end(lines);
}

bool LineEditor::isPossible() noexcept {
  if (::isatty(STDIN_FILENO) != 1 || ::isatty(STDOUT_FILENO) != 1) return false;
  char const* const terminal = std::getenv("TERM");
  return terminal != nullptr && *terminal != '\0' && std::strcmp(terminal, "dumb") != 0;
}

LineEditor::LineEditor(Completer completer, std::size_t historySize)
    : LineEditor(std::move(completer), historySize, Signals{}) {}

LineEditor::LineEditor(Completer completer, std::size_t historySize, Signals signals)
    : completer_(std::move(completer)),
      beforeEnd_(std::move(signals.beforeEnd)),
      grace_(signals.interrupts == Interrupts::NeverEnd ? InterruptGrace::Ends::Never : InterruptGrace::Ends::Second),
      lines_(history_init()) {
  if (!lines_) return;
  CharacterLocale const locale;
  edit_.reset(el_init("zev", stdin, stdout, stderr));
  if (!edit_) return;
  HistEvent event{};
  history(lines_.get(), &event, H_SETSIZE, static_cast<int>(historySize));
  history(lines_.get(), &event, H_SETUNIQUE, 1);
  el_set(edit_.get(), EL_CLIENTDATA, this);
  el_set(edit_.get(), EL_PROMPT, promptOf);
  el_set(edit_.get(), EL_GETCFN, onRead);
  el_set(edit_.get(), EL_HIST, history, lines_.get());
  bindKeys();
}

LineEditor::~LineEditor() {
  CharacterLocale const locale;
  edit_.reset();
}

void LineEditor::bindKeys() {
  EditLine* const edit = edit_.get();
  auto const bind = [edit](char const* key, char const* action) { el_set(edit, EL_BIND, key, action, nullptr); };
  el_set(edit, EL_EDITOR, "emacs");
  el_set(edit, EL_ADDFN, "zev-complete", "Complete a command, a path or a file", onTab);
  bind("^I", "zev-complete");
  bind("^R", "em-inc-search-prev");
  bind("\\e[3~", "ed-delete-next-char");
  bind("\\e[H", "ed-move-to-beg");
  bind("\\e[F", "ed-move-to-end");
  bind("\\e[1~", "ed-move-to-beg");
  bind("\\e[4~", "ed-move-to-end");
  bind("\\e[1;5D", "ed-prev-word");
  bind("\\e[1;5C", "em-next-word");
  // These keys ask for one of libedit's own commands, which crash on an unmatched quote.
  bind("\\ex", "ed-unassigned");
  bind("\\eX", "ed-unassigned");
}

std::optional<std::string> LineEditor::read(std::string const& prompt) {
  if (!edit_) return std::nullopt;
  CharacterLocale const locale;
  std::optional<std::string> line;
  {
    ReadingSignals const signals;
    signals_ = &signals;
    prompt_ = prompt;
    do {
      dropped_ = false;
      decoding_ = {};
      el_resize(edit_.get());  // the window can have changed since the last line
      // Before the prompt is shown: a user who answers at once must find the terminal in its editing mode.
      el_set(edit_.get(), EL_PREP_TERM, 1);
      int count = 0;
      if (char const* const typed = el_gets(edit_.get(), &count); typed != nullptr && count > 0) line = typed;
    } while (dropped_);
    signals_ = nullptr;
  }
  if (!line) {
    writeToTerminal("\n");
  } else if (line->ends_with('\n')) {
    line->pop_back();
  }
  grace_.allowOne();
  return line;
}

void LineEditor::remember(std::string const& line) {
  if (!edit_) return;
  CharacterLocale const locale;
  // libedit would take a line that cannot be decoded for the end of its history.
  if (std::mbstowcs(nullptr, line.c_str(), 0) == static_cast<std::size_t>(-1)) return;
  HistEvent event{};
  history(lines_.get(), &event, H_ENTER, line.c_str());
}

char* LineEditor::promptOf(EditLine* edit) {
  return editorOf(edit)->prompt_.data();
}

// There is C code between these two functions and any handler of an exception.

int LineEditor::onRead(EditLine* edit, wchar_t* character) {
  try {
    return editorOf(edit)->readCharacter(*character);
  } catch (...) {
    return -1;
  }
}

unsigned char LineEditor::onTab(EditLine* edit, int /*key*/) {
  try {
    return editorOf(edit)->complete();
  } catch (...) {  // the line can be typed without completion
    return CC_ERROR;
  }
}

int LineEditor::readCharacter(wchar_t& character) {
  for (;;) {
    int const signal = signals_->waitForInput(STDIN_FILENO);
    if (signal < 0) return -1;
    if (signal > 0) {
      answer(signal);
      if (dropped_) return -1;
      continue;
    }
    char byte = 0;
    ssize_t const count = ::read(STDIN_FILENO, &byte, 1);
    if (count == -1 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count != 1) return static_cast<int>(count);
    auto const length = std::mbrtowc(&character, &byte, 1, &decoding_);
    if (length == static_cast<std::size_t>(-2)) continue;  // the character has more bytes
    if (length != static_cast<std::size_t>(-1)) return 1;
    decoding_ = {};  // skip what is not a character
  }
}

void LineEditor::answer(int signal) {
  EditLine* const edit = edit_.get();
  switch (signal) {
    case SIGINT:
      writeToTerminal("^C" + std::string(rows().below + 1, '\n'));
      dropped_ = true;
      break;
    case SIGWINCH:
      resize();
      break;
    default:
      // Restore the terminal before the program stops or ends. When the program continues, a shell has used the
      // terminal in the meantime.
      if (signal != SIGCONT) writeBelow("");
      el_set(edit, EL_PREP_TERM, 0);
      if (beforeEnd_ && (signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT)) beforeEnd_();
      if (signal != SIGCONT) signals_->letAct(signal);
      el_set(edit, EL_PREP_TERM, 1);
      resize();
  }
}

unsigned char LineEditor::complete() {
  LineInfo const* const info = el_line(edit_.get());
  Completion const completion =
      completer_(std::string_view(info->buffer, static_cast<std::size_t>(info->lastchar - info->buffer)),
                 static_cast<std::size_t>(info->cursor - info->buffer));
  if (!completion.insert.empty()) {
    return el_insertstr(edit_.get(), completion.insert.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
  }
  if (completion.total < 2) return CC_ERROR;
  writeBelow(choiceList(completion, columns()));
  writeRowsAbove();
  return CC_REDISPLAY;
}

void LineEditor::resize() {
  EditLine* const edit = edit_.get();
  LineInfoW const* const info = el_wline(edit);
  std::wstring const text(info->buffer, info->lastchar);
  auto const length = static_cast<int>(text.size());
  auto const behind = static_cast<int>(info->lastchar - info->cursor);

  auto const [above, below] = rows();
  writeToTerminal(above + below > 0 ? std::string(below + 1, '\n') : "\r");
  std::string const prompt = std::exchange(prompt_, "");
  el_cursor(edit, behind);
  el_deletestr(edit, length);
  el_set(edit, EL_REFRESH);  // now its cursor is in the first row, which exists in every window
  el_resize(edit);
  prompt_ = prompt;
  el_winsertstr(edit, text.c_str());
  el_cursor(edit, -behind);
  el_set(edit, EL_REFRESH);
}

std::size_t LineEditor::columns() const {
  int width = 0;
  el_get(edit_.get(), EL_GETTC, "co", &width);
  return width > 0 ? static_cast<std::size_t>(width) : 80;
}

LineEditor::Rows LineEditor::rows() const {
  LineInfo const* const info = el_line(edit_.get());
  std::size_t const before = columnsOf(prompt_) + columnsOf(std::string(info->buffer, info->cursor));
  std::size_t const all = before + columnsOf(std::string(info->cursor, info->lastchar));
  return {before / columns(), all / columns() - before / columns()};
}

void LineEditor::writeBelow(std::string const& text) const {
  writeToTerminal(std::string(rows().below + 1, '\n') + text);
}

void LineEditor::writeRowsAbove() const {
  writeToTerminal(std::string(rows().above, '\n'));
}

}  // namespace tarn::tool

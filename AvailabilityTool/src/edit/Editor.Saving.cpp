// Saving, and ending without losing work that nobody agreed to lose.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include <tarn/Error.h>
#include <tarn/StringUtilities.h>

#include "cli/Counted.h"
#include "edit/Editor.h"
#include "edit/ItemText.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using session::ModelFile;
using session::Overwrite;
using session::SaveError;
using session::SaveFault;

/// The command that sets a value that waits.
std::string requestText(session::Waiting const& waits) {
  session::Item const& item = waits.item;
  if (item.name && waits.value) return commandText(Edit::setParam(item.path, *item.name, *waits.value));
  if (item.name) return commandText(Edit::activateParam(item.path, *item.name));
  return commandText(Edit::activateObject(item.path));
}

struct Close {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// Writes a file that is not there yet. False if that fails; then nothing is left of it.
bool writeNew(std::filesystem::path const& path, std::string const& text) {
  std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "wbx"));
  if (!file) return false;
  bool const isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  bool const isWhole = std::fclose(file.release()) == 0 && isWritten;
  std::error_code ignored;
  if (!isWhole) std::filesystem::remove(path, ignored);
  return isWhole;
}

}  // namespace

Outcome Editor::save(std::string_view text) {
  DividedLine const divided = divide(text);
  bool const isOver = divided.word == "over";
  std::string const name(isOver ? divided.rest : text);
  if (name.empty() && !file_) return fail("The model has no file yet. Give it a name: save FILE", "save model.tdf");
  if (rehearsal_) return Outcome::Done;
  return writeTo(name, isOver ? Overwrite::Yes : Overwrite::No);
}

Outcome Editor::writeTo(std::string const& name, Overwrite overwrite) {
  std::string const target = name.empty() ? file_->name() : name;
  ModelState const state = session_.result();
  ModelFile file = file_ ? *file_ : ModelFile::named(target);
  std::string const before = file.bytes();
  auto const write = [&](Overwrite mode) {
    return file.name() == target ? file.save(state, order_, mode) : file.saveAs(target, state, order_, mode);
  };
  bool const isOther = file.name() != target;
  std::optional<SaveError> error = write(overwrite);
  if (error && error->fault == SaveFault::FileChanged) {
    std::string const command = "save over" + (name.empty() ? "" : ' ' + name);
    if (!ask_) return fail(harmless(error->sentence), command);
    screen_.print(harmless(error->sentence) + '\n');
    if (!asksYes("Write over it?", {})) {
      screen_.print("Nothing was written. \"" + shortened(command) + "\" writes over it.\n");
      return Outcome::Refused;
    }
    error = write(Overwrite::Yes);
  }
  // A script ends here.
  if (error) return fail(harmless(error->sentence) + (ask_ ? ". Your edits are still here." : "."));
  bool const isSame = !isOther && file_ && file.bytes() == before;
  file_ = std::move(file);
  saved_ = done_;
  screen_.print((isSame ? shortened(target) + " holds this already.\n" : "saved " + shortened(target) + '\n') +
                leftOut());
  return Outcome::Done;
}

/// The requests that the file does not have, because they wait.
std::string Editor::leftOut() const {
  constexpr std::size_t mostLines = 20;
  std::vector<session::Waiting> const waiting = session_.waiting();
  if (waiting.empty()) return {};
  std::vector<std::pair<std::string, std::string>> lines;
  for (session::Waiting const& waits : waiting) {
    if (lines.size() == mostLines) break;
    std::string line = waits.item.name ? shortened(*waits.item.name) : std::string("the object");
    if (waits.value) line += " = " + shortened(*waits.value);
    lines.emplace_back(waits.item.path, line + "   " + whyWaiting(waits));
  }
  std::string text =
      painted("! " + std::to_string(waiting.size()) + " not in the file", Colour::Yellow, screen_.look()) +
      ", because it is not in force:\n" + groupedText(lines);
  if (waiting.size() > mostLines) text += "  ... \"waiting\" lists all\n";
  return text;
}

Outcome Editor::quit(std::string_view text) {
  std::string const word = StringUtilities::toLower(std::string(text));
  if (word == "unsaved") return Outcome::Quit;
  if (!word.empty()) return fail("Write quit, or quit unsaved.", "quit");
  if (rehearsal_) return Outcome::Quit;
  std::size_t const unsaved = unsavedSteps();
  if (unsaved == 0) return Outcome::Quit;
  if (!ask_) {
    screen_.complain(counted(unsaved, "step") +
                     " not saved: put \"save\" before the end, or end with \"quit unsaved\"\n");
    return Outcome::QuitUnsaved;
  }
  for (;;) {
    auto const answer =
        ask_(counted(unsaved, "step") + " not saved. Lose " + (unsaved == 1 ? "it" : "them") + "? [y/N/list/save] ");
    // The input has ended for good: nobody can answer.
    if (!answer) return Outcome::QuitUnsaved;
    std::string const reply = StringUtilities::toLower(StringUtilities::removeWhitespace(*answer));
    if (reply == "y" || reply == "yes") return Outcome::Quit;
    if (reply == "l" || reply == "list") {
      std::string listed;
      std::size_t const kept = done_.size() - std::min(done_.size(), unsaved);
      std::vector<session::Step> const& steps = session_.steps();
      for (std::size_t i = std::min(kept, steps.size()); i < steps.size(); ++i) {
        for (Edit const& edit : steps[i].edits) {
          listed += "  " + std::to_string(steps[i].number) + ": " + shortened(commandText(edit)) + '\n';
        }
      }
      screen_.page(listed.empty() ? "  Saved steps were taken back.\n" : listed);
      continue;
    }
    if (reply == "s" || reply == "save") {
      if (!file_) {
        (void)fail("The model has no file yet. Give it a name: save FILE", "save model.tdf");
        return Outcome::Refused;
      }
      if (Outcome const outcome = save({}); outcome != Outcome::Done) return outcome;
      return Outcome::Quit;
    }
    screen_.print("Still here. \"save\" writes the file.\n");
    return Outcome::Refused;
  }
}

Outcome Editor::endInput() {
  return quit({});
}

std::string Editor::rescue() {
  if (unsavedSteps() == 0) return {};
  std::string text = rewriteModelText(file_ ? file_->bytes() : std::string(), session_.result(), order_);
  std::vector<session::Waiting> const waiting = session_.waiting();
  if (!waiting.empty()) {
    if (!text.empty() && text.back() != '\n') text += '\n';
    text += "# These were asked for, and were not in force when zev edit was ended:\n";
    for (session::Waiting const& waits : waiting) text += "#   " + requestText(waits) + '\n';
  }
  namespace fs = std::filesystem;
  fs::path const name = file_ ? file_->name() : "model.tdf";
  std::vector<fs::path> places = {name};
  if (char const* const home = std::getenv("HOME"); home != nullptr && *home == '/') {
    places.push_back(fs::path(home) / name.filename());
  }
  places.push_back(fs::path("/tmp") / name.filename());
  constexpr int mostNames = 100;
  for (fs::path const& place : places) {
    for (int i = 1; i <= mostNames; ++i) {
      fs::path const target = place.string() + ".unsaved" + (i == 1 ? "" : '-' + std::to_string(i));
      std::error_code unknown;
      if (fs::exists(target, unknown)) continue;
      if (writeNew(target, text)) {
        return counted(unsavedSteps(), "step") + " not saved: the model with them is in " + harmless(target.string());
      }
      break;
    }
  }
  return counted(unsavedSteps(), "step") + " not saved, and no file could be written";
}

}  // namespace tarn::tool

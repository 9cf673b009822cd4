#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/How.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

#include "edit/CommandWords.h"
#include "edit/Screen.h"

namespace tarn::tool {

/// The outcome of a line.
enum class Outcome {
  Done,
  /// An edit was refused, or a question was answered with no. Nothing has changed.
  Refused,
  /// The line is not a command, names something that is not there, or a file could not be written.
  Failed,
  /// The editor should end.
  Quit,
  /// The same, and work that was not saved is lost without the user's consent.
  QuitUnsaved
};

/// The commands of `zev edit`, one line at a time. Everything that is shown goes to a `Screen`.
class Editor {
 public:
  /// Asks the user and returns the answer; nothing at the end of the input.
  using Ask = std::function<std::optional<std::string>(std::string const& question)>;

  /// `session` and `screen` must outlive the editor. `file` holds the model that the session was opened with; not set
  /// for a new model. `order` is the place of new parameters in it. Without `ask`, nothing is ever asked: a command
  /// that would need an answer fails and names the command that does it anyway.
  Editor(session::Session& session, std::optional<session::ModelFile> file, ModelTextOrder order, Screen& screen,
         Ask ask);

  /// Runs a line. An empty line, and one that begins with "#", does nothing.
  Outcome run(std::string_view line);
  /// The input has ended. Asks what to do with work that is not saved.
  Outcome endInput();
  /// Shows the model in a few words, and how to get help.
  void greet();

  [[nodiscard]] std::string prompt() const;
  /// The object where paths without "/" in front begin.
  [[nodiscard]] std::string const& here() const noexcept { return here_; }
  /// The path of an object or a parameter that a user typed, from the root of the model.
  [[nodiscard]] std::string absolute(std::string_view typed) const;
  /// The same in the form of edits: "" is the root of the model.
  [[nodiscard]] std::string pathOf(std::string_view typed) const;

  /// The number of steps that have not been saved, counting those taken back since then.
  [[nodiscard]] std::size_t unsavedSteps() const;

  /// Writes work that is not saved to a new file beside the model, for a program that must end now. Returns the
  /// sentence to show, "" if there is nothing to rescue.
  [[nodiscard]] std::string rescue();

 private:
  struct Arguments {
    Word word;
    std::string_view text;
  };

  /// A rehearsal of `other`: it has the same state, shows nothing, and changes nothing.
  Editor(Editor const& other, Screen& silent);

  Outcome runCommand(Arguments const& arguments);

  // Edits
  Outcome edit(Arguments const& arguments);
  Outcome tryEdit(std::string_view text);
  Outcome undo(std::string_view text, bool isRedo);
  Outcome effects(std::string_view text);
  [[nodiscard]] std::optional<Edit> readEdit(Arguments const& arguments);
  [[nodiscard]] std::optional<Edit> readNaming(Arguments const& arguments);
  [[nodiscard]] bool mayLose(Edit const& edit);
  void showResult(session::EditResult result, ResultTextOptions options);
  void note(session::EditResult const& result);
  void proposeObject(session::Refused& refused) const;
  void stayInTheModel();

  // Looking
  Outcome show(std::string_view text);
  Outcome list(std::string_view text);
  Outcome go(std::string_view text);
  Outcome find(std::string_view text);
  Outcome mine();
  Outcome waiting();
  Outcome differences();
  Outcome findings();
  Outcome help(std::string_view text);
  Outcome why(std::string_view text);
  Outcome how(std::string_view text);
  [[nodiscard]] std::optional<session::Goal> readGoal(std::string_view text, std::string_view command);
  [[nodiscard]] std::optional<session::Item> resolve(std::string_view text, std::string_view command);
  [[nodiscard]] std::optional<session::ObjectRecord> presentObject(std::string_view text, std::string_view command);

  // Saving
  Outcome save(std::string_view text);
  Outcome quit(std::string_view text);
  Outcome writeTo(std::string const& name, session::Overwrite overwrite);
  [[nodiscard]] std::string leftOut() const;

  Outcome refuse(session::Refused refused);
  /// Shows a sentence and, if there is one, the command that was probably meant. If that would fail too, it shows what
  /// that would propose, and otherwise `instead`.
  Outcome fail(std::string const& sentence, std::string const& meant = {}, std::string const& instead = {});
  [[nodiscard]] std::string workingCommand(std::string command) const;
  [[nodiscard]] ResultTextOptions resultOptions() const;
  [[nodiscard]] bool asksYes(std::string const& question, std::string const& listed);

  /// The result of a rehearsed command: the command that it would propose.
  struct Rehearsal {
    std::string proposed;
  };

  session::Session& session_;
  /// Not set: commands are in earnest.
  std::optional<Rehearsal> rehearsal_;
  std::optional<session::ModelFile> file_;
  ModelTextOrder const order_;
  Screen& screen_;
  Ask ask_;
  std::string here_;

  /// The result that `effects` shows, and how it was shown.
  std::optional<session::EditResult> last_;
  ResultTextOptions lastOptions_;

  /// Each step of the session, in force or taken back, has a number of its own: two states are the same if and only if
  /// their last steps are.
  std::vector<std::size_t> done_;
  std::vector<std::size_t> undone_;
  std::size_t nextStep_ = 1;
  std::vector<std::size_t> saved_;
};

}  // namespace tarn::tool

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/rules/RuleTexts.h>
#include <tarn/workbench/EditorAnswers.h>

namespace tarn::workbench {

class EditedRulesImpl;

/// The texts of a rule base at one moment. It can be checked on another thread while the texts are edited.
class TARN_EXPORT RuleSnapshot {
 public:
  /// The number of the state, as `EditedRules::revision` gave it.
  [[nodiscard]] std::size_t revision() const noexcept { return revision_; }
  /// Everything that is wrong or doubtful, as lint finds it. Every rule file has an entry. Costs what lint costs.
  [[nodiscard]] EditorDiagnostics check() const;

 private:
  friend class EditedRules;
  std::size_t revision_ = 0;
  std::vector<rules::RuleText> texts_;
};

/// A rule base while its files are edited: it answers the questions that an editor asks. It has the texts of all files,
/// saved or not, and reads only what changed.
///
///     EditedRules rules;
///     rules.setText("case.rules.yaml", text);
///     rules.change("case.rules.yaml", {{12, 18}, {12, 18}}, "x");
///     for (auto const& item : rules.complete("case.rules.yaml", {12, 19})) show(item.label);
///
/// Files whose names end in ".rule-tests.yaml" are tests of these rules; all others are rule files. A file that is not
/// correct keeps everything in it that can be read. Positions beyond the end of a line mean its end, and lines beyond
/// the end of a file the end of the file. Questions about a file that is not known get empty answers. Nothing is thrown
/// but `std::bad_alloc`. One thread at a time may use an object of this class.
///
/// The first question after a change costs the size of the changed file, and a look at all names of the rule base. The
/// questions themselves cost the size of what they return, unless something else is said.
class TARN_EXPORT EditedRules {
 public:
  EditedRules();
  EditedRules(EditedRules&&) noexcept;
  EditedRules& operator=(EditedRules&&) noexcept;
  ~EditedRules();

  // Files

  /// Gives a file its text. A new file is put before the next file of its folder in the order of names, or after all
  /// others if there is none. The order of rule files is the order in which their rules count.
  void setText(std::string const& file, std::string text);
  /// Replaces a part of a text. Returns false, and changes nothing, if there is no such file.
  bool change(std::string const& file, EditorRange const& range, std::string_view text);
  /// Forgets a file.
  void remove(std::string const& file);
  [[nodiscard]] bool has(std::string const& file) const;
  /// The names of all files, in their order.
  [[nodiscard]] std::vector<std::string> files() const;
  /// The text of a file. Valid until the file changes; empty if there is no such file.
  [[nodiscard]] std::string const& text(std::string const& file) const;
  /// A line without its end, counted from 0. Valid until the file changes; empty if there is no such line.
  [[nodiscard]] std::string_view line(std::string const& file, std::size_t number) const;
  /// A number that rises with every change of a text.
  [[nodiscard]] std::size_t revision() const noexcept;
  /// Whether this is the name of a file with tests of rules.
  [[nodiscard]] static bool isTestFile(std::string_view file) noexcept;

  // Diagnostics

  /// The present texts of the rule files, for a check of everything. Copies them.
  [[nodiscard]] RuleSnapshot snapshot() const;
  /// The diagnostics of the parts of rule files that changed since `last` was made, together with those that `last` has
  /// for the other parts, at their present places. It needs little time in a rule base of any size. `last` belongs to
  /// the revision of the last call of `accept`.
  ///
  /// The order of entries and their contexts are judged in all parts of the objects that have changed parts. It leaves
  /// out findings about other unchanged parts that the change caused or removed, and needless acceptances that count in
  /// more than what was looked at. A warning of a rule that reads a later decision says so if the advice about what to
  /// move is not known.
  ///
  /// Only the changed parts are judged if the objects with changed parts have more than 256 KiB, or more than 384 KiB
  /// together with what they read. Only errors of form are found if the changed parts and what they read are still more
  /// than 384 KiB. As long as there are errors, there is nothing but errors.
  [[nodiscard]] EditorDiagnostics checkChanges(EditorDiagnostics const& last) const;
  /// Says that diagnostics of the present texts are known, so that `checkChanges` counts changes from here.
  void accept();
  /// Everything that is wrong with the form of a file of tests. Models are looked for from the folder of the file.
  [[nodiscard]] std::vector<EditorDiagnostic> checkTests(std::string const& file) const;

  // Questions

  /// The proposals for a position: keys, values, functions, names, paths.
  [[nodiscard]] std::vector<EditorCompletion> complete(std::string const& file, EditorPosition position) const;
  [[nodiscard]] std::optional<EditorHover> hover(std::string const& file, EditorPosition position) const;
  /// Where the name at a position is given. More than one place if the name can mean several items.
  [[nodiscard]] std::vector<EditorLocation> definition(std::string const& file, EditorPosition position) const;
  /// Where the item at a position is used, in the order of files; with `withDefinitions` also where it is given. Costs
  /// a look at all paths with this name.
  [[nodiscard]] std::vector<EditorLocation> references(std::string const& file, EditorPosition position,
                                                       bool withDefinitions) const;
  /// The name at a position, if it can be changed: that of a parameter, object type, named rule, template or quantity
  /// type.
  [[nodiscard]] std::optional<EditorName> renamable(std::string const& file, EditorPosition position) const;
  /// Gives the item at a position another name, in all rule files and tests. Models in other files are not changed. It
  /// is refused if the name is taken or cannot be written, if a path can mean other items too, or if the rules would
  /// then have other diagnostics than now. Costs two runs of lint.
  [[nodiscard]] EditorRename rename(std::string const& file, EditorPosition position, std::string const& name) const;

  /// The items of a file in their order.
  [[nodiscard]] std::vector<EditorSymbol> symbols(std::string const& file) const;
  /// The items of all files whose names contain `part`, whatever the case of letters; at most `most`.
  [[nodiscard]] std::vector<EditorFoundSymbol> findSymbols(std::string_view part, std::size_t most = 200) const;
  [[nodiscard]] std::vector<EditorFold> folds(std::string const& file) const;
  /// The parts of the expressions in the lines from `firstLine` up to, but not including, `endLine`, in their order.
  [[nodiscard]] std::vector<EditorToken> tokens(std::string const& file, std::size_t firstLine,
                                                std::size_t endLine) const;

 private:
  std::unique_ptr<EditedRulesImpl> impl_;
};

}  // namespace tarn::workbench

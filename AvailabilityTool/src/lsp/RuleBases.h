#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <tarn/workbench/EditedRules.h>

namespace tarn::tool {

/// A rule base in an editor: its files, and what is known to be wrong with them.
struct RuleBase {
  workbench::EditedRules rules;
  /// As the whole check of the revision `checked` found it.
  workbench::EditorDiagnostics wholly;
  /// As it was published.
  workbench::EditorDiagnostics current;
  std::size_t checked = 0;   // the revision of `wholly`
  std::size_t examined = 0;  // the revision of `current`
  bool hasWhole = false;
  /// How long the last whole check took.
  std::chrono::milliseconds cost{0};
  std::set<std::string> changedTests;
};

/// Which files belong together, and their texts. A file is one of these:
///
/// - one of the files and folders that were configured: all of them are one rule base;
/// - otherwise, a rule file belongs to a rule base with all `*.rules.yaml` of its folder;
/// - a file of tests belongs to the rule base that was configured; without one, to that of its own folder if there are
///   rule files in it, or to that of the folder `rules` beside its own folder, or to that of the folder above.
///
/// Tests that are not open are found in the folder of the rules, in a folder `tests` in it, and in one beside it.
class RuleBases {
 public:
  struct Limits {
    std::size_t documents = 2000;  // open at once
    std::size_t files = 20'000;    // of one rule base
    std::size_t fileBytes = std::size_t{64} << 20;
  };

  explicit RuleBases(Limits const& limits) : limits_(limits) {}

  /// The files and folders of `initializationOptions.rules`, as absolute paths.
  void configure(std::vector<std::filesystem::path> rules) { configured_ = std::move(rules); }

  /// A document is opened, changed or closed in the editor. `open` returns a sentence if it is refused.
  [[nodiscard]] std::string open(std::string const& path, std::string text);
  void close(std::string const& path);
  [[nodiscard]] bool isOpen(std::string const& path) const { return open_.contains(path); }
  /// A file was made, changed or deleted by another program.
  void refresh(std::string const& path);

  /// The rule base of an open document; null if it has none.
  [[nodiscard]] RuleBase* find(std::string const& path);
  [[nodiscard]] std::map<std::string, std::unique_ptr<RuleBase>> const& all() const noexcept { return bases_; }
  /// Sentences about files that could not be read, since the last call.
  [[nodiscard]] std::vector<std::string> takeProblems() { return std::exchange(problems_, {}); }

  /// Whether the name is that of a rule file or of a file of tests.
  [[nodiscard]] static bool isOfRules(std::string const& path);

 private:
  /// The name of the rule base that a file belongs to: a folder, or "" for the configured one.
  [[nodiscard]] std::string keyOf(std::string const& path) const;
  [[nodiscard]] bool isConfigured(std::string const& path) const;
  RuleBase& base(std::string const& key);
  void loadFolder(RuleBase& base, std::filesystem::path const& folder, std::string_view suffix);
  void loadFile(RuleBase& base, std::string const& path);

  Limits limits_;
  std::vector<std::filesystem::path> configured_;
  std::map<std::string, std::unique_ptr<RuleBase>> bases_;
  std::map<std::string, std::string> open_;  // the key of the rule base of each open document
  std::vector<std::string> problems_;
};

}  // namespace tarn::tool

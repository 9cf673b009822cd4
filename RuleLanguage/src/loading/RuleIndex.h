#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/rules/RuleLoader.h>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"
#include "expression/CompiledRules.h"
#include "expression/Parser.h"
#include "yaml/SourceFileSet.h"
#include "yaml/YamlDocument.h"
#include "yaml/YamlItem.h"

namespace tarn::rules {

/// A kind of entry of an object.
enum class EntryKind { Parameter, Child, Check };

/// One use of an expression: where it is written and what it is used for.
struct ExpressionUse {
  Item item;                // the scalar that holds it
  std::size_t skipped = 0;  // bytes of the scalar before the expression: of "= ..." the "="
  CompiledPtr compiled;
  Role role = Role::Condition;
  YamlNode const* objectName = nullptr;  // see `typePath`
  YamlNode const* entryName = nullptr;   // see `entry`
  EntryKind kind = EntryKind::Parameter;
  std::string_view attribute;        // as its key is written in the file
  NamedRule const* named = nullptr;  // the named rule, when the expression is its body
  /// The name of the template in the `Use` by which the object takes the entry; empty when the entry is its own. The
  /// expression itself is written in the template.
  Item taken = {};

  /// The type path of the object that owns the rule; empty for named rules and global checks.
  [[nodiscard]] std::string const& typePath() const noexcept { return textOf(objectName); }
  /// The name of the parameter, child type or check; empty where there is none.
  [[nodiscard]] std::string const& entry() const noexcept { return textOf(entryName); }
  /// The text from which the ranges of the expression count.
  [[nodiscard]] std::string_view text() const { return std::string_view(item.node->value).substr(skipped); }

 private:
  [[nodiscard]] static std::string const& textOf(YamlNode const* name) noexcept {
    static std::string const none;
    return name != nullptr ? name->value : none;
  }
};

/// Where an entry of an object is written.
struct EntryPlace {
  Item name;
  Item body;          // the map of its attributes
  Item taken = {};    // as in `ExpressionUse`
  Item section = {};  // the map that has the entry as a key
  /// The `Use` by which the object takes the entry, when it is written among the entries of that kind; otherwise empty.
  Item use = {};

  /// The value of an attribute; empty when the entry does not have it. Linear in the number of its attributes.
  [[nodiscard]] Item attribute(std::string_view key) const;
};

/// Where an object type is written first, and where its entries are. The entries have the same order as the lists of
/// the object, so the index of an entry there is also its index here.
struct ObjectPlaces {
  Item name;
  std::vector<EntryPlace> params;
  std::vector<EntryPlace> children;
};

/// Where a template is written, and how many times objects and other templates use it.
struct TemplatePlace {
  Item name;
  std::size_t timesUsed = 0;
};

/// Where a named check, list or value is written.
struct NamedPlace {
  Item name;
  Item body;
  bool isCalledInTemplate = false;  // by a template that perhaps no object uses
};

/// A code that a rule file accepts with a reason, and the part of the file for which it does so.
struct Acceptance {
  Item code;
  Item name;   // of the entry; empty for a whole file
  Item scope;  // the map of the entry, or the whole file
};

/// Where everything in a rule base is written. It owns the text and the YAML of all files, and knows for every rule the
/// node that it was read from. Lint works on it, and so can any code that needs the files of the rules. The rules
/// themselves have their `RulePlace` and do not need the index.
class RuleIndex {
 public:
  RuleIndex() = default;
  RuleIndex(RuleIndex const&) = delete;
  RuleIndex& operator=(RuleIndex const&) = delete;

  /// Reads files and folders, as `loadRules` takes them, and parses their YAML. Problems go to `diagnostics`; a file
  /// that has some is left out of `files`.
  void read(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits,
            DiagnosticList& diagnostics);
  /// The same for texts.
  void readTexts(std::vector<RuleText> const& texts, LoadLimits const& limits, DiagnosticList& diagnostics);

  struct File {
    SourceText const* source;
    YamlNode const* root;
  };
  /// The files that are YAML, in the order in which their rules count.
  [[nodiscard]] std::vector<File> const& files() const noexcept { return files_; }
  /// The names of all files and folders that were given or found, in the order of diagnostics.
  [[nodiscard]] std::vector<std::string> const& names() const noexcept { return set_.names; }
  [[nodiscard]] bool hasUnreadable() const noexcept { return set_.unreadable; }
  /// True when a part of the rules could not be read, so that what seems to be missing may be there.
  [[nodiscard]] bool isIncomplete() const noexcept { return set_.unreadable || !incomplete_.empty(); }
  /// The same for one file.
  [[nodiscard]] bool isIncomplete(SourceText const& source) const { return incomplete_.contains(&source); }
  /// The same for the entry that begins with `item`.
  [[nodiscard]] bool lacksPartOf(Item const& item) const;

  /// The uses of expressions in the order of reading, and the positions of objects, roots and named rules. Filled by
  /// `RuleBuilder` when it was asked to.
  [[nodiscard]] std::vector<ExpressionUse> const& uses() const noexcept { return uses_; }
  /// By type path.
  [[nodiscard]] std::map<std::string, ObjectPlaces> const& objectPlaces() const { return objects_; }
  [[nodiscard]] std::vector<std::pair<std::string, Item>> const& rootPlaces() const { return roots_; }
  /// The name of each quantity type, and its list or map of units.
  [[nodiscard]] std::vector<std::pair<Item, Item>> const& quantityTypePlaces() const { return quantityTypes_; }
  [[nodiscard]] std::vector<Acceptance> const& acceptances() const { return acceptances_; }
  [[nodiscard]] std::map<NamedRule const*, NamedPlace> const& namedPlaces() const { return namedPlaces_; }
  [[nodiscard]] std::vector<TemplatePlace> const& templatePlaces() const noexcept { return templates_; }

 private:
  friend class RuleBuilder;

  void parse(LoadLimits const& limits, DiagnosticList& diagnostics);

  SourceFileSet set_;
  std::deque<YamlDocument> documents_;
  std::vector<File> files_;
  std::unordered_map<SourceText const*, YamlDocument const*> incomplete_;

  std::vector<ExpressionUse> uses_;
  std::map<std::string, ObjectPlaces> objects_;
  std::vector<std::pair<std::string, Item>> roots_;
  std::vector<std::pair<Item, Item>> quantityTypes_;
  std::map<NamedRule const*, NamedPlace> namedPlaces_;
  std::vector<Acceptance> acceptances_;
  std::vector<TemplatePlace> templates_;
};

}  // namespace tarn::rules

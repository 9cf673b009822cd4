#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"
#include "expression/CompiledRules.h"
#include "expression/Parser.h"
#include "yaml/YamlDocument.h"

namespace tarn::rules {

/// A YAML node together with the file it stands in.
struct Item {
  SourceText const* source = nullptr;
  YamlNode const* node = nullptr;

  explicit operator bool() const noexcept { return node != nullptr; }
};

/// Where an expression is used, for those who look at the rules after they were read.
struct ExpressionUse {
  Item item;                // the scalar it stands in
  std::size_t skipped = 0;  // bytes of the scalar before the expression: of "= ..." the "="
  CompiledPtr compiled;
  Role role = Role::Condition;
  std::string typePath;  // of the object whose rule it is; empty for checks, lists and global checks
  std::string entry;     // the parameter or child type
  bool ofChild = false;
  std::string attribute;
  NamedRule const* named = nullptr;  // the named rule whose body it is
};

/// Where an entry of an object stands, with its attributes by name.
struct EntryPlace {
  Item name;
  std::map<std::string_view, Item> attributes;
};

/// Builds a rule database from parsed rule files: reads the sections, parses expressions, and tells of everything that
/// is wrong with the form of the rules. What is doubtful but allowed is not looked at here.
///
/// The files are read in two rounds. The first gives every named check and list its place, so that expressions can be
/// checked against all names whatever the order; the second reads all else.
class RuleBuilder {
 public:
  RuleBuilder(DiagnosticList& diagnostics, LoadLimits const& limits);

  /// Takes the root of one parsed file.
  void addFile(SourceText const& source, YamlNode const& root);
  /// Reads what was added. Complete only if no error was told.
  void build();

  [[nodiscard]] std::unique_ptr<PhysicsData> takeData() { return std::move(data_); }
  [[nodiscard]] PhysicsData const& data() const { return *data_; }

  /// Asks for `uses` and `places` to be kept.
  void keepPlaces() { keepPlaces_ = true; }
  [[nodiscard]] std::vector<ExpressionUse> const& uses() const noexcept { return uses_; }
  [[nodiscard]] std::map<std::pair<std::string, std::string>, EntryPlace> const& paramPlaces() const { return params_; }
  [[nodiscard]] std::map<std::pair<std::string, std::string>, EntryPlace> const& childPlaces() const {
    return children_;
  }
  [[nodiscard]] std::map<std::string, Item> const& objectPlaces() const { return objects_; }
  [[nodiscard]] std::vector<std::pair<std::string, Item>> const& rootPlaces() const { return roots_; }
  [[nodiscard]] std::map<NamedRule const*, Item> const& namedPlaces() const { return namedPlaces_; }

 private:
  struct File {
    SourceText const* source;
    YamlNode const* root;
    std::map<std::string_view, YamlNode const*> sections;
  };

  /// The rule that is being read, for `uses`.
  struct Owner {
    std::string typePath;
    std::string entry;
    bool ofChild = false;
  };

  /// An expression that another owns, to be parsed once more as a use when all named rules are bound.
  struct LaterUse {
    Item item;
    std::size_t skipped;
    Role role;
    std::string_view attribute;
    Owner owner;
    NamedRule const* named;
  };

  /// A named rule whose body was parsed and waits for the rules it calls.
  struct PendingBody {
    NamedRule* rule = nullptr;
    Item name;
    Item body;
    ExpressionPtr expression;
    std::string source;
    std::vector<NamedRule const*> calls;
    std::size_t nesting = 0;    // levels of nesting, of what it calls included once bound
    std::size_t depth = 0;      // of the longest chain of calls
    std::size_t callCount = 0;  // of one evaluation, the calls within what it calls included
  };

  /// A `Parameters` or `Children` section that was read.
  struct SeenSection {
    std::string typePath;
    bool ofChildren;
    Item section;
  };

  // Faults
  Diagnostic& error(Code code, Item const& item, std::string message);
  /// Adds an issue of an expression that begins `skipped` bytes into the scalar.
  void report(Item const& item, std::size_t skipped, Issue issue);
  /// Gives a diagnostic a fix that writes another text in the scalar, where that text can be written.
  static void fixText(Diagnostic& diagnostic, Item const& item, std::string_view text);
  static void fixAsList(Diagnostic& diagnostic, Item const& item);
  void twice(Code code, Item const& item, Item const& former, std::string message);

  // YAML values
  [[nodiscard]] std::optional<std::string_view> scalar(Item const& item, std::string_view what);
  void yesNo(Item const& item, bool& value);
  [[nodiscard]] std::optional<std::vector<std::string>> texts(Item const& item, bool oneAllowed,
                                                              std::string_view otherwise = {});
  [[nodiscard]] bool isMapping(Item const& item, std::string_view what);
  /// Calls `each` with every key and value of a mapping, a key given twice told and left out.
  template <typename Each>
  void forEach(Item const& item, std::string_view what, Each each);
  template <typename Table, typename Each>
  void forEachKnown(Item const& item, std::string_view what, Table const& table, Each each);

  // Expressions
  [[nodiscard]] ParsedExpression parsed(Item const& item, std::size_t skipped, Role role);
  [[nodiscard]] CompiledPtr compiled(Item const& item, std::size_t skipped, Role role, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<Condition> condition(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<TextExpression> textOrExpression(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<ListExpression> listExpression(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<ListExpression> listOrExpression(Item const& item, std::string_view attribute);
  /// The items of a list of which some may be `{Value, When}`; null for a list of plain texts, which goes to `fixed`.
  [[nodiscard]] ExpressionPtr guardedItems(Item const& item, std::string_view attribute,
                                           std::optional<std::vector<std::string>>& fixed, PendingBody* named);
  [[nodiscard]] std::unique_ptr<ListExpression> sharedFixedList(std::vector<std::string> items);
  void noteUse(Item const& item, std::size_t skipped, CompiledPtr const& compiled, Role role,
               std::string_view attribute);

  // Sections
  void readHeader(File& file);
  void registerNamed(File const& file);
  void parseNamedBodies();
  void bindNamedRules();
  void readRoots(Item const& section);
  void readQuantityTypes(Item const& section);
  void readObjects(Item const& section);
  void readObject(Item const& name, Item const& body);
  void readParameter(ObjDependDef& object, Item const& name, Item const& body);
  void readChild(ObjDependDef& object, Item const& name, Item const& body);
  [[nodiscard]] std::vector<ParamValueDef::GuardedText> guardedTexts(Item const& item, std::string_view attribute);
  void readGlobalChecks(Item const& section);
  /// Where an entry stands in the sections of its object that were read before; nothing when it does not.
  [[nodiscard]] Item formerPlace(std::string const& typePath, bool ofChild, std::string const& name);
  [[nodiscard]] bool isTypePath(Item const& item);
  [[nodiscard]] bool isName(Item const& item, std::string_view what);

  DiagnosticList& diagnostics_;
  LoadLimits const& limits_;
  bool keepPlaces_ = false;
  std::unique_ptr<PhysicsData> data_;
  std::vector<File> files_;
  NamedRules named_;
  std::deque<PendingBody> bodies_;
  std::map<std::string, Item, std::less<>> checkNames_;
  std::map<std::string, Item, std::less<>> listNames_;
  std::map<std::string, Item, std::less<>> globalNames_;
  std::map<std::string, Item, std::less<>> quantityNames_;
  std::vector<SeenSection> sectionsSeen_;  // in order
  // Where the entries of `sectionsSeen_` stand; filled as far as `sectionsIndexed_` when a place is first asked for.
  std::unordered_map<std::string, Item> formerPlaces_;
  std::size_t sectionsIndexed_ = 0;
  std::unordered_map<std::string_view, CompiledPtr> shared_[3];  // by role
  std::unordered_map<std::string, SharedStrings> sharedLists_;
  Owner owner_;
  std::vector<LaterUse> laterUses_;

  std::vector<ExpressionUse> uses_;
  std::map<std::pair<std::string, std::string>, EntryPlace> params_;
  std::map<std::pair<std::string, std::string>, EntryPlace> children_;
  std::map<std::string, Item> objects_;
  std::vector<std::pair<std::string, Item>> roots_;
  std::map<NamedRule const*, Item> namedPlaces_;
};

}  // namespace tarn::rules

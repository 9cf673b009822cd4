#pragma once

#include <array>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

#include "diagnostics/DiagnosticList.h"
#include "expression/CompiledRules.h"
#include "expression/Functions.h"
#include "expression/Parser.h"
#include "loading/RuleIndex.h"
#include "patterns/RegularExpression.h"
#include "yaml/MapReader.h"
#include "yaml/ScalarText.h"

namespace tarn::rules {

/// Builds a rule database from parsed rule files: reads the sections, parses the expressions, and reports everything
/// that is wrong with the form of the rules. Doubtful rules are the business of lint.
///
/// The files are read in two rounds. The first round creates every named check, list and value, so that expressions can
/// call them whatever the order of the files. The second round reads everything else.
class RuleBuilder : private MapReader {
 public:
  /// Builds from the files of `index`. With `keepPlaces` it enters into the index where everything is written, which
  /// takes time and memory that loading alone does not need.
  RuleBuilder(RuleIndex& index, bool keepPlaces, DiagnosticList& diagnostics, LoadLimits const& limits);

  /// Reads all files. The database is complete only when no errors were added to the diagnostics.
  void build();

  [[nodiscard]] std::unique_ptr<PhysicsData> takeData() { return std::move(data_); }
  [[nodiscard]] PhysicsData const& data() const { return *data_; }

  /// Gives a diagnostic a fix for a part of an expression that begins `skipped` bytes into the scalar.
  static void fixExpression(Diagnostic& diagnostic, Item const& item, std::size_t skipped, Replacement fix,
                            ScalarWalk* walk = nullptr);

 private:
  struct File {
    SourceText const* source;
    YamlNode const* root;
    std::map<std::string_view, YamlNode const*> sections;
  };

  /// The object and entry whose rule is being read, for `RuleIndex::uses`.
  struct Owner {
    YamlNode const* object = nullptr;
    YamlNode const* entry = nullptr;
    EntryKind kind = EntryKind::Parameter;
    Item taken = {};  // see `ExpressionUse::taken`
  };

  /// An expression that a list or a named rule owns. It is parsed again as a use of its own when all named rules are
  /// bound.
  struct LaterUse {
    Item item;
    std::size_t skipped;
    Role role;
    std::string_view attribute;
    Owner owner;
    NamedRule const* named;
  };

  /// A named rule whose body was parsed. It is bound when all rules that it calls are bound.
  struct PendingBody {
    NamedRule* rule = nullptr;
    Argument calledAs = Argument::CheckName;
    Item name;
    Item body;
    std::size_t skipped = 0;  // bytes of the body before its expression
    bool hasQuantities = false;
    ExpressionPtr expression;
    std::string source;
    std::vector<NamedRule const*> calls;
    std::size_t nesting = 0;    // levels of nesting; once bound, with those of the rules it calls
    std::size_t depth = 0;      // length of the longest chain of calls
    std::size_t callCount = 0;  // calls in one evaluation, those inside called rules included
  };

  /// A `Parameters`, `Children` or `Checks` section that was read.
  struct SeenSection {
    std::string typePath;
    EntryKind kind;
    Item section;
    Item taken;  // the Use by which the object takes the section from a template
  };

  /// Where an entry of an object is written.
  struct FormerEntry {
    Item name;
    Item taken;
  };

  /// A group of entries that objects take by its name.
  struct Template {
    Item name;
    Item body;
    std::vector<std::pair<Template*, Item>> uses;  // the templates that it uses, and where it names them
    std::array<bool, 3> has{};                     // by kind of entry: it brings some, itself or by what it uses
    std::size_t depth = 0;                         // length of the longest chain of templates that use each other
    std::size_t timesUsed = 0;
    bool isWrong = false;  // it has errors, so nothing more is said where it is used
  };

  /// The templates that objects take at the moment: from the Use of the object inwards.
  struct Taking {
    Template const* outermost;
    Item use;   // the name of the template in the Use of the object
    Item list;  // all names in that Use, when it is written among entries; otherwise empty
  };

  // Problems
  [[nodiscard]] std::string whyMisplaced(std::string_view key, YamlNode const& value,
                                         std::string_view what) const override;
  [[nodiscard]] std::string keyInsteadOf(std::string_view key, std::string_view what,
                                         std::vector<std::string> const& keys) const override;
  /// Adds an issue of an expression that begins `skipped` bytes into the scalar.
  void report(Item const& item, std::size_t skipped, Issue issue);

  // YAML values
  /// A group or label. Interfaces compare and show it, so it must be on one line and have no blanks at its ends.
  void shownName(Item const& item, std::string_view what, std::string& name);
  /// Whether a section has a slip in its name in some file. Its content is unknown then.
  [[nodiscard]] bool isSectionMisspelled(std::string_view section) const;
  /// Whether it is worth reporting that a map lacks a key: not when something else was reported that explains it.
  /// `at` is where the lack would be reported.
  [[nodiscard]] bool isLackOf(std::string_view key, Item const& map, Item const& at) const;

  // Expressions
  [[nodiscard]] ParsedExpression parsed(Item const& item, std::size_t skipped, Role role);
  [[nodiscard]] CompiledPtr compiled(Item const& item, std::size_t skipped, Role role, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<Condition> condition(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<TextExpression> textOrExpression(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<ListExpression> listExpression(Item const& item, std::string_view attribute);
  /// Names of children: a list, of which some items may be `{Value, When}`, or a computed list.
  [[nodiscard]] std::unique_ptr<ListExpression> names(Item const& item, std::string_view attribute);
  /// The items of a list, of which some may be `{Value, When}`. For a list of plain texts the result is null and the
  /// texts are in `fixed`.
  [[nodiscard]] ExpressionPtr guardedItems(Item const& item, std::string_view attribute,
                                           std::optional<std::vector<std::string>>& fixed, PendingBody* named);
  [[nodiscard]] std::unique_ptr<ListExpression> sharedFixedList(Item const& item, std::vector<std::string> items);
  void noteUse(Item const& item, std::size_t skipped, CompiledPtr const& compiled, Role role,
               std::string_view attribute);

  /// Remembers a parsed expression for `bindQuantities`.
  void toBind(Expression& expression, bool hasQuantities, Item const& item, std::size_t skipped);
  /// Gives all numbers in expressions their quantity types, when all rules are read.
  void bindQuantities();

  // Sections
  void readHeader(File& file);
  /// Whether a section of a file names this object type. All sections are searched when this is first asked.
  [[nodiscard]] bool isTypeName(std::string_view name);
  /// The same of parameters.
  [[nodiscard]] bool isParameterName(std::string_view name);
  void registerNamed(File const& file);
  void parseNamedBodies();
  /// The computed values in an order in which each comes after those that it calls. Circles are broken somewhere.
  [[nodiscard]] std::vector<PendingBody*> computedValuesInOrder();
  void parseBody(PendingBody& pending);
  void readFixedValue(PendingBody& pending);
  void bindNamedRules();
  void readRoots(Item const& section);
  void reportRootPath(Item const& item);
  void readQuantityTypes(Item const& section);
  [[nodiscard]] std::vector<QuantityUnit> unitsOfList(Item const& list);
  [[nodiscard]] std::vector<QuantityUnit> unitsOfMap(Item const& map);
  void readConversion(Item const& item, bool isFirst, QuantityUnit& unit);
  [[nodiscard]] bool readNumber(Item const& item, std::string_view what, double& number);
  [[nodiscard]] bool isUnit(Item const& item);
  void readObjects(Item const& section);
  void readObject(Item const& name, Item const& body);
  /// Reads the keys of an object or template in their order into `object`; with `only`, entries of that kind alone.
  void readEntries(ObjDependDef& object, Item const& name, Item const& body, std::string_view what,
                   std::optional<EntryKind> only);
  void readSection(ObjDependDef& object, EntryKind kind, Item const& section);
  void registerTemplates(File const& file);
  void readTemplates();
  void checkChainsOfTemplates();
  /// Reads a `Use`: takes the entries of the templates that it names into `object`.
  void use(ObjDependDef& object, Item const& names, std::optional<EntryKind> only);
  void take(ObjDependDef& object, Template& taken, Item const& name, Item const& list, std::optional<EntryKind> only);
  /// Reports the kinds of entries that an object leaves out where it uses a template in some of its sections.
  void reportPartsNotTaken();
  /// Reports that an object already has the entry `name`. The entry is its own, or that of a template that it takes.
  void reportExisting(ObjDependDef const& object, EntryKind kind, std::string_view what, Item const& name);
  void readParameter(ObjDependDef& object, Item const& name, Item const& body);
  void readChild(ObjDependDef& object, Item const& name, Item const& body);
  /// From now on the rules of this entry are read.
  void setOwner(Item const& name, EntryKind kind);
  /// Where the entry is written that is being read.
  [[nodiscard]] EntryPlace entryPlace(Item const& name, Item const& body) const;
  [[nodiscard]] std::vector<ParamValueDef::GuardedText> guardedTexts(Item const& item, std::string_view attribute);
  void readDeprecated(Item const& value, std::string& message);
  /// Reads the names that an item had: one, or a list.
  void readFormerNames(Item const& value, std::vector<std::string>& names);
  void readRenamedNames(Item const& value, std::map<std::string, std::string>& names);
  /// Reads a key about the history of an object type. Only types at the root of a model have such keys.
  void readHistoryOfObject(ObjDependDef& object, Item const& key, Item const& value);
  [[nodiscard]] bool isItemName(Item const& name, std::string_view what);
  void readObjectCheck(ObjDependDef& object, Item const& name, Item const& body);
  [[nodiscard]] std::unique_ptr<TextExpression> count(Item const& item, std::string_view attribute);
  [[nodiscard]] std::unique_ptr<TextPattern> pattern(Item const& item);
  void readLevel(Item const& item, CheckLevel& level);
  /// Reads `Accepted` of the entry `name`, or of a whole file. `scope` is the map that holds the key.
  void readAccepted(Item const& name, Item const& scope, Item const& value);
  void readGlobalChecks(Item const& section);
  /// Where else an entry of that name is given in the object; empty when it is not.
  [[nodiscard]] FormerEntry formerPlace(std::string const& typePath, EntryKind kind, Item const& entry);
  [[nodiscard]] static bool holdsSeparator(std::string_view name);
  [[nodiscard]] bool isTypePath(Item const& item);

  RuleIndex& index_;
  bool keepPlaces_;
  LoadLimits const& limits_;
  std::unique_ptr<PhysicsData> data_;
  std::vector<File> files_;
  NamedRules named_;
  std::deque<PendingBody> bodies_;
  std::map<std::string, Item, std::less<>> checkNames_;
  std::map<std::string, Item, std::less<>> listNames_;
  std::map<std::string, Item, std::less<>> valueNames_;
  std::map<std::string, Item, std::less<>> globalNames_;
  std::map<std::string, Item, std::less<>> quantityNames_;
  bool noDefinitionsReported_ = false;
  std::optional<std::unordered_set<std::string_view>> typeNames_;
  std::optional<std::unordered_set<std::string_view>> parameterNames_;
  std::vector<SeenSection> sectionsSeen_;  // in order
  // The entries of the first `sectionsIndexed_` of `sectionsSeen_`. Filled only when a duplicate asks for them.
  std::unordered_map<std::string, std::vector<FormerEntry>> formerPlaces_;
  std::size_t sectionsIndexed_ = 0;
  std::unordered_map<std::string_view, CompiledPtr> shared_[3];  // by role
  std::vector<CompiledPtr> unshared_;
  std::unordered_map<std::string, SharedStrings> sharedLists_;
  std::unordered_map<std::string, std::shared_ptr<RegularExpression const>> patterns_;
  Owner owner_;
  ObjectPlaces* objectPlaces_ = nullptr;  // of the object that is being read, when places are kept
  Item section_;                          // the section that is being read
  std::vector<LaterUse> laterUses_;

  struct Unbound {
    Expression* expression;
    bool hasQuantities;
    Item item;
    std::size_t skipped;
  };
  std::vector<Unbound> unbound_;  // called rules come before their callers
  bool quantityTypesAreWrong_ = false;

  std::map<std::string, Template, std::less<>> templates_;
  PhysicsData templateEntries_;       // where templates are read by themselves, to see what is wrong with them
  Template* readTemplate_ = nullptr;  // the template that is being read by itself
  std::optional<Taking> taking_;      // set while entries of a template are read into an object
  std::size_t takenNodes_ = 0;
  std::unordered_set<YamlNode const*> acceptedCodes_;
  bool tooManyTaken_ = false;
  using PartKey = std::tuple<std::string, EntryKind, Template const*>;
  std::map<PartKey, Item> takenParts_;  // by type path
  // The templates that an object uses in some of its sections, and where it does so first.
  std::map<std::pair<std::string, Template const*>, Item> usedInSections_;
};

}  // namespace tarn::rules

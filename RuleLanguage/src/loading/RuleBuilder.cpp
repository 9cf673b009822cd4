// From YAML to a rule database. One operation reads one section or one kind of value; each tells of what is wrong at
// the place where it stands and goes on, so that all faults of all files come out together. The keys of each section
// stand in one table, from which near matches are suggested.

#include "loading/RuleBuilder.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>

#include "expression/NearMatch.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

using StringUtilities::isSpace;

/// A key of a section, and what it is to whoever reads the section.
template <typename Id>
struct Key {
  std::string_view text;
  Id id;
};

enum class FileKey { Version, Roots, QuantityTypes, Lists, Checks, Objects, GlobalChecks };
constexpr auto fileKeys = std::to_array<Key<FileKey>>({
    {"Rule Database", FileKey::Version},
    {"Pertinent Roots", FileKey::Roots},
    {"Quantity Types", FileKey::QuantityTypes},
    {"Lists", FileKey::Lists},
    {"Checks", FileKey::Checks},
    {"Objects", FileKey::Objects},
    {"Global Checks", FileKey::GlobalChecks},
});

enum class ObjectKey { Description, Parameters, Children };
constexpr auto objectKeys = std::to_array<Key<ObjectKey>>({
    {"Description", ObjectKey::Description},
    {"Parameters", ObjectKey::Parameters},
    {"Children", ObjectKey::Children},
});

enum class ParamKey {
  Available,
  Required,
  ContextRule,
  Context,
  ValidationRelaxed,
  Description,
  Reason,
  BetaMessage,
  BetaValues,
  Type,
  AllowedList,
  ListSource,
  Checks,
  Unused,
  Subset,
  SubsetSource,
  AllowsAny,
  AvailableWithNone,
  CompleteList,
  Default,
  DefaultChecks,
  FallbackToBlank,
  OverrideChecks,
  LowerBound,
  UpperBound,
  QuantityType
};
namespace attributes = RuleAttributes;
constexpr auto paramKeys = std::to_array<Key<ParamKey>>({
    {"Available", ParamKey::Available},
    {"Required", ParamKey::Required},
    {"Context Rule", ParamKey::ContextRule},
    {"Context", ParamKey::Context},
    {"Validation Relaxed", ParamKey::ValidationRelaxed},
    {"Description", ParamKey::Description},
    {"Reason", ParamKey::Reason},
    {"Beta Message", ParamKey::BetaMessage},
    {"Beta Values", ParamKey::BetaValues},
    {attributes::parameterType, ParamKey::Type},
    {attributes::orderedAllowedStringList, ParamKey::AllowedList},
    {attributes::valueListSource, ParamKey::ListSource},
    {attributes::allowedStringListChecks, ParamKey::Checks},
    {attributes::unusedAllowedStringList, ParamKey::Unused},
    {attributes::subsetAllowedStringList, ParamKey::Subset},
    {attributes::subsetValueListSource, ParamKey::SubsetSource},
    {"Allows Any Value", ParamKey::AllowsAny},
    {attributes::availableWithNoAllowedValues, ParamKey::AvailableWithNone},
    {attributes::completeListRequired, ParamKey::CompleteList},
    {attributes::defaultValue, ParamKey::Default},
    {attributes::defaultValueCheckList, ParamKey::DefaultChecks},
    {attributes::fallbackToBlankDefault, ParamKey::FallbackToBlank},
    {attributes::valueOverrideCheckList, ParamKey::OverrideChecks},
    {attributes::lowerBound, ParamKey::LowerBound},
    {attributes::upperBound, ParamKey::UpperBound},
    {attributes::quantityType, ParamKey::QuantityType},
});

enum class ChildKey {
  Available,
  Required,
  Context,
  ValidationRelaxed,
  Description,
  Reason,
  BetaMessage,
  Singleton,
  Coupled,
  AllowedNames,
  DefaultNames
};
constexpr auto childKeys = std::to_array<Key<ChildKey>>({
    {"Available", ChildKey::Available},
    {"Required", ChildKey::Required},
    {"Context", ChildKey::Context},
    {"Validation Relaxed", ChildKey::ValidationRelaxed},
    {"Description", ChildKey::Description},
    {"Reason", ChildKey::Reason},
    {"Beta Message", ChildKey::BetaMessage},
    {"Singleton", ChildKey::Singleton},
    {"Coupled", ChildKey::Coupled},
    {"Allowed Names", ChildKey::AllowedNames},
    {"Default Names", ChildKey::DefaultNames},
});

enum class GuardKey { When, Value };
constexpr auto guardKeys = std::to_array<Key<GuardKey>>({{"When", GuardKey::When}, {"Value", GuardKey::Value}});

enum class UnitsKey { Units };
constexpr auto unitsKeys = std::to_array<Key<UnitsKey>>({{"Units", UnitsKey::Units}});

enum class GlobalKey { Check, Message };
constexpr auto globalKeys =
    std::to_array<Key<GlobalKey>>({{"Check", GlobalKey::Check}, {"Message", GlobalKey::Message}});

template <typename Table>
std::vector<std::string> keyTexts(Table const& table) {
  std::vector<std::string> texts;
  texts.reserve(table.size());
  for (auto const& key : table) texts.emplace_back(key.text);
  return texts;
}

/// A plain scalar with nothing in it stands for a section that is left empty.
bool isNothing(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Scalar && node.style == YamlNode::Style::Plain && node.value.empty();
}

/// Whether keys can be missed in `node`. Of what is no map at all only that is told.
bool canHoldKeys(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Mapping || isNothing(node);
}

std::string_view kindText(YamlNode const& node) {
  switch (node.kind) {
    case YamlNode::Kind::Scalar:
      return "a single value";
    case YamlNode::Kind::Sequence:
      return "a list";
    case YamlNode::Kind::Mapping:
      return "a map";
  }
  return "";
}

bool isExpression(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Scalar && node.value.starts_with('=');
}

}  // namespace

RuleBuilder::RuleBuilder(DiagnosticList& diagnostics, LoadLimits const& limits)
    : diagnostics_(diagnostics), limits_(limits), data_(std::make_unique<PhysicsData>()) {}

void RuleBuilder::addFile(SourceText const& source, YamlNode const& root) {
  files_.push_back({&source, &root, {}});
}

void RuleBuilder::build() {
  for (auto& file : files_) readHeader(file);
  for (auto const& file : files_) registerNamed(file);
  parseNamedBodies();
  bindNamedRules();
  for (auto const& file : files_) {
    auto const read = [&](std::string_view name, void (RuleBuilder::*section)(Item const&)) {
      auto const found = file.sections.find(name);
      if (found != file.sections.end()) (this->*section)({file.source, found->second});
    };
    read("Pertinent Roots", &RuleBuilder::readRoots);
    read("Quantity Types", &RuleBuilder::readQuantityTypes);
    read("Objects", &RuleBuilder::readObjects);
    read("Global Checks", &RuleBuilder::readGlobalChecks);
  }
  for (auto const& later : laterUses_) {
    owner_ = later.owner;
    if (auto const expression = compiled(later.item, later.skipped, later.role, later.attribute)) {
      uses_.back().named = later.named;
    }
  }
}

// Faults

Diagnostic& RuleBuilder::error(Item const& item, std::string message) {
  return diagnostics_.add(Severity::Error, *item.source, item.node->place(), item.node->shownLength(),
                          std::move(message));
}

Diagnostic& RuleBuilder::errorAt(Item const& item, std::size_t offset, std::size_t length, std::string message) {
  if (diagnostics_.isFull()) return error(item, std::move(message));
  Place const begin = placeInScalar(*item.source, *item.node, offset);
  Place const end = placeInScalar(*item.source, *item.node, offset + length);
  std::size_t const shown = begin.line == end.line && end.column > begin.column ? end.column - begin.column : 1;
  return diagnostics_.add(Severity::Error, *item.source, begin, shown, std::move(message));
}

void RuleBuilder::twice(Item const& item, Item const& former, std::string message) {
  auto& diagnostic = error(item, std::move(message));
  if (former) {
    DiagnosticList::note(diagnostic, *former.source, former.node->place(), former.node->shownLength(),
                         "it stands here already");
  }
}

// YAML values

std::optional<std::string_view> RuleBuilder::scalar(Item const& item, std::string_view what) {
  if (item.node->kind == YamlNode::Kind::Scalar) return item.node->value;
  std::string message = std::string(what) + " is a single value, not " + std::string(kindText(*item.node));
  if (item.node->flow && item.node->kind == YamlNode::Kind::Mapping) {
    message += "; an expression that begins with '{' must be quoted as a whole";
  }
  error(item, std::move(message));
  return std::nullopt;
}

void RuleBuilder::yesNo(Item const& item, bool& value) {
  auto const text = scalar(item, "yes or no");
  if (!text) return;
  std::string lowered(*text);
  for (auto& c : lowered) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  for (std::string_view const yes : {"yes", "true", "on"}) {
    if (lowered == yes) {
      value = true;
      return;
    }
  }
  for (std::string_view const no : {"no", "false", "off"}) {
    if (lowered == no) {
      value = false;
      return;
    }
  }
  error(item, "yes or no is needed here, not " + inQuotes(text->substr(0, 60)));
}

std::optional<std::vector<std::string>> RuleBuilder::texts(Item const& item, bool oneAllowed,
                                                           std::string_view otherwise) {
  if (item.node->kind == YamlNode::Kind::Scalar && oneAllowed) return std::vector<std::string>{item.node->value};
  if (item.node->kind != YamlNode::Kind::Sequence) {
    std::string message = "a list of texts is needed here, not " + std::string(kindText(*item.node));
    if (!otherwise.empty() && isExpression(*item.node)) {
      message += "; " + std::string(otherwise);
    } else if (item.node->kind == YamlNode::Kind::Scalar && !isExpression(*item.node)) {
      message += "; a list of one is written [" + item.node->value.substr(0, 60) + "]";
    }
    error(item, std::move(message));
    return std::nullopt;
  }
  std::vector<std::string> result;
  result.reserve(item.node->children.size());
  bool good = true;
  for (auto const* child : item.node->children) {
    if (child->kind == YamlNode::Kind::Scalar) {
      result.push_back(child->value);
    } else {
      error({item.source, child}, "an item of this list is a single text, not " + std::string(kindText(*child)));
      good = false;
    }
  }
  if (!good) return std::nullopt;
  return result;
}

bool RuleBuilder::isMapping(Item const& item, std::string_view what) {
  if (item.node->kind == YamlNode::Kind::Mapping) return true;
  if (!isNothing(*item.node)) {
    error(item, std::string(what) + " is a map, not " + std::string(kindText(*item.node)));
  }
  return false;
}

template <typename Each>
void RuleBuilder::forEach(Item const& item, std::string_view what, Each each) {
  if (!isMapping(item, what)) return;
  auto const& children = item.node->children;
  std::unordered_map<std::string_view, YamlNode const*> seen;
  seen.reserve(children.size() / 2);
  for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
    Item const key{item.source, children[i]};
    if (!scalar(key, "a key")) continue;
    auto const [former, isNew] = seen.try_emplace(key.node->value, key.node);
    if (isNew) {
      each(key, Item{item.source, children[i + 1]});
    } else {
      twice(key, {item.source, former->second}, inQuotes(key.node->value) + " is given twice");
    }
  }
}

template <typename Table, typename Each>
void RuleBuilder::forEachKnown(Item const& item, std::string_view what, Table const& table, Each each) {
  if (!isMapping(item, what)) return;
  auto const& children = item.node->children;
  std::array<YamlNode const*, std::tuple_size_v<Table>> seen{};
  for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
    Item const key{item.source, children[i]};
    if (!scalar(key, "a key")) continue;
    auto const known =
        std::find_if(table.begin(), table.end(), [&](auto const& entry) { return entry.text == key.node->value; });
    if (known == table.end()) {
      error(key, "unknown key " + inQuotes(key.node->value.substr(0, 100)) + " in " + std::string(what) +
                     orNear(key.node->value, keyTexts(table)));
      continue;
    }
    auto& former = seen[static_cast<std::size_t>(known - table.begin())];
    if (former != nullptr) {
      twice(key, {item.source, former}, inQuotes(key.node->value) + " is given twice");
      continue;
    }
    former = key.node;
    each(known->id, key, Item{item.source, children[i + 1]});
  }
}

// Expressions

ParsedExpression RuleBuilder::parsed(Item const& item, std::size_t skipped, Role role) {
  ParserLimits const limits{limits_.expressionLength, limits_.expressionDepth};
  auto result = parseExpression(std::string_view(item.node->value).substr(skipped), role, named_, data_.get(), limits);
  for (auto const& issue : result.issues) {
    errorAt(item, skipped + issue.range.offset, issue.range.length, issue.message);
  }
  return result;
}

CompiledPtr RuleBuilder::compiled(Item const& item, std::size_t skipped, Role role, std::string_view attribute) {
  if (!scalar(item, "an expression")) return nullptr;
  auto& shared = shared_[static_cast<std::size_t>(role)];
  auto const text = std::string_view(item.node->value).substr(skipped);
  auto known = shared.find(text);
  if (known == shared.end()) {
    auto result = parsed(item, skipped, role);
    if (!result.expression) return nullptr;
    auto compiled = std::make_shared<Compiled>();
    compiled->expression = keepContextFreeParts(std::move(result.expression));
    compiled->source = StringUtilities::trimmed(text);
    known = shared.emplace(text, std::move(compiled)).first;
  }
  noteUse(item, skipped, known->second, role, attribute);
  return known->second;
}

void RuleBuilder::noteUse(Item const& item, std::size_t skipped, CompiledPtr const& compiled, Role role,
                          std::string_view attribute) {
  if (!keepPlaces_) return;
  ExpressionUse use;
  use.item = item;
  use.skipped = skipped;
  use.compiled = compiled;
  use.role = role;
  use.typePath = owner_.typePath;
  use.entry = owner_.entry;
  use.ofChild = owner_.ofChild;
  use.attribute = attribute;
  uses_.push_back(std::move(use));
}

std::unique_ptr<Condition> RuleBuilder::condition(Item const& item, std::string_view attribute) {
  auto expression = compiled(item, 0, Role::Condition, attribute);
  return expression ? std::make_unique<CompiledCondition>(std::move(expression)) : nullptr;
}

std::unique_ptr<TextExpression> RuleBuilder::textOrExpression(Item const& item, std::string_view attribute) {
  if (!scalar(item, attribute)) return nullptr;
  if (!isExpression(*item.node)) return std::make_unique<FixedText>(item.node->value);
  auto expression = compiled(item, 1, Role::Text, attribute);
  return expression ? std::make_unique<CompiledText>(std::move(expression)) : nullptr;
}

std::unique_ptr<ListExpression> RuleBuilder::listExpression(Item const& item, std::string_view attribute) {
  auto expression = compiled(item, 0, Role::List, attribute);
  return expression ? std::make_unique<CompiledList>(std::move(expression)) : nullptr;
}

std::unique_ptr<ListExpression> RuleBuilder::sharedFixedList(std::vector<std::string> items) {
  std::string key;
  for (auto const& item : items) key.append(std::to_string(item.size())).append(":").append(item);
  auto const [known, isNew] = sharedLists_.try_emplace(std::move(key));
  if (isNew) known->second = std::move(items);
  return std::make_unique<FixedList>(known->second);
}

ExpressionPtr RuleBuilder::guardedItems(Item const& item, std::string_view attribute,
                                        std::optional<std::vector<std::string>>& fixed, PendingBody* named) {
  auto const& children = item.node->children;
  auto const isGuarded = [](YamlNode const* child) { return child->kind == YamlNode::Kind::Mapping; };
  if (std::none_of(children.begin(), children.end(), isGuarded)) {
    fixed = texts(item, false);
    return nullptr;
  }
  std::vector<GuardedList::Item> items;
  bool good = true;
  for (auto const* child : children) {
    Item const childItem{item.source, child};
    GuardedList::Item guarded;
    auto const fixedText = [&](Item const& value) {
      return std::make_unique<Literal>(Range{0, value.node->value.size()}, value.node->value);
    };
    if (child->kind == YamlNode::Kind::Scalar) {
      guarded.value = fixedText(childItem);
    } else if (child->kind == YamlNode::Kind::Sequence) {
      error(childItem, "an item of this list is a single text, not " + std::string(kindText(*child)));
      good = false;
    } else {
      auto const parse = [&](Item const& part, std::size_t skipped, Role role) {
        auto result = parsed(part, skipped, role);
        if (named != nullptr) {
          for (auto const& call : result.calls) named->calls.push_back(call.rule);
          named->nesting = std::max(named->nesting, result.depth);
        }
        // The part is parsed once more for those who look at uses, since the list owns this one.
        if (keepPlaces_ && result.expression) laterUses_.push_back({part, skipped, role, attribute, owner_, nullptr});
        return std::move(result.expression);
      };
      forEachKnown(childItem, "an item of a list", guardKeys, [&](GuardKey key, Item const&, Item const& value) {
        if (!scalar(value, "an item of a list")) {
          good = false;
        } else if (key == GuardKey::When) {
          guarded.when = parse(value, 0, Role::Condition);
          good &= guarded.when != nullptr;
        } else if (isExpression(*value.node)) {
          guarded.value = parse(value, 1, Role::Text);
          good &= guarded.value != nullptr;
        } else {
          guarded.value = fixedText(value);
        }
      });
      if (good && !guarded.value) {
        error(childItem, "the item has no 'Value'");
        good = false;
      }
    }
    items.push_back(std::move(guarded));
  }
  if (!good) return nullptr;
  return std::make_unique<GuardedList>(std::move(items));
}

std::unique_ptr<ListExpression> RuleBuilder::listOrExpression(Item const& item, std::string_view attribute) {
  if (item.node->kind != YamlNode::Kind::Sequence) {
    if (isExpression(*item.node)) {
      auto expression = compiled(item, 1, Role::List, attribute);
      return expression ? std::make_unique<CompiledList>(std::move(expression)) : nullptr;
    }
    (void)texts(item, false);
    return nullptr;
  }
  std::optional<std::vector<std::string>> fixed;
  if (auto guarded = guardedItems(item, attribute, fixed, nullptr)) {
    auto compiledList = std::make_shared<Compiled>();
    compiledList->expression = keepContextFreeParts(std::move(guarded));
    return std::make_unique<CompiledList>(std::move(compiledList));
  }
  return fixed ? sharedFixedList(std::move(*fixed)) : nullptr;
}

// The head of a file

void RuleBuilder::readHeader(File& file) {
  Item const root{file.source, file.root};
  if (root.node->kind != YamlNode::Kind::Mapping) {
    error(root, "a rule file is a map that begins with 'Rule Database: 1', not " + std::string(kindText(*root.node)));
    return;
  }
  bool versionGiven = false;
  forEachKnown(root, "a rule file", fileKeys, [&](FileKey key, Item const& name, Item const& value) {
    if (key != FileKey::Version) {
      file.sections[name.node->value] = value.node;
      return;
    }
    versionGiven = true;
    auto const version = scalar(value, "the version");
    if (version && *version != "1") {
      error(value, "version " + inQuotes(version->substr(0, 60)) + " of the format is not known; this program reads 1");
    }
  });
  if (!versionGiven) {
    diagnostics_.add(Severity::Error, *file.source, {1, 1}, 1, "the file does not say 'Rule Database: 1'");
  }
}

// Named rules

void RuleBuilder::registerNamed(File const& file) {
  auto const each = [&](std::string_view section, auto& names, auto& rules, auto make, auto add) {
    auto const found = file.sections.find(section);
    if (found == file.sections.end()) return;
    forEach({file.source, found->second}, section, [&](Item const& name, Item const& body) {
      if (!isName(name, "a name")) return;
      auto const [former, isNew] = names.try_emplace(name.node->value, name);
      if (!isNew) {
        twice(name, former->second, inQuotes(name.node->value) + " is given twice");
        return;
      }
      auto rule = make(name.node->value);
      rules.emplace(name.node->value, rule.get());
      auto& pending = bodies_.emplace_back();
      pending.rule = &rule->rule();
      pending.name = name;
      pending.body = body;
      if (keepPlaces_) namedPlaces_.emplace(pending.rule, name);
      add(name.node->value, std::move(rule));
    });
  };
  each(
      "Checks", checkNames_, named_.checks, [](std::string const& name) { return std::make_unique<NamedCheck>(name); },
      [&](std::string const& name, auto rule) { data_->addCheck(name, std::move(rule)); });
  each(
      "Lists", listNames_, named_.lists, [](std::string const& name) { return std::make_unique<NamedList>(name); },
      [&](std::string const& name, auto rule) { data_->addList(name, std::move(rule)); });
}

void RuleBuilder::parseNamedBodies() {
  for (auto& pending : bodies_) {
    bool const isList = [&] {
      auto const found = listNames_.find(pending.rule->name());
      return found != listNames_.end() && found->second.node == pending.name.node;
    }();
    owner_ = {};
    std::size_t const usesBefore = laterUses_.size();
    auto const takeExpression = [&](std::size_t skipped, Role role) {
      if (!scalar(pending.body, isList ? "a computed list" : "a check")) return;
      auto result = parsed(pending.body, skipped, role);
      pending.expression = std::move(result.expression);
      pending.source = StringUtilities::trimmed(std::string_view(pending.body.node->value).substr(skipped));
      for (auto const& call : result.calls) pending.calls.push_back(call.rule);
      pending.nesting = result.depth;
      if (keepPlaces_ && pending.expression) {
        laterUses_.push_back({pending.body, skipped, role, isList ? "Lists" : "Checks", owner_, nullptr});
      }
    };
    if (!isList) {
      takeExpression(0, Role::Condition);
    } else if (isExpression(*pending.body.node)) {
      takeExpression(1, Role::List);
    } else if (pending.body.node->kind == YamlNode::Kind::Sequence) {
      std::optional<std::vector<std::string>> fixed;
      pending.expression = guardedItems(pending.body, "Lists", fixed, &pending);
      if (fixed) {
        std::vector<ExpressionPtr> items;
        for (auto& text : *fixed) items.push_back(std::make_unique<Literal>(Range{}, std::move(text)));
        pending.expression = std::make_unique<ListLiteral>(Range{}, std::move(items));
      }
    } else {
      error(pending.body, "a list is written as [a, b, c], or computed by one expression behind '='");
    }
    for (std::size_t i = usesBefore; i < laterUses_.size(); ++i) laterUses_[i].named = pending.rule;
  }
}

void RuleBuilder::bindNamedRules() {
  std::unordered_map<NamedRule const*, PendingBody*> byRule;
  for (auto& pending : bodies_) byRule.emplace(pending.rule, &pending);

  // Depth first with an own stack: a rule is bound when everything that it calls is. A call of a rule that is still
  // open closes a circle.
  enum class State { New, Open, Done };
  std::unordered_map<PendingBody const*, State> states;
  struct Step {
    PendingBody* pending;
    std::size_t next = 0;
  };
  std::vector<Step> stack;
  for (auto& start : bodies_) {
    if (states[&start] != State::New) continue;
    stack.push_back({&start});
    states[&start] = State::Open;
    while (!stack.empty()) {
      auto& step = stack.back();
      auto& pending = *step.pending;
      if (step.next < pending.calls.size()) {
        auto* const called = byRule.at(pending.calls[step.next++]);
        if (states[called] == State::New) {
          states[called] = State::Open;
          stack.push_back({called});
        } else if (states[called] == State::Open) {
          auto const first =
              std::find_if(stack.begin(), stack.end(), [&](Step const& open) { return open.pending == called; });
          std::string circle;
          std::size_t shown = 0;
          for (auto open = first; open != stack.end(); ++open, ++shown) {
            if (shown < 10) circle += inQuotes(open->pending->rule->name()) + " calls ";
          }
          if (shown >= 10) circle += "... calls ";
          error(pending.name, "named rules call each other in a circle: " + circle + inQuotes(called->rule->name()));
        }
        continue;
      }
      std::size_t nestingBelow = 0;
      for (auto const* call : pending.calls) {
        auto const& called = *byRule.at(call);
        nestingBelow = std::max(nestingBelow, called.nesting);
        pending.depth = std::max(pending.depth, called.depth);
        pending.callCount += 1 + called.callCount;
      }
      // What goes beyond a limit is told once: to its callers it counts as nothing.
      if (++pending.depth > limits_.callDepth) {
        error(pending.name,
              "named rules call each other in a chain of more than " + std::to_string(limits_.callDepth) + " calls");
        pending.depth = 0;
      }
      pending.nesting += nestingBelow;
      if (pending.nesting > limits_.nestingDepth) {
        error(pending.name, "together with what it calls this rule is nested deeper than " +
                                std::to_string(limits_.nestingDepth) + " levels; state it flatter");
        pending.nesting = 0;
      }
      if (pending.callCount > limits_.callCount) {
        error(pending.name, "one evaluation of this rule comes to more than " + std::to_string(limits_.callCount) +
                                " calls of named rules; state it with fewer");
        pending.callCount = 0;
      }
      if (pending.expression) pending.rule->bind(std::move(pending.expression), std::move(pending.source));
      states[&pending] = State::Done;
      stack.pop_back();
    }
  }
}

// Roots and quantity types

void RuleBuilder::readRoots(Item const& section) {
  if (isNothing(*section.node)) return;
  (void)texts(section, false);
  if (section.node->kind != YamlNode::Kind::Sequence) return;
  for (auto const* child : section.node->children) {
    Item const item{section.source, child};
    if (child->kind != YamlNode::Kind::Scalar || !isName(item, "a root type")) continue;
    data_->addPertinentRoot(child->value);
    if (keepPlaces_) roots_.emplace_back(child->value, item);
  }
}

void RuleBuilder::readQuantityTypes(Item const& section) {
  forEach(section, "Quantity Types", [&](Item const& name, Item const& body) {
    if (!isName(name, "a quantity type")) return;
    auto const [former, isNew] = quantityNames_.try_emplace(name.node->value, name);
    if (!isNew) {
      twice(name, former->second, inQuotes(name.node->value) + " is given twice");
      return;
    }
    bool unitsGiven = false;
    forEachKnown(body, "a quantity type", unitsKeys, [&](UnitsKey, Item const&, Item const& value) {
      unitsGiven = true;
      auto units = texts(value, false);
      if (!units) return;
      if (units->empty()) {
        error(value, "a quantity type needs at least one of its units");
        return;
      }
      data_->addQuantityType(name.node->value, *units);
    });
    if (!unitsGiven && canHoldKeys(*body.node)) error(name, "the quantity type has no 'Units'; write {Units: [...]}");
  });
}

// Objects

bool RuleBuilder::isName(Item const& item, std::string_view what) {
  std::string_view const name = item.node->value;
  if (name.empty()) return error(item, std::string(what) + " cannot be empty"), false;
  if (isSpace(name.front()) || isSpace(name.back())) {
    return error(item, std::string(what) + " cannot begin or end with a blank"), false;
  }
  return true;
}

bool RuleBuilder::isTypePath(Item const& item) {
  std::string_view const path = item.node->value;
  if (!path.starts_with('/')) {
    error(item, "an object type path begins with '/': /" + std::string(path.substr(0, 100)));
    return false;
  }
  std::size_t begin = 1;
  for (;;) {
    std::size_t const end = std::min(path.find('/', begin), path.size());
    auto const type = path.substr(begin, end - begin);
    if (type.empty()) return error(item, "a type in the path is empty"), false;
    if (type.find(':') != std::string_view::npos) {
      return error(item, "an object type path holds types only, without names: remove the ':' and what follows it"),
             false;
    }
    if (isSpace(type.front()) || isSpace(type.back())) {
      return error(item, "a type cannot begin or end with a blank"), false;
    }
    if (end == path.size()) return true;
    begin = end + 1;
  }
}

void RuleBuilder::readObjects(Item const& section) {
  forEach(section, "Objects", [&](Item const& name, Item const& body) {
    if (isTypePath(name)) readObject(name, body);
  });
}

void RuleBuilder::readObject(Item const& name, Item const& body) {
  auto& object = data_->addObject(name.node->value);
  if (keepPlaces_) objects_.try_emplace(name.node->value, name);
  owner_ = {name.node->value, {}, false};
  forEachKnown(body, "an object", objectKeys, [&](ObjectKey key, Item const&, Item const& value) {
    switch (key) {
      case ObjectKey::Description:
        if (auto const text = scalar(value, "Description"); text && object.description.empty()) {
          object.description = *text;
        }
        break;
      case ObjectKey::Parameters:
        forEach(value, "Parameters",
                [&](Item const& entry, Item const& attributes) { readParameter(object, entry, attributes); });
        sectionsSeen_.push_back({name.node->value, key == ObjectKey::Children, value});
        break;
      case ObjectKey::Children:
        forEach(value, "Children",
                [&](Item const& entry, Item const& attributes) { readChild(object, entry, attributes); });
        sectionsSeen_.push_back({name.node->value, key == ObjectKey::Children, value});
        break;
    }
  });
}

namespace {

bool holdsSeparator(std::string_view name) {
  return name.find_first_of("/:") != std::string_view::npos;
}

}  // namespace

Item RuleBuilder::formerPlace(std::string const& typePath, bool ofChild, std::string const& name) {
  auto const keyOf = [](std::string const& path, bool child, std::string_view entry) {
    return (path + (child ? "\nc" : "\np")).append(entry);
  };
  for (; sectionsIndexed_ < sectionsSeen_.size(); ++sectionsIndexed_) {
    auto const& seen = sectionsSeen_[sectionsIndexed_];
    if (seen.section.node->kind != YamlNode::Kind::Mapping) continue;
    auto const& children = seen.section.node->children;
    for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
      formerPlaces_.try_emplace(keyOf(seen.typePath, seen.ofChildren, children[i]->value),
                                Item{seen.section.source, children[i]});
    }
  }
  auto const found = formerPlaces_.find(keyOf(typePath, ofChild, name));
  return found == formerPlaces_.end() ? Item{} : found->second;
}

std::vector<ParamValueDef::GuardedText> RuleBuilder::guardedTexts(Item const& item, std::string_view attribute) {
  std::vector<ParamValueDef::GuardedText> result;
  if (item.node->kind != YamlNode::Kind::Sequence) {
    if (!isNothing(*item.node)) {
      error(item, std::string(attribute) + " is a list of {When: condition, Value: value}, not " +
                      std::string(kindText(*item.node)));
    }
    return result;
  }
  for (auto const* child : item.node->children) {
    Item const entry{item.source, child};
    if (child->kind != YamlNode::Kind::Mapping) {
      error(entry, "an item here is {When: condition, Value: value}, not " + std::string(kindText(*child)));
      continue;
    }
    ParamValueDef::GuardedText guarded;
    bool whenGiven = false;
    bool valueGiven = false;
    forEachKnown(entry, "an item of " + std::string(attribute), guardKeys,
                 [&](GuardKey key, Item const&, Item const& value) {
                   if (key == GuardKey::When) {
                     whenGiven = true;
                     guarded.when = condition(value, attribute);
                   } else {
                     valueGiven = true;
                     guarded.value = textOrExpression(value, attribute);
                   }
                 });
    if (!whenGiven) error(entry, "the item has no 'When'; the value without a condition is the default value");
    if (!valueGiven) error(entry, "the item has no 'Value'");
    if (guarded.when && guarded.value) result.push_back(std::move(guarded));
  }
  return result;
}

void RuleBuilder::readParameter(ObjDependDef& object, Item const& name, Item const& body) {
  if (!isName(name, "the name of a parameter")) return;
  if (holdsSeparator(name.node->value)) {
    error(name, "the name of a parameter cannot hold '/' or ':'");
    return;
  }
  owner_ = {object.typePath(), name.node->value, false};

  ParamAvail entry;
  ParamValueDef def;
  entry.name = name.node->value;
  Item type;
  bool typeKnown = false;
  Item fixedList;
  Item listSource;
  Item subset;
  Item subsetSource;
  Item completeList;
  EntryPlace place;
  place.name = name;

  auto const text = [&](Item const& value, std::string_view attribute, std::string& target) {
    if (auto const given = scalar(value, attribute)) target = *given;
  };
  forEachKnown(body, "a parameter", paramKeys, [&](ParamKey key, Item const& keyItem, Item const& value) {
    std::string_view const attribute = keyItem.node->value;
    if (keepPlaces_) place.attributes.emplace(attribute, value);
    switch (key) {
      case ParamKey::Available:
        entry.available = condition(value, attribute);
        break;
      case ParamKey::Required:
        yesNo(value, entry.required);
        break;
      case ParamKey::ContextRule:
        yesNo(value, entry.contextRule);
        break;
      case ParamKey::Context:
        if (auto contexts = texts(value, true)) entry.contexts = std::move(*contexts);
        break;
      case ParamKey::ValidationRelaxed:
        yesNo(value, entry.validationRelaxed);
        break;
      case ParamKey::Description:
        text(value, attribute, entry.description);
        break;
      case ParamKey::Reason:
        text(value, attribute, entry.reason);
        break;
      case ParamKey::BetaMessage:
        text(value, attribute, entry.betaMessage);
        break;
      case ParamKey::BetaValues:
        forEach(value, attribute, [&](Item const& betaValue, Item const& message) {
          if (auto const given = scalar(message, "a beta message"))
            def.betaValues.emplace(betaValue.node->value, *given);
        });
        break;
      case ParamKey::Type:
        type = value;
        if (auto const given = scalar(value, attribute)) {
          if (auto const known = TDFParam::typeFromName(*given)) {
            def.type = *known;
            typeKnown = true;
          } else {
            std::vector<std::string> types;
            for (int i = TDFParam::Integer; i <= TDFParam::StringList; ++i) {
              types.emplace_back(TDFParam::typeName(static_cast<TDFParam::Type>(i)));
            }
            auto const near = orNear(*given, types);
            error(value,
                  "unknown parameter type " + inQuotes(given->substr(0, 60)) +
                      (near.empty() ? "; the types are Integer, Logical, Real and String, each also with List behind it"
                                    : near));
          }
        }
        break;
      case ParamKey::AllowedList:
        fixedList = value;
        if (auto items = texts(value, false, "a computed list stands in Value List Source, without the '='")) {
          def.allowedValues = sharedFixedList(std::move(*items));
          def.allowedValueKind = ParamValueDef::FixedAllowedValues;
        }
        break;
      case ParamKey::ListSource:
        listSource = value;
        def.allowedValues = listExpression(value, attribute);
        def.allowedValueKind = ParamValueDef::ComputedAllowedValues;
        break;
      case ParamKey::Checks:
        forEach(value, attribute, [&](Item const& checked, Item const& when) {
          if (auto check = condition(when, attribute))
            def.allowedValueChecks.emplace(checked.node->value, std::move(check));
        });
        break;
      case ParamKey::Unused:
        if (auto items = texts(value, false)) def.unusedValues = std::move(*items);
        break;
      case ParamKey::Subset:
        subset = value;
        if (auto items = texts(value, false, "a computed subset stands in Subset Value List Source, without the '='")) {
          def.subset = sharedFixedList(std::move(*items));
        }
        break;
      case ParamKey::SubsetSource:
        subsetSource = value;
        def.subset = listExpression(value, attribute);
        break;
      case ParamKey::AllowsAny:
        yesNo(value, def.allowsAnyValue);
        break;
      case ParamKey::AvailableWithNone:
        yesNo(value, def.availableWithNoAllowedValues);
        break;
      case ParamKey::CompleteList:
        completeList = value;
        yesNo(value, def.completeListRequired);
        break;
      case ParamKey::Default:
        def.defaultValue = textOrExpression(value, attribute);
        break;
      case ParamKey::DefaultChecks:
        def.defaultChecks = guardedTexts(value, attribute);
        break;
      case ParamKey::FallbackToBlank:
        yesNo(value, def.fallbackToBlankDefault);
        break;
      case ParamKey::OverrideChecks:
        def.overrideChecks = guardedTexts(value, attribute);
        break;
      case ParamKey::LowerBound:
        def.lowerBound = textOrExpression(value, attribute);
        break;
      case ParamKey::UpperBound:
        def.upperBound = textOrExpression(value, attribute);
        break;
      case ParamKey::QuantityType:
        def.quantityType = textOrExpression(value, attribute);
        break;
    }
  });

  if (!type && canHoldKeys(*body.node)) error(name, "the parameter has no 'Parameter Type'");
  if (fixedList && listSource) {
    twice(listSource, fixedList, "the allowed values are given twice: keep the fixed list or the Value List Source");
  }
  if (subset && subsetSource) {
    twice(subsetSource, subset, "the subset is given twice: keep the fixed one or the Subset Value List Source");
  }
  if (def.completeListRequired && typeKnown && !TDFParam::isListType(def.type)) {
    error(completeList, "Complete List Required is for list types, but the parameter is of type " +
                            std::string(TDFParam::typeName(def.type)));
  }
  if (!object.addParam(std::move(entry), std::move(def))) {
    twice(name, formerPlace(object.typePath(), false, name.node->value),
          "the object has a parameter " + inQuotes(name.node->value) + " already");
    return;
  }
  if (keepPlaces_) params_.emplace(std::pair(object.typePath(), name.node->value), std::move(place));
}

void RuleBuilder::readChild(ObjDependDef& object, Item const& name, Item const& body) {
  if (!isName(name, "a child type")) return;
  if (holdsSeparator(name.node->value)) {
    error(name, "a child type cannot hold '/' or ':'; deeper objects have entries of their own under Objects");
    return;
  }
  owner_ = {object.typePath(), name.node->value, true};

  ChildAvail entry;
  entry.type = name.node->value;
  EntryPlace place;
  place.name = name;
  auto const text = [&](Item const& value, std::string_view attribute, std::string& target) {
    if (auto const given = scalar(value, attribute)) target = *given;
  };
  forEachKnown(body, "a child", childKeys, [&](ChildKey key, Item const& keyItem, Item const& value) {
    std::string_view const attribute = keyItem.node->value;
    if (keepPlaces_) place.attributes.emplace(attribute, value);
    switch (key) {
      case ChildKey::Available:
        entry.available = condition(value, attribute);
        break;
      case ChildKey::Required:
        yesNo(value, entry.required);
        break;
      case ChildKey::Context:
        if (auto contexts = texts(value, true)) entry.contexts = std::move(*contexts);
        break;
      case ChildKey::ValidationRelaxed:
        yesNo(value, entry.validationRelaxed);
        break;
      case ChildKey::Description:
        text(value, attribute, entry.description);
        break;
      case ChildKey::Reason:
        text(value, attribute, entry.reason);
        break;
      case ChildKey::BetaMessage:
        text(value, attribute, entry.betaMessage);
        break;
      case ChildKey::Singleton:
        yesNo(value, entry.singleton);
        break;
      case ChildKey::Coupled:
        yesNo(value, entry.coupled);
        break;
      case ChildKey::AllowedNames:
        entry.allowedNamesSource = listOrExpression(value, attribute);
        break;
      case ChildKey::DefaultNames:
        entry.defaultNamesSource = listOrExpression(value, attribute);
        break;
    }
  });
  if (!object.addChild(std::move(entry))) {
    twice(name, formerPlace(object.typePath(), true, name.node->value),
          "the object has a child type " + inQuotes(name.node->value) + " already");
    return;
  }
  if (keepPlaces_) children_.emplace(std::pair(object.typePath(), name.node->value), std::move(place));
}

// Global checks

void RuleBuilder::readGlobalChecks(Item const& section) {
  owner_ = {};
  forEach(section, "Global Checks", [&](Item const& name, Item const& body) {
    if (!isName(name, "a name")) return;
    auto const [former, isNew] = globalNames_.try_emplace(name.node->value, name);
    if (!isNew) {
      twice(name, former->second, inQuotes(name.node->value) + " is given twice");
      return;
    }
    Item check;
    Item message;
    CompiledPtr condition;
    std::unique_ptr<TextExpression> text;
    forEachKnown(body, "a global check", globalKeys, [&](GlobalKey key, Item const&, Item const& value) {
      if (key == GlobalKey::Check) {
        check = value;
        condition = compiled(value, 0, Role::Condition, "Check");
      } else {
        message = value;
        text = textOrExpression(value, "Message");
      }
    });
    if (!check && canHoldKeys(*body.node)) error(name, "the global check has no 'Check'");
    if (!message && canHoldKeys(*body.node)) error(name, "the global check has no 'Message'");
    if (condition && text) {
      data_->addGlobalCheck(name.node->value,
                            std::make_unique<CompiledGlobalCheck>(std::move(condition), std::move(text)));
    }
  });
}

}  // namespace tarn::rules

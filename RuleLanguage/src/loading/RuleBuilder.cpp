// From YAML to a rule database: whole files, the reporting of problems, and the small sections. Each operation reads
// one section or one kind of value. It reports a problem where it finds it and goes on, so that one run reports all
// problems of all files.
//
// RuleBuilder.Values.cpp reads the kinds of values, RuleBuilder.NamedRules.cpp the named rules, RuleBuilder.Objects.cpp
// the rules of objects, RuleBuilder.Templates.cpp the templates, RuleBuilder.Quantities.cpp the quantity types.

#include "loading/RuleBuilder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "diagnostics/NearMatch.h"
#include "expression/Habits.h"
#include "loading/RuleSections.h"
#include "yaml/ScalarText.h"

namespace tarn::rules {

namespace {

enum class FileKey { Version, Roots, QuantityTypes, Values, Lists, Checks, Templates, Objects, GlobalChecks, Accepted };
constexpr auto fileKeys = std::to_array<Key<FileKey>>({
    {"Rule Database", FileKey::Version},
    {"Pertinent Roots", FileKey::Roots},
    {"Quantity Types", FileKey::QuantityTypes},
    {"Values", FileKey::Values},
    {"Lists", FileKey::Lists},
    {"Checks", FileKey::Checks},
    {"Templates", FileKey::Templates},
    {"Objects", FileKey::Objects},
    {"Global Checks", FileKey::GlobalChecks},
    {"Accepted", FileKey::Accepted},
});

enum class GlobalKey { Check, Message, Level, Accepted };
constexpr auto globalKeys = std::to_array<Key<GlobalKey>>({
    {"Check", GlobalKey::Check},
    {"Message", GlobalKey::Message},
    {"Level", GlobalKey::Level},
    {"Accepted", GlobalKey::Accepted},
});

KeyPlace placeOfKeys(std::string_view what) {
  if (what == "a rule file") return KeyPlace::File;
  if (what == "an object") return KeyPlace::Object;
  if (what == "a parameter") return KeyPlace::Parameter;
  if (what == "a child") return KeyPlace::Child;
  if (what == "a global check" || what == "a check of an object") return KeyPlace::Check;
  return what.starts_with("an item of") ? KeyPlace::GuardedItem : KeyPlace::Other;
}

/// Calls `each` with the path and the body of every object of a file, and of every template, which has no path.
template <typename Sections, typename Each>
void forEachObject(Sections const& sections, Each each) {
  for (std::string_view const name : {"Objects", "Templates"}) {
    auto const section = sections.find(name);
    if (section == sections.end()) continue;
    forEachIn(section->second, [&](YamlNode const& path, YamlNode const& body) {
      each(name == "Objects" ? std::string_view(path.value) : std::string_view(), body);
    });
  }
}

void addKeys(YamlNode const* map, std::unordered_set<std::string_view>& keys) {
  forEachIn(map, [&](YamlNode const& key, YamlNode const& /*value*/) { keys.insert(key.value); });
}

}  // namespace

RuleBuilder::RuleBuilder(RuleIndex& index, bool keepPlaces, DiagnosticList& diagnostics, LoadLimits const& limits)
    : MapReader(diagnostics),
      index_(index),
      keepPlaces_(keepPlaces),
      limits_(limits),
      data_(std::make_unique<PhysicsData>()) {
  for (auto const& file : index.files()) files_.push_back({file.source, file.root, {}});
}

void RuleBuilder::build() {
  for (auto& file : files_) readHeader(file);
  named_.isType = [this](std::string_view name) { return isTypeName(name); };
  named_.isParameter = [this](std::string_view name) { return isParameterName(name); };
  for (auto const& file : files_) registerNamed(file);
  parseNamedBodies();
  bindNamedRules();
  readTemplates();
  for (auto const& file : files_) {
    auto const read = [&](std::string_view name, void (RuleBuilder::*section)(Item const&)) {
      auto const found = file.sections.find(name);
      if (found != file.sections.end()) (this->*section)({file.source, found->second});
    };
    read("Pertinent Roots", &RuleBuilder::readRoots);
    std::size_t const errorsBefore = diagnostics_.errorCount();
    read("Quantity Types", &RuleBuilder::readQuantityTypes);
    quantityTypesAreWrong_ |= diagnostics_.errorCount() != errorsBefore;
    read("Objects", &RuleBuilder::readObjects);
    read("Global Checks", &RuleBuilder::readGlobalChecks);
  }
  reportPartsNotTaken();
  for (auto const& later : laterUses_) {
    owner_ = later.owner;
    if (auto const expression = compiled(later.item, later.skipped, later.role, later.attribute)) {
      index_.uses_.back().named = later.named;
    }
  }
  bindQuantities();
}

// Problems

std::string RuleBuilder::keyInsteadOf(std::string_view key, std::string_view what,
                                      std::vector<std::string> const& keys) const {
  return rules::keyInsteadOf(key, placeOfKeys(what), keys);
}

std::string RuleBuilder::whyMisplaced(std::string_view key, YamlNode const& value, std::string_view what) const {
  static constexpr std::array<std::string_view, 7> ofChildren = {
      "Singleton", "Coupled", "Allowed Names", "Default Names", "Minimum Count", "Maximum Count", "Renamed Names"};
  bool const isObject = what == "an object" || what == "a template";
  if (isObject && valueIn(value, "Parameter Type") != nullptr) return "; a parameter is written under Parameters";
  if (isObject && (valueIn(value, "Singleton") != nullptr || valueIn(value, "Coupled") != nullptr)) {
    return "; a child type is written under Children";
  }
  if (what == "a child" && key == "Parameter Type")
    return "; a parameter is written under Parameters, not under Children";
  if (std::string const before(keyBeforeValue(key)); !before.empty() && isNothing(value)) {
    auto const sign = key.find_first_of(":=");
    return (key[sign] == '=' ? "; a key is followed by ':': " : "; a blank is missing after ':'; write ") + before +
           ": " + std::string(StringUtilities::trimmed(key.substr(sign + 1)).substr(0, 60));
  }
  if (what != "a parameter" && what != "a child") return {};
  if (what == "a parameter" && std::find(ofChildren.begin(), ofChildren.end(), key) != ofChildren.end()) {
    return "; this is a key of a child type, which is written under Children";
  }
  return isNothing(value) ? "; if it is the name of an entry, indent it like the other entries" : std::string();
}

bool RuleBuilder::isSectionMisspelled(std::string_view section) const {
  return std::any_of(files_.begin(), files_.end(), [&](File const& file) { return isMisspelled(section, *file.root); });
}

void RuleBuilder::report(Item const& item, std::size_t skipped, Issue issue) {
  // The rule may be in a part that could not be read.
  if (issue.code == Code::UnknownNamedRule && (index_.isIncomplete() || isSectionMisspelled("Checks") ||
                                               isSectionMisspelled("Lists") || isSectionMisspelled("Values"))) {
    return;
  }
  auto const rangeOf = [&](Range const& range) {
    if (diagnostics_.isFull()) return item.node->range();
    return rangeInScalar(*item.source, *item.node, skipped + range.offset, range.length);
  };
  auto& diagnostic = diagnostics_.add(issue.code, *item.source, rangeOf(issue.range), std::move(issue.message));
  if (issue.fix && !diagnostics_.isFull()) fixExpression(diagnostic, item, skipped, std::move(*issue.fix));
}

void RuleBuilder::fixExpression(Diagnostic& diagnostic, Item const& item, std::size_t skipped, Replacement fix,
                                ScalarWalk* walk) {
  std::size_t const offset = skipped + fix.range.offset;
  auto text = writtenInScalar(*item.node, offset, fix.range.length, fix.text);
  if (!text) return;
  DiagnosticList::fix(diagnostic, *item.source, rangeInScalar(*item.source, *item.node, offset, fix.range.length, walk),
                      std::move(*text), std::move(fix.title));
}

void RuleBuilder::readHeader(File& file) {
  Item const root{file.source, file.root};
  if (root.node->kind != YamlNode::Kind::Mapping) {
    error(Code::WrongKind, root,
          "a rule file must be a map that begins with 'Rule Database: 1', but this is " +
              std::string(kindText(*root.node)));
    return;
  }
  bool versionGiven = false;
  forEachKnown(root, "a rule file", fileKeys, [&](FileKey key, Item const& name, Item const& value) {
    if (key == FileKey::Accepted) {
      readAccepted({}, root, value);
      return;
    }
    if (key != FileKey::Version) {
      file.sections[name.node->value] = value.node;
      return;
    }
    versionGiven = true;
    auto const version = scalar(value, "the version");
    if (version && *version != "1") {
      error(Code::UnknownVersion, value,
            "unknown format version " + inQuotes(version->substr(0, 60)) + "; this program reads version 1");
    }
  });
  if (!versionGiven && !index_.isIncomplete(*root.source)) {
    auto& diagnostic = diagnostics_.add(Code::MissingVersion, *file.source, {},
                                        "the key 'Rule Database' is missing; begin the file with 'Rule Database: 1'");
    if (!root.node->flow && root.node->column == 1) {
      Place const begin = root.node->place();
      DiagnosticList::fix(diagnostic, *file.source, {begin, begin}, "Rule Database: 1\n", "Insert 'Rule Database: 1'");
    }
  }
}

void RuleBuilder::readAccepted(Item const& name, Item const& scope, Item const& value) {
  forEach(value, "Accepted", [&](Item const& code, Item const& reason) {
    auto const text = scalar(reason, "a reason");
    if (!text) return;
    if (StringUtilities::trimmed(*text).empty()) {
      error(Code::MissingReason, code,
            "write after " + inQuotes(code.node->value.substr(0, 60)) + " why it is accepted here");
    }
    // The entries of a template are read once for each object that uses it.
    if (keepPlaces_ && acceptedCodes_.insert(code.node).second) index_.acceptances_.push_back({code, name, scope});
  });
}

bool RuleBuilder::isTypeName(std::string_view name) {
  if (!typeNames_) {
    auto& names = typeNames_.emplace();
    for (auto const& file : files_) {
      forEachObject(file.sections, [&](std::string_view path, YamlNode const& object) {
        for (auto end = path.find('/'); end != std::string_view::npos; end = path.find('/')) {
          names.insert(path.substr(0, end));
          path.remove_prefix(end + 1);
        }
        names.insert(path);
        addKeys(valueIn(object, "Children"), names);
      });
      auto const roots = file.sections.find("Pertinent Roots");
      if (roots == file.sections.end()) continue;
      for (auto const* type : roots->second->children) names.insert(type->value);
    }
  }
  return typeNames_->contains(name);
}

bool RuleBuilder::isParameterName(std::string_view name) {
  if (!parameterNames_) {
    auto& names = parameterNames_.emplace();
    for (auto const& file : files_) {
      forEachObject(file.sections, [&](std::string_view /*path*/, YamlNode const& object) {
        addKeys(valueIn(object, "Parameters"), names);
      });
    }
  }
  return parameterNames_->contains(name);
}

void RuleBuilder::readRoots(Item const& section) {
  if (isNothing(*section.node)) return;
  (void)texts(section, false);
  if (section.node->kind != YamlNode::Kind::Sequence) return;
  for (auto const* child : section.node->children) {
    Item const item{section.source, child};
    if (child->kind != YamlNode::Kind::Scalar || !isName(item, "a root type")) continue;
    if (holdsSeparator(child->value)) {
      reportRootPath(item);
      continue;
    }
    data_->addPertinentRoot(child->value);
    if (keepPlaces_) index_.roots_.emplace_back(child->value, item);
  }
}

// The keys under Objects are paths, so authors write a path here as well. With a warning only, a review would know no
// object of the model and could not say why.
void RuleBuilder::reportRootPath(Item const& item) {
  std::string_view type = item.node->value;
  type.remove_prefix(std::min(type.find_first_not_of('/'), type.size()));
  type = type.substr(0, type.find_first_of("/:"));
  auto& diagnostic = error(Code::InvalidName, item,
                           "a root is an object type, not a path" + (type.empty() ? "" : "; write " + inQuotes(type)));
  if (!type.empty()) fixText(diagnostic, item, type);
}

void RuleBuilder::readGlobalChecks(Item const& section) {
  owner_ = {};
  forEach(section, "Global Checks", [&](Item const& name, Item const& body) {
    if (!isName(name, "a name")) return;
    auto const [former, isNew] = globalNames_.try_emplace(name.node->value, name);
    if (!isNew) {
      twice(Code::DuplicateName, name, former->second, inQuotes(name.node->value) + " is given twice");
      return;
    }
    Item check;
    Item message;
    CompiledPtr condition;
    std::unique_ptr<TextExpression> text;
    CheckLevel level = CheckLevel::Error;
    forEachKnown(body, "a global check", globalKeys, [&](GlobalKey key, Item const&, Item const& value) {
      switch (key) {
        case GlobalKey::Check:
          check = value;
          condition = compiled(value, 0, Role::Condition, "Check");
          break;
        case GlobalKey::Message:
          message = value;
          text = textOrExpression(value, "Message");
          break;
        case GlobalKey::Level:
          readLevel(value, level);
          break;
        case GlobalKey::Accepted:
          readAccepted(name, body, value);
          break;
      }
    });
    if (!check && isLackOf("Check", body, name)) error(Code::MissingKey, name, "the global check has no 'Check'");
    if (!message && isLackOf("Message", body, name)) error(Code::MissingKey, name, "the global check has no 'Message'");
    if (condition && text) {
      auto rule = std::make_unique<CompiledGlobalCheck>(std::move(condition), std::move(text));
      rule->setRulePlace(check.placeOfExpression(0));
      rule->setLevel(level);
      (void)data_->addGlobalCheck(name.node->value, std::move(rule));
    }
  });
}

}  // namespace tarn::rules

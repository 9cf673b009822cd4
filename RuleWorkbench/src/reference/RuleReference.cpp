// The content of the reference of a rule database, and its order. Its look is the business of ReferenceWriter.
#include <tarn/workbench/RuleReference.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/rules/Words.h>
#include <tarn/workbench/RuleDependencies.h>

#include "reference/ReferenceWriter.h"
#include "rules/NamedContent.h"

namespace tarn::workbench {

namespace {

using Kind = TextRun::Kind;

/// Longer lists are cut; the rules have the rest.
constexpr std::size_t mostItems = 200;

/// Anchors are ASCII letters, digits, "-" and "_", each used once.
class Anchors {
 public:
  [[nodiscard]] std::string make(std::string_view text) {
    std::string anchor;
    for (char const c : text) {
      bool const isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
      if (isPlain) {
        anchor += c;
      } else if (!anchor.empty() && anchor.back() != '-') {
        anchor += '-';
      }
    }
    if (anchor.empty()) anchor = "item";
    std::string unique = anchor;
    for (std::size_t& next = next_[anchor]; !used_.insert(unique).second;)
      unique = anchor + '-' + std::to_string(++next);
    return unique;
  }

 private:
  std::set<std::string> used_ = {"main", "find", "found", "count"};
  std::map<std::string, std::size_t> next_;
};

class Reference {
 public:
  Reference(std::ostream& out, PhysicsData const& rules, ReferenceFormat format)
      : rules_(rules), writer_(makeReferenceWriter(out, format)) {}

  void write(std::string const& title) {
    connect();
    makeAnchors();
    writer_->begin(title.empty() ? defaultTitle() : title, contents());
    writeIntroduction();
    for (ObjDependDef const* object : rules_.objects()) writeObject(*object);
    writeQuantityTypes();
    writeNamed();
    writeGlobalChecks();
    writer_->end();
  }

 private:
  using Key = std::tuple<EntryKind, std::string, std::string>;
  struct Link {
    std::string text;
    std::string anchor;
    auto operator<=>(Link const&) const = default;
  };

  // Preparation

  /// Links between entries, in the order of the rules.
  void connect() {
    graph_ = RuleDependencies(rules_).whole(std::numeric_limits<std::size_t>::max());
    reads_.resize(graph_.nodes.size());
    readers_.resize(graph_.nodes.size());
    for (GraphEdge const& edge : graph_.edges) {
      reads_[edge.reader].push_back(edge.read);
      readers_[edge.read].push_back(edge.reader);
    }
    for (std::size_t i = 0; i < graph_.nodes.size(); ++i) {
      GraphNode const& node = graph_.nodes[i];
      nodes_.emplace(Key(node.kind, node.typePath, node.entry), i);
    }
  }

  void makeAnchors() {
    for (ObjDependDef const* object : rules_.objects()) {
      std::string const& path = object->typePath();
      objectAnchors_[path] = anchors_.make(path.empty() ? "root" : path);
    }
    auto const add = [this](EntryKind kind, std::string const& path, std::string const& entry) {
      entryAnchors_[Key(kind, path, entry)] = anchors_.make(path + '/' + entry);
    };
    for (ObjDependDef const* object : rules_.objects()) {
      for (auto const& param : object->params()) add(EntryKind::Parameter, object->typePath(), param->name);
      for (auto const& child : object->children()) add(EntryKind::Child, object->typePath(), child->type);
      for (auto const& check : object->checks()) add(EntryKind::Check, object->typePath(), check->name);
    }
    for (std::string const& name : rules_.getGlobalCheckNames()) add(EntryKind::GlobalCheck, "", name);
    quantityTypes_ = anchors_.make("quantity-types");
    named_ = anchors_.make("named-rules");
    globalChecks_ = anchors_.make("global-checks");
    for (auto const& [name, type] : rules_.quantityTypes()) quantityAnchors_[name] = anchors_.make("quantity-" + name);
  }

  [[nodiscard]] std::string defaultTitle() const {
    std::string title;
    for (std::string const& root : rules_.getPertinentGlobalCheckRoots()) title += (title.empty() ? "" : ", ") + root;
    return title.empty() ? "Rules" : "Rules of " + title;
  }

  [[nodiscard]] bool hasNamed() const {
    return !rules_.getCheckNames().empty() || !rules_.getListNames().empty() || !rules_.getValueNames().empty();
  }

  [[nodiscard]] std::vector<ContentsEntry> contents() const {
    std::vector<ContentsEntry> entries;
    for (ObjDependDef const* object : rules_.objects()) {
      std::string const& path = object->typePath();
      auto const levels = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/'));
      entries.push_back({path.empty() ? "/" : std::string(PathUtils::lastType(path)), objectAnchors_.at(path),
                         levels > 0 ? std::min<std::size_t>(levels - 1, 8) : 0});
    }
    if (!rules_.quantityTypes().empty()) entries.push_back({"Quantity types", quantityTypes_});
    if (hasNamed()) entries.push_back({"Named rules", named_});
    if (!rules_.getGlobalCheckNames().empty()) entries.push_back({"Checks of the whole model", globalChecks_});
    return entries;
  }

  // Parts

  void writeIntroduction() {
    std::size_t params = 0;
    for (ObjDependDef const* object : rules_.objects()) params += object->params().size();
    auto const counted = [](std::size_t count, std::string const& one) {
      return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
    };
    writer_->paragraph({{counted(rules_.objects().size(), "object type") + " and " + counted(params, "parameter") +
                         ". Entries are in the order in which the rules look at them."}});
  }

  void writeObject(ObjDependDef const& object) {
    std::string const& path = object.typePath();
    writer_->heading(2, objectAnchors_.at(path), {{path.empty() ? "/" : path}});
    if (!object.description.empty()) writer_->paragraph({{object.description}});
    Terms terms;
    std::string const parent(PathUtils::parentOf(path));
    if (auto const found = objectAnchors_.find(parent); found != objectAnchors_.end() && path.size() > parent.size()) {
      auto const entry = entryAnchors_.find(Key(EntryKind::Child, parent, std::string(PathUtils::lastType(path))));
      terms.add("Part of", {{parent.empty() ? "/" : parent, Kind::Link,
                             entry != entryAnchors_.end() ? entry->second : found->second}});
    }
    addHistory(terms, object.history);
    addPlace(terms, object.rulePlace);
    terms.write(*writer_);
    writeParams(object);
    if (!object.children().empty()) writer_->heading(3, "", {{"Children"}});
    for (auto const& child : object.children()) writeChild(object, *child);
    if (!object.checks().empty()) writer_->heading(3, "", {{"Checks"}});
    for (auto const& check : object.checks()) writeCheck(object, *check);
  }

  void writeParams(ObjDependDef const& object) {
    std::vector<std::string> groups;
    std::map<std::string, std::vector<ParamAvail const*>> byGroup;
    for (auto const& param : object.params()) {
      auto& members = byGroup[param->group];
      if (members.empty()) groups.push_back(param->group);
      members.push_back(param.get());
    }
    for (std::string const& group : groups) {
      writer_->heading(3, "",
                       {{group.empty() ? (groups.size() == 1 ? "Parameters" : "Parameters without a group") : group}});
      for (ParamAvail const* param : byGroup[group]) writeParam(object, *param);
    }
  }

  /// Lines of an entry that are written together.
  struct Terms {
    std::vector<ReferenceWriter::Term> list;
    void add(std::string name, TextRuns line) { list.push_back({std::move(name), {std::move(line)}}); }
    void addLines(std::string name, std::vector<TextRuns> lines) {
      if (!lines.empty()) list.push_back({std::move(name), std::move(lines)});
    }
    void write(ReferenceWriter& writer) const {
      if (!list.empty()) writer.terms(list);
    }
  };

  static void addPlace(Terms& terms, RulePlace const& place) {
    if (place.isKnown()) terms.add("Written in", {{place.source() + ':' + std::to_string(place.line()), Kind::Code}});
  }

  static void addHistory(Terms& terms, ItemHistory const& history) {
    if (!history.deprecated.empty()) terms.add("Deprecated", {{history.deprecated}});
    if (history.formerNames.empty()) return;
    TextRuns line;
    for (std::string const& name : history.formerNames) {
      if (!line.empty()) line.push_back({", "});
      line.push_back({name, Kind::Code});
    }
    if (!history.renameMessage.empty()) line.push_back({". " + history.renameMessage});
    terms.add("Former names", std::move(line));
  }

  /// A rule in words, and as it is written.
  static TextRuns ofRule(RuleExpression const& rule) {
    std::string const words = rules::inWords(rule);
    std::string const source = rule.sourceText();
    if (words.empty() && source.empty()) return {{"computed by the program"}};
    if (source.empty() || words == source)
      return {{words.empty() ? source : words, words.empty() ? Kind::Code : Kind::Plain}};
    if (words.empty()) return {{source, Kind::Code}};
    return {{words + ": "}, {source, Kind::Code}};
  }

  static TextRuns ofText(TextExpression const& text) {
    if (auto const* fixed = dynamic_cast<FixedText const*>(&text)) {
      if (fixed->text().empty()) return {{"blank"}};
      return {{fixed->text(), Kind::Code}};
    }
    return ofRule(text);
  }

  static TextRuns ofItems(SharedStrings const& items) {
    TextRuns line;
    for (std::size_t i = 0; i < std::min(items.size(), mostItems); ++i) {
      if (i > 0) line.push_back({" "});
      line.push_back({items[i], Kind::Code});
    }
    if (items.size() > mostItems) line.push_back({" and " + std::to_string(items.size() - mostItems) + " more"});
    if (items.empty()) line.push_back({"none"});
    return line;
  }

  static TextRuns ofList(ListExpression const& list) {
    auto const* fixed = dynamic_cast<FixedList const*>(&list);
    return fixed != nullptr ? ofItems(fixed->items()) : ofRule(list);
  }

  static std::vector<TextRuns> ofGuarded(std::vector<ParamValueDef::GuardedText> const& entries) {
    std::vector<TextRuns> lines;
    for (auto const& entry : entries) {
      TextRuns line = entry.value ? ofText(*entry.value) : TextRuns{{"none"}};
      line.push_back({entry.when ? " while " : " always"});
      if (entry.when) {
        for (TextRun& span : ofRule(*entry.when)) line.push_back(std::move(span));
      }
      lines.push_back(std::move(line));
    }
    return lines;
  }

  template <typename Entry>
  static void addAvailability(Terms& terms, Entry const& entry) {
    if (!entry.contexts.empty()) {
      TextRuns line = {{"while the parameter that selects the context is "}};
      for (std::size_t i = 0; i < entry.contexts.size(); ++i) {
        if (i > 0) line.push_back({" or "});
        line.push_back({entry.contexts[i].empty() ? "not set" : entry.contexts[i],
                        entry.contexts[i].empty() ? Kind::Plain : Kind::Code});
      }
      terms.add("Context", std::move(line));
    }
    if (entry.available) {
      TextRuns line = {{"while "}};
      for (TextRun& span : ofRule(*entry.available)) line.push_back(std::move(span));
      terms.add("Available", std::move(line));
    }
    if (!entry.reason.empty()) terms.add("Otherwise", {{entry.reason}});
    if (!entry.betaMessage.empty()) terms.add("Beta", {{entry.betaMessage}});
  }

  void addLinks(Terms& terms, EntryKind kind, std::string const& path, std::string const& entry) const {
    auto const found = nodes_.find(Key(kind, path, entry));
    if (found == nodes_.end()) return;
    auto const line = [&](std::vector<std::size_t> const& others) {
      TextRuns spans;
      for (std::size_t i = 0; i < std::min(others.size(), mostItems); ++i) {
        GraphNode const& node = graph_.nodes[others[i]];
        auto const anchor = entryAnchors_.find(Key(node.kind, node.typePath, node.entry));
        if (!spans.empty()) spans.push_back({", "});
        std::string const text =
            node.typePath == path && node.kind != EntryKind::GlobalCheck ? node.entry : node.text();
        spans.push_back(anchor == entryAnchors_.end() ? TextRun{text} : TextRun{text, Kind::Link, anchor->second});
      }
      if (others.size() > mostItems) spans.push_back({" and " + std::to_string(others.size() - mostItems) + " more"});
      return spans;
    };
    if (!reads_[found->second].empty()) terms.add("Depends on", line(reads_[found->second]));
    if (!readers_[found->second].empty()) terms.add("Read by", line(readers_[found->second]));
  }

  static void addMark(TextRuns& heading, bool isGiven, std::string const& text) {
    if (!isGiven) return;
    heading.push_back({" "});
    heading.push_back({text, Kind::Mark});
  }

  void writeParam(ObjDependDef const& object, ParamAvail const& param) {
    ParamValueDef const* const def = param.valueDef();
    TextRuns heading = {{param.label.empty() ? param.name : param.label}};
    addMark(heading, def != nullptr, def != nullptr ? std::string(TDFParam::typeName(def->type)) : "");
    addMark(heading, param.required, "required");
    addMark(heading, param.advanced, "advanced");
    addMark(heading, param.contextRule, "selects the context");
    addMark(heading, !param.history.deprecated.empty(), "deprecated");
    writer_->heading(4, entryAnchors_.at(Key(EntryKind::Parameter, object.typePath(), param.name)), heading);
    if (!param.description.empty()) writer_->paragraph({{param.description}});
    Terms terms;
    if (!param.label.empty()) terms.add("Name", {{param.name, Kind::Code}});
    if (def != nullptr) addValues(terms, *def);
    addAvailability(terms, param);
    addHistory(terms, param.history);
    addLinks(terms, EntryKind::Parameter, object.typePath(), param.name);
    addPlace(terms, param.rulePlace);
    terms.write(*writer_);
  }

  void addValues(Terms& terms, ParamValueDef const& def) const {
    if (def.allowedValueKind != ParamValueDef::NoAllowedValues && def.allowedValues) {
      std::vector<TextRuns> lines = {ofList(*def.allowedValues)};
      for (auto const& [value, when] : def.allowedValueChecks) {
        TextRuns line = {{value, Kind::Code}, {" only while "}};
        for (TextRun& span : ofRule(*when)) line.push_back(std::move(span));
        lines.push_back(std::move(line));
      }
      if (!def.unusedValues.empty()) {
        TextRuns line = {{"never: "}};
        for (TextRun& span : ofItems(def.unusedValues)) line.push_back(std::move(span));
        lines.push_back(std::move(line));
      }
      if (def.allowsAnyValue) lines.push_back({{"any other value is allowed too"}});
      if (def.completeListRequired) lines.push_back({{"a value must have all of them"}});
      terms.addLines("Allowed values", std::move(lines));
      if (def.subset) terms.add("On offer", ofList(*def.subset));
    }
    for (auto const& [value, message] : def.betaValues) terms.add("Beta", {{value, Kind::Code}, {": " + message}});
    addUnits(terms, def);
    if (def.lowerBound) terms.add(def.lowerBoundExcluded ? "More than" : "At least", ofText(*def.lowerBound));
    if (def.upperBound) terms.add(def.upperBoundExcluded ? "Less than" : "At most", ofText(*def.upperBound));
    if (def.pattern) {
      terms.add("Pattern", {{def.pattern->text(), Kind::Code}});
      if (!def.patternMessage.empty()) terms.list.back().lines.push_back({{def.patternMessage}});
    }
    std::vector<TextRuns> defaults = ofGuarded(def.defaultChecks);
    if (def.defaultValue) {
      TextRuns line = ofText(*def.defaultValue);
      if (!defaults.empty()) line.insert(line.begin(), TextRun{"otherwise "});
      defaults.push_back(std::move(line));
    } else if (def.allowedValueKind != ParamValueDef::NoAllowedValues) {
      std::string const fallback = def.fallbackToBlankDefault ? "blank" : "the first value on offer";
      defaults.push_back({{defaults.empty() ? fallback : "otherwise " + fallback}});
    }
    terms.addLines("Default", std::move(defaults));
    terms.addLines("Always", ofGuarded(def.overrideChecks));
  }

  void addUnits(Terms& terms, ParamValueDef const& def) const {
    if (!def.quantityType) return;
    auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get());
    auto const* type = fixed != nullptr ? rules_.findQuantityType(fixed->text()) : nullptr;
    if (type == nullptr) {
      terms.add("Quantity", ofText(*def.quantityType));
      return;
    }
    TextRuns line = {{fixed->text(), Kind::Link, quantityAnchors_.at(fixed->text())}, {" in "}};
    for (TextRun& span : unitsOf(*type)) line.push_back(std::move(span));
    terms.add("Quantity", std::move(line));
  }

  static TextRuns unitsOf(QuantityType const& type) {
    TextRuns line;
    for (QuantityUnit const& unit : type.units()) {
      if (!line.empty()) line.push_back({" "});
      line.push_back({unit.text.empty() ? "1" : unit.text, Kind::Code});
    }
    return line;
  }

  void writeChild(ObjDependDef const& object, ChildAvail const& child) {
    TextRuns heading = {{child.label.empty() ? child.type : child.label}};
    addMark(heading, child.singleton, "one");
    addMark(heading, child.required, "required");
    addMark(heading, child.advanced, "advanced");
    addMark(heading, !child.history.deprecated.empty(), "deprecated");
    writer_->heading(4, entryAnchors_.at(Key(EntryKind::Child, object.typePath(), child.type)), heading);
    if (!child.description.empty()) writer_->paragraph({{child.description}});
    Terms terms;
    auto const own = objectAnchors_.find(object.typePath() + '/' + child.type);
    if (own != objectAnchors_.end()) terms.add("Rules", {{own->first, Kind::Link, own->second}});
    if (child.allowedNamesSource) terms.add("Names", ofList(*child.allowedNamesSource));
    if (child.defaultNamesSource) terms.add("First names", ofList(*child.defaultNamesSource));
    if (child.minimumCount) terms.add("At least", ofText(*child.minimumCount));
    if (child.maximumCount) terms.add("At most", ofText(*child.maximumCount));
    addAvailability(terms, child);
    addHistory(terms, child.history);
    std::vector<TextRuns> renamed;
    for (auto const& [former, present] : child.renamedNames) {
      renamed.push_back({{former, Kind::Code}, {" is now "}, {present, Kind::Code}});
    }
    terms.addLines("Renamed", std::move(renamed));
    addLinks(terms, EntryKind::Child, object.typePath(), child.type);
    addPlace(terms, child.rulePlace);
    terms.write(*writer_);
  }

  void writeCheck(ObjDependDef const& object, ObjectCheck const& check) {
    TextRuns heading = {{check.name}};
    addMark(heading, check.level == CheckLevel::Warning, "warning");
    writer_->heading(4, entryAnchors_.at(Key(EntryKind::Check, object.typePath(), check.name)), heading);
    Terms terms;
    if (check.when) terms.add("When", ofRule(*check.when));
    if (check.check) terms.add("Must hold", ofRule(*check.check));
    if (check.message) terms.add("Otherwise", ofText(*check.message));
    addLinks(terms, EntryKind::Check, object.typePath(), check.name);
    addPlace(terms, check.rulePlace);
    terms.write(*writer_);
  }

  void writeQuantityTypes() {
    if (rules_.quantityTypes().empty()) return;
    writer_->heading(1, quantityTypes_, {{"Quantity types"}});
    for (auto const& [name, type] : rules_.quantityTypes()) {
      writer_->heading(4, quantityAnchors_.at(name), {{name}});
      Terms terms;
      terms.add("Units", unitsOf(type));
      terms.write(*writer_);
    }
  }

  void writeNamed() {
    if (!hasNamed()) return;
    writer_->heading(1, named_, {{"Named rules"}});
    auto const write = [&](std::string const& name, std::string const& kind, RuleExpression const& rule,
                           TextRuns content) {
      TextRuns heading = {{name}};
      addMark(heading, true, kind);
      writer_->heading(4, anchors_.make(kind + '-' + name), heading);
      Terms terms;
      terms.add("Means", std::move(content));
      addPlace(terms, rule.rulePlace());
      terms.write(*writer_);
    };
    for (std::string const& name : rules_.getCheckNames()) {
      Check const& check = *rules_.getCheck(name, true);
      write(name, "check", check, ofRule(check));
    }
    for (std::string const& name : rules_.getListNames()) {
      List const& list = *rules_.getList(name, true);
      SharedStrings const items = fixedItemsOf(list);
      write(name, "list", list, items.empty() ? ofRule(list) : ofItems(items));
    }
    for (std::string const& name : rules_.getValueNames()) {
      TextExpression const& value = *rules_.findValue(name);
      std::string const fixed = fixedTextOf(value);
      write(name, "value", value, fixed.empty() ? ofText(value) : TextRuns{{fixed, Kind::Code}});
    }
  }

  void writeGlobalChecks() {
    auto const names = rules_.getGlobalCheckNames();
    if (names.empty()) return;
    writer_->heading(1, globalChecks_, {{"Checks of the whole model"}});
    for (std::string const& name : names) {
      GlobalCheck const& check = *rules_.getGlobalCheck(name, true);
      TextRuns heading = {{name}};
      addMark(heading, check.level() == CheckLevel::Warning, "warning");
      writer_->heading(4, entryAnchors_.at(Key(EntryKind::GlobalCheck, "", name)), heading);
      Terms terms;
      terms.add("Must hold", ofRule(check));
      if (auto const* message = rules::messageOf(check)) terms.add("Otherwise", ofText(*message));
      addLinks(terms, EntryKind::GlobalCheck, "", name);
      addPlace(terms, check.rulePlace());
      terms.write(*writer_);
    }
  }

  PhysicsData const& rules_;
  std::unique_ptr<ReferenceWriter> writer_;
  DependencyGraph graph_;
  std::vector<std::vector<std::size_t>> reads_;    // by node
  std::vector<std::vector<std::size_t>> readers_;  // by node
  std::map<Key, std::size_t> nodes_;
  Anchors anchors_;
  std::map<std::string, std::string> objectAnchors_;  // by type path
  std::map<Key, std::string> entryAnchors_;
  std::map<std::string, std::string> quantityAnchors_;
  std::string quantityTypes_;
  std::string named_;
  std::string globalChecks_;
};

}  // namespace

void writeRuleReference(std::ostream& out, PhysicsData const& rules, ReferenceFormat format, std::string const& title) {
  Reference(out, rules, format).write(title);
}

}  // namespace tarn::workbench

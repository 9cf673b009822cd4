// Warnings: what can be loaded and is still doubtful. Each kind is a small operation over the uses of expressions or
// over the entries of objects. All of them keep silent where the rules leave room: a warning that is often wrong is not
// read.

#include "lint/Lint.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "expression/NearMatch.h"
#include "expression/Nodes.h"
#include "lint/ComputedNames.h"
#include "lint/TypeTree.h"
#include "yaml/ScalarText.h"

namespace tarn::rules {

namespace {

/// A model in which nothing exists, for expressions that read nothing.
class EmptyModel final : public ModelTDF {
 public:
  bool hasObject(std::string const& /*path*/) const override { return false; }
  bool hasParameter(std::string const& /*paramPath*/) const override { return false; }
  bool hasParameter(std::string const& /*objPath*/, std::string const& /*name*/) const override { return false; }
  std::string const& getObjectName(std::string const& /*path*/) const override { return empty_; }
  std::string const& getObjectType(std::string const& /*path*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*paramPath*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*objPath*/, std::string const& /*name*/) const override {
    return empty_;
  }
  bool getParamValueAsList(std::string const& /*paramPath*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParamValueAsList(std::string const& /*objPath*/, std::string const& /*name*/,
                           std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParameterNames(std::string const& /*path*/, std::vector<std::string>& /*out*/) const override {
    return false;
  }
  bool getChildObjectPaths(std::string const& /*path*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectNamesByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectPathsByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }

 private:
  std::string empty_;
};

bool readsNothing(Expression const& expression) {
  RuleReads reads;
  expression.collectReads(reads, PathPattern());
  return !reads.readsModel() && !reads.contextIdentity;
}

/// A text that an expression compares a parameter with, and where it stands.
struct ComparedValue {
  ParameterReference const* parameter;
  PathPattern objects;  // seen from the owner of the rule
  std::string text;
  std::optional<double> number;  // when it was written as a number
  Range range;
};

class Linter {
 public:
  Linter(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics)
      : rules_(rules), data_(data), types_(data_), diagnostics_(diagnostics) {}

  void run() {
    for (auto const& use : rules_.uses()) {
      checkPaths(use);
      checkComparisons(use);
      checkCondition(use);
      checkOrder(use);
    }
    for (auto const* object : data_.objects()) {
      for (auto const& param : object->params()) {
        if (param->valueDef() != nullptr) checkParameter(*object, *param, *param->valueDef());
      }
      for (auto const& child : object->children()) checkChild(*object, *child);
    }
    checkObjects();
    for (auto const& [root, place] : rules_.rootPlaces()) {
      if (data_.getObjDependDef("/" + root, true) == nullptr) {
        warn(place,
             "there are no rules for the root type " + inQuotes(root) + hints_.orNear(root, types_.childTypes("")));
      }
    }
  }

 private:
  void warn(Item const& item, std::string message) {
    diagnostics_.add(Code::Doubtful, *item.source, item.node->range(), std::move(message));
  }

  void warn(ExpressionUse const& use, Range range, std::string message) {
    std::size_t const offset = use.skipped + range.offset;
    SourceRange const place = rangeInScalar(*use.item.source, *use.item.node, offset, range.length, &walk_);
    diagnostics_.add(Code::Doubtful, *use.item.source, place, std::move(message));
  }

  using TypePaths = std::shared_ptr<std::set<std::string> const>;

  /// What a pattern of this use can name. A named rule is called from anywhere, so everything is tried as its owner.
  /// What does not hang on the owner is kept: many rules ask for the same.
  [[nodiscard]] TypePaths resolve(ExpressionUse const& use, PathPattern const& pattern) const {
    if (use.named == nullptr && !pattern.isAbsolute()) {
      return std::make_shared<std::set<std::string> const>(types_.resolve(pattern, use.typePath));
    }
    auto& kept = resolved_[pattern.text()];
    if (kept) return kept;
    std::set<std::string> all;
    if (pattern.isAbsolute()) {
      all = types_.resolve(pattern, {});
    } else {
      for (auto const& entry : types_.all()) all.merge(types_.resolve(pattern, entry.first));
    }
    kept = std::make_shared<std::set<std::string> const>(std::move(all));
    return kept;
  }

  // A path that no rule knows

  void checkPaths(ExpressionUse const& use) {
    std::vector<PathUse> paths;
    use.compiled->expression->collectPaths(paths, PathPattern());
    for (auto const& path : paths) {
      auto const resolved = resolve(use, path.pattern);
      auto const& named = *resolved;
      if (named.empty()) {
        warn(use, path.range, "no rule knows an object at this path" + nearObject(use, path.pattern));
        continue;
      }
      if (path.parameter.empty()) continue;
      bool const known = std::any_of(named.begin(), named.end(), [&](std::string const& typePath) {
        auto const* object = data_.getObjDependDef(typePath, true);
        // A child without rules of its own, which is told elsewhere; or the root, which has no parameters.
        if (object == nullptr) return !typePath.empty();
        return object->findParam(path.parameter) != nullptr;
      });
      if (known) continue;
      std::vector<std::string> candidates;
      for (auto const& typePath : named) {
        auto const* object = data_.getObjDependDef(typePath, true);
        if (object == nullptr || !hints_.take(object->params().size())) continue;
        for (auto const& param : object->params()) candidates.push_back(param->name);
      }
      std::string const where = named.size() == 1 && use.named == nullptr && !named.begin()->empty()
                                    ? " of " + *named.begin()
                                    : std::string{};
      warn(use, path.range,
           "no rule knows a parameter " + inQuotes(path.parameter) + where + hints_.orNear(path.parameter, candidates));
    }
  }

  /// A near match for the first type of the pattern that leads nowhere.
  [[nodiscard]] std::string nearObject(ExpressionUse const& use, PathPattern const& pattern) const {
    if (use.named != nullptr && !pattern.isAbsolute()) return {};
    auto const& steps = pattern.steps();
    if (!pattern.isAbsolute() && pattern.start() != PathPattern::Start::Context) return {};
    std::set<std::string> current = {pattern.isAbsolute() ? std::string{} : use.typePath};
    for (auto const& step : steps) {
      if (step.kind != PathPattern::StepKind::Child && step.kind != PathPattern::StepKind::ChildrenOfType) return {};
      std::set<std::string> next;
      for (auto const& path : current) {
        if (auto child = path + "/" + step.type; types_.knows(child)) next.insert(std::move(child));
      }
      if (next.empty()) {
        std::vector<std::string> candidates;
        for (auto const& path : current) {
          auto const& types = types_.childTypes(path);
          if (hints_.take(types.size())) candidates.insert(candidates.end(), types.begin(), types.end());
        }
        return hints_.orNear(step.type, candidates);
      }
      current = std::move(next);
    }
    return {};
  }

  // A parameter compared with what it can never be

  static void collectCompared(Expression const& expression, PathPattern const& base, std::vector<ComparedValue>& out) {
    if (auto const* comparison = dynamic_cast<Comparison const*>(&expression)) {
      auto const op = comparison->op();
      if (op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual) {
        addCompared(comparison->left(), comparison->right(), base, out);
        addCompared(comparison->right(), comparison->left(), base, out);
      }
    } else if (auto const* membership = dynamic_cast<Membership const*>(&expression)) {
      auto const* parameter = dynamic_cast<ParameterReference const*>(&membership->item());
      auto const* list = dynamic_cast<ListLiteral const*>(&membership->items());
      if (parameter != nullptr && list != nullptr) {
        for (auto const& item : list->fixedItems()) {
          out.push_back({parameter, parameter->objectPattern().seenFrom(base), item, std::nullopt, list->range()});
        }
      }
    }
    auto const parts = expression.operands();
    for (std::size_t i = 0; i < parts.size(); ++i) {
      collectCompared(*parts[i], expression.operandBase(i, base), out);
    }
  }

  static void addCompared(Expression const& one, Expression const& other, PathPattern const& base,
                          std::vector<ComparedValue>& out) {
    auto const* parameter = dynamic_cast<ParameterReference const*>(&one);
    auto const* literal = dynamic_cast<Literal const*>(&other);
    if (parameter == nullptr || literal == nullptr || literal->kind() == Kind::Truth) return;
    ComparedValue value{parameter, parameter->objectPattern().seenFrom(base), literal->rawText(), std::nullopt,
                        literal->range()};
    if (literal->kind() == Kind::Number) {
      EmptyModel const model;
      TDFContext const root{std::string{}};
      EvalContext evalContext(&model);
      value.number = literal->number(Frame{model, root, &evalContext});
      value.text = numberText(*value.number);
    }
    out.push_back(std::move(value));
  }

  /// Why `def` rules out that its parameter ever equals the value; empty when it may. The empty text is what an absent
  /// parameter equals, so it is always possible.
  [[nodiscard]] std::string impossible(ParamValueDef const& def, ComparedValue const& value) const {
    if (value.text.empty() || TDFParam::isListType(def.type)) return {};
    bool const fixed = def.allowedValueKind == ParamValueDef::FixedAllowedValues && !def.allowsAnyValue;
    if (fixed) {
      auto const* list = dynamic_cast<FixedList const*>(def.allowedValues.get());
      if (list == nullptr) return {};
      auto const equals = [&](std::string const& item) {
        return value.number
                   ? TDFParam::asQuantity(item).has_value() && TDFParam::asQuantity(item)->number == *value.number
                   : item == value.text;
      };
      if (def.unusedValues.contains(value.text)) return " is known but never allowed";
      auto const& items = list->items();
      if (std::any_of(items.begin(), items.end(), equals)) return {};
      return " is not among its allowed values" + hints_.orNear(value.text, items);
    }
    if (def.allowedValueKind != ParamValueDef::NoAllowedValues || value.number) return {};
    if (def.type == TDFParam::Logical && !TDFParam::asLogical(value.text)) return " is no logical value";
    if ((def.type == TDFParam::Integer || def.type == TDFParam::Real) && !TDFParam::asQuantity(value.text)) {
      return " is no number";
    }
    return {};
  }

  /// As above, for everything that the compared parameter can be; empty as soon as one may have the value.
  [[nodiscard]] std::string impossible(ExpressionUse const& use, ComparedValue const& value) const {
    std::string reason;
    auto const resolved = resolve(use, value.objects);
    for (auto const& typePath : *resolved) {
      auto const* def = data_.getParamValueDef(typePath, value.parameter->name(), true);
      if (def == nullptr) continue;
      reason = impossible(*def, value);
      if (reason.empty()) return {};
    }
    return reason;
  }

  void checkComparisons(ExpressionUse const& use) {
    std::vector<ComparedValue> compared;
    collectCompared(*use.compiled->expression, PathPattern(), compared);
    for (auto const& value : compared) {
      auto const reason = impossible(use, value);
      if (reason.empty()) continue;
      warn(use, value.range,
           "the parameter " + inQuotes(value.parameter->name()) + " can never be " + inQuotes(value.text) + ": it" +
               reason);
    }
  }

  // A condition that can never hold

  /// Whether the condition can never hold, as far as its form tells.
  [[nodiscard]] static bool neverHolds(Expression const& expression) {
    if (readsNothing(expression)) return !evaluate(expression);
    auto const* logic = dynamic_cast<Logic const*>(&expression);
    if (logic == nullptr) {
      if (dynamic_cast<Kept const*>(&expression) != nullptr) return neverHolds(*expression.operands().front());
      auto const* membership = dynamic_cast<Membership const*>(&expression);
      auto const* list = membership != nullptr ? dynamic_cast<ListLiteral const*>(&membership->items()) : nullptr;
      return list != nullptr && !membership->negated() && list->operands().empty() && list->fixedItems().empty();
    }
    auto const parts = logic->operands();
    switch (logic->op()) {
      case Logic::Operator::And:
        return std::any_of(parts.begin(), parts.end(), [](auto const* part) { return neverHolds(*part); }) ||
               contradicts(parts);
      case Logic::Operator::Or:
        return std::all_of(parts.begin(), parts.end(), [](auto const* part) { return neverHolds(*part); });
      default:
        return false;
    }
  }

  [[nodiscard]] static bool evaluate(Expression const& expression) {
    EmptyModel const model;
    TDFContext const root{std::string{}};
    EvalContext evalContext(&model);
    return expression.truth(Frame{model, root, &evalContext});
  }

  /// Of conditions that must hold together, two want different texts of one parameter.
  [[nodiscard]] static bool contradicts(std::vector<Expression const*> const& parts) {
    std::map<std::string, std::set<std::string>> wanted;
    for (auto const* part : parts) {
      auto const* comparison = dynamic_cast<Comparison const*>(part);
      if (comparison == nullptr || comparison->op() != Comparison::Operator::Equal) continue;
      for (bool const swapped : {false, true}) {
        auto const& one = swapped ? comparison->right() : comparison->left();
        auto const& other = swapped ? comparison->left() : comparison->right();
        auto const* parameter = dynamic_cast<ParameterReference const*>(&one);
        auto const* literal = dynamic_cast<Literal const*>(&other);
        if (parameter == nullptr || literal == nullptr || literal->kind() != Kind::Text) continue;
        auto& texts = wanted[parameter->objectPattern().text() + "\n" + parameter->name()];
        texts.insert(literal->rawText());
        if (texts.size() > 1) return true;
      }
    }
    return false;
  }

  void checkCondition(ExpressionUse const& use) {
    if (use.role != Role::Condition) return;
    auto const& expression = *use.compiled->expression;
    if (neverHolds(expression)) warn(use, expression.range(), "this condition can never hold");
  }

  // A rule that reads what is decided later in the same walk

  void checkOrder(ExpressionUse const& use) {
    if (use.typePath.empty()) return;
    auto const* object = data_.getObjDependDef(use.typePath, true);
    if (object == nullptr) return;
    RuleReads reads;
    use.compiled->expression->collectReads(reads, PathPattern());
    auto const ranges = rangesOf(use);
    auto const rangeOf = [&](std::string const& parameter) {
      auto const found = ranges.find(parameter);
      return found == ranges.end() ? use.compiled->expression->range() : found->second;
    };
    for (auto const& read : reads.parameters) {
      auto const named = types_.resolve(read.objects, use.typePath);
      bool const own = read.objects.start() != PathPattern::Start::Root && read.objects.steps().empty() &&
                       named == std::set<std::string>{use.typePath};
      bool const allLater = !named.empty() && std::all_of(named.begin(), named.end(), [&](std::string const& typePath) {
        auto const* target = data_.getObjDependDef(typePath, true);
        if (target == nullptr || target->findParam(read.name) == nullptr) return false;
        return own ? isLaterParameter(*object, use, read.name) : isLaterObject(use, typePath);
      });
      if (!allLater) continue;
      bool const itself = own && !use.ofChild && use.entry == read.name;
      warn(use, rangeOf(read.name),
           itself ? "the availability of " + inQuotes(read.name) + " hangs on its own value"
                  : "the value of " + inQuotes(read.name) +
                        " is decided later in the same walk, so this reads what it was before the edit");
    }
    for (auto const& set : reads.objectSets) {
      for (auto const& typePath : types_.resolve(set, use.typePath)) {
        if (!isDecidedByRules(typePath) || !isLaterObject(use, typePath)) continue;
        warn(use, rangeOf({}),
             "the objects of type " + inQuotes(PathUtils::lastType(typePath)) +
                 " are decided later in the same walk, so this sees what was there before the edit");
        break;
      }
    }
  }

  /// The first parts of the expression that name each parameter, and, for the empty text, a set of objects.
  [[nodiscard]] static std::map<std::string, Range> rangesOf(ExpressionUse const& use) {
    std::vector<PathUse> paths;
    use.compiled->expression->collectPaths(paths, PathPattern());
    std::map<std::string, Range> ranges;
    for (auto const& path : paths) ranges.try_emplace(path.parameter, path.range);
    return ranges;
  }

  /// Where the entries of an object stand in its lists. Made once for each object: rules are compared with each other,
  /// and an object may have a hundred thousand.
  struct Positions {
    std::unordered_map<std::string_view, std::size_t> params;
    std::unordered_map<std::string_view, std::size_t> children;
    std::vector<std::size_t> contextRules;                       // those of `params` that are
    std::unordered_map<std::string_view, std::size_t> contexts;  // a value of theirs, and the first that can have it
    std::size_t firstContextRule = std::string::npos;
    std::size_t firstOpenContextRule = std::string::npos;  // that can have values which are not known here
  };

  [[nodiscard]] Positions const& positionsOf(ObjDependDef const& object) const {
    auto const [known, isNew] = positions_.try_emplace(&object);
    auto& positions = known->second;
    if (!isNew) return positions;
    for (auto const& param : object.params()) {
      if (param->contextRule) positions.contextRules.push_back(positions.params.size());
      positions.params.emplace(param->name, positions.params.size());
    }
    for (auto const& child : object.children()) positions.children.emplace(child->type, positions.children.size());
    for (std::size_t const position : positions.contextRules) {
      auto const* def = object.params()[position]->valueDef();
      if (def == nullptr) continue;
      positions.firstContextRule = std::min(positions.firstContextRule, position);
      auto const* list = dynamic_cast<FixedList const*>(def->allowedValues.get());
      if (list == nullptr || def->allowsAnyValue || def->allowedValueKind != ParamValueDef::FixedAllowedValues) {
        positions.firstOpenContextRule = std::min(positions.firstOpenContextRule, position);
      }
      if (list == nullptr) continue;
      for (auto const& value : list->items()) positions.contexts.try_emplace(value, position);
    }
    return positions;
  }

  /// The position, or one behind the last.
  [[nodiscard]] static std::size_t indexIn(std::unordered_map<std::string_view, std::size_t> const& positions,
                                           std::string_view name) {
    auto const found = positions.find(name);
    return found == positions.end() ? positions.size() : found->second;
  }

  [[nodiscard]] bool isLaterParameter(ObjDependDef const& object, ExpressionUse const& use,
                                      std::string const& name) const {
    if (use.ofChild) return false;
    if (name == use.entry) return use.attribute == "Available";
    auto const& positions = positionsOf(object).params;
    return indexIn(positions, name) > indexIn(positions, use.entry);
  }

  /// Whether a walk comes to objects of `target` only behind the rule. Where both lie below children of one type, there
  /// is no telling.
  [[nodiscard]] bool isLaterObject(ExpressionUse const& use, std::string const& target) const {
    std::string reader = use.typePath;
    if (use.ofChild) reader += "/" + use.entry;
    std::size_t common = 0;
    std::size_t i = 0;
    for (; i < reader.size() && i < target.size() && reader[i] == target[i]; ++i) {
      if (reader[i] == '/') common = i;
    }
    bool const readerEnds = i == reader.size();
    bool const targetEnds = i == target.size();
    if (readerEnds && (targetEnds || target[i] == '/')) {
      // The reader's own children, or what the child rule itself decides.
      return target.size() > use.typePath.size();
    }
    if (targetEnds && reader[i] == '/') return false;
    auto const parent = reader.substr(0, common);
    if (parent.size() + 1 > target.size()) return false;
    auto const typeBelow = [&](std::string const& path) {
      return path.substr(common + 1, path.find('/', common + 1) - common - 1);
    };
    auto const* object = data_.getObjDependDef(parent, true);
    if (object == nullptr) return false;
    auto const& children = positionsOf(*object).children;
    auto const at = indexIn(children, typeBelow(target));
    // A parameter of the parent itself comes before all of its children.
    if (!use.ofChild && use.typePath == parent) return at < children.size();
    return at < children.size() && at > indexIn(children, typeBelow(reader));
  }

  [[nodiscard]] bool isDecidedByRules(std::string const& typePath) const {
    auto const* parent = data_.getObjDependDef(std::string(PathUtils::parentOf(typePath)), true);
    auto const* child = parent != nullptr ? parent->findChild(std::string(PathUtils::lastType(typePath))) : nullptr;
    return child != nullptr && (child->singleton || child->allowedNamesSource != nullptr);
  }

  // Entries

  void checkObjects() {
    for (auto const& [typePath, place] : rules_.objectPlaces()) {
      std::string const parentPath(PathUtils::parentOf(typePath));
      if (parentPath.empty()) continue;
      auto const* parent = data_.getObjDependDef(parentPath, true);
      std::string const type(PathUtils::lastType(typePath));
      if (parent != nullptr && parent->findChild(type) != nullptr) continue;
      std::vector<std::string> candidates;
      if (parent != nullptr && hints_.take(parent->children().size())) {
        for (auto const& child : parent->children()) candidates.push_back(child->type);
      }
      warn(place, "no child rule leads to objects of this type, so nothing of this entry is ever looked at" +
                      hints_.orNear(type, candidates));
    }
  }

  void checkChild(ObjDependDef const& object, ChildAvail const& child) {
    auto const typePath = object.typePath() + "/" + child.type;
    auto const& place = rules_.childPlaces().at({object.typePath(), child.type});
    if (data_.getObjDependDef(typePath, true) == nullptr) {
      warn(place.name, "there is no entry " + typePath + " under Objects, so nothing in such a child is known");
    }
    auto const at = [&](std::string_view attribute) {
      auto const found = place.attributes.find(attribute);
      return found == place.attributes.end() ? Item{} : found->second;
    };
    auto const allowedNames = at("Allowed Names");
    auto const defaultNames = at("Default Names");
    if (child.singleton) {
      if (allowedNames) warn(allowedNames, "Allowed Names gives names, but a singleton has none");
      if (defaultNames) warn(defaultNames, "Default Names gives names, but a singleton has none");
    } else if (defaultNames && allowedNames) {
      warn(defaultNames, "Default Names has no effect beside Allowed Names");
    } else if (defaultNames && !child.required) {
      warn(defaultNames, "Default Names has no effect on a child that is not required");
    }
    if (!child.singleton) {
      checkNames(child, allowedNames);
      checkNames(child, defaultNames);
    }
    if (!child.contexts.empty()) checkContext(object, nullptr, child.contexts, at("Context"));
  }

  /// The names that a list gives as texts must be such that an object can have them, and keep them in a file: where a
  /// required one cannot be, no walk gets past it.
  void checkNames(ChildAvail const& child, Item const& list) {
    if (!list || list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* node : list.node->children) {
      bool const isGuarded = node->kind == YamlNode::Kind::Mapping;
      for (std::size_t i = 0; isGuarded && i + 1 < node->children.size(); i += 2) {
        if (node->children[i]->value == "Value") {
          node = node->children[i + 1];
          break;
        }
      }
      if (node->kind != YamlNode::Kind::Scalar) continue;
      std::string const& name = node->value;
      if (isGuarded && name.starts_with('=')) continue;  // computed
      if (name.empty()) {
        warn({list.source, node}, "no object can have this name: the empty text is none");
      } else if (name.find_first_of("/:") != std::string::npos) {
        warn({list.source, node}, "no object can have the name " + inQuotes(name) + ": names hold neither '/' nor ':'");
      } else if (name == child.type) {
        warn({list.source, node}, "an object of the type " + inQuotes(name) +
                                      " with this name is printed, and read again, as one without a name");
      }
    }
  }

  void checkParameter(ObjDependDef const& object, ParamAvail const& param, ParamValueDef const& def) {
    auto const& place = rules_.paramPlaces().at({object.typePath(), param.name});
    auto const at = [&](std::string_view attribute) {
      auto const found = place.attributes.find(attribute);
      return found == place.attributes.end() ? Item{} : found->second;
    };
    if (def.allowedValueKind == ParamValueDef::NoAllowedValues) {
      for (std::string_view const attribute :
           {"Allowed String List Checks", "Unused Allowed String List", "Subset Allowed String List",
            "Subset Value List Source", "Allows Any Value", "Available With No Allowed Values",
            "Fallback To Blank Default", "Complete List Required", "Beta Values"}) {
        if (auto const item = at(attribute)) {
          warn(item, std::string(attribute) + " has no effect without allowed values");
        }
      }
    } else if (auto const* list = dynamic_cast<FixedList const*>(def.allowedValues.get())) {
      checkListed(list->items(), def, at("Allowed String List Checks"));
      checkListed(list->items(), def, at("Beta Values"));
    }
    checkBounds(def, at("Lower Bound"), at("Upper Bound"));
    checkDefault(def, at("Default Value"));
    if (auto const item = at("Quantity Type")) checkQuantityType(def, item);
    if (!param.contexts.empty()) checkContext(object, &param, param.contexts, at("Context"));
  }

  /// The keys of a map from allowed values must be allowed values.
  void checkListed(SharedStrings const& items, ParamValueDef const& def, Item const& map) {
    if (!map || map.node->kind != YamlNode::Kind::Mapping || def.allowsAnyValue) return;
    for (std::size_t i = 0; i + 1 < map.node->children.size(); i += 2) {
      auto const* key = map.node->children[i];
      if (!items.contains(key->value)) {
        warn({map.source, key},
             inQuotes(key->value) + " is not among the allowed values" + hints_.orNear(key->value, items));
      }
    }
  }

  void checkBounds(ParamValueDef const& def, Item const& lowerItem, Item const& upperItem) {
    auto const check = [&](TextExpression const* bound, Item const& item) {
      if (bound == nullptr || !item) return;
      if (!TDFParam::isNumericType(def.type)) {
        warn(item, "a bound has no effect on a parameter of type " + std::string(TDFParam::typeName(def.type)));
      } else if (auto const* fixed = dynamic_cast<FixedText const*>(bound)) {
        if (!TDFParam::asQuantity(fixed->text())) warn(item, inQuotes(fixed->text()) + " is no number");
      }
    };
    check(def.lowerBound.get(), lowerItem);
    check(def.upperBound.get(), upperItem);
    auto const* lower = dynamic_cast<FixedText const*>(def.lowerBound.get());
    auto const* upper = dynamic_cast<FixedText const*>(def.upperBound.get());
    if (lower == nullptr || upper == nullptr) return;
    auto const low = TDFParam::asQuantity(lower->text());
    auto const high = TDFParam::asQuantity(upper->text());
    if (low && high && low->units == high->units && low->number > high->number) {
      warn(upperItem, "the upper bound " + upper->text() + " is below the lower bound " + lower->text());
    }
  }

  void checkDefault(ParamValueDef const& def, Item const& item) {
    auto const* fixed = dynamic_cast<FixedText const*>(def.defaultValue.get());
    if (fixed == nullptr || fixed->text().empty()) return;
    auto const values = TDFParam::isListType(def.type) ? StringUtilities::stringToVector(fixed->text(), ',')
                                                       : std::vector<std::string>{fixed->text()};
    auto const* list = def.allowedValueKind == ParamValueDef::FixedAllowedValues
                           ? dynamic_cast<FixedList const*>(def.allowedValues.get())
                           : nullptr;
    for (auto const& value : values) {
      if (list != nullptr && list->items().contains(value) && !def.unusedValues.contains(value)) continue;
      if (list != nullptr && !def.allowsAnyValue) {
        warn(item, "the default " + inQuotes(value) + " is not among the allowed values" +
                       hints_.orNear(value, list->items()));
        continue;
      }
      if (def.allowedValueKind == ParamValueDef::ComputedAllowedValues) continue;
      checkDefaultText(def, item, value);
    }
  }

  void checkDefaultText(ParamValueDef const& def, Item const& item, std::string const& value) {
    auto const element = TDFParam::elementType(def.type);
    if (element == TDFParam::Logical && !TDFParam::asLogical(value)) {
      warn(item, "the default " + inQuotes(value) + " is no logical value");
    }
    if (element != TDFParam::Integer && element != TDFParam::Real) return;
    auto const quantity = TDFParam::asQuantity(value);
    if (!quantity || (element == TDFParam::Integer && quantity->number != std::trunc(quantity->number))) {
      warn(item,
           "the default " + inQuotes(value) + (element == TDFParam::Integer ? " is no whole number" : " is no number"));
      return;
    }
    auto const outside = [&](TextExpression const* bound, bool lower) {
      auto const* fixed = dynamic_cast<FixedText const*>(bound);
      auto const limit = fixed != nullptr ? TDFParam::asQuantity(fixed->text()) : std::nullopt;
      if (!limit || limit->units != quantity->units) return;
      if (lower ? quantity->number < limit->number : quantity->number > limit->number) {
        warn(item, "the default " + inQuotes(value) +
                       (lower ? " is below the lower bound " : " is above the upper bound ") + fixed->text());
      }
    };
    outside(def.lowerBound.get(), true);
    outside(def.upperBound.get(), false);
  }

  void checkQuantityType(ParamValueDef const& def, Item const& item) {
    if (auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get())) {
      if (!data_.quantityTypes().contains(fixed->text())) {
        std::vector<std::string> names;
        for (auto const& entry : data_.quantityTypes()) names.push_back(entry.first);
        warn(item, "there is no quantity type " + inQuotes(fixed->text()) + " under Quantity Types" +
                       hints_.orNear(fixed->text(), names));
      }
    }
    if (def.type != TDFParam::Real) {
      warn(item, "a quantity type has no effect on a parameter of type " + std::string(TDFParam::typeName(def.type)));
    }
  }

  /// `param` is the parameter whose entry has the contexts; null for a child, which comes behind all parameters.
  void checkContext(ObjDependDef const& object, ParamAvail const* param, std::vector<std::string> const& contexts,
                    Item const& item) {
    auto const& positions = positionsOf(object);
    // Of a parameter only the context rules before it count.
    std::size_t const end = param != nullptr ? indexIn(positions.params, param->name) : object.params().size();
    for (auto const& context : contexts) {
      if (context.empty()) continue;
      if (positions.firstContextRule >= end) {
        warn(item, param != nullptr ? "no context rule stands before this parameter, so it is never live"
                                    : "the object has no context rule, so this child is never live");
        return;
      }
      if (positions.firstOpenContextRule < end) continue;
      auto const found = positions.contexts.find(context);
      if (found != positions.contexts.end() && found->second < end) continue;
      warn(item, "no context rule can have the value " + inQuotes(context) + nearContext(object, end, context));
    }
  }

  [[nodiscard]] std::string nearContext(ObjDependDef const& object, std::size_t end, std::string const& context) const {
    std::vector<std::string> values;
    for (std::size_t const position : positionsOf(object).contextRules) {
      if (position >= end) break;
      auto const* def = object.params()[position]->valueDef();
      auto const* list = def != nullptr ? dynamic_cast<FixedList const*>(def->allowedValues.get()) : nullptr;
      if (list == nullptr || !hints_.take(list->items().size())) continue;
      values.insert(values.end(), list->items().begin(), list->items().end());
    }
    return hints_.orNear(context, values);
  }

  RuleIndex const& rules_;
  PhysicsData const& data_;
  TypeTree types_;
  mutable HintBudget hints_;
  mutable std::unordered_map<ObjDependDef const*, Positions> positions_;
  mutable std::unordered_map<std::string, TypePaths> resolved_;
  ScalarWalk walk_;
  DiagnosticList& diagnostics_;
};

}  // namespace

void addWarnings(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics) {
  Linter(rules, data, diagnostics).run();
  warnOfComputedNames(rules, diagnostics);
}

}  // namespace tarn::rules

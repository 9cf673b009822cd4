#include "lint/LintContext.h"

#include <algorithm>
#include <utility>

#include "expression/Nodes.h"
#include "lint/ConstantExpression.h"
#include "lint/EntryLint.h"
#include "loading/RuleBuilder.h"
#include "yaml/MapReader.h"

namespace tarn::rules {

std::size_t EntryPositions::indexIn(std::unordered_map<std::string_view, std::size_t> const& positions,
                                    std::string_view name) {
  auto const found = positions.find(name);
  return found == positions.end() ? positions.size() : found->second;
}

LintContext::LintContext(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics)
    : rules_(rules), data_(data), types_(data), diagnostics_(diagnostics) {}

namespace {

void noteTaken(Diagnostic& warning, Item const& taken) {
  if (taken) DiagnosticList::note(warning, *taken.source, taken.node->range(), "an object takes it here");
}

}  // namespace

Diagnostic& LintContext::warn(Code code, Item const& item, std::string message) {
  ++warningCount_;
  auto& warning = diagnostics_.add(code, *item.source, item.node->range(), std::move(message));
  noteTaken(warning, taken_);
  return warning;
}

Diagnostic& LintContext::warn(Code code, ExpressionUse const& use, Range range, std::string message,
                              std::optional<Replacement> const& fix) {
  if (code == Code::ImpossibleValue || code == Code::ComparedAsWritten || code == Code::DivisionByZero ||
      code == Code::NotLogical) {
    faults_[use.item.node].push_back(range);
  }
  std::size_t const offset = use.skipped + range.offset;
  SourceRange const place = rangeInScalar(*use.item.source, *use.item.node, offset, range.length, &walk_);
  ++warningCount_;
  auto& warning = diagnostics_.add(code, *use.item.source, place, std::move(message));
  noteTaken(warning, use.taken);
  if (fix) RuleBuilder::fixExpression(warning, use.item, use.skipped, *fix, &fixWalk_);
  return warning;
}

Diagnostic& LintContext::warnWithUse(Code code, Item const& item, std::string message, ExpressionUse const& use,
                                     Range range) {
  ++warningCount_;
  auto& warning = diagnostics_.add(code, *item.source, item.node->range(), std::move(message));
  SourceRange const place =
      rangeInScalar(*use.item.source, *use.item.node, use.skipped + range.offset, range.length, &walk_);
  DiagnosticList::note(warning, *use.item.source, place, "it is used here");
  noteTaken(warning, use.taken);
  return warning;
}

bool LintContext::hasFaultInside(ExpressionUse const& use, Range range) const {
  auto const faults = faults_.find(use.item.node);
  if (faults == faults_.end()) return false;
  return std::any_of(faults->second.begin(), faults->second.end(), [&](Range const& fault) {
    return range.offset <= fault.offset && fault.offset + fault.length <= range.offset + range.length;
  });
}

bool LintContext::hasFault(NamedRule const& rule) const {
  auto const place = rules_.namedPlaces().find(&rule);
  return place != rules_.namedPlaces().end() && faults_.contains(place->second.body.node);
}

void LintContext::fixText(Diagnostic& warning, Item const& item, std::string_view text, std::string_view replacement) {
  if (replacement.empty()) return;
  if (item.node->kind == YamlNode::Kind::Sequence) {
    // Many slips in a long list would each search all of it.
    constexpr std::size_t longestSearch = 100;
    if (item.node->children.size() > longestSearch) return;
    for (auto const* child : item.node->children) {
      if (child->kind == YamlNode::Kind::Scalar && child->value == text) {
        fixText(warning, {item.source, child}, text, replacement);
        return;
      }
    }
  } else if (item.node->kind == YamlNode::Kind::Scalar && item.node->value == text) {
    MapReader::fixText(warning, item, replacement);
  }
}

void SoundConditions::add(ExpressionUse const& use) {
  if (use.role != Role::Condition || use.named != nullptr || use.objectName == nullptr) return;
  if (use.objectName != object_) {
    object_ = use.objectName;
    sound_.clear();
  }
  sound_.insert(use.compiled.get());
}

LintContext::TypePaths LintContext::resolve(ExpressionUse const& use, PathPattern const& pattern) {
  if (use.named == nullptr && !pattern.isAbsolute()) {
    bool const isOwn = pattern.steps().empty() && pattern.start() != PathPattern::Start::Nearest;
    if (!isOwn) return std::make_shared<std::set<std::string> const>(types_.resolve(pattern, use.typePath()));
    if (!own_ || *own_->begin() != use.typePath()) {
      own_ = std::make_shared<std::set<std::string> const>(std::set<std::string>{use.typePath()});
    }
    return own_;
  }
  auto& kept = resolved_[pattern.text()];
  if (kept) return kept;
  std::set<std::string> all;
  if (pattern.isAbsolute()) {
    all = types_.resolve(pattern, {});
  } else {
    for (auto const* owner : types_.ownersOf(pattern)) all.merge(types_.resolve(pattern, *owner));
  }
  kept = std::make_shared<std::set<std::string> const>(std::move(all));
  return kept;
}

std::vector<ObjDependDef const*> const& LintContext::objectsWith(std::string const& parameter) {
  if (objectsWith_.empty()) {
    for (auto const& [typePath, place] : rules_.objectPlaces()) {
      auto const* object = data_.getObjDependDef(typePath, true);
      if (object == nullptr) continue;
      for (auto const& param : object->params()) objectsWith_[param->name].push_back(object);
    }
  }
  static std::vector<ObjDependDef const*> const none;
  auto const found = objectsWith_.find(parameter);
  return found == objectsWith_.end() ? none : found->second;
}

NamedRule const* LintContext::namedRule(std::string const& name) {
  if (namedRules_.empty()) {
    for (auto const& [rule, place] : rules_.namedPlaces()) namedRules_.emplace(rule->name(), rule);
  }
  auto const found = namedRules_.find(name);
  return found == namedRules_.end() ? nullptr : found->second;
}

std::shared_ptr<LintContext::RulesOfParameter const> LintContext::rulesOf(ExpressionUse const& use,
                                                                          PathPattern const& pattern,
                                                                          std::string const& parameter) {
  auto const compute = [&] {
    auto result = std::make_shared<RulesOfParameter>();
    auto const typePaths = resolve(use, pattern);
    auto const add = [&](ParamValueDef const* def) {
      if (def == nullptr) return;
      result->all.push_back(def);
      result->areFree = result->areFree && def->allowedValueKind == ParamValueDef::NoAllowedValues &&
                        def->type == result->all.front()->type;
    };
    // A rule that can be called from every object has very many types.
    constexpr std::size_t fewTypes = 8;
    if (typePaths->size() <= fewTypes) {
      for (auto const& typePath : *typePaths) add(data_.getParamValueDef(typePath, parameter, true));
    } else {
      for (auto const* object : objectsWith(parameter)) {
        if (typePaths->contains(object->typePath())) add(data_.getParamValueDef(object->typePath(), parameter, true));
      }
    }
    return result;
  };
  if (use.named == nullptr && !pattern.isAbsolute()) return compute();
  auto& kept = rulesOf_[pattern.text() + "\n" + parameter];
  if (!kept) kept = compute();
  return kept;
}

namespace {

/// The expression of a computed list; null for any other.
Expression const* listExpressionOf(ListExpression const* values) {
  auto const* computed = dynamic_cast<CompiledList const*>(values);
  if (computed == nullptr) return nullptr;
  Expression const* list = &computed->expression();
  return dynamic_cast<Kept const*>(list) != nullptr ? list->operands().front() : list;
}

}  // namespace

NamedRule const* LintContext::namedValues(ParamValueDef const& def) {
  auto const* call = dynamic_cast<NamedCall const*>(listExpressionOf(def.allowedValues.get()));
  return call != nullptr ? &call->rule() : nullptr;
}

Item LintContext::placeInList(NamedRule const& list, std::string_view text) const {
  auto const place = rules_.namedPlaces().find(&list);
  if (place == rules_.namedPlaces().end()) return {};
  auto const& body = place->second.body;
  if (body.node->kind != YamlNode::Kind::Sequence) return body;
  for (auto const* item : body.node->children) {
    if (item->kind == YamlNode::Kind::Scalar && item->value == text) return {body.source, item};
  }
  return body;
}

void LintContext::setCauseIsList(Diagnostic& warning, NamedRule const& list, std::string_view lacking) {
  auto const place = rules_.namedPlaces().find(&list);
  if (place == rules_.namedPlaces().end()) return;
  auto const& name = place->second.name;
  DiagnosticList::note(warning, *name.source, name.node->range(), "the allowed values are in this list");
  setCause("list " + list.name() + "\n" + std::string(lacking));
}

SharedStrings const* LintContext::writtenValues(ParamValueDef const& def) {
  if (def.allowsAnyValue) return nullptr;
  if (auto const* fixed = dynamic_cast<FixedList const*>(def.allowedValues.get())) return &fixed->items();
  auto const* list = listExpressionOf(def.allowedValues.get());
  if (list == nullptr) return nullptr;
  if (auto const* call = dynamic_cast<NamedCall const*>(list)) list = call->rule().expression();
  if (auto const* written = dynamic_cast<ListLiteral const*>(list)) {
    if (!written->fixedItems().empty()) return &written->fixedItems();
  }
  if (dynamic_cast<FunctionCall const*>(list) == nullptr) return nullptr;
  auto const [known, isNew] = constantLists_.try_emplace(list);
  if (isNew && readsNothing(*list)) {
    auto items = constantList(*list);
    if (!items.empty()) known->second = std::make_unique<SharedStrings>(std::move(items));
  }
  return known->second.get();
}

std::string const* LintContext::impossibleNameIn(NamedRule const& list) {
  auto const [known, isNew] = impossibleNames_.try_emplace(&list, nullptr);
  auto const* items = dynamic_cast<ListLiteral const*>(list.expression());
  if (!isNew || items == nullptr) return known->second;
  for (auto const& item : items->fixedItems()) {
    if (!problemOfName(item, {})) continue;
    known->second = &item;
    break;
  }
  return known->second;
}

EntryPositions const& LintContext::positionsOf(ObjDependDef const& object) {
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
    bool isOpen = list == nullptr || def->allowsAnyValue || object.params()[position]->validationRelaxed ||
                  def->allowedValueKind != ParamValueDef::FixedAllowedValues;
    // An override counts as it is written, allowed or not.
    for (auto const& entry : def->overrideChecks) {
      auto const* text = dynamic_cast<FixedText const*>(entry.value.get());
      isOpen |= text == nullptr;
      if (text != nullptr) positions.contexts.try_emplace(text->text(), position);
    }
    if (isOpen) positions.firstOpenContextRule = std::min(positions.firstOpenContextRule, position);
    if (list == nullptr) continue;
    for (auto const& value : list->items()) positions.contexts.try_emplace(value, position);
  }
  return positions;
}

}  // namespace tarn::rules

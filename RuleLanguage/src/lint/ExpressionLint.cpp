// Checks of single expressions: paths that the rules do not define, and computed names that no object can have.

#include "lint/ExpressionLint.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "expression/Nodes.h"
#include "lint/ConstantExpression.h"
#include "lint/EntryLint.h"
#include "lint/ValueLint.h"

namespace tarn::rules {

namespace {

/// A fix that writes `near` instead of the component `word` of a path in the expression. Nothing when there is no near
/// match, or when the component is not written exactly once as it is meant.
std::optional<Replacement> componentFix(ExpressionUse const& use, Range path, std::string_view word,
                                        std::string_view near) {
  if (near.empty() || near.find_first_of("\\*{}^@/:") != std::string_view::npos) return std::nullopt;
  std::string_view const written = use.text().substr(path.offset, path.length);
  std::size_t const at = written.find(word);
  if (at == std::string_view::npos || written.find(word, at + 1) != std::string_view::npos) return std::nullopt;
  auto const isBoundary = [&](std::size_t i) {
    return std::string_view("{}/: ").find(written[i]) != std::string_view::npos;
  };
  std::size_t const end = at + word.size();
  if (at == 0 || end >= written.size() || !isBoundary(at - 1) || !isBoundary(end)) return std::nullopt;
  return Replacement{
      {path.offset + at, word.size()}, std::string(near), "Replace " + inQuotes(word) + " by " + inQuotes(near)};
}

// A path that the rules do not define

/// A type in a path that leads nowhere, and the type that was probably meant.
struct NearType {
  std::string type;
  std::string near;
  bool isRenamed = false;  // the type had this name before
};

/// The type after '^' that neither the object nor one above it has.
NearType nearAncestor(LintContext& context, ExpressionUse const& use, PathPattern const& pattern) {
  std::vector<std::string> types;
  for (std::string_view path = use.typePath(); !path.empty(); path = PathUtils::parentOf(path)) {
    types.emplace_back(PathUtils::lastType(path));
  }
  // A named rule can be meant for any object.
  if (use.typePath().empty()) {
    if (!context.hints().take(context.types().all().size())) return {};
    for (auto const& entry : context.types().all()) {
      if (!entry.first.empty()) types.emplace_back(PathUtils::lastType(entry.first));
    }
    if (!context.hints().take(types.size())) return {};
  }
  if (std::find(types.begin(), types.end(), pattern.startType()) != types.end()) return {};
  return {pattern.startType(), context.hints().nearest(pattern.startType(), types)};
}

/// The first type of the pattern that leads nowhere.
NearType nearObject(LintContext& context, ExpressionUse const& use, PathPattern const& pattern) {
  if (pattern.start() == PathPattern::Start::Nearest) return nearAncestor(context, use, pattern);
  if (use.named != nullptr && !pattern.isAbsolute()) return {};
  auto const& steps = pattern.steps();
  if (!pattern.isAbsolute() && pattern.start() != PathPattern::Start::Context) return {};
  std::set<std::string> current = {pattern.isAbsolute() ? std::string{} : use.typePath()};
  for (auto const& step : steps) {
    if (step.kind != PathPattern::StepKind::Child && step.kind != PathPattern::StepKind::ChildrenOfType) return {};
    std::set<std::string> next;
    for (auto const& path : current) {
      if (auto child = path + "/" + step.type; context.types().knows(child)) next.insert(std::move(child));
    }
    if (next.empty()) {
      std::vector<std::string> candidates;
      for (auto const& path : current) {
        auto const* object = context.data().getObjDependDef(path, true);
        auto const* child = object != nullptr ? object->findRenamedChild(step.type) : nullptr;
        if (child != nullptr) return {step.type, child->type, true};
        auto const& types = context.types().childTypes(path);
        if (context.hints().take(types.size())) candidates.insert(candidates.end(), types.begin(), types.end());
      }
      return {step.type, context.hints().nearest(step.type, candidates)};
    }
    current = std::move(next);
  }
  return {};
}

/// The paths of an expression that lead nowhere. Paths inside a quantifier begin at its set, without being written so.
/// When the set leads nowhere they do not either, and that is not reported too.
class UnknownPaths {
 public:
  [[nodiscard]] bool isConsequence(ExpressionUse const& use, PathUse const& path) {
    std::string const pattern = path.pattern.text();
    std::string_view const written = use.text().substr(path.range.offset, path.range.length);
    for (auto const& [former, formerWritten] : known_) {
      bool const beginsThere =
          pattern.starts_with(former) && (pattern.size() == former.size() || pattern[former.size()] == '/');
      if (beginsThere && written.find(formerWritten) == std::string_view::npos) return true;
    }
    std::size_t const begin = written.find('{') + 1;
    std::size_t const end = written.rfind('}');
    if (end != std::string_view::npos && begin < end) known_.emplace_back(pattern, written.substr(begin, end - begin));
    return false;
  }

 private:
  std::vector<std::pair<std::string, std::string_view>> known_;  // the pattern, and the path as it is written
};

/// Why a path leads to no object although the rules know all of its types: a step without a name leads only to a
/// singleton, and a step with a name only to an object that can have it. Empty when there is no such step.
std::string whyNoObject(LintContext& context, ExpressionUse const& use, PathPattern const& pattern,
                        bool isOfParameter) {
  if (use.named != nullptr && !pattern.isAbsolute()) return {};
  if (pattern.start() == PathPattern::Start::Nearest) return {};
  std::string path = pattern.isAbsolute() ? std::string{} : use.typePath();
  for (auto const& step : pattern.steps()) {
    if (step.kind == PathPattern::StepKind::Parent) {
      path = PathUtils::parentOf(path);
      continue;
    }
    if (step.kind != PathPattern::StepKind::Child && step.kind != PathPattern::StepKind::ChildrenOfType) return {};
    auto const* parent = context.data().getObjDependDef(path, true);
    auto const* child = parent != nullptr ? parent->findChild(step.type) : nullptr;
    path += "/" + step.type;
    if (child == nullptr || step.kind == PathPattern::StepKind::ChildrenOfType) continue;
    if (step.name.empty() && !child->singleton) {
      std::string_view const own = use.typePath();
      bool const isAround = own.starts_with(path) && (own.size() == path.size() || own[path.size()] == '/');
      // A path to one value cannot name all of them.
      return "objects of type " + inQuotes(step.type) + " have names, so this path leads to none; write " +
             (isAround ? "^" + step.type + " for the one around this object, or " : std::string()) +
             (isOfParameter ? "their name after the ':', or " + step.type + ":* inside values(...) for all of them"
                            : step.type + ":* for all of them, or their name after the ':'");
    }
    if (!step.name.empty() && child->singleton && step.name != step.type) {
      return inQuotes(step.type) + " is a singleton, which has no name, so this path leads to no object; write " +
             step.type;
    }
    auto const* names = dynamic_cast<FixedList const*>(child->allowedNamesSource.get());
    if (!step.name.empty() && !child->singleton && names != nullptr && !names->items().contains(step.name)) {
      auto const near = context.hints().nearest(step.name, names->items());
      return "no object of type " + inQuotes(step.type) + " can have the name " + inQuotes(step.name) +
             orAllowed(near, names->items());
    }
  }
  return {};
}

/// Whether the path of a parameter is written as it is seen from the owner of the rule. A path inside a quantifier is
/// written in a shorter way.
bool isWrittenWhole(ExpressionUse const& use, PathUse const& path) {
  constexpr std::size_t sign = 2;
  std::string_view const written = use.text().substr(path.range.offset, path.range.length);
  return written.size() > sign && written.substr(sign).starts_with(path.pattern.text());
}

/// Another object with the parameter that a path does not find: above the object that owns the rule, or that object
/// itself, when the path is evaluated in another one. As the end of a sentence; empty when there is none.
std::string elsewhere(LintContext& context, ExpressionUse const& use, PathUse const& path) {
  if (use.typePath().empty() || use.named != nullptr || path.pattern.isAbsolute()) return {};
  if (path.parameter.find_first_of("\\*{}^@/:") != std::string::npos) return {};
  bool const isOfOwner = path.pattern.start() == PathPattern::Start::Context && isWrittenWhole(use, path);
  std::string up;
  for (std::string_view type = use.typePath(); !type.empty(); type = PathUtils::parentOf(type)) {
    auto const* object = context.data().getObjDependDef(std::string(type), true);
    if (object != nullptr && object->findParam(path.parameter) != nullptr) {
      return "; " + std::string(type) + " has one: ${" + (isOfOwner ? "" : "@/") + up + path.parameter + "}";
    }
    up += "../";
  }
  return {};
}

/// The way to write a named rule whose name is written as a path. Empty when there is no such rule.
std::string remedyOfNamedRule(LintContext& context, PathUse const& path) {
  if (!path.pattern.steps().empty() || path.pattern.start() != PathPattern::Start::Context) return {};
  auto const* rule = context.namedRule(path.parameter);
  if (rule == nullptr) return {};
  context.setMeant(*rule);
  std::string const function = rule->kind() == Kind::Truth ? "check" : rule->kind() == Kind::List ? "list" : "value";
  return "; there is a " + function + " of that name: " + function + "(" + inQuotes(path.parameter) + ")";
}

/// The remedy for a parameter that none of the objects `named` has. Empty when none is known.
std::string remedyFor(LintContext& context, ExpressionUse const& use, PathUse const& path,
                      std::set<std::string> const& named) {
  for (auto const& typePath : named) {
    auto const* object = context.data().getObjDependDef(typePath, true);
    if (isWrittenWhole(use, path) && object != nullptr && object->findChild(path.parameter) != nullptr) {
      return "; it is a child type, so a path to a value goes on with the name of its parameter";
    }
  }
  if (auto remedy = remedyOfNamedRule(context, path); !remedy.empty()) return remedy;
  auto const dot = path.parameter.find('.');
  bool const hasDots = dot != std::string::npos && dot > 0 && dot + 1 < path.parameter.size() &&
                       path.parameter.find(' ') > dot && path.parameter[dot + 1] != ' ';
  if (hasDots) return "; the parts of a path are divided by '/'";
  return elsewhere(context, use, path);
}

/// The end of a sentence about a relative path that would lead to objects if it began at the root.
std::string absoluteRemedy(LintContext& context, PathPattern const& pattern) {
  bool const isRelative = pattern.start() == PathPattern::Start::Context && !pattern.steps().empty();
  bool const isRoot = isRelative && context.types().knows("/" + pattern.steps().front().type);
  return isRoot && !pattern.steps().front().type.empty() ? "; a path from the root of the model begins with '/'" : "";
}

/// The remedy for a path that leads to no object, as the end of a sentence. Empty when none is known.
std::string remedyForPath(LintContext& context, ExpressionUse const& use, PathUse const& path) {
  auto const& pattern = path.pattern;
  if (auto absolute = absoluteRemedy(context, pattern); !absolute.empty()) return absolute;
  bool const isRelative = pattern.start() == PathPattern::Start::Context && !pattern.steps().empty();
  for (auto const& step : pattern.steps()) {
    if (step.type == ".") return "; a path begins at the object itself, so leave out './'";
    if (step.type.size() > 2 && step.type.find_first_not_of('.') == std::string::npos) {
      return "; each parent is one '..': write ../.. for two";
    }
    if (step.type.find('[') != std::string::npos) return "; an object is chosen by its name: Type:Name";
  }
  if (!isRelative || use.named != nullptr || !isWrittenWhole(use, path)) return {};
  auto const& first = pattern.steps().front().type;
  if (use.typePath().empty()) {
    for (auto const& [root, place] : context.rules().rootPlaces()) {
      auto const* object = context.data().getObjDependDef("/" + root, true);
      if (object == nullptr || object->findChild(first) == nullptr) continue;
      return "; a global check is evaluated at the root of the model: write /" + root + "/" + first;
    }
    return {};
  }
  // A part of one of the objects above.
  std::string up = "../";
  for (std::string_view type = PathUtils::parentOf(use.typePath()); !type.empty(); type = PathUtils::parentOf(type)) {
    auto const* object = context.data().getObjDependDef(std::string(type), true);
    if (object != nullptr && object->findChild(first) != nullptr) {
      return "; " + std::string(type) + " has a child of type " + inQuotes(first) + ": write " + up + first;
    }
    up += "../";
  }
  return {};
}

/// The end of a sentence about a name that is the former one of an entry.
std::string renamedTo(std::string_view former, std::string_view present) {
  return "; " + inQuotes(former) + " is the former name of " + inQuotes(present) + ", so write that";
}

/// A path from the owner in a global check, which has none: that is reported as such.
bool asksForNoOwner(ExpressionUse const& use, PathUse const& path) {
  return use.typePath().empty() && use.named == nullptr && path.pattern.start() == PathPattern::Start::Owner;
}

void checkPaths(LintContext& context, ExpressionUse const& use) {
  UnknownPaths unknown;
  std::vector<PathUse> paths;
  use.compiled->expression->collectPaths(paths, PathPattern());
  for (auto const& path : paths) {
    if (asksForNoOwner(use, path)) continue;
    auto const resolved = context.resolve(use, path.pattern);
    auto const& named = *resolved;
    if (named.empty()) {
      if (unknown.isConsequence(use, path)) continue;
      if (auto const why = whyNoObject(context, use, path.pattern, !path.parameter.empty()); !why.empty()) {
        context.warn(Code::UnknownObjectPath, use, path.range, why);
        continue;
      }
      auto const [type, near, isRenamed] = nearObject(context, use, path.pattern);
      context.warn(Code::UnknownObjectPath, use, path.range,
                   "the rules define no object at this path" + (near.empty() ? remedyForPath(context, use, path)
                                                                : isRenamed  ? renamedTo(type, near)
                                                                             : didYouMean(near)),
                   componentFix(use, path.range, type, near));
      continue;
    }
    if (auto const why = whyNoObject(context, use, path.pattern, !path.parameter.empty()); !why.empty()) {
      if (!unknown.isConsequence(use, path)) context.warn(Code::UnknownObjectPath, use, path.range, why);
      continue;
    }
    if (path.parameter.empty()) continue;
    // A named rule is meant for objects that have rules.
    bool const isAnyObject = use.named != nullptr && !path.pattern.isAbsolute();
    bool known = !context.rulesOf(use, path.pattern, path.parameter)->all.empty();
    if (!isAnyObject) {
      // A child without rules of its own is reported elsewhere. The root has no parameters.
      known = known || std::any_of(named.begin(), named.end(), [&](std::string const& typePath) {
                return !typePath.empty() && context.data().getObjDependDef(typePath, true) == nullptr;
              });
    }
    if (known) continue;
    std::vector<std::string> candidates;
    std::string present;  // when the path has a former name
    for (auto const& typePath : named) {
      auto const* object = context.data().getObjDependDef(typePath, true);
      if (object == nullptr) continue;
      if (auto const* renamed = object->findRenamedParam(path.parameter)) present = renamed->name;
      // The search in very many objects ends with the budget, which counts at least one name in each.
      if (!context.hints().take(object->params().size() + 1)) break;
      for (auto const& param : object->params()) candidates.push_back(param->name);
    }
    std::string const where =
        named.size() == 1 && use.named == nullptr && !named.begin()->empty() ? " of " + *named.begin() : std::string{};
    auto const near = present.empty() ? context.hints().nearest(path.parameter, candidates) : present;
    context.warn(Code::UnknownParameter, use, path.range,
                 "the rules define no parameter " + inQuotes(path.parameter) + where +
                     (!present.empty() ? renamedTo(path.parameter, present)
                      : near.empty()   ? remedyFor(context, use, path, named)
                                       : didYouMean(near)),
                 componentFix(use, path.range, path.parameter, near));
  }
}

// Computed names that no object can have

/// Checks the parts of an expression for names that are written out: the whole text, the items of lists, and the texts
/// that are joined to a name. A part whose text is computed says nothing.
class NameCheck {
 public:
  NameCheck(LintContext& context, ExpressionUse const& use) : context_(context), use_(use) {}

  void checkList(Expression const& list) {
    if (auto const* literal = dynamic_cast<ListLiteral const*>(&list)) {
      for (auto const& item : literal->fixedItems()) checkName(item, list.range());
      for (auto const* item : literal->operands()) checkText(*item);
    } else if (dynamic_cast<Kept const*>(&list) != nullptr) {
      checkList(*list.operands().front());
    } else if (dynamic_cast<Choice const*>(&list) != nullptr) {
      checkList(*list.operands()[1]);
      checkList(*list.operands()[2]);
    } else if (auto const* named = dynamic_cast<NamedCall const*>(&list)) {
      auto const* name = context_.impossibleNameIn(named->rule());
      auto const problem = name != nullptr ? problemOfName(*name, {}) : std::nullopt;
      auto const place = problem ? context_.placeInList(named->rule(), *name) : Item{};
      if (place) context_.warnWithUse(problem->code, place, problem->message, use_, list.range());
    } else if (auto const* call = dynamic_cast<FunctionCall const*>(&list)) {
      auto const arguments = call->operands();
      for (std::size_t i = 0; i < arguments.size() && i < call->function().itemsFrom; ++i) checkList(*arguments[i]);
    }
  }

  void checkText(Expression const& text) {
    if (auto const* literal = dynamic_cast<Literal const*>(&text)) {
      if (literal->kind() == Kind::Text) checkName(literal->rawText(), text.range());
    } else if (dynamic_cast<Kept const*>(&text) != nullptr) {
      checkText(*text.operands().front());
    } else if (dynamic_cast<Choice const*>(&text) != nullptr) {
      checkText(*text.operands()[1]);
      checkText(*text.operands()[2]);
    } else if (dynamic_cast<Arithmetic const*>(&text) != nullptr && text.kind() == Kind::Text) {
      for (auto const* part : text.operands()) {
        auto const* joined = dynamic_cast<Literal const*>(part);
        if (joined == nullptr || joined->rawText().find_first_of("/:") == std::string::npos) continue;
        context_.warn(Code::ImpossibleName, use_, part->range(), "the name of an object cannot contain '/' or ':'");
      }
    }
  }

 private:
  void checkName(std::string const& name, Range range) {
    auto const problem = problemOfName(name, use_.entry());
    if (problem) context_.warn(problem->code, use_, range, problem->message);
  }

  LintContext& context_;
  ExpressionUse const& use_;
};

void checkNames(LintContext& context, ExpressionUse const& use) {
  if (use.kind != EntryKind::Child || (use.attribute != "Allowed Names" && use.attribute != "Default Names")) return;
  NameCheck check(context, use);
  if (use.role == Role::List) check.checkList(*use.compiled->expression);
  if (use.role == Role::Text) check.checkText(*use.compiled->expression);
}

}  // namespace

void checkExpression(LintContext& context, ExpressionUse const& use) {
  checkPaths(context, use);
  checkNames(context, use);
}

}  // namespace tarn::rules

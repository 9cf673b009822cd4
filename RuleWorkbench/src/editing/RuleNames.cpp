#include "editing/RuleNames.h"

#include <algorithm>
#include <iterator>

#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>

namespace tarn::workbench {

namespace {

using Kind = EditorItemKind;

std::vector<DefinitionAt> withName(std::vector<DefinitionAt> const& all, std::string_view name) {
  std::vector<DefinitionAt> found;
  std::copy_if(all.begin(), all.end(), std::back_inserter(found),
               [&](DefinitionAt const& one) { return one.definition->name == name; });
  return found;
}

bool isPath(Reference::Kind kind) {
  return kind == Reference::Kind::Parameter || kind == Reference::Kind::Objects || kind == Reference::Kind::TypeKey ||
         kind == Reference::Kind::ModelPath;
}

/// The path up to the end of a component.
std::string_view upTo(std::string_view path, Span component) {
  return path.substr(0, component.end);
}

}  // namespace

ReadPart const* EditedFile::partAt(std::size_t offset) const noexcept {
  auto const next = std::upper_bound(parts.begin(), parts.end(), offset,
                                     [](std::size_t at, ReadPart const& part) { return at < part.part.span.begin; });
  return next == parts.begin() ? nullptr : &*std::prev(next);
}

void RuleNames::Entries::addParams(std::string_view name, std::vector<DefinitionAt>& found) const {
  constexpr std::size_t fewSearches = 16;
  if (++searches_ <= fewSearches) {
    std::copy_if(params.begin(), params.end(), std::back_inserter(found),
                 [&](DefinitionAt const& one) { return one.definition->name == name; });
    return;
  }
  if (byName_.empty()) {
    byName_.reserve(params.size());
    for (std::size_t i = 0; i < params.size(); ++i) byName_.emplace(params[i].definition->name, i);
  }
  auto const [begin, end] = byName_.equal_range(name);
  for (auto it = begin; it != end; ++it) found.push_back(params[it->second]);
}

RuleNames::RuleNames(EditedFiles const& files) : files_(files) {
  for (auto const& file : files) {
    for (ReadPart const& part : file->parts) add(*file, part);
  }
  makeTree();
}

void RuleNames::add(EditedFile const& file, ReadPart const& part) {
  std::size_t const shift = part.part.span.begin;
  FactOwner const* lastOwner = nullptr;
  Entries* lastEntries = nullptr;
  for (Definition const& definition : part.facts->definitions) {
    DefinitionAt const at{&definition, &file, shift};
    auto& owners = definition.owner.kind == Kind::Template ? templates_ : types_;
    switch (definition.kind) {
      case Kind::ObjectType:
        types_[definition.name].definitions.push_back(at);
        break;
      case Kind::Template:
        templates_[definition.name].definitions.push_back(at);
        break;
      case Kind::Parameter: {
        if (lastOwner == nullptr || *lastOwner != definition.owner) {
          lastOwner = &definition.owner;
          lastEntries = &owners[definition.owner.name];
        }
        lastEntries->params.push_back(at);
        break;
      }
      case Kind::Child:
        owners[definition.owner.name].children.push_back(at);
        break;
      case Kind::ObjectCheck:
      case Kind::Test:
        break;
      default:
        named_[{definition.kind, definition.name}].push_back(at);
        break;
    }
  }
  for (Reference const& use : part.facts->references) {
    FactEntry const& entry = part.facts->entries[use.entry];
    ReferenceAt const at{&use, &entry, &file, shift};
    switch (use.kind) {
      case Reference::Kind::NamedRule:
        calls_[{use.named, use.text}].push_back(at);
        break;
      case Reference::Kind::QuantityType:
        calls_[{Kind::QuantityType, use.text}].push_back(at);
        break;
      case Reference::Kind::Template:
        calls_[{Kind::Template, use.text}].push_back(at);
        if (entry.owner.kind == Kind::Template) {
          templateTakers_[use.text].insert(entry.owner.name);
          templates_[entry.owner.name].uses.push_back(use.text);
        } else {
          takers_[use.text].insert(entry.owner.name);
          types_[entry.owner.name].uses.push_back(use.text);
        }
        break;
      case Reference::Kind::RootType:
        roots_.push_back(at);
        break;
      default:
        break;
    }
  }
}

void RuleNames::makeTree() {
  PhysicsData data;
  for (ReferenceAt const& root : roots_) data.addPertinentRoot(root.reference->text);
  for (auto const& [path, entries] : types_) {
    if (!path.starts_with('/')) continue;
    ObjDependDef& object = data.addObject(path);
    for (DefinitionAt const& child : childrenOf(path)) {
      ChildAvail entry;
      entry.type = child.definition->name;
      (void)object.addChild(std::move(entry));
    }
  }
  tree_ = std::make_unique<TypeTree>(data);
}

std::vector<RuleNames::Entries const*> RuleNames::withTemplates(std::string const& type) const {
  std::vector<Entries const*> result;
  auto const own = types_.find(type);
  if (own == types_.end()) return result;
  result.push_back(&own->second);
  std::set<std::string_view> seen;
  for (std::size_t i = 0; i < result.size(); ++i) {
    for (std::string const& use : result[i]->uses) {
      if (!seen.insert(use).second) continue;
      auto const found = templates_.find(use);
      if (found != templates_.end()) result.push_back(&found->second);
    }
  }
  return result;
}

std::vector<DefinitionAt> RuleNames::paramsOf(std::string const& type) const {
  std::vector<DefinitionAt> result;
  for (Entries const* entries : withTemplates(type)) {
    result.insert(result.end(), entries->params.begin(), entries->params.end());
  }
  return result;
}

std::vector<DefinitionAt> RuleNames::childrenOf(std::string const& type) const {
  std::vector<DefinitionAt> result;
  for (Entries const* entries : withTemplates(type)) {
    result.insert(result.end(), entries->children.begin(), entries->children.end());
  }
  return result;
}

std::vector<DefinitionAt> RuleNames::findParam(std::string const& type, std::string_view name) const {
  std::vector<DefinitionAt> result;
  for (Entries const* entries : withTemplates(type)) {
    entries->addParams(name, result);
  }
  return result;
}

std::vector<DefinitionAt> RuleNames::findChild(std::string const& type, std::string_view name) const {
  return withName(childrenOf(type), name);
}

std::set<std::string> RuleNames::contextsOf(FactOwner const& owner) const {
  if (owner.kind == Kind::Section) return {""};
  if (owner.kind == Kind::ObjectType) return {owner.name};
  if (owner.kind == Kind::Test) return editedTypes(owner.name);
  auto const [known, isNew] = contexts_.try_emplace({owner.kind, owner.name});
  if (isNew) known->second = collectContexts(owner);
  return known->second;
}

std::set<std::string> RuleNames::editedTypes(std::string const& below) const {
  std::set<std::string> result;
  for (ReferenceAt const& root : roots_) result.insert('/' + root.reference->text + below);
  return result;
}

std::set<std::string> RuleNames::viewpointsOf(FactOwner const& owner) const {
  auto contexts = contextsOf(owner);
  if (contexts.empty()) contexts.insert("");
  return contexts;
}

std::set<std::string> RuleNames::collectContexts(FactOwner const& owner) const {
  /// An owner whose rules call, and the objects in whose contexts they do it, as seen from the owner.
  struct Caller {
    FactOwner owner;
    PathPattern context;
  };
  // Circles of calls, and patterns that grow with each call, come to an end here.
  constexpr std::size_t mostCallers = 10'000;
  constexpr std::size_t mostSteps = 50;
  std::set<std::string> result;
  std::set<std::pair<NameKey, std::string>> seen;
  std::vector<Caller> waiting = {{owner, PathPattern()}};
  auto const found = [&](std::string const& type, PathPattern const& context) {
    result.merge(tree_->resolve(context, type));
  };
  while (!waiting.empty() && seen.size() < mostCallers) {
    Caller const next = std::move(waiting.back());
    waiting.pop_back();
    NameKey const key{next.owner.kind, next.owner.name};
    if (!seen.emplace(key, next.context.text()).second) continue;
    switch (next.owner.kind) {
      case Kind::Section:
        found("", next.context);
        break;
      case Kind::ObjectType:
        found(next.owner.name, next.context);
        break;
      case Kind::Test:
        for (std::string const& type : editedTypes(next.owner.name)) found(type, next.context);
        break;
      case Kind::Template:
        if (auto const takers = takers_.find(next.owner.name); takers != takers_.end()) {
          for (std::string const& type : takers->second) found(type, next.context);
        }
        if (auto const takers = templateTakers_.find(next.owner.name); takers != templateTakers_.end()) {
          for (std::string const& taker : takers->second) waiting.push_back({{Kind::Template, taker}, next.context});
        }
        break;
      default: {
        auto const calls = calls_.find(key);
        if (calls == calls_.end()) break;
        for (ReferenceAt const& call : calls->second) {
          ExpressionScope const* const scope = call.reference->scope.get();
          PathPattern context = scope == nullptr ? next.context : next.context.seenFrom(scope->context);
          if (context.steps().size() <= mostSteps) waiting.push_back({call.entry->owner, std::move(context)});
        }
        break;
      }
    }
  }
  return result;
}

std::set<std::string> RuleNames::resolve(std::string_view path, ExpressionScope const* scope,
                                         FactOwner const& owner) const {
  auto const pattern = patternOf(path, scope, nullptr);
  std::set<std::string> result;
  if (!pattern) return result;
  for (std::string const& type : viewpointsOf(owner)) {
    auto types = tree_->resolve(*pattern, type);
    result.merge(types);
  }
  return result;
}

std::set<std::string> RuleNames::resolveOwners(std::string_view path, ExpressionScope const* scope,
                                               FactOwner const& owner) const {
  std::string name;
  auto const pattern = patternOf(path, scope, &name);
  std::set<std::string> result;
  if (!pattern) return result;
  for (std::string const& type : viewpointsOf(owner)) {
    auto types = tree_->resolve(*pattern, type);
    result.merge(types);
  }
  return result;
}

std::vector<DefinitionAt> RuleNames::definitionsOfType(std::string const& type) const {
  std::vector<DefinitionAt> result;
  if (auto const found = types_.find(type); found != types_.end()) result = found->second.definitions;
  std::size_t const slash = type.rfind('/');
  if (slash == std::string::npos) return result;
  auto const children = findChild(type.substr(0, slash), type.substr(slash + 1));
  result.insert(result.end(), children.begin(), children.end());
  return result;
}

Meaning RuleNames::meaningOf(DefinitionAt const& given) const {
  Definition const& definition = *given.definition;
  Meaning meaning;
  meaning.kind = definition.kind;
  meaning.name = definition.name;
  meaning.span = given.nameSpan();
  meaning.isExact = definition.isExact;
  switch (definition.kind) {
    case Kind::Parameter:
      meaning.types = contextsOf(definition.owner);
      meaning.definitions = {given};
      break;
    case Kind::Child:
      meaning.kind = Kind::ObjectType;
      for (std::string const& parent : contextsOf(definition.owner)) {
        std::string const type = parent + '/' + definition.name;
        meaning.types.insert(type);
        auto const found = definitionsOfType(type);
        meaning.definitions.insert(meaning.definitions.end(), found.begin(), found.end());
      }
      break;
    case Kind::ObjectType:
      meaning.types = {definition.name};
      meaning.definitions = definitionsOfType(definition.name);
      break;
    case Kind::Template: {
      auto const found = templates_.find(definition.name);
      if (found != templates_.end()) meaning.definitions = found->second.definitions;
      break;
    }
    case Kind::ObjectCheck:
    case Kind::Test:
      meaning.definitions = {given};
      break;
    default: {
      auto const found = named_.find({definition.kind, definition.name});
      if (found != named_.end()) meaning.definitions = found->second;
      break;
    }
  }
  return meaning;
}

std::string RuleNames::absoluteType(Reference const& use, std::string_view path) const {
  if (path.starts_with('/')) return PathUtils::typePathOf(path);
  std::string below = PathUtils::typePathOf('/' + std::string(path));
  if (use.base == "/") return below;
  if (!use.base.empty()) return PathUtils::typePathOf(use.base) + below;
  // Without the root of a test, its object is of the root type that has such an item.
  std::size_t const slash = below.rfind('/');
  for (std::string const& root : editedTypes("")) {
    std::string const owner = root + below.substr(0, slash);
    std::string const name = below.substr(slash + 1);
    if (!findParam(owner, name).empty() || !findChild(owner, name).empty()) return root + below;
  }
  return below;
}

Meaning RuleNames::meaningOf(ReferenceAt const& at, std::size_t component) const {
  Reference const& use = *at.reference;
  Meaning meaning;
  meaning.name = use.text;
  meaning.span = at.span();
  meaning.isExact = use.isExact;
  auto const named = [&](Kind kind) {
    meaning.kind = kind;
    auto const found = named_.find({kind, use.text});
    if (found != named_.end()) meaning.definitions = found->second;
  };
  auto const ofTypes = [&] {
    meaning.kind = Kind::ObjectType;
    for (std::string const& type : meaning.types) {
      auto const found = definitionsOfType(type);
      meaning.definitions.insert(meaning.definitions.end(), found.begin(), found.end());
    }
  };
  switch (use.kind) {
    case Reference::Kind::NamedRule:
      named(use.named);
      return meaning;
    case Reference::Kind::QuantityType:
      named(Kind::QuantityType);
      return meaning;
    case Reference::Kind::Template: {
      meaning.kind = Kind::Template;
      auto const found = templates_.find(use.text);
      if (found != templates_.end()) meaning.definitions = found->second.definitions;
      return meaning;
    }
    case Reference::Kind::RootType:
      meaning.types = {'/' + use.text};
      ofTypes();
      return meaning;
    default:
      break;
  }
  auto const components = componentsOf(use.text);
  if (components.empty()) return {};
  component = std::min(component, components.size() - 1);
  Span const own = typeSpan(use.text, components[component]);
  meaning.name =
      typeOfComponent(std::string_view(use.text).substr(components[component].begin, components[component].size()));
  if (use.isExact) meaning.span = {at.span().begin + own.begin, at.span().begin + own.end};
  bool const isLast = component + 1 == components.size();
  if (use.kind == Reference::Kind::Parameter && isLast) {
    meaning.kind = Kind::Parameter;
    meaning.types = resolveOwners(use.text, use.scope.get(), at.entry->owner);
  } else if (use.kind == Reference::Kind::TypeKey || use.kind == Reference::Kind::ModelPath) {
    std::string const type = absoluteType(use, upTo(use.text, components[component]));
    std::size_t const slash = type.rfind('/');
    bool const isParam = use.kind == Reference::Kind::ModelPath && isLast && slash != std::string::npos &&
                         !findParam(type.substr(0, slash), type.substr(slash + 1)).empty();
    if (isParam) {
      meaning.kind = Kind::Parameter;
      meaning.types = {type.substr(0, slash)};
    } else {
      meaning.types = {type};
    }
  } else {
    meaning.types = resolve(upTo(use.text, components[component]), use.scope.get(), at.entry->owner);
  }
  if (meaning.kind != Kind::Parameter) {
    ofTypes();
    return meaning;
  }
  for (std::string const& type : meaning.types) {
    auto const found = findParam(type, meaning.name);
    for (DefinitionAt const& one : found) {
      bool const isKnown = std::any_of(meaning.definitions.begin(), meaning.definitions.end(),
                                       [&](DefinitionAt const& known) { return known.definition == one.definition; });
      if (!isKnown) meaning.definitions.push_back(one);
    }
  }
  return meaning;
}

std::optional<Meaning> RuleNames::meaningAt(EditedFile const& file, std::size_t offset) const {
  // The cursor may be after the last character of a name, which may end a part.
  for (std::size_t const at : {offset, offset > 0 ? offset - 1 : 0}) {
    ReadPart const* const part = file.partAt(at);
    if (part == nullptr) continue;
    std::size_t const shift = part->part.span.begin;
    if (offset < shift) continue;
    std::size_t const own = offset - shift;
    for (Reference const& use : part->facts->references) {
      if (!use.span.touches(own)) continue;
      ReferenceAt const found{&use, &part->facts->entries[use.entry], &file, shift};
      if (!isPath(use.kind)) return meaningOf(found);
      if (!use.isExact) return meaningOf(found);
      auto const components = componentsOf(use.text);
      for (std::size_t i = 0; i < components.size(); ++i) {
        if (!components[i].touches(own - use.span.begin)) continue;
        Meaning meaning = meaningOf(found, i);
        if (meaning.name.empty() || !meaning.span.touches(offset)) return std::nullopt;
        return meaning;
      }
      return std::nullopt;
    }
    for (Definition const& definition : part->facts->definitions) {
      if (definition.nameSpan.touches(own)) return meaningOf(DefinitionAt{&definition, &file, shift});
    }
  }
  return std::nullopt;
}

RuleNames::Names const& RuleNames::byName() const {
  if (byName_) return *byName_;
  Names& names = byName_.emplace();
  for (auto const& file : files_) {
    for (ReadPart const& part : file->parts) {
      for (Reference const& use : part.facts->references) {
        if (!isPath(use.kind)) continue;
        ReferenceAt const at{&use, &part.facts->entries[use.entry], file.get(), part.part.span.begin};
        std::set<std::string> own;
        for (Span const& component : componentsOf(use.text)) {
          own.insert(typeOfComponent(std::string_view(use.text).substr(component.begin, component.size())));
        }
        for (std::string const& name : own) names[name].push_back(at);
      }
    }
  }
  return names;
}

void RuleNames::addUses(ReferenceAt const& use, Meaning const& meaning, std::vector<Use>& result) const {
  auto const components = componentsOf(use.reference->text);
  for (std::size_t i = 0; i < components.size(); ++i) {
    auto const text = std::string_view(use.reference->text).substr(components[i].begin, components[i].size());
    if (typeOfComponent(text) != meaning.name) continue;
    Meaning const own = meaningOf(use, i);
    if (own.kind != meaning.kind) continue;
    bool isUse = false;
    bool isShared = false;
    if (meaning.kind == Kind::Parameter) {
      for (DefinitionAt const& one : own.definitions) {
        bool const isSame = std::any_of(meaning.definitions.begin(), meaning.definitions.end(),
                                        [&](DefinitionAt const& other) { return other.definition == one.definition; });
        isUse = isUse || isSame;
        isShared = isShared || !isSame;
      }
    } else {
      for (std::string const& type : own.types) {
        bool const isSame = meaning.types.contains(type);
        isUse = isUse || isSame;
        isShared = isShared || !isSame;
      }
    }
    if (isUse) result.push_back({use, own.span, own.isExact, isShared});
  }
}

std::vector<RuleNames::Use> RuleNames::usesOf(Meaning const& meaning) const {
  std::vector<Use> result;
  if (meaning.kind == Kind::Parameter || meaning.kind == Kind::ObjectType) {
    // An object type is used under its last component.
    Meaning searched = meaning;
    if (meaning.kind == Kind::ObjectType && !meaning.types.empty()) {
      std::string const& type = *meaning.types.begin();
      searched.name = type.substr(type.rfind('/') + 1);
      for (ReferenceAt const& root : roots_) {
        if (meaning.types.contains('/' + root.reference->text)) {
          result.push_back({root, root.span(), root.reference->isExact, false});
        }
      }
    }
    auto const found = byName().find(searched.name);
    if (found != byName().end()) {
      for (ReferenceAt const& use : found->second) addUses(use, searched, result);
    }
    return result;
  }
  auto const found = calls_.find({meaning.kind, meaning.name});
  if (found == calls_.end()) return result;
  result.reserve(found->second.size());
  for (ReferenceAt const& use : found->second) result.push_back({use, use.span(), use.reference->isExact, false});
  return result;
}

std::vector<ReferenceAt> RuleNames::usesIn(EditedFile const& file, Span span) const {
  std::vector<ReferenceAt> result;
  for (ReadPart const& part : file.parts) {
    if (part.part.span.end < span.begin || part.part.span.begin > span.end) continue;
    for (Reference const& use : part.facts->references) {
      ReferenceAt const at{&use, &part.facts->entries[use.entry], &file, part.part.span.begin};
      if (at.span().begin >= span.begin && at.span().end <= span.end) result.push_back(at);
    }
  }
  return result;
}

}  // namespace tarn::workbench

// The rules say of each expression what it may read. Following these reads from the item gives a set of entries that is
// closed: outside of it, nothing can change the item. Reads of a parameter of the same object are followed exactly, all
// others by the name of the parameter, which may take in too much and never too little.

#include "why/RelevantEdits.h"

#include <algorithm>

#include <tarn/PathUtils.h>
#include <tarn/RuleExpressions.h>
#include <tarn/StringUtilities.h>

#include "session/RuleReaders.h"
#include "why/Choices.h"

namespace tarn::session {

namespace {

/// So many objects of one entry are edited, and so many are removed or copied.
constexpr std::size_t mostObjects = 20;
constexpr std::size_t mostRemoved = 8;
constexpr std::size_t mostCopied = 3;

}  // namespace

RelevantEdits::RelevantEdits(PhysicsData const& rules, Item const& item) : rules_(rules) {
  for (ObjDependDef const* object : rules.objects()) {
    for (auto const& param : object->params()) paramsByName_[param->name].push_back({object, param.get()});
    for (std::size_t i = 0; i < object->children().size(); ++i) {
      childrenByType_[object->children()[i]->type].push_back({object, i});
    }
  }
  std::string const holder = item.isParam() ? item.path : std::string(PathUtils::parentOf(item.path));
  ObjDependDef const* const object = rules.getObjDependDef(PathUtils::typePathOf(holder), false);
  if (object == nullptr) return;
  if (item.isParam()) {
    for (auto const& param : object->params()) {
      if (param->name == *item.name) add(ParamEntry{object, param.get()});
    }
  } else {
    std::size_t const place = object->placeOfChild(PathUtils::lastType(item.path));
    if (place != ObjDependDef::noPlace) add(ChildEntry{object, place});
  }
  for (std::size_t param = 0, child = 0; param < params_.size() || child < children_.size();) {
    // Both lists grow meanwhile.
    if (param < params_.size()) addReadsOf(ParamEntry(params_[param++]));
    if (child < children_.size()) addReadsOf(ChildEntry(children_[child++]));
  }
}

void RelevantEdits::add(ParamEntry entry) {
  if (knownParams_.insert(entry).second) params_.push_back(entry);
}

void RelevantEdits::add(ChildEntry entry) {
  if (knownChildren_.insert(entry).second) children_.push_back(entry);
}

void RelevantEdits::addReadsOf(ParamEntry entry) {
  RuleReads reads;
  collectReads(entry.entry->available.get(), reads);
  if (ParamValueDef const* const value = entry.entry->valueDef()) collectReads(*value, reads);
  addReads(*entry.object, reads);
  if (!entry.entry->contexts.empty()) addSelectors(*entry.object);
  addOwners(*entry.object);
}

void RelevantEdits::addReadsOf(ChildEntry entry) {
  ChildAvail const& child = *entry.parent->children()[entry.place];
  RuleReads reads;
  collectReads(child.available.get(), reads);
  collectReads(child.allowedNamesSource.get(), reads);
  collectReads(child.defaultNamesSource.get(), reads);
  addReads(*entry.parent, reads);
  if (!child.contexts.empty()) addSelectors(*entry.parent);
  addOwners(*entry.parent);
}

void RelevantEdits::addReads(ObjDependDef const& owner, RuleReads const& reads) {
  if (reads.unknown) addEverything();
  for (RuleReads::Parameter const& read : reads.parameters) {
    bool const isOwn = RuleReaders::namesOwnObject(read.objects);
    auto const found = paramsByName_.find(read.name);
    if (found != paramsByName_.end()) {
      for (ParamEntry const& entry : found->second) {
        if (!isOwn || entry.object == &owner) add(entry);
      }
    }
    if (!isOwn) addTypesOf(read.objects);
  }
  for (PathPattern const& pattern : reads.objectSets) addTypesOf(pattern);
}

void RelevantEdits::addTypesOf(PathPattern const& pattern) {
  if (!pattern.startType().empty()) addType(pattern.startType());
  for (PathPattern::Step const& step : pattern.steps()) {
    switch (step.kind) {
      case PathPattern::StepKind::Child:
      case PathPattern::StepKind::ChildrenOfType:
        addType(step.type);
        break;
      case PathPattern::StepKind::AnyChild:
      case PathPattern::StepKind::AnyDepth:
        for (auto const& [type, entries] : childrenByType_) {
          if (!entries.empty()) addType(std::string(type));
        }
        break;
      case PathPattern::StepKind::Parent:
        break;
    }
  }
}

void RelevantEdits::addType(std::string const& type) {
  auto const found = childrenByType_.find(type);
  if (found == childrenByType_.end()) return;
  for (ChildEntry const& entry : found->second) add(entry);
}

/// An item exists only while the objects above it do.
void RelevantEdits::addOwners(ObjDependDef const& object) {
  std::string const& typePath = object.typePath();
  std::string const parent(PathUtils::parentOf(typePath));
  ObjDependDef const* const above = typePath.empty() ? nullptr : rules_.getObjDependDef(parent, false);
  if (above == nullptr) return;
  std::size_t const place = above->placeOfChild(PathUtils::lastType(typePath));
  if (place != ObjDependDef::noPlace) add(ChildEntry{above, place});
}

/// The parameters whose values decide which entries of the object count.
void RelevantEdits::addSelectors(ObjDependDef const& object) {
  for (auto const& param : object.params()) {
    if (param->contextRule) add(ParamEntry{&object, param.get()});
  }
}

void RelevantEdits::addEverything() {
  if (hasEverything_) return;
  hasEverything_ = true;
  for (ObjDependDef const* object : rules_.objects()) {
    for (auto const& param : object->params()) add(ParamEntry{object, param.get()});
    for (std::size_t i = 0; i < object->children().size(); ++i) add(ChildEntry{object, i});
  }
}

std::vector<Edit> RelevantEdits::in(RuledState const& state,
                                    std::function<std::set<std::string> const*(Item const&)> const& valuesOf,
                                    std::size_t most, bool& isCutOff) const {
  Choices const choices(state);
  std::string const root = state.state().getActiveRoot();
  std::vector<Edit> edits;
  auto const objectsOf = [&](ObjDependDef const& object) {
    std::vector<std::string> objects = state.presentObjects(object.typePath());
    std::erase_if(objects, [&](std::string const& path) { return !StringUtilities::isPathRootedAt(root, path); });
    if (objects.size() > mostObjects) isCutOff = true;
    objects.resize(std::min(objects.size(), mostObjects));
    return objects;
  };
  for (ChildEntry const& child : children_) {
    ChildAvail const& entry = *child.parent->children()[child.place];
    if (edits.size() > most) break;
    if (RuledState::isMirrored(entry)) continue;
    for (std::string const& parent : objectsOf(*child.parent)) {
      std::string const path = parent + '/' + entry.type;
      if (entry.singleton) {
        edits.push_back(state.hasObject(path) ? Edit::deactivateObject(path) : Edit::activateObject(path));
        continue;
      }
      std::vector<std::string> const present = choices.namedChildren(parent, entry.type);
      if (auto const names = state.allowedNames({child.parent, &entry, child.place}, parent)) {
        for (std::string const& name : *names) {
          std::string const named = path + ':' + name;
          edits.push_back(state.hasObject(named) ? Edit::deactivateObject(named) : Edit::activateObject(named));
        }
        continue;
      }
      std::string const name = choices.freeName(parent, entry.type);
      edits.push_back(Edit::addObject(path + ':' + name));
      for (std::size_t i = 0; i < std::min(present.size(), mostRemoved); ++i) {
        edits.push_back(Edit::removeObject(present[i]));
      }
      for (std::size_t i = 0; i < std::min(present.size(), mostCopied); ++i) {
        edits.push_back(Edit::duplicateObject(present[i], name));
      }
    }
  }
  for (ParamEntry const& param : params_) {
    ParamAvail const& entry = *param.entry;
    if (edits.size() > most) break;
    for (std::string const& path : objectsOf(*param.object)) {
      Item const item{path, entry.name};
      for (std::string& value : choices.otherValues(item)) {
        edits.push_back(Edit::setParam(path, entry.name, std::move(value)));
      }
      if (std::set<std::string> const* const further = valuesOf(item)) {
        for (std::string const& value : *further) edits.push_back(Edit::setParam(path, entry.name, value));
      }
      bool const isOff = !state.state().getParamDecision(path, entry.name).value_or(true);
      if (state.value(path, entry.name) == nullptr || isOff) edits.push_back(Edit::activateParam(path, entry.name));
      if (!isOff && (!entry.required || state.askedValue(path, entry.name) != nullptr)) {
        edits.push_back(Edit::deactivateParam(path, entry.name));
      }
    }
  }
  if (edits.size() > most) {
    isCutOff = true;
    edits.resize(most);
  }
  return edits;
}

}  // namespace tarn::session

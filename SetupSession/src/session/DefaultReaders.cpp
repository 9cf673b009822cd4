#include "session/DefaultReaders.h"

#include <utility>

#include <tarn/PathPattern.h>
#include <tarn/PathUtils.h>
#include <tarn/RuleReads.h>

namespace tarn::session {

namespace {

RuleReads readsOfDefault(ParamValueDef const& value) {
  RuleReads reads;
  if (value.defaultValue) value.defaultValue->collectReads(reads);
  for (ParamValueDef::GuardedText const& check : value.defaultChecks) {
    if (check.when) check.when->collectReads(reads);
    if (check.value) check.value->collectReads(reads);
  }
  return reads;
}

bool namesOwnObject(PathPattern const& pattern) {
  bool const startsThere =
      pattern.start() == PathPattern::Start::Context || pattern.start() == PathPattern::Start::Owner;
  return startsThere && pattern.steps().empty();
}

// The present objects of a type path.
std::vector<std::string> objectsOfType(DynamicTDF const& tree, std::string_view typePath) {
  std::vector<std::string> objects = {std::string()};
  while (!typePath.empty() && !objects.empty()) {
    std::string_view::size_type const end = typePath.find('/', 1);
    std::string const type(typePath.substr(1, end == std::string_view::npos ? end : end - 1));
    std::vector<std::string> next;
    for (std::string const& object : objects) {
      std::vector<std::string> children;
      if (tree.getChildObjectPathsByType(object, type, children)) {
        next.insert(next.end(), children.begin(), children.end());
      }
    }
    objects = std::move(next);
    typePath = end == std::string_view::npos ? std::string_view() : typePath.substr(end);
  }
  return objects;
}

}  // namespace

DefaultReaders::DefaultReaders(PhysicsData const& rules) {
  for (ObjDependDef const* object : rules.objects()) {
    for (auto const& entry : object->params()) {
      ParamValueDef const* const value = entry->valueDef();
      if (value == nullptr || !value->hasDefault()) continue;
      RuleReads const reads = readsOfDefault(*value);
      if (!reads.readsModel()) continue;
      std::size_t const reader = readers_.size();
      readers_.push_back({object, &entry->name});
      if (reads.unknown) {
        unknown_.push_back(reader);
        continue;
      }
      if (!reads.objectSets.empty()) ofObjects_.push_back(reader);
      for (RuleReads::Parameter const& read : reads.parameters) {
        ByName& readers = byName_[read.name];
        (namesOwnObject(read.objects) ? readers.own : readers.any).push_back(reader);
        // Parameters of several objects also come and go with them.
        if (!read.objects.isSingle()) ofObjects_.push_back(reader);
      }
    }
  }
}

void DefaultReaders::Search::paramChanged(std::string const& path, std::string const& name, std::vector<Item>& found) {
  auto const readers = readers_.byName_.find(name);
  if (readers == readers_.byName_.end()) return;
  if (!readers->second.own.empty()) {
    std::string const typePath = PathUtils::typePathOf(path);
    for (std::size_t const reader : readers->second.own) {
      if (readers_.readers_[reader].object->typePath() == typePath)
        found.push_back({path, *readers_.readers_[reader].name});
    }
  }
  addAll(readers->second.any, found);
}

void DefaultReaders::Search::objectsChanged(std::vector<Item>& found) {
  addAll(readers_.ofObjects_, found);
}

void DefaultReaders::Search::anythingChanged(std::vector<Item>& found) {
  addAll(readers_.unknown_, found);
}

void DefaultReaders::Search::addAll(std::vector<std::size_t> const& readers, std::vector<Item>& found) {
  for (std::size_t const reader : readers) {
    if (!done_.insert(reader).second) continue;
    Reader const& read = readers_.readers_[reader];
    for (std::string& object : objectsOfType(state_.getActiveTree(), read.object->typePath())) {
      found.push_back({std::move(object), *read.name});
    }
  }
}

}  // namespace tarn::session

#include "session/RuleReaders.h"

#include <utility>

#include <tarn/PathPattern.h>
#include <tarn/PathUtils.h>
#include <tarn/RuleExpressions.h>

namespace tarn::session {

namespace {

void collect(RuleExpression const* expression, RuleReads& reads) {
  if (expression != nullptr) expression->collectReads(reads);
}

void collect(std::vector<ParamValueDef::GuardedText> const& texts, RuleReads& reads) {
  for (ParamValueDef::GuardedText const& text : texts) {
    collect(text.when.get(), reads);
    collect(text.value.get(), reads);
  }
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

RuleReaders::RuleReaders(PhysicsData const& rules) {
  for (ObjDependDef const* object : rules.objects()) {
    for (auto const& param : object->params()) {
      ParamValueDef const* const value = param->valueDef();
      if (value == nullptr) continue;
      auto const addPart = [&](Part part, auto const&... expressions) {
        RuleReads reads;
        (collect(expressions, reads), ...);
        if (reads.readsModel()) add({object, &param->name, part}, reads);
      };
      addPart(Part::Default, value->defaultValue.get(), value->defaultChecks);
      addPart(Part::Bounds, value->lowerBound.get(), value->upperBound.get());
      addPart(Part::Quantity, value->quantityType.get());
      addPart(Part::Override, value->overrideChecks);
    }
  }
}

void RuleReaders::add(Entry entry, RuleReads const& reads) {
  std::size_t const index = entries_.size();
  entries_.push_back(entry);
  if (reads.unknown) {
    unknown_.push_back(index);
    return;
  }
  if (!reads.objectSets.empty()) ofObjects_.push_back(index);
  for (RuleReads::Parameter const& read : reads.parameters) {
    ByName& readers = byName_[read.name];
    (namesOwnObject(read.objects) ? readers.own : readers.any).push_back(index);
    // Parameters of several objects also come and go with them.
    if (!read.objects.isSingle()) ofObjects_.push_back(index);
  }
}

void RuleReaders::Search::paramChanged(std::string const& path, std::string const& name, std::vector<Reader>& found) {
  auto const readers = readers_.byName_.find(name);
  if (readers == readers_.byName_.end()) return;
  if (!readers->second.own.empty()) {
    std::string const typePath = PathUtils::typePathOf(path);
    for (std::size_t const index : readers->second.own) {
      Entry const& entry = readers_.entries_[index];
      if (entry.object->typePath() == typePath) found.push_back({{path, *entry.name}, entry.part});
    }
  }
  addAll(readers->second.any, found);
}

void RuleReaders::Search::objectsChanged(std::vector<Reader>& found) {
  addAll(readers_.ofObjects_, found);
}

void RuleReaders::Search::anythingChanged(std::vector<Reader>& found) {
  addAll(readers_.unknown_, found);
}

void RuleReaders::Search::addAll(std::vector<std::size_t> const& entries, std::vector<Reader>& found) {
  for (std::size_t const index : entries) {
    if (!done_.insert(index).second) continue;
    Entry const& entry = readers_.entries_[index];
    for (std::string& object : objectsOfType(state_.getActiveTree(), entry.object->typePath())) {
      found.push_back({{std::move(object), *entry.name}, entry.part});
    }
  }
}

}  // namespace tarn::session

#include "session/RuleReaders.h"

#include <utility>

#include <tarn/PathPattern.h>
#include <tarn/PathUtils.h>
#include <tarn/RuleExpressions.h>

namespace tarn::session {

namespace {

void collectReads(std::vector<ParamValueDef::GuardedText> const& texts, RuleReads& reads) {
  for (ParamValueDef::GuardedText const& text : texts) {
    session::collectReads(text.when.get(), reads);
    session::collectReads(text.value.get(), reads);
  }
}

}  // namespace

void collectReads(RuleExpression const* expression, RuleReads& reads) {
  if (expression != nullptr) expression->collectReads(reads);
}

void collectReads(ParamValueDef const& value, RuleReads& reads) {
  collectReads(value.allowedValues.get(), reads);
  for (auto const& [text, check] : value.allowedValueChecks) collectReads(check.get(), reads);
  collectReads(value.subset.get(), reads);
  collectReads(value.defaultValue.get(), reads);
  collectReads(value.defaultChecks, reads);
  collectReads(value.overrideChecks, reads);
}

bool RuleReaders::namesOwnObject(PathPattern const& pattern) noexcept {
  bool const startsThere =
      pattern.start() == PathPattern::Start::Context || pattern.start() == PathPattern::Start::Owner;
  return startsThere && pattern.steps().empty();
}

RuleReaders::RuleReaders(PhysicsData const& rules) {
  for (ObjDependDef const* object : rules.objects()) {
    for (auto const& param : object->params()) {
      ParamValueDef const* const value = param->valueDef();
      if (value == nullptr) continue;
      auto const addPart = [&](Part part, auto const&... expressions) {
        RuleReads reads;
        (collectReads(expressions, reads), ...);
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
    for (std::string& object : state_.presentObjects(entry.object->typePath())) {
      found.push_back({{std::move(object), *entry.name}, entry.part});
    }
  }
}

}  // namespace tarn::session

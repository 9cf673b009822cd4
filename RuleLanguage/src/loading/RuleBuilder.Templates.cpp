// Templates: named groups of parameters, children and checks that objects take by `Use`.
//
// Each template is first read by itself, so its mistakes are reported once and where they are, also when nothing uses
// it. An object that uses the template reads its entries again, as if they were written in the object. Then only the
// object can be at fault: it has such an entry already. The chains of templates that use each other are checked before
// any object takes them. So taking may recurse, and its depth has a limit.

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "diagnostics/NearMatch.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

namespace {

constexpr std::array<EntryKind, 3> entryKinds = {EntryKind::Parameter, EntryKind::Child, EntryKind::Check};

}  // namespace

void RuleBuilder::registerTemplates(File const& file) {
  auto const found = file.sections.find("Templates");
  if (found == file.sections.end()) return;
  forEach({file.source, found->second}, "Templates", [&](Item const& name, Item const& body) {
    if (!isName(name, "a name")) return;
    auto const [former, isNew] = templates_.try_emplace(name.node->value);
    if (!isNew) {
      twice(Code::DuplicateName, name, former->second.name, inQuotes(name.node->value) + " is given twice");
      return;
    }
    former->second.name = name;
    former->second.body = body;
  });
}

void RuleBuilder::readTemplates() {
  for (auto const& file : files_) registerTemplates(file);
  bool const keptPlaces = std::exchange(keepPlaces_, false);
  for (auto& [name, one] : templates_) {
    std::size_t const errorsBefore = diagnostics_.errorCount();
    readTemplate_ = &one;
    readEntries(templateEntries_.addObject("/" + name), one.name, one.body, "a template", std::nullopt);
    one.isWrong = diagnostics_.errorCount() != errorsBefore;
  }
  readTemplate_ = nullptr;
  keepPlaces_ = keptPlaces;
  checkChainsOfTemplates();
}

void RuleBuilder::checkChainsOfTemplates() {
  enum class State { New, Open, Done };
  std::unordered_map<Template const*, State> states;
  struct Step {
    Template* one;
    std::size_t next = 0;
  };
  std::vector<Step> stack;
  for (auto& entry : templates_) {
    if (states[&entry.second] != State::New) continue;
    stack.push_back({&entry.second});
    states[&entry.second] = State::Open;
    while (!stack.empty()) {
      auto& step = stack.back();
      auto& one = *step.one;
      if (step.next < one.uses.size()) {
        auto* const used = one.uses[step.next++].first;
        if (states[used] == State::New) {
          states[used] = State::Open;
          stack.push_back({used});
        } else if (states[used] == State::Open) {
          auto const first =
              std::find_if(stack.begin(), stack.end(), [&](Step const& open) { return open.one == used; });
          std::string circle;
          std::size_t shown = 0;
          for (auto open = first; open != stack.end(); ++open, ++shown) {
            if (shown < 10) circle += inQuotes(open->one->name.node->value) + " uses ";
          }
          if (shown >= 10) circle += "... uses ";
          error(Code::CircularCall, one.uses[step.next - 1].second,
                "templates use each other in a circle: " + circle + inQuotes(used->name.node->value));
          one.isWrong = true;
        }
        continue;
      }
      for (auto const& [used, place] : one.uses) {
        one.isWrong |= used->isWrong;
        one.depth = std::max(one.depth, used->depth);
        for (std::size_t kind = 0; kind < one.has.size(); ++kind) one.has[kind] = one.has[kind] || used->has[kind];
      }
      if (++one.depth > limits_.templateDepth) {
        error(Code::LimitExceeded, one.name,
              "templates use each other in a chain of more than " + std::to_string(limits_.templateDepth));
        one.depth = 0;
        one.isWrong = true;
      }
      states[&one] = State::Done;
      stack.pop_back();
    }
  }
}

void RuleBuilder::use(ObjDependDef& object, Item const& names, std::optional<EntryKind> only) {
  (void)texts(names, false);
  if (names.node->kind != YamlNode::Kind::Sequence) return;
  for (auto const* child : names.node->children) {
    Item const name{names.source, child};
    if (child->kind != YamlNode::Kind::Scalar) continue;
    auto const found = templates_.find(child->value);
    if (found == templates_.end()) {
      // The template may be in a part that could not be read.
      if (index_.isIncomplete() || isSectionMisspelled("Templates")) continue;
      auto const near = nearKey(child->value, templates_, named_.hints);
      auto& diagnostic = error(Code::UnknownTemplate, name,
                               "there is no template " + inQuotes(child->value.substr(0, 100)) + orDidYouMean(near));
      if (!near.empty()) fixText(diagnostic, name, near);
      continue;
    }
    auto& used = found->second;
    ++used.timesUsed;
    if (readTemplate_ != nullptr) {
      readTemplate_->uses.emplace_back(&used, name);
    } else if (!used.isWrong) {
      take(object, used, name, names, only);
    }
  }
}

void RuleBuilder::take(ObjDependDef& object, Template& taken, Item const& name, Item const& list,
                       std::optional<EntryKind> only) {
  Item const former = [&] {
    Item first;
    for (auto const kind : entryKinds) {
      if (only && *only != kind) continue;
      auto const [known, isNew] = takenParts_.try_emplace({object.typePath(), kind, &taken}, name);
      if (!isNew && !first) first = known->second;
    }
    return first;
  }();
  if (former) {
    if (taking_) {
      auto& diagnostic = error(Code::DuplicateName, taking_->use,
                               "this brings the template " + inQuotes(taken.name.node->value) + " a second time");
      DiagnosticList::note(diagnostic, *name.source, name.node->range(), "it is used here");
      DiagnosticList::note(diagnostic, *former.source, former.node->range(), "the first one is here");
    } else {
      twice(Code::DuplicateName, name, former,
            "the object already takes the template " + inQuotes(taken.name.node->value));
    }
    return;
  }
  takenNodes_ += taken.body.node->weight;
  if (takenNodes_ > limits_.templateNodes) {
    if (!std::exchange(tooManyTaken_, true)) {
      error(Code::LimitExceeded, name,
            "the templates that objects use have more than " + std::to_string(limits_.templateNodes) +
                " YAML nodes, counted once for each use");
    }
    return;
  }
  if (taking_) {
    readEntries(object, taken.name, taken.body, "a template", only);
    return;
  }
  if (only) usedInSections_.try_emplace({object.typePath(), &taken}, name);
  taking_.emplace(Taking{&taken, name, only ? list : Item{}});
  readEntries(object, taken.name, taken.body, "a template", only);
  taking_.reset();
}

void RuleBuilder::reportPartsNotTaken() {
  for (auto const& [key, place] : usedInSections_) {
    auto const& [typePath, used] = key;
    std::vector<std::string_view> missing;
    for (auto const kind : entryKinds) {
      bool const isTaken = takenParts_.contains({typePath, kind, used});
      if (used->has[static_cast<std::size_t>(kind)] && !isTaken) missing.push_back(sectionName(kind));
    }
    if (missing.empty()) continue;
    std::string parts(missing.front());
    if (missing.size() > 1) parts += " and " + std::string(missing.back());
    auto& diagnostic = error(Code::TemplateTakenInPart, place,
                             "the template " + inQuotes(used->name.node->value) + " also has " + parts +
                                 ", which the object does not take; use it among its " + parts +
                                 " too, or beside Parameters to take all");
    DiagnosticList::note(diagnostic, *used->name.source, used->name.node->range(), "the template is here");
  }
  if (keepPlaces_) {
    for (auto const& [name, one] : templates_) index_.templates_.push_back({one.name, one.timesUsed});
  }
}

}  // namespace tarn::rules

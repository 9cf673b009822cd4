#include "SessionWorkload.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <tarn/ModelState.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::benchmarks {

namespace {

constexpr std::size_t chain = 11;
constexpr std::size_t parametersOfCell = 2;

void require(bool holds, char const* what) {
  if (!holds) throw std::logic_error(std::string("session: ") + what + "; a measure of it would mean nothing");
}

std::string optionName(std::size_t option) {
  return "Option " + std::to_string(option);
}

std::string rulesWith(std::size_t options) {
  std::string text = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Children:
      System: {Singleton: yes, Required: yes, Coupled: yes}
      Cell: {Coupled: yes}
      Summary: {Singleton: yes, Required: yes, Coupled: yes}
  /Case/Cell:
    Parameters:
      Kind:
        Parameter Type: String
        Required: yes
        Ordered Allowed String List: [Cold, Hot, Warm]
        Default Value: Cold
      Power: {Parameter Type: Real, Required: yes, Default Value: 1}
  /Case/Summary:
    Parameters:
)yaml";
  for (auto const& [name, condition] : {std::pair("Any First", "any({/Case/Cell:*}, ${Kind} == 'Warm')"),
                                        std::pair("Any Last", "any({/Case/Cell:*}, ${Kind} == 'Hot')"),
                                        std::pair("All Last", "all({/Case/Cell:*}, ${Kind} != 'Hot')"),
                                        std::pair("Any None", "any({/Case/Cell:*}, ${Power} == 2)"),
                                        std::pair("All Hold", "all({/Case/Cell:*}, ${Power} == 1)"),
                                        std::pair("Count", "count({/Case/Cell:*}, ${Power} == 1) > 0")}) {
    text += std::string("      ") + name +
            ": {Parameter Type: Logical, Required: yes, Default Value: \"true\", Available: \"" + condition + "\"}\n";
  }
  text += "  /Case/System:\n    Parameters:\n";
  for (std::size_t i = 0; i < options; ++i) {
    text += "      " + optionName(i) + ": {Parameter Type: Logical, Required: yes, Default Value: \"true\"";
    if (i % chain != 0) text += ", Available: \"${" + optionName(i - 1) + "} == true\"";
    text += "}\n";
  }
  return text;
}

/// The first cell is warm and the last is hot.
ModelState modelWith(std::size_t cells) {
  ModelState model;
  for (std::size_t i = 0; i < cells; ++i) {
    std::string const number = std::to_string(i);
    std::string const name = "c" + std::string(6 - std::min<std::size_t>(6, number.size()), '0') + number;
    model["/Case/Cell:" + name] = {{"Kind", i == 0 ? "Warm" : i + 1 == cells ? "Hot" : "Cold"}, {"Power", "1"}};
  }
  return model;
}

}  // namespace

SessionWorkload::SessionWorkload(std::size_t parameters)
    : options_(parameters * 2 / 3 / chain * chain),
      cells_((parameters - options_) / parametersOfCell),
      rules_(rules::parseRules(rulesWith(options_))) {
  require(options_ > 0 && cells_ > 1, "there are too few parameters");
  ModelState const model = modelWith(cells_);
  session_ = session::Session::open(*rules_, model).session;
  require(session_ != nullptr, "it cannot be opened");
  base_.initialise(model.begin(), model.end());
  below_ = std::make_unique<ProvisionalTDF>(rules_.get(), nullptr, "/Case");
  below_->initialise(&base_, {});
}

Edit SessionWorkload::nextEdit(std::size_t number) const {
  std::size_t const option = number / 2 * 7919 % (options_ / chain) * chain;
  return Edit::setParam("/Case/System", optionName(option), number % 2 == 0 ? "false" : "true");
}

std::string SessionWorkload::nextOption() {
  if (session_->steps().size() % 2 != 0) edit();
  return optionName(number_++ * 7919 % options_);
}

void SessionWorkload::edit() {
  require(session_->edit(nextEdit(session_->steps().size())).effect.values.size() == chain,
          "an edit does not change what depends on it");
}

void SessionWorkload::tryEdit() {
  if (session_->steps().size() % 2 != 0) edit();
  require(session_->tryEdit(nextEdit(number_++ * 2)).effect.values.size() == chain,
          "a tried edit does not change what depends on it");
}

void SessionWorkload::undo() {
  auto const undone = session_->undo();
  require(undone && undone->effect.values.size() == chain, "undo does not take back what the edit changed");
}

void SessionWorkload::redo() {
  auto const redone = session_->redo();
  require(redone && redone->effect.values.size() == chain, "redo does not change what the edit changed");
}

void SessionWorkload::look() {
  auto const record = session_->lookParam("/Case/System", nextOption());
  require(record && record->value == "true", "an option has no record");
}

void SessionWorkload::why() {
  session::Proof const proof = session_->why({"/Case/System", nextOption()}, {session::Question::Value, {}, 3});
  session::Fact const fact = proof.answer().fact;
  require(fact == session::Fact::Default || fact == session::Fact::SetByUser, "an option has no proof");
}

std::vector<std::pair<SessionWorkload::Rule, char const*>> const& SessionWorkload::rulesOfAllCells() {
  static std::vector<std::pair<Rule, char const*>> const all = {
      {Rule::AnyFirst, "Any First"}, {Rule::AnyLast, "Any Last"}, {Rule::AllLast, "All Last"},
      {Rule::AnyNone, "Any None"},   {Rule::AllHold, "All Hold"}, {Rule::Count, "Count"}};
  return all;
}

void SessionWorkload::whyOfAllCells(Rule rule) {
  bool const isAvailable = rule != Rule::AllLast && rule != Rule::AnyNone;
  session::Item const item = {"/Case/Summary", rulesOfAllCells()[static_cast<std::size_t>(rule)].second};
  session::Proof const proof = session_->why(item, {session::Question::Presence, {}, 1});
  require(proof.answer().fact == (isAvailable ? session::Fact::Required : session::Fact::NotAvailable) &&
              proof.answer().rules.size() == 1,
          "a rule about all cells has no proof");
}

void SessionWorkload::lookOfAllCells(Rule rule) {
  require(session_->lookParam("/Case/Summary", rulesOfAllCells()[static_cast<std::size_t>(rule)].second).has_value(),
          "a parameter with a rule about all cells has no record");
}

}  // namespace tarn::benchmarks

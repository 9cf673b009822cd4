// The table of child types in the rule reference: every row is found out by making the edits, and compared.

#include <array>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/ProvisionalTDF.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Review.h>
#include <tarn/session/Session.h>

#include "Places.h"
#include "support/FileText.h"

namespace tarn {
namespace {

using session::Session;

/// How a child entry is written, and a path that a child of it can have.
struct ChildEntry {
  std::string attributes;
  std::string child;
};

std::vector<ChildEntry> const entries = {
    {"Singleton: yes, Required: yes", "/Plant/Part"},
    {"Singleton: yes, Required: yes, Coupled: yes", "/Plant/Part"},
    {"Singleton: yes", "/Plant/Part"},
    {"Singleton: yes, Coupled: yes", "/Plant/Part"},
    {"Required: yes", "/Plant/Part:c"},
    {"Required: yes, Coupled: yes", "/Plant/Part:c"},
    {"Required: yes, Default Names: [a]", "/Plant/Part:c"},
    {"Required: yes, Coupled: yes, Default Names: [a]", "/Plant/Part:c"},
    {"{}", "/Plant/Part:c"},
    {"Coupled: yes", "/Plant/Part:c"},
    {"Required: yes, Allowed Names: [a, b]", "/Plant/Part:a"},
    {"Allowed Names: [a, b]", "/Plant/Part:a"},
};

std::unique_ptr<PhysicsData> rulesWith(ChildEntry const& entry) {
  std::string const attributes = entry.attributes == "{}" ? "" : entry.attributes;
  return rules::parseRules(
      "Rule Database: 1\nPertinent Roots: [Plant]\nObjects:\n  /Plant:\n    Children:\n      Part: {" + attributes +
      "}\n  /Plant/Part: {Parameters: {Kind: {Parameter Type: String, Required: yes}}}\n");
}

bool has(Session const& session, std::string const& path) {
  return session.provisional().hasObject(path);
}

/// Whether the edit is applied and afterwards the object is there, or is not, as it should.
bool works(Session& session, Edit const& edit, bool isThere) {
  bool const was = has(session, edit.path);
  return session.edit(edit).applied() && was != isThere && has(session, edit.path) == isThere;
}

std::unique_ptr<Session> opened(PhysicsData const& rules, ModelState const& model) {
  return Session::open(rules, model).session;
}

std::string yesNo(bool yes) {
  return yes ? "yes" : "no";
}

/// Whether the edit brings the child into a new parent, or takes it out of a parent that has it.
bool works(PhysicsData const& rules, ModelState const& model, Edit const& edit, bool isThere) {
  return works(*opened(rules, model), edit, isThere);
}

/// The names of the children that a new parent has, "Part" for one without a name.
std::string atFirst(PhysicsData const& rules, ModelState const& without) {
  auto const session = opened(rules, without);
  std::string names;
  for (std::string const name : {"", "a", "b"}) {
    if (!has(*session, name.empty() ? "/Plant/Part" : "/Plant/Part:" + name)) continue;
    names += (names.empty() ? "" : ", ") + (name.empty() ? "one" : name);
  }
  return names.empty() ? "none" : names;
}

std::string rowOf(ChildEntry const& entry) {
  auto const rules = rulesWith(entry);
  ModelState const without{{"/Plant", {}}};
  ModelState const with{{"/Plant", {}}, {entry.child, {{"Kind", "x"}}}};
  std::array<std::string, 7> const cells = {atFirst(*rules, without),
                                            yesNo(has(*opened(*rules, with), entry.child)),
                                            yesNo(works(*rules, without, Edit::addObject(entry.child), true)),
                                            yesNo(works(*rules, with, Edit::removeObject(entry.child), false)),
                                            yesNo(works(*rules, without, Edit::activateObject(entry.child), true)),
                                            yesNo(works(*rules, with, Edit::deactivateObject(entry.child), false)),
                                            yesNo(session::Review(*rules).judge(without).any())};
  std::string row = "| `" + entry.attributes + "` |";
  for (auto const& cell : cells) row += " " + cell + " |";
  return row;
}

/// The rows of the table in the rule reference, without its heading.
std::string documentedRows() {
  std::istringstream page(tarn::test::fileText(TARN_SOURCE_DIR "/docs/rule-reference.md"));
  std::string rows;
  bool isInTable = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("| Child entry |")) isInTable = true;
    if (isInTable && line.empty()) break;
    if (isInTable && line.starts_with("| `")) rows += line + "\n";
  }
  return rows;
}

TEST(ChildTypes, TheTableOfTheRuleReferenceShowsWhatHappens) {
  std::string rows;
  for (auto const& entry : entries) rows += rowOf(entry) + "\n";
  EXPECT_EQ(documentedRows(), rows);
}

}  // namespace
}  // namespace tarn

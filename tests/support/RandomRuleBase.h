#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/QuantityModifier.h>

#include "support/RandomRules.h"

/// Random rule bases with everything that rules can say, random models for them, and random sessions. `RandomRules.h`
/// makes smaller cases, which a second plain reading understands.
namespace tarn::test {

/// A parameter or child entry of a rule file: its name and its lines.
struct EntryText {
  std::string name;
  std::vector<std::string> lines;
};

/// An entry that a program adds to an object after its rule file was read: an optional parameter with a condition, an
/// allowed list and a default that are functions.
struct ProgramEntry {
  enum Function : int {
    /// Reads the value of `look` in the object.
    OwnValue,
    /// Counts the children of the object.
    Children,
    /// Reads the names of the parameters of the object.
    ParameterNames,
    /// Asks whether the object has a child `look`.
    ChildExists,
    /// Counts the objects of type `look` below the parent.
    Siblings,
    /// Reads the parameter `look` of the object by its path, as a list.
    ListByPath,
    /// Throws a `RuleFault` while the parameter `look` of the object is "Fault".
    Faulty
  };

  std::string name;
  Function function = OwnValue;
  std::string look;
  /// The functions list what they read.
  bool listsReads = false;

  [[nodiscard]] std::string text() const;
};

/// Thrown by a rule, see `ProgramEntry::Faulty`.
struct RuleFault : std::runtime_error {
  explicit RuleFault(std::string const& where) : std::runtime_error("fault of a rule of " + where) {}
};

struct ObjectText {
  std::string typePath;
  std::vector<EntryText> params;
  std::vector<EntryText> children;
  std::vector<ProgramEntry> programs;
  /// It takes the parameters of the template, before its own.
  bool usesTemplate = false;
};

/// A rule base as text, divided so that a test can leave parts out.
struct RuleBaseText {
  std::vector<std::string> lists;
  std::vector<std::string> checks;
  std::vector<std::string> values;
  /// The parameters of the one template.
  std::vector<EntryText> shared;
  std::vector<ObjectText> objects;

  /// The rule file, with the entries of the program as comments.
  [[nodiscard]] std::string text() const;
  /// Throws the `Error` of the rule language when the text is no rule file.
  [[nodiscard]] std::unique_ptr<PhysicsData> load() const;
};

/// Makes the real parameter "Inflow" a quantity, which it takes from the model: the parameter Fluid of the object.
class ReadingModifier final : public QuantityModifier {
 public:
  int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                      std::string& quantityType) const override;
  std::string getQuantityUnits(std::string const& quantityType, std::string const& units) const override;
};

/// One step of a session.
struct SessionStep {
  enum class Kind : int { MakeEdit, BaseUpdate, Initialise, InitialiseBasedOn, SetMark, RollBack, Release };

  Kind kind = Kind::MakeEdit;
  Edit edit;
  /// The new base model.
  ModelState base;
  /// The guide of a new start.
  ModelState guide;
  /// Counts the open marks around and around, for the one that is rolled back or released. Without an open mark such a
  /// step does nothing.
  std::size_t mark = 0;
  /// The allocation of this step that fails, counted from 0.
  std::optional<std::size_t> failingAllocation;

  [[nodiscard]] std::string text() const;
};

/// The start of a session.
struct SessionStart {
  RuleBaseText rules;
  std::string root;
  ModelState base;
  ModelState guide;
  /// The base model is a `DynamicTDF`, otherwise a `MapModel`.
  bool baseIsTree = false;
  /// Beta messages are collected.
  bool gathersMessages = false;

  [[nodiscard]] std::string text() const;
};

/// A random rule base, and random steps of a session under it. The steps depend on the state that they are made for,
/// so that most of them apply.
class RandomRuleBase {
 public:
  explicit RandomRuleBase(RandomNumbers numbers);

  [[nodiscard]] SessionStart const& start() const { return start_; }

  /// Where the steps come from when it is not where the rules came from.
  void continueWith(RandomNumbers numbers) { random_ = std::move(numbers); }
  [[nodiscard]] bool hasBytes() const { return random_.hasBytes(); }

  [[nodiscard]] SessionStep nextStep(ProvisionalTDF const& state);

 private:
  using Strings = std::vector<std::string>;

  [[nodiscard]] std::size_t pick(std::size_t n) { return random_() % n; }
  [[nodiscard]] bool chance(std::size_t n) { return pick(n) == 0; }
  [[nodiscard]] std::string const& someOf(Strings const& items) { return items[pick(items.size())]; }
  [[nodiscard]] Strings someAmong(Strings items);

  void addRules();
  void addObject(std::string const& typePath, std::size_t depth);
  [[nodiscard]] EntryText someParam(std::string const& name);
  [[nodiscard]] EntryText someChild(std::string const& type);
  [[nodiscard]] ProgramEntry someProgram(std::string const& name);

  // Texts of the rule language. `depth` limits the nesting.
  [[nodiscard]] std::string someParamPath();
  [[nodiscard]] std::string someObjects();
  [[nodiscard]] std::string someAvailability();
  [[nodiscard]] std::string someCondition(int depth);
  [[nodiscard]] std::string someText(int depth);
  [[nodiscard]] std::string someNumber(int depth);
  [[nodiscard]] std::string someNames();
  [[nodiscard]] std::string someValues(int depth);
  [[nodiscard]] std::string someList(Strings const& pool);
  void addAllowedValues(EntryText& param);

  // Models.
  [[nodiscard]] std::string someValue();
  [[nodiscard]] std::string someComponent();
  [[nodiscard]] std::string someObject();
  void fill(ModelState& state, std::string const& domain);
  [[nodiscard]] ModelState someBase();
  [[nodiscard]] ModelState someGuide();
  [[nodiscard]] std::string somePresentObject(ProvisionalTDF const& state);
  [[nodiscard]] Edit someEdit(ProvisionalTDF const& state);

  RandomNumbers random_;
  SessionStart start_;
};

}  // namespace tarn::test

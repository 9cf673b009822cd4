#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/ModelTDF.h>
#include <tarn/PhysicsData.h>

#include "expression/Expression.h"
#include "expression/Nodes.h"
#include "lint/ConditionFormula.h"

namespace tarn::rules {

/// Where a condition is evaluated. The paths have the types of a real object and names that no rule can write, so two
/// paths that are equal here are equal in every model.
struct ConditionScope {
  std::string context;
  std::string owner;
};

/// Where the path of an object begins that is not known.
inline constexpr std::string_view unknownObject = "/\3:";

/// All values that a parameter can have in a model without findings.
struct ClosedValues {
  std::vector<std::string> texts;
  std::unordered_set<std::string_view> set;  // of `texts`
};

/// The numbers that a parameter can hold in a model without findings, in the first unit of its quantity type.
struct NumberRange {
  std::optional<double> low;
  std::optional<double> high;
  bool isLowExcluded = false;
  bool isHighExcluded = false;
  std::string text;  // the same in words: "is from 0 to 40"

  [[nodiscard]] bool holds(double number) const {
    return (!low || number > *low || (!isLowExcluded && number == *low)) &&
           (!high || number < *high || (!isHighExcluded && number == *high));
  }
};

/// The values of parameters, as far as the rules determine them. Each is computed once: a parameter can have thousands
/// of values, and many conditions read it.
class ValuesOfRules {
 public:
  /// `data` must stay valid.
  explicit ValuesOfRules(PhysicsData const& data) : data_(data) {}

  /// Null when not all values are known.
  [[nodiscard]] std::shared_ptr<ClosedValues const> closedOf(ParamAvail const* entry);
  /// Null when the parameter has no bounds that are known, or when not every number between them can be its value.
  [[nodiscard]] std::shared_ptr<NumberRange const> rangeOf(ParamAvail const* entry);

 private:
  PhysicsData const& data_;
  std::unordered_map<ParamAvail const*, std::shared_ptr<ClosedValues const>> closed_;
  std::unordered_map<ParamAvail const*, std::shared_ptr<NumberRange const>> ranges_;
};

/// Translates conditions into one formula. Its variables are the parameters that the conditions read, with the values
/// that they can have in a model without findings, and the parts that are not looked into.
///
/// A part that is not looked into is a variable of its own that can be anything, the same one wherever the part is
/// written in the same way for the same object. So the formula allows everything that a model allows, and perhaps more:
/// what can never or must always hold in the formula can never or must always hold in a model.
class ConditionTerms {
 public:
  /// A condition with more parts, including those of the named checks that it calls, is not analysed.
  static constexpr std::size_t mostParts = 1000;
  /// Named checks that are called over more levels are not looked into.
  static constexpr std::size_t mostCallLevels = 8;
  /// A parameter with more values is taken to have any value in conditions that ask for its number or truth.
  static constexpr std::size_t mostTriedValues = 1000;

  /// `isLookedInto` says of a named check whether its condition takes the place of a call. All arguments must stay
  /// valid.
  ConditionTerms(PhysicsData const& data, std::function<bool(NamedRule const&)> const& isLookedInto,
                 ValuesOfRules& values)
      : data_(data), known_(values), isLookedInto_(isLookedInto) {}

  /// Adds a condition. `source` is the text that the ranges of its nodes refer to.
  [[nodiscard]] ConditionFormula::Node add(Expression const& condition, std::string_view source,
                                           ConditionScope const& scope);
  /// The operands of `and`, `or`, `not` and `implies` in the conditions that were added, without those in named checks.
  struct Operand {
    Expression const* expression;
    ConditionFormula::Node node;
  };
  [[nodiscard]] std::vector<Operand> const& operands() const noexcept { return operands_; }
  /// More parts were added than are analysed, so the formula says nothing.
  [[nodiscard]] bool isTooLarge() const noexcept { return size_ > mostParts; }
  /// Adds the condition that a parameter of the object at `path` exists, and that it exists with one of `values`.
  [[nodiscard]] ConditionFormula::Node addExists(std::string const& path, std::string const& parameter);
  [[nodiscard]] ConditionFormula::Node addHasOneOf(std::string const& path, std::string const& parameter,
                                                   std::vector<std::string> const& values);

  /// A parameter that the formula has a variable for.
  struct Parameter {
    std::string path;
    std::string name;
    ObjDependDef const* object = nullptr;
    ParamAvail const* entry = nullptr;           // null when the rules of its object are not known
    std::shared_ptr<ClosedValues const> values;  // null when not all are known
    std::shared_ptr<NumberRange const> range;    // null when it has no bounds that are known
    bool isAlwaysThere = false;
    ConditionFormula::Variable variable = 0;
  };
  /// References to them stay valid when further ones are added.
  [[nodiscard]] std::deque<Parameter> const& parameters() const noexcept { return parameters_; }
  /// Whether a part is evaluated with every value of the parameter.
  [[nodiscard]] bool needsAllValues(std::size_t parameter) const { return questions_[parameter].needsAllValues; }
  /// Whether values of the formula, by variable, are those of a parameter that does not exist.
  [[nodiscard]] bool hasAbsent(std::vector<std::size_t> const& values) const;
  /// Whether all parameters are those of paths from the root of the model, so that the formula is the same for every
  /// object in which the conditions are evaluated.
  [[nodiscard]] bool readsRootAlone() const;
  /// Says that the parameter exists whenever the condition is evaluated.
  void setAlwaysThere(std::size_t parameter) { parameters_[parameter].isAlwaysThere = true; }
  /// Forgets what the rules say about the values of a parameter, and whether it exists.
  void setOpen(std::size_t parameter);
  void restore(std::size_t parameter, Parameter former) { parameters_[parameter] = std::move(former); }

  /// Computes the tables of all atoms. Call it after the last addition and before the first search.
  void finish();
  [[nodiscard]] ConditionFormula& formula() noexcept { return formula_; }

 private:
  /// The question that an atom asks of its variables.
  struct Atom {
    enum class Kind { Expression, Exists, HasOneOf, Term };
    Kind kind;
    ConditionFormula::Node node;
    Expression const* expression = nullptr;
    ConditionScope const* scope = nullptr;
    std::vector<std::size_t> parameters = {};  // indexes
    std::vector<std::string> const* values = nullptr;
    std::size_t term = 0;
  };
  /// The questions that the atoms ask of the values of a parameter.
  struct Questions {
    std::vector<std::string> texts;
    std::vector<std::string> contexts;  // texts that need not be among its values
    std::vector<double> numbers;
    bool asksTruth = false;
    bool needsAllValues = false;  // an atom asks something else
  };
  struct Value {
    std::string text;
    bool isThere = true;
  };
  /// A part that is a number or a text, of which only comparisons with constants are known.
  struct Term {
    std::string key;
    bool isNumber;
    bool isCount;
    std::vector<double> numbers = {};
    std::vector<std::string> texts = {};
    ConditionFormula::Variable variable = 0;
  };

  [[nodiscard]] ConditionFormula::Node addLogic(Logic const& logic, std::string_view source,
                                                ConditionScope const* scope);
  [[nodiscard]] ConditionFormula::Node addPart(Expression const& part, std::string_view source,
                                               ConditionScope const* scope);
  [[nodiscard]] ConditionFormula::Node addOpaque(Expression const& part, std::string_view source,
                                                 ConditionScope const* scope);
  [[nodiscard]] std::optional<ConditionFormula::Node> addTermComparison(Expression const& part, std::string_view source,
                                                                        ConditionScope const* scope);
  /// The parameters that a part reads; nothing when it reads anything else, or what cannot be known.
  [[nodiscard]] std::optional<std::vector<std::size_t>> parametersOf(Expression const& part,
                                                                     ConditionScope const& scope);
  [[nodiscard]] std::size_t parameter(std::string const& path, std::string const& name);
  [[nodiscard]] ConditionScope const* keep(ConditionScope const& scope);
  [[nodiscard]] std::vector<Value> valuesOf(std::size_t parameter) const;
  [[nodiscard]] std::vector<Value> closedValues(Parameter const& parameter, Questions const& questions) const;
  void fillTable(Atom const& atom);
  void fillTerm(Atom const& atom);

  PhysicsData const& data_;
  ValuesOfRules& known_;
  ConditionFormula formula_;
  std::deque<Parameter> parameters_;
  std::vector<Questions> questions_;  // of each parameter
  std::vector<std::vector<Value>> values_;
  std::vector<Term> terms_;
  std::vector<std::pair<std::string, ConditionFormula::Node>> opaque_;
  std::vector<Atom> atoms_;
  std::vector<std::unique_ptr<ConditionScope>> scopes_;
  std::function<bool(NamedRule const&)> const& isLookedInto_;
  std::vector<Operand> operands_;
  struct Called {
    NamedRule const* rule;
    ConditionScope const* scope;
    ConditionFormula::Node node;
  };
  std::vector<Called> called_;
  std::size_t size_ = 0;
  std::size_t callDepth_ = 0;
};

/// The path of an object of a type as `ConditionScope` has it. `number` distinguishes objects that are different ones.
[[nodiscard]] std::string representative(PhysicsData const& data, std::string const& typePath, char number = '\1');

}  // namespace tarn::rules

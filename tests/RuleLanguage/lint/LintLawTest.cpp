// The law of lint: what it says with certainty is so. Random rule bases are linted, and models without findings are
// made for each of them. A condition that can never hold must hold in none of these models, one that always holds must
// hold in all, an entry that is never reached must be reached in none, and so on. The rules are sound, so lint must not
// say that something does not exist. The models are found by a reading of the rules that shares nothing with lint.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>
#include <tarn/rules/Query.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;

enum class Type { Choice, Logical, Integer, Length, Text, Choices };

/// A parameter of the random rules. Names are unique, so a message that names one is about that one.
struct Parameter {
  std::string name;
  Type type = Type::Choice;
  std::vector<std::string> values;  // that it can perhaps have
  bool isContextRule = false;
};

/// A condition in the rule file, and where it is evaluated.
struct Site {
  std::string typePath;  // empty for a named check; that of the first object that takes it for one in the template
  std::string entry;
  std::string attribute;
  bool isChild = false;
  std::size_t index = 0;    // in a check list
  std::string second = {};  // the type path of the other object that takes it from the template
};

constexpr std::string_view unitPath = "/Plant/Unit";
constexpr std::string_view linePath = "/Plant/Line";
constexpr std::string_view meterPath = "/Plant/Meter";

class RandomRules {
 public:
  explicit RandomRules(unsigned seed) : random_(seed) {}

  void write() {
    text_ =
        "Rule Database: 1\nPertinent Roots: [Plant]\nQuantity Types: {Length: {Units: {m: 1, mm: 0.001}}}\n"
        "Values: {few: 2, short: '500 [mm]', word: ab}\n"
        "Lists:\n  metals: [ab, cd]\n  others: [cd, ef]\n";
    plan("/Plant", "P", 3 + below(3));
    plan(std::string(unitPath), "U", 2 + below(2));
    plan(std::string(linePath), "T", 2);
    parameters_[std::string(meterPath)] = parameters(linePath);
    plan(std::string(linePath), "L", 2);
    plan(std::string(meterPath), "M", 2);
    line_ = static_cast<std::size_t>(std::count(text_.begin(), text_.end(), '\n')) + 1;
    emit("Checks:\n");
    // Named checks read the root alone, so that they can be called from everywhere.
    known_ = parameters("/Plant");
    for (std::size_t i = 0; i < 2; ++i) {
      emit("  check " + std::to_string(i) + ": >-\n");
      place({"", "check " + std::to_string(i), "", false, 0});
      isNamed_ = true;
      emit("    " + condition(2) + "\n");
      isNamed_ = false;
    }
    emit("Templates:\n  common:\n    Parameters:\n");
    writeParameters(linePath, 0, templateSize);
    emit("Objects:\n  /Plant:\n    Parameters:\n");
    writeParameters("/Plant");
    emit("    Children:\n");
    known_ = parameters("/Plant");
    writeChild("Unit", true);
    writeChild("Line", false);
    writeChild("Meter", true);
    emit("  " + std::string(unitPath) + ":\n    Parameters:\n");
    writeParameters(unitPath);
    for (auto const path : {linePath, meterPath}) {
      emit("  " + std::string(path) + ":\n    Use: [common]\n    Parameters:\n");
      writeParameters(path, templateSize);
    }
    writeGlobalChecks();
  }

  [[nodiscard]] std::string const& text() const { return text_; }
  [[nodiscard]] std::map<std::size_t, Site> const& sites() const { return sites_; }
  [[nodiscard]] std::vector<Parameter> const& parameters(std::string_view typePath) const {
    static std::vector<Parameter> const none;
    auto const found = parameters_.find(std::string(typePath));
    return found == parameters_.end() ? none : found->second;
  }

 private:
  static constexpr std::size_t templateSize = 2;

  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_()) % limit; }
  bool oneIn(std::size_t count) { return below(count) == 0; }
  std::string one(std::vector<std::string> const& texts) { return texts[below(texts.size())]; }

  void emit(std::string const& text) {
    text_ += text;
    line_ += static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  /// The next line holds this condition.
  void place(Site site) {
    if (isTemplate_) site.second = meterPath;
    sites_.emplace(line_, std::move(site));
  }

  void plan(std::string const& typePath, std::string const& prefix, std::size_t count) {
    auto& list = parameters_[typePath];
    for (std::size_t i = 0; i < count; ++i) {
      Parameter made;
      made.name = prefix + std::to_string(i);
      made.type = std::vector<Type>{Type::Choice,  Type::Choice, Type::Choice, Type::Logical,
                                    Type::Integer, Type::Length, Type::Text,   Type::Choices}[below(8)];
      made.isContextRule = made.type == Type::Choice && oneIn(3);
      switch (made.type) {
        case Type::Choice:
        case Type::Choices:
          made.values = {"ab", "cd", "ef", "gh", ""};
          break;
        case Type::Logical:
          made.values = {"true", "false", "yes", "0", ""};
          break;
        case Type::Integer:
          made.values = {"-1", "0", "1", "2", "3", "4", "5", "2.0", ""};
          break;
        case Type::Length:
          made.values = {"-1", "0 [m]", "0.5", "500 [mm]", "1 [m]", "1500 [mm]", "2", "3 [m]", "9 [m]", ""};
          break;
        case Type::Text:
          made.values = {"ab", "AB", "2", "true", "x", ""};
          break;
      }
      list.push_back(std::move(made));
    }
  }

  /// The parameters of an object from `begin` on. The first ones of two objects are those of the template.
  void writeParameters(std::string_view path, std::size_t begin = 0,
                       std::size_t end = std::numeric_limits<std::size_t>::max()) {
    std::string const typePath(path);
    known_ = typePath == "/Plant" ? std::vector<Parameter>() : parameters("/Plant");
    here_ = typePath;
    auto const& all = parameters(typePath);
    isTemplate_ = end < all.size();
    known_.insert(known_.end(), all.begin(), all.begin() + static_cast<std::ptrdiff_t>(begin));
    bool hasContext = std::any_of(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(begin),
                                  [](Parameter const& one) { return one.isContextRule; });
    for (std::size_t i = begin; i < std::min(end, all.size()); ++i) {
      auto const& parameter = all[i];
      emit("      " + parameter.name + ":\n");
      if (oneIn(2)) writeCondition("        ", "Available", {typePath, parameter.name, "Available", false, 0});
      if (hasContext && oneIn(3)) emit("        Context: [" + one({"ab", "cd", "ef", "ab, cd"}) + "]\n");
      if (oneIn(2)) emit("        Required: yes\n");
      if (oneIn(12)) emit("        Validation Relaxed: yes\n");
      if (parameter.isContextRule) emit("        Context Rule: yes\n");
      hasContext |= parameter.isContextRule;
      writeValues(typePath, parameter);
      known_.push_back(parameter);
    }
    isTemplate_ = false;
  }

  void writeGlobalChecks() {
    known_ = parameters("/Plant");
    here_ = "/";
    emit("Global Checks:\n  balance:\n    Message: The lines are not balanced.\n    Check: >-\n");
    Site site;
    site.entry = "balance";
    site.attribute = "Check";
    place(std::move(site));
    emit("      (" + setCondition(2) + " or " + setCondition(1) + ")\n");
  }

  void writeValues(std::string const& typePath, Parameter const& parameter) {
    std::string const pad = "        ";
    auto const type = [&](char const* name) { emit(pad + "Parameter Type: " + name + "\n"); };
    switch (parameter.type) {
      case Type::Choice:
      case Type::Choices: {
        type(parameter.type == Type::Choice ? "String" : "String List");
        switch (below(6)) {
          case 0:
            emit(pad + "Value List Source: list('metals')\n");
            break;
          case 1:
            emit(pad + "Value List Source: if(" + condition(0) + ", list('metals'), list('others'))\n");
            break;
          default:
            emit(pad + "Ordered Allowed String List: [" + one({"ab, cd", "ab, cd, ef", "cd, ef"}) + "]\n");
            if (oneIn(4)) emit(pad + "Unused Allowed String List: [gh]\n");
            if (oneIn(4)) {
              emit(pad + "Allowed String List Checks:\n" + pad + "  cd: >-\n");
              place({typePath, parameter.name, "Allowed String List Checks", false, 0});
              emit(pad + "    " + condition(1) + "\n");
            }
        }
        if (oneIn(8)) emit(pad + "Allows Any Value: yes\n");
        if (oneIn(6)) emit(pad + "Available With No Allowed Values: yes\n");
        if (oneIn(3)) emit(pad + "Default Value: " + one({"ab", "cd", "ef"}) + "\n");
        if (oneIn(6)) emit(pad + "Fallback To Blank Default: yes\n");
        if (oneIn(4)) writeCheckList(typePath, parameter.name, "Value Override Check List", {"ab", "cd"});
        break;
      }
      case Type::Logical:
        type("Logical");
        break;
      case Type::Integer:
        type("Integer");
        if (oneIn(3)) emit(pad + "Lower Bound: " + one({"0", "1", "= value('few')"}) + "\n");
        if (oneIn(3)) emit(pad + "Upper Bound: " + one({"3", "4"}) + "\n");
        if (oneIn(6)) emit(pad + "Upper Bound Excluded: yes\n");
        if (oneIn(3)) {
          writeCheckList(typePath, parameter.name, "Default Value Check List", {"2", "3"});
          if (oneIn(2)) emit(pad + "Default Value: 2\n");
        }
        break;
      case Type::Length:
        type("Real");
        emit(pad + "Quantity Type: Length\n");
        if (oneIn(2)) emit(pad + "Lower Bound: " + one({"0 [m]", "500 [mm]", "1"}) + "\n");
        if (oneIn(2)) emit(pad + "Upper Bound: " + one({"2 [m]", "3000 [mm]", "= value('short')"}) + "\n");
        if (oneIn(6)) emit(pad + "Lower Bound Excluded: yes\n");
        break;
      case Type::Text:
        type("String");
        if (oneIn(2)) emit(pad + "Pattern: '" + one({"[a-z]+", "[A-Z]+|2", ".."}) + "'\n");
        break;
    }
  }

  void writeCheckList(std::string const& typePath, std::string const& name, std::string const& attribute,
                      std::vector<std::string> const& values) {
    emit("        " + attribute + ":\n");
    std::size_t const count = 1 + below(3);
    for (std::size_t i = 0; i < count; ++i) {
      emit("          - When: >-\n");
      place({typePath, name, attribute, false, i});
      emit("              " + (oneIn(8) ? std::string("true") : condition(1)) + "\n            Value: " + one(values) +
           "\n");
    }
  }

  void writeCondition(std::string const& pad, std::string const& key, Site site) {
    emit(pad + key + ": >-\n");
    place(std::move(site));
    emit(pad + "  " + condition(2) + "\n");
  }

  void writeChild(std::string const& type, bool isSingleton) {
    emit("      " + type + ":\n");
    here_ = "/Plant";
    if (oneIn(2)) writeCondition("        ", "Available", {"/Plant", type, "Available", true, 0});
    auto const& all = parameters("/Plant");
    bool const hasContext = std::any_of(all.begin(), all.end(), [](Parameter const& p) { return p.isContextRule; });
    if (hasContext && oneIn(3)) emit("        Context: [" + one({"ab", "cd, ef"}) + "]\n");
    if (isSingleton) {
      emit("        Singleton: yes\n        " + one({"Required: yes", "Coupled: yes"}) + "\n");
    } else {
      emit("        Coupled: yes\n");
      if (oneIn(2)) emit("        Allowed Names: " + one({"[a]", "[a, b]", "[a, {Value: b, When: \"1 < 2\"}]"}) + "\n");
    }
  }

  // Conditions

  std::string pathOf(Parameter const& parameter) {
    if (parameter.name.front() == 'M' && isBody_) return "@/" + parameter.name;
    if (parameter.name.front() != 'P') return bodyName_ + parameter.name;
    if (isNamed_ || here_ == "/") return "/Plant/" + parameter.name;
    if (here_ == "/Plant") return one({parameter.name, "/Plant/" + parameter.name, "^Plant/" + parameter.name});
    return one({"../" + parameter.name, "/Plant/" + parameter.name, "^Plant/" + parameter.name});
  }

  std::string condition(std::size_t depth) {
    switch (depth > 0 ? below(12) : 5 + below(7)) {
      case 0:
      case 1:
        return "(" + condition(depth - 1) + " and " + condition(depth - 1) + ")";
      case 2:
      case 3:
        return "(" + condition(depth - 1) + " or " + condition(depth - 1) + ")";
      case 4:
        return oneIn(2) ? "not (" + condition(depth - 1) + ")"
                        : "(" + condition(depth - 1) + " implies " + condition(depth - 1) + ")";
      case 5:
        return callOrSet(depth);
      default:
        return comparison();
    }
  }

  /// A condition about the lines, which a walk decides before the meter.
  std::string setCondition(std::size_t depth) {
    std::string const set = here_ == "/" ? one({"{/Plant/Line:*}", "{/Plant/Line:*}", "{/Plant/*}", "{/**}"})
                                         : one({"{/Plant/Line:*}", "{../Line:*}", "{^Plant/Line:*}", "{../*}"});
    std::string const number = " " + ordered() + " " + one({"0", "1", "2"});
    auto const read = parameters(linePath)[below(parameters(linePath).size())];
    std::string const values = "values(${/Plant/Line:*/" + read.name + "})";
    switch (below(10)) {
      case 0:
        return "count(" + set + ")" + number;
      case 1:
        return "exists(" + (oneIn(2) ? set : "{/Plant/Unit}") + ")";
      case 2:
        return one({"'a'", "'b'", "'c'"}) + one({" in ", " not in "}) + "names({/Plant/Line:*})";
      case 3:
        return one({"sum(", "min(", "max("}) + values + ")" + number;
      case 4:
        return quoted({"ab", "cd", "gh", "2"}) + " in " + values;
      case 5:
        return "size(" + one({"unique(", "duplicates("}) + values + "))" + number;
      case 6:
        return "count(" + body(set, depth) + ")" + number;
      case 7:
        return "exists(filter(" + body(set, depth) + "))";
      case 8:
        return "any(" + body(set, depth) + ")";
      default:
        return "all(" + body(set, depth) + ")";
    }
  }

  /// The arguments of a quantifier. Its condition is evaluated at each object of the set.
  std::string body(std::string const& set, std::size_t depth) {
    if (isBody_) return set + ", true";
    auto const known = known_;
    auto const here = here_;
    auto const& ofLine = parameters(linePath);
    // Those of the meter have no other name inside.
    std::erase_if(known_, [](Parameter const& one) { return one.name.front() == 'T'; });
    known_.insert(known_.end(), ofLine.begin(), ofLine.end());
    isBody_ = true;
    if (here_ != "/") here_ = linePath;
    if (oneIn(3)) bodyName_ = "one/";
    std::string const text = (bodyName_.empty() ? "" : "one in ") + set + ", " + condition(depth > 0 ? depth - 1 : 0);
    bodyName_.clear();
    isBody_ = false;
    known_ = known;
    here_ = here;
    return text;
  }

  std::string callOrSet(std::size_t depth) {
    bool const isAfterLines = here_ == meterPath && !isTemplate_;
    if ((isAfterLines || here_ == "/") && !isBody_ && oneIn(2)) return setCondition(depth);
    switch (below(5)) {
      case 0:
        if (!isNamed_) return "check('check " + std::to_string(below(2)) + "')";
        [[fallthrough]];
      case 1:
        if (depth > 0 && !known_.empty()) {
          return "if(" + condition(depth - 1) + ", " + condition(depth - 1) + ", " + condition(depth - 1) + ")";
        }
        [[fallthrough]];
      case 2:
        return "name() " + one({"== 'Plant'", "!= 'Unit'", "in ('a', 'b')", "== 'a'"});
      case 3:
        return "size(" + one({"list('metals')", "intersection(list('metals'), list('others'))"}) + ") " + ordered() +
               " " + one({"1", "2", "3"});
      default:
        return "type() == " + one({"'Plant'", "'Unit'", "'Line'", "'Meter'"});
    }
  }

  std::string ordered() { return one({"<", "<=", ">", ">=", "==", "!="}); }
  std::string equality() { return one({"==", "!="}); }
  std::string quoted(std::vector<std::string> const& texts) { return "'" + one(texts) + "'"; }

  std::string comparison() {
    if (known_.empty()) return one({"true", "false", "1 < 2", "'ab' in list('others')", "name() == 'Plant'"});
    auto const parameter = known_[below(known_.size())];
    std::string const value = "${" + pathOf(parameter) + "}";
    if (oneIn(8)) return "exists(" + value + ")";
    if (oneIn(10)) {
      auto const other = known_[below(known_.size())];
      return value + " " +
             (parameter.type == Type::Length || parameter.type == Type::Integer ? ordered() : equality()) + " ${" +
             pathOf(other) + "}";
    }
    switch (parameter.type) {
      case Type::Choice:
        switch (below(9)) {
          case 0:
            return value + one({" in ", " not in "}) + one({"('ab', 'cd')", "('ef',)", "list('metals')", "('gh', '')"});
          case 1:
            return one({"starts_with(", "ends_with(", "contains("}) + value + ", " + quoted({"a", "cd", "f", "x"}) +
                   ")";
          case 2:
            return one({"upper(", "lower("}) + value + ") " + equality() + " " + quoted({"AB", "ab", "cd"});
          case 3:
            return "length(" + value + ") " + ordered() + " " + one({"0", "2", "3"});
          case 4:
            return "matches(" + value + ", " + quoted({"[a-c]+", "..", "ef?"}) + ")";
          case 5:
            return value + " == value('word')";
          default:
            return oneIn(5) ? quoted({"ab", "cd", "ef"}) + " " + equality() + " " + value
                            : value + " " + equality() + " " + quoted({"ab", "cd", "ef", "gh", ""});
        }
      case Type::Choices:
        return oneIn(2)   ? quoted({"ab", "cd", "ef", "gh"}) + one({" in ", " not in "}) + value
               : oneIn(2) ? "first(" + value + ") " + equality() + " " + quoted({"ab", "cd"})
                          : "size(" + value + ") " + ordered() + " " + one({"0", "1", "2"});
      case Type::Logical:
        return one({value, "not " + value, value + " == true", value + " != false", value + " == 'yes'"});
      case Type::Integer:
        switch (below(6)) {
          case 0:
            return "mod(" + value + ", 2) " + equality() + " " + one({"0", "1"});
          case 1:
            return "abs(" + value + ") " + ordered() + " " + one({"0", "2"});
          case 2:
            return value + " * 2 " + ordered() + " " + one({"0", "4", "5"});
          default:
            return oneIn(4) ? one({"0", "2", "4", "value('few')"}) + " " + ordered() + " " + value
                            : value + " " + ordered() + " " + one({"-1", "0", "1", "2", "3", "4", "9"});
        }
      case Type::Length:
        return value + " " + ordered() + " " +
               one({"0", "0.5", "500 [mm]", "1 [m]", "3 [m]", "9 [m]", "value('short')"});
      case Type::Text:
        return oneIn(4)   ? value + " " + ordered() + " " + one({"1", "2"})
               : oneIn(3) ? value + one({" in ", " not in "}) + "('ab', 'x')"
                          : value + " " + equality() + " " + quoted({"ab", "x", "2", ""});
    }
    return "true";
  }

  std::mt19937 random_;
  std::string text_;
  std::size_t line_ = 1;
  std::map<std::size_t, Site> sites_;
  std::map<std::string, std::vector<Parameter>> parameters_;
  std::vector<Parameter> known_;  // that the next condition may read
  std::string here_;
  bool isNamed_ = false;
  bool isTemplate_ = false;
  bool isBody_ = false;   // inside a quantifier
  std::string bodyName_;  // that the quantifier gives the object, with a '/'
};

/// Makes models in which everything is as the rules want it, by going through the entries in the order of the rules.
class Models {
 public:
  Models(PhysicsData const& data, RandomRules const& rules, unsigned seed)
      : data_(data), rules_(rules), random_(seed) {}

  /// Nothing when the choices made lead to no such model.
  std::optional<MapModel> next() {
    MapModel model;
    model.add("/Plant");
    if (!fill(model, "/Plant", "/Plant")) return std::nullopt;
    for (std::string const type : {"Unit", "Line", "Meter"}) {
      auto const& child = *data_.getObjDependDef("/Plant", true)->findChild(type);
      if (!mayExist(model, "/Plant", child)) continue;
      std::string const path = "/Plant/" + type;
      if (child.singleton) {
        if ((child.required || below(2) == 0) && !add(model, path, path)) return std::nullopt;
        continue;
      }
      std::vector<std::string> names{"a", "b"};
      EvalContext context(&model);
      if (child.allowedNamesSource != nullptr) {
        names = child.allowedNamesSource->evaluate(TDFContext("/Plant"), &context).vector();
      }
      for (auto const& name : names) {
        if (below(2) == 0 && !add(model, path + ":" + name, path)) return std::nullopt;
      }
    }
    return model;
  }

  /// Whether an entry is live and its condition holds.
  template <typename Entry>
  [[nodiscard]] bool mayExist(MapModel const& model, std::string const& path, Entry const& entry) const {
    EvalContext context(&model);
    return isLive(model, path, entry) && entry.evaluate(TDFContext(path), &context);
  }

  template <typename Entry>
  [[nodiscard]] bool isLive(MapModel const& model, std::string const& path, Entry const& entry) const {
    if (entry.contexts.empty()) return true;
    auto const& object = *data_.getObjDependDef(typeOf(path), true);
    std::string last;
    for (auto const& param : object.params()) {
      if (isSame(*param, entry)) break;
      if (param->contextRule && model.hasParameter(path, param->name))
        last = model.getParameterValue(path, param->name);
    }
    return std::find(entry.contexts.begin(), entry.contexts.end(), last) != entry.contexts.end();
  }

  static std::string typeOf(std::string const& path) { return path.substr(0, path.find(':')); }

  [[nodiscard]] ParamAllowedValues allowed(MapModel const& model, std::string const& path,
                                           ParamAvail const& param) const {
    EvalContext context(&model);
    return param.valueDef()->evaluateAllowedValues(nullptr, TDFContext(path), &context);
  }

  /// A parameter that has no value on offer is not there.
  [[nodiscard]] static bool lacksValues(ParamValueDef const& def, ParamAllowedValues const& values) {
    return def.allowedValueKind != ParamValueDef::NoAllowedValues && values.allowedValues.empty() &&
           !def.availableWithNoAllowedValues;
  }

 private:
  static bool isSame(ParamAvail const& one, ParamAvail const& other) { return &one == &other; }
  static bool isSame(ParamAvail const& /*one*/, ChildAvail const& /*other*/) { return false; }
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_()) % limit; }

  bool add(MapModel& model, std::string const& path, std::string_view typePath) {
    model.add(path);
    return fill(model, path, std::string(typePath));
  }

  /// False when a parameter that must exist has no right value.
  bool fill(MapModel& model, std::string const& path, std::string const& typePath) {
    auto const& planned = rules_.parameters(typePath);
    auto const& object = *data_.getObjDependDef(typePath, true);
    for (std::size_t i = 0; i < planned.size(); ++i) {
      auto const& param = *object.params()[i];
      auto const& def = *param.valueDef();
      if (param.validationRelaxed) {
        // It may be there or not, with any value that can be read.
        if (below(2) == 0) model.set(path, param.name, planned[i].values[below(planned[i].values.size())]);
        continue;
      }
      if (!mayExist(model, path, param)) continue;
      auto const values = allowed(model, path, param);
      bool const isClosed = def.allowedValueKind != ParamValueDef::NoAllowedValues;
      if (lacksValues(def, values)) continue;
      if (!param.required && below(3) == 0) continue;
      std::vector<std::string> possible;
      for (auto const& value : planned[i].values) {
        if (isRight(model, path, def, values, value)) possible.push_back(value);
      }
      if (def.type == TDFParam::StringList && isClosed && values.allowedValues.size() > 1) {
        possible.push_back(values.allowedValues[0] + "," + values.allowedValues[1]);
      }
      EvalContext context(&model);
      for (auto const& entry : def.overrideChecks) {
        if (!entry.when->evaluate(TDFContext(path), &context)) continue;
        possible.push_back(entry.value->evaluate(TDFContext(path), &context));
        break;
      }
      if (possible.empty() && param.required) return false;
      if (!possible.empty()) model.set(path, param.name, possible[below(possible.size())]);
    }
    return true;
  }

  [[nodiscard]] static bool isRight(MapModel const& model, std::string const& path, ParamValueDef const& def,
                                    ParamAllowedValues const& values, std::string const& value) {
    if (def.allowedValueKind != ParamValueDef::NoAllowedValues && !def.allowsAnyValue) {
      if (value.empty()) return def.fallbackToBlankDefault || def.availableWithNoAllowedValues;
      return std::find(values.allowedValues.begin(), values.allowedValues.end(), value) != values.allowedValues.end();
    }
    if (value.empty()) return true;
    if (def.pattern != nullptr && !def.pattern->matches(value)) return false;
    if (def.type == TDFParam::Logical) return TDFParam::asLogical(value).has_value();
    auto const quantity = TDFParam::asQuantity(value);
    if (def.type == TDFParam::Integer || def.type == TDFParam::Real) {
      if (!quantity) return false;
      // The units here are m and mm, and no number is more than 10 away from 0.
      auto const inMetres = [](TDFParam::Quantity const& one) {
        return one.units == "mm" ? one.number / 1000 : one.number;
      };
      EvalContext context(&model);
      for (bool const isLower : {true, false}) {
        auto const* rule = isLower ? def.lowerBound.get() : def.upperBound.get();
        if (rule == nullptr) continue;
        std::string const text = rule->evaluate(TDFContext(path), &context);
        auto const bound = TDFParam::asQuantity(text);
        if (!bound) continue;
        double const over = isLower ? inMetres(*quantity) - inMetres(*bound) : inMetres(*bound) - inMetres(*quantity);
        if (over < 0 || (over == 0 && (isLower ? def.lowerBoundExcluded : def.upperBoundExcluded))) return false;
      }
    }
    return true;
  }

  PhysicsData const& data_;
  RandomRules const& rules_;
  std::mt19937 random_;
};

std::string lineOf(std::string const& text, std::size_t number) {
  std::istringstream lines(text);
  std::string line;
  for (std::size_t i = 0; i < number; ++i) std::getline(lines, line);
  return line;
}

/// The first text in single quotes behind `begin` of a message.
std::string quotedIn(std::string_view message, std::string_view begin) {
  auto const at = message.find(begin);
  if (at == std::string_view::npos) return {};
  auto const from = message.find('\'', at + begin.size()) + 1;
  return std::string(message.substr(from, message.find('\'', from) - from));
}

/// One rule base, what lint says about it, and the models that show whether that is so.
class Trial {
 public:
  explicit Trial(unsigned seed) : rules_(seed) {
    rules_.write();
    data_ = parseRules(rules_.text());
    Models made(*data_, rules_, seed);
    constexpr std::size_t wanted = 150;
    for (std::size_t i = 0; i < wanted; ++i) {
      if (auto model = made.next(); model && isSound(made, *model)) models_.push_back(std::move(*model));
    }
    made_ = std::make_unique<Models>(*data_, rules_, seed);
  }

  void check() {
    for (auto const& one : lintText(rules_.text()).diagnostics) {
      ++found[one.code];
      if (auto const wrong = faultOf(one); !wrong.empty()) {
        ADD_FAILURE() << wrong << "\n" << format(one) << rules_.text();
        return;
      }
    }
  }

  static inline std::map<std::string, std::size_t> found;
  [[nodiscard]] std::size_t modelCount() const { return models_.size(); }

 private:
  /// A rule that reads an entry below its own can be decided otherwise at the end.
  [[nodiscard]] bool isSound(Models const& made, MapModel const& model) const {
    for (auto const& object : data_->objects()) {
      for (auto const& path : pathsOf(model, object->typePath())) {
        for (auto const& param : object->params()) {
          if (param->validationRelaxed) continue;
          bool const isThere = model.hasParameter(path, param->name);
          bool const mayExist = made.mayExist(model, path, *param);
          if (isThere && !mayExist) return false;
          bool const isLacking = !isThere && mayExist && param->required;
          if (isLacking && !Models::lacksValues(*param->valueDef(), made.allowed(model, path, *param))) return false;
        }
      }
    }
    return true;
  }

  [[nodiscard]] static std::vector<std::string> pathsOf(MapModel const& model, std::string const& typePath) {
    std::vector<std::string> all;
    for (std::string const path : {"/Plant", "/Plant/Unit", "/Plant/Line:a", "/Plant/Line:b", "/Plant/Meter"}) {
      if (model.hasObject(path) && (typePath.empty() || Models::typeOf(path) == typePath)) all.push_back(path);
    }
    return all;
  }

  /// Calls `each` with every model and object in which the condition at a site is evaluated.
  template <typename Each>
  void forEachEvaluation(Site const& site, Each each) const {
    for (auto const& model : models_) {
      if (site.attribute == "Check") each(model, std::string());
      for (auto const& path : pathsOf(model, site.typePath)) {
        if (site.attribute == "Check") break;
        if (!site.typePath.empty() && !isEvaluated(model, path, site)) continue;
        each(model, path);
      }
    }
  }

  [[nodiscard]] bool isEvaluated(MapModel const& model, std::string const& path, Site const& site) const {
    auto const& object = *data_->getObjDependDef(site.typePath, true);
    if (site.isChild) return made_->isLive(model, path, *object.findChild(site.entry));
    auto const& param = *object.findParam(site.entry);
    return site.attribute == "Available" ? made_->isLive(model, path, param) : made_->mayExist(model, path, param);
  }

  /// Why the diagnostic is wrong; empty when nothing shows that.
  [[nodiscard]] std::string faultOf(Diagnostic const& one) const {
    static std::set<std::string> const never = {"unknown-parameter", "unknown-object-path",  "unknown-root-type",
                                                "unreachable-type",  "missing-object-entry", "depends-on-itself",
                                                "division-by-zero",  "reads-later-decision", "unknown-quantity-type",
                                                "missing-roots",     "impossible-name"};
    if (never.contains(one.code)) return "there is no such mistake in the rules";
    if (one.code == "never-holds") return whyWrong(one, false);
    if (one.code == "always-holds") return whyWrong(one, true);
    if (one.code == "unreachable-entry") return whyReached(one);
    if (one.code == "never-live") return whyLive(one);
    if (one.code == "impossible-value") return whyPossible(one);
    return {};
  }

  [[nodiscard]] std::string claimed(Diagnostic const& one) const {
    auto const line = lineOf(rules_.text(), one.line);
    return line.substr(one.column - 1, one.endLine == one.line ? one.endColumn - one.column : std::string::npos);
  }

  /// A model in which the condition does not always, or does not never hold.
  [[nodiscard]] std::string whyWrong(Diagnostic const& one, bool always) const {
    auto const site = rules_.sites().find(one.line);
    // The condition of a computed list of values.
    if (site == rules_.sites().end()) return {};
    // The condition of a quantifier is evaluated at the objects of its set.
    auto const set = setAround(lineOf(rules_.text(), one.line).substr(0, one.column - 1));
    auto text = claimed(one);
    for (auto at = text.find("{one/"); at != std::string::npos; at = text.find("{one/")) text.erase(at + 1, 4);
    auto const query = parseQuery(text, *data_);
    if (!query.query) return "its range is not an expression: " + text;
    auto const objects = parseQuery("paths(" + set + ")", *data_);
    return refuted(site->second, [&](Site const& at) {
      std::string wrong;
      forEachEvaluation(at, [&](MapModel const& model, std::string const& path) {
        EvalContext context(&model);
        std::vector<std::string> paths{path};
        if (!set.empty()) paths = objects.query->evaluate(TDFContext(path), &context).items;
        for (auto const& object : paths) {
          if (query.query->evaluate(TDFContext(object, path), &context).truth == always || !wrong.empty()) continue;
          wrong = "'" + text + "' is otherwise at " + object + " in" + shown(model);
        }
      });
      return wrong;
    });
  }

  /// The text that `refute` gives for a site. A claim about the template is only wrong when it is wrong in both
  /// objects.
  template <typename Refute>
  [[nodiscard]] static std::string refuted(Site const& site, Refute refute) {
    auto wrong = refute(site);
    if (wrong.empty() || site.second.empty()) return wrong;
    auto other = site;
    other.typePath = site.second;
    return refute(other).empty() ? std::string() : wrong;
  }

  /// The set of the innermost quantifier in whose condition a text ends; empty when it ends in none.
  [[nodiscard]] static std::string setAround(std::string_view text) {
    struct Call {
      bool isQuantifier;
      std::size_t begin;
      std::size_t comma = std::string_view::npos;
    };
    std::vector<Call> open;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\'') isQuoted = !isQuoted;
      if (isQuoted) continue;
      if (text[i] == '(') {
        auto const before = text.substr(0, i);
        bool const isQuantifier = before.ends_with("any") || before.ends_with("all") || before.ends_with("count") ||
                                  before.ends_with("filter");
        open.push_back({isQuantifier, i + 1});
      } else if (text[i] == ')') {
        open.pop_back();
      } else if (text[i] == ',' && !open.empty()) {
        open.back().comma = std::min(open.back().comma, i);
      }
    }
    for (auto call = open.rbegin(); call != open.rend(); ++call) {
      if (!call->isQuantifier || call->comma == std::string_view::npos) continue;
      auto const set = text.substr(call->begin, call->comma - call->begin);
      return std::string(set.substr(set.find('{')));
    }
    return {};
  }

  [[nodiscard]] static std::string shown(MapModel const& model) {
    std::string text;
    for (auto const& path : pathsOf(model, {})) {
      std::vector<std::string> names;
      (void)model.getParameterNames(path, names);
      text += " " + path + "(";
      for (auto const& name : names)
        text.append(name).append("=").append(model.getParameterValue(path, name)).append(" ");
      text += ")";
    }
    return text;
  }

  /// A model in which the entry of a check list is the first that holds, or in which the default behind it is used.
  [[nodiscard]] std::string whyReached(Diagnostic const& one) const {
    auto site = rules_.sites().find(one.line);
    bool const isDefault = site == rules_.sites().end();
    if (isDefault) site = std::prev(rules_.sites().upper_bound(one.line));
    return refuted(site->second, [&](Site const& at) {
      auto const& param = *data_->getObjDependDef(at.typePath, true)->findParam(at.entry);
      bool const isOverride = at.attribute == "Value Override Check List";
      auto const& list = isOverride ? param.valueDef()->overrideChecks : param.valueDef()->defaultChecks;
      std::string wrong;
      forEachEvaluation(at, [&](MapModel const& model, std::string const& path) {
        EvalContext context(&model);
        std::size_t first = 0;
        while (first < list.size() && !list[first].when->evaluate(TDFContext(path), &context)) ++first;
        if (wrong.empty() && first == (isDefault ? list.size() : at.index)) wrong = "reached in" + shown(model);
      });
      return wrong;
    });
  }

  /// A model in which an entry with this context is live.
  [[nodiscard]] std::string whyLive(Diagnostic const& one) const {
    // The entry is the last name above the line.
    std::string entry;
    std::string typePath;
    for (std::size_t number = 1; number <= one.line; ++number) {
      auto const line = lineOf(rules_.text(), number);
      if (line == "  common:") typePath.clear();
      if (line.starts_with("  /")) typePath = line.substr(2, line.size() - 3);
      if (line.starts_with("      ") && line[6] != ' ') entry = line.substr(6, line.size() - 7);
    }
    auto const lacking = quotedIn(one.message, "no context rule can have the value ");
    if (!typePath.empty()) return whyLiveIn(typePath, entry, lacking);
    auto const inLine = whyLiveIn(std::string(linePath), entry, lacking);
    return inLine.empty() || whyLiveIn(std::string(meterPath), entry, lacking).empty() ? std::string() : inLine;
  }

  [[nodiscard]] std::string whyLiveIn(std::string const& typePath, std::string const& entry,
                                      std::string const& lacking) const {
    auto const& object = *data_->getObjDependDef(typePath, true);
    for (auto const& model : models_) {
      for (auto const& path : pathsOf(model, typePath)) {
        auto const* param = object.findParam(entry);
        bool isLive = param != nullptr ? made_->isLive(model, path, *param)
                                       : made_->isLive(model, path, *object.findChild(entry));
        if (!lacking.empty()) {
          // Only the context rules before the entry count.
          isLive = false;
          for (auto const& rule : object.params()) {
            if (rule->name == entry) break;
            if (!rule->contextRule || rule->validationRelaxed) continue;
            isLive |= model.getParameterValue(path, rule->name) == lacking;
          }
        }
        if (isLive) return entry + " is live at " + path + " in" + shown(model);
      }
    }
    return {};
  }

  /// A model in which the parameter has the value.
  [[nodiscard]] std::string whyPossible(Diagnostic const& one) const {
    auto const name = quotedIn(one.message, "the parameter ");
    auto const value = quotedIn(one.message, " can never be ");
    if (name.empty() || value.empty()) return {};
    for (auto const& model : models_) {
      for (auto const& path : pathsOf(model, {})) {
        if (!model.hasParameter(path, name)) continue;
        auto const* param = data_->getObjDependDef(Models::typeOf(path), true)->findParam(name);
        if (param->validationRelaxed) continue;
        std::vector<std::string> items{model.getParameterValue(path, name)};
        if (one.message.starts_with("an item of")) (void)model.getParamValueAsList(path, name, items);
        if (std::find(items.begin(), items.end(), value) != items.end()) return "it is in" + shown(model);
      }
    }
    return {};
  }

  RandomRules rules_;
  std::unique_ptr<PhysicsData> data_;
  std::vector<MapModel> models_;
  std::unique_ptr<Models> made_;
};

/// More seeds than a test run takes, for a trial by hand.
unsigned seedCount(unsigned usual) {
  char const* const given = std::getenv("TARN_LAW_SEEDS");
  return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : usual;
}

TEST(LintLaw, WhatLintSaysWithCertaintyIsSoInEveryModelWithoutFindings) {
  std::size_t models = 0;
  unsigned const seeds = seedCount(80);
  for (unsigned seed = 1; seed <= seeds && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Trial trial(seed);
    trial.check();
    models += trial.modelCount();
  }
  // The law was asked of enough.
  EXPECT_GT(models, seeds * 50U);
  EXPECT_GT(Trial::found["never-holds"], seeds / 10);
  EXPECT_GT(Trial::found["always-holds"], seeds / 10);
  EXPECT_GT(Trial::found["unreachable-entry"], seeds / 30);
  EXPECT_GT(Trial::found["impossible-value"], seeds / 10);
  EXPECT_GT(Trial::found["never-live"], seeds / 100);
  // A condition that lint gives up is rare.
  EXPECT_LT(Trial::found["analysis-given-up"], 1 + seeds / 20);
}

}  // namespace
}  // namespace tarn::rules::test

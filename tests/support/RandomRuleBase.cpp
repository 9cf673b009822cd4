// Random rule bases, in the text of rule files. Names and values come from small pools, so that rules read what other
// rules decide. Nothing may grow without bound from one walk to the next: a text is never made of two texts of the
// model, and never of all values of the model.

#include "support/RandomRuleBase.h"

#include <algorithm>
#include <iterator>

#include <tarn/RuleLambdas.h>
#include <tarn/StringUtilities.h>
#include <tarn/rules/RuleLoader.h>

#include "support/EditResult.h"

namespace tarn::test {

namespace {

using Strings = std::vector<std::string>;

Strings const typePool = {"Zone", "Boundary", "Layer", "Turbulence"};
Strings const namePool = {"a", "ab", "b"};
Strings const paramPool = {"Motion", "Fluid", "Inflow", "Level", "Order", "Title", "Kind", "Speed"};
Strings const valuePool = {"Water", "Air", "Oil", "a", "ab", "1", "2.5", "true"};
constexpr std::size_t deepest = 4;  // levels of objects below a domain
constexpr std::size_t mostObjectTypes = 14;
constexpr char singletonType[] = "Turbulence";
constexpr char fault[] = "Fault";

/// In the double quotes of YAML.
std::string quoted(std::string const& text) {
  std::string result = "\"";
  for (char const c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

std::string joined(Strings const& items, std::string (*form)(std::string const&)) {
  std::string result;
  for (std::string const& item : items) result += (result.empty() ? "" : ", ") + form(item);
  return result;
}
std::string flowList(Strings const& items) {
  return '[' + joined(items, quoted) + ']';
}
std::string literal(std::string const& text) {
  return "'" + text + "'";
}
std::string literalList(Strings const& items) {
  return items.size() == 1 ? '(' + literal(items.front()) + ",)" : '(' + joined(items, literal) + ')';
}

std::string listingOf(ModelState const& state) {
  std::string result;
  for (auto const& [path, params] : state) {
    result += "  " + path + "/\n";
    for (auto const& [name, value] : params) result.append("  " + path + '/' + name + '=' + value + '\n');
  }
  return result;
}

std::string parentOf(std::string const& path) {
  return path.substr(0, path.rfind('/'));
}

/// The part of the model that the functions of a program's entry read, as a text.
std::string lookedUp(ProgramEntry const& entry, TDFContext const& at, ModelTDF const& model) {
  std::string const& path = at.objPath();
  Strings found;
  switch (entry.function) {
    case ProgramEntry::OwnValue:
      return model.getParameterValue(path, entry.look);
    case ProgramEntry::Children:
      model.getChildObjectPaths(path, found);
      return std::to_string(found.size());
    case ProgramEntry::ParameterNames:
      model.getParameterNames(path, found);
      return found.empty() ? "" : found.back();
    case ProgramEntry::ChildExists:
      return model.hasObject(path + '/' + entry.look) ? "Water" : "Air";
    case ProgramEntry::Siblings:
      model.getChildObjectNamesByType(parentOf(path), entry.look, found);
      return std::to_string(found.size());
    case ProgramEntry::ListByPath:
      model.getParamValueAsList(path + '/' + entry.look, found);
      return found.empty() ? "" : found.front();
    case ProgramEntry::Faulty:
      if (model.getParameterValue(path, entry.look) == fault) throw RuleFault(path);
      return "Water";
  }
  return {};
}

std::optional<RuleReads> readsOf(ProgramEntry const& entry) {
  if (!entry.listsReads) return std::nullopt;
  return RuleReads::ofOwnParameter(entry.look);
}

void addProgram(ObjDependDef& object, ProgramEntry const& entry) {
  ParamAvail param;
  param.name = entry.name;
  auto const reads = readsOf(entry);
  param.available = lambda::when(
      [entry](TDFContext const& at, ModelTDF const& model) { return !lookedUp(entry, at, model).empty(); }, reads);
  ParamValueDef values;
  values.allowedValueKind = ParamValueDef::ComputedAllowedValues;
  values.allowsAnyValue = true;
  values.allowedValues = lambda::list(
      [entry](TDFContext const& at, ModelTDF const& model) {
        return SharedStrings{lookedUp(entry, at, model), "Oil"};
      },
      reads);
  values.defaultValue =
      lambda::text([entry](TDFContext const& at, ModelTDF const& model) { return lookedUp(entry, at, model); }, reads);
  (void)object.addParam(std::move(param), std::move(values));
}

}  // namespace

std::string ProgramEntry::text() const {
  static char const* const functions[] = {"own value", "children",     "parameter names", "child exists",
                                          "siblings",  "list by path", "faulty"};
  return name + ": " + functions[function] + ' ' + look + (listsReads ? ", lists its reads" : "");
}

std::string RuleBaseText::text() const {
  std::string result = "Rule Database: 1\nPertinent Roots: [Case]\n";
  result += "Quantity Types:\n  Mass Flow: {Units: [kg/s]}\n  Volume Flow: {Units: [m^3/s]}\n";
  if (!lists.empty()) result += "Lists:\n";
  for (std::string const& line : lists) result += "  " + line + '\n';
  if (!checks.empty()) result += "Checks:\n";
  for (std::string const& line : checks) result += "  " + line + '\n';
  if (!values.empty()) result += "Values:\n";
  for (std::string const& line : values) result += "  " + line + '\n';
  bool const hasTemplate =
      std::any_of(objects.begin(), objects.end(), [](ObjectText const& object) { return object.usesTemplate; });
  if (hasTemplate) result += "Templates:\n  shared:\n    Description: Parameters of several objects.\n";
  auto const addEntries = [&](char const* title, std::vector<EntryText> const& entries) {
    if (!entries.empty()) result.append("    ").append(title).append(":\n");
    for (EntryText const& entry : entries) {
      result += "      " + entry.name + ":" + (entry.lines.empty() ? " {}" : "") + '\n';
      for (std::string const& line : entry.lines) result += "        " + line + '\n';
    }
  };
  if (hasTemplate) addEntries("Parameters", shared);
  result += objects.empty() ? "" : "Objects:\n";
  for (ObjectText const& object : objects) {
    result += "  " + object.typePath + ":\n    Description: An object.\n";
    if (object.usesTemplate) result += "    Use: [shared]\n";
    addEntries("Parameters", object.params);
    addEntries("Children", object.children);
    for (ProgramEntry const& entry : object.programs) result += "    # program: " + entry.text() + '\n';
  }
  return result;
}

std::unique_ptr<PhysicsData> RuleBaseText::load() const {
  std::unique_ptr<PhysicsData> data = rules::parseRules(text());
  for (ObjectText const& object : objects) {
    for (ProgramEntry const& entry : object.programs) addProgram(data->addObject(object.typePath), entry);
  }
  // The rules of the root of the model, which rule files cannot name.
  ChildAvail topmost;
  topmost.type = "Case";
  topmost.required = true;
  topmost.singleton = true;
  topmost.coupled = true;
  (void)data->addObject("").addChild(std::move(topmost));
  return data;
}

int ReadingModifier::getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                     std::string& quantityType) const {
  std::string const& fluid = model->getParameterValue(objPath, "Fluid");
  quantityType = fluid == "Air" ? "Volume Flow" : "Mass Flow";
  return name == "Inflow" && fluid != "Oil" ? 1 : 0;
}

std::string ReadingModifier::getQuantityUnits(std::string const& quantityType, std::string const& /*units*/) const {
  return quantityType == "Mass Flow" ? "kg/s" : "m^3/s";
}

std::string SessionStep::text() const {
  std::string result = failingAllocation ? "with failing allocation " + std::to_string(*failingAllocation) + ", " : "";
  switch (kind) {
    case Kind::MakeEdit:
      return result + textOf(edit);
    case Kind::BaseUpdate:
      return result + "base update with\n" + listingOf(base);
    case Kind::Initialise:
      return result + "start again with the base\n" + listingOf(base) + " and the guide\n" + listingOf(guide);
    case Kind::InitialiseBasedOn:
      return result + "start again as a copy of the stator, with the base\n" + listingOf(base) + " and the guide\n" +
             listingOf(guide);
    case Kind::SetMark:
      return result + "set a mark";
    case Kind::RollBack:
      return result + "roll back to the open mark " + std::to_string(mark);
    case Kind::Release:
      return result + "release the open mark " + std::to_string(mark);
  }
  return result;
}

std::string SessionStart::text() const {
  return rules.text() + "# active root: " + root + (baseIsTree ? ", the base model is a tree" : "") +
         (gathersMessages ? ", beta messages are collected" : "") + "\n# base model:\n" + listingOf(base) +
         "# guide:\n" + listingOf(guide);
}

RandomRuleBase::RandomRuleBase(RandomNumbers numbers) : random_(std::move(numbers)) {
  addRules();
  start_.root = chance(4) ? "/Case" : RandomCase::root;
  if (chance(12)) start_.root = "";
  start_.base = someBase();
  start_.guide = someGuide();
  start_.baseIsTree = chance(2);
  start_.gathersMessages = chance(8);
}

Strings RandomRuleBase::someAmong(Strings items) {
  Strings some;
  while (!items.empty()) {
    auto const item = items.begin() + static_cast<std::ptrdiff_t>(pick(items.size()));
    if (!chance(3)) some.push_back(*item);
    items.erase(item);
  }
  return some;
}

void RandomRuleBase::addRules() {
  start_.rules.lists = {"fixed list: " + flowList(someAmong(valuePool)),
                        "list of the model: " + quoted("= " + someValues(2)),
                        "list of items: [{Value: Water, When: " + quoted(someCondition(1)) + "}, Air]"};
  start_.rules.checks = {"first check: " + quoted(someCondition(2)), "second check: " + quoted(someCondition(1))};
  start_.rules.values = {"number: " + std::to_string(pick(3)), "text of the model: " + quoted("= " + someText(1)),
                         "number of the model: " + quoted("= " + someNumber(1) + " + value('number')")};
  start_.rules.shared = {someParam("Shared"), someParam("Also Shared")};
  ObjectText top;
  top.typePath = "/Case";
  for (char const* name : {"Motion", "Fluid", "Level"}) top.params.push_back(someParam(name));
  EntryText domain{"Domain", {}};
  if (chance(2)) domain.lines.emplace_back("Required: yes");
  if (chance(2)) domain.lines.push_back("Default Names: " + flowList({"rotor", "stator"}));
  if (chance(4)) domain.lines.push_back("Allowed Names: " + flowList({"rotor", "stator", "a"}));
  top.children.push_back(domain);
  if (chance(2)) top.children.push_back(someChild("Zone"));
  start_.rules.objects.push_back(std::move(top));
  addObject("/Case/Domain", 0);
  if (chance(2)) addObject("/Case/Zone", 2);
}

void RandomRuleBase::addObject(std::string const& typePath, std::size_t depth) {
  ObjectText object;
  object.typePath = typePath;
  object.usesTemplate = chance(3);
  for (std::string const& name : someAmong(paramPool)) object.params.push_back(someParam(name));
  for (std::size_t n = pick(3); n > 0; --n) object.programs.push_back(someProgram("Program " + std::to_string(n)));
  Strings below;
  if (depth < deepest) below = someAmong(typePool);
  if (depth == 0 && below.empty()) below = {"Zone"};
  if (depth > 0 && below.size() > 2) below.resize(2);
  for (std::string const& type : below) object.children.push_back(someChild(type));
  start_.rules.objects.push_back(std::move(object));
  for (std::string const& type : below) {
    if (start_.rules.objects.size() < mostObjectTypes && !chance(8)) addObject(typePath + '/' + type, depth + 1);
  }
}

EntryText RandomRuleBase::someParam(std::string const& name) {
  static Strings const types = {"Integer", "Integer List", "Logical", "Logical List",
                                "Real",    "Real List",    "String",  "String List"};
  EntryText param{name, {}};
  auto& lines = param.lines;
  std::string type = chance(2) ? "String" : someOf(types);
  if (name == "Inflow") type = "Real";
  if (name == "Order") type = "String List";
  lines.push_back("Parameter Type: " + type);
  if (chance(2)) lines.emplace_back("Required: yes");
  if (chance(5)) lines.emplace_back("Context Rule: yes");
  if (chance(8)) lines.push_back("Context: " + flowList({someOf({"Water", "Air", "1"}), "a", ""}));
  if (chance(8)) lines.emplace_back("Validation Relaxed: yes");
  if (chance(8)) lines.push_back("Beta Message: The parameter " + name + " is new.");
  if (chance(2)) lines.push_back("Available: " + quoted(someAvailability()));
  bool const isList = type.ends_with("List");
  if (name == "Inflow" ? chance(6) : chance(2)) {
    addAllowedValues(param);
    if (isList && chance(3)) lines.emplace_back("Complete List Required: yes");
  }
  if (name == "Inflow") {
    lines.emplace_back("Default Value: 2 [m^3/s]");
  } else if (chance(2)) {
    lines.push_back("Default Value: " + (chance(2) ? quoted("= " + someText(2)) : quoted(someValue())));
  }
  if (chance(6)) {
    lines.push_back("Default Value Check List: [{When: " + quoted(someCondition(1)) +
                    ", Value: " + quoted("= " + someText(1)) + "}]");
  }
  if (chance(6)) {
    lines.push_back("Value Override Check List: [{When: " + quoted(someCondition(1)) +
                    ", Value: " + quoted("= " + someText(1)) + "}, {When: " + quoted(someCondition(0)) +
                    ", Value: " + quoted(someOf(valuePool)) + "}]");
  }
  if (type.starts_with("Integer") || type.starts_with("Real")) {
    if (chance(2)) lines.push_back("Lower Bound: " + quoted("= " + someNumber(1)));
    if (chance(2)) lines.push_back("Upper Bound: " + (chance(3) ? "8" : quoted("= " + someText(1))));
    if (chance(3)) {
      lines.push_back("Quantity Type: " + quoted("= if(" + someCondition(1) + ", 'Mass Flow', 'Volume Flow')"));
    }
  }
  return param;
}

void RandomRuleBase::addAllowedValues(EntryText& param) {
  auto& lines = param.lines;
  if (chance(2)) {
    lines.push_back("Ordered Allowed String List: " + flowList(someAmong(valuePool)));
  } else {
    lines.push_back("Value List Source: " + quoted(someList(valuePool)));
  }
  if (chance(3)) {
    lines.push_back("Allowed String List Checks: {Water: " + quoted(someCondition(1)) +
                    ", Oil: " + quoted(someCondition(1)) + "}");
  }
  if (chance(8)) lines.emplace_back("Unused Allowed String List: [Oil]");
  if (chance(8)) lines.emplace_back("Beta Values: {Water: Water is new.}");
  if (chance(4)) lines.push_back("Subset Value List Source: " + quoted(someList(valuePool)));
  if (chance(8)) lines.emplace_back("Allows Any Value: yes");
  if (chance(4)) lines.emplace_back("Available With No Allowed Values: yes");
  if (chance(4)) lines.emplace_back("Fallback To Blank Default: yes");
}

EntryText RandomRuleBase::someChild(std::string const& type) {
  EntryText child{type, {}};
  auto& lines = child.lines;
  if (chance(2)) lines.emplace_back("Required: yes");
  if (!chance(3)) lines.emplace_back("Coupled: yes");
  if (chance(8)) lines.push_back("Context: " + flowList({someOf({"Water", "Air", "1"}), "a", ""}));
  if (chance(8)) lines.push_back("Beta Message: The objects " + type + " are new.");
  if (chance(3)) lines.push_back("Available: " + quoted(someAvailability()));
  if (type == singletonType) {
    lines.emplace_back("Singleton: yes");
    return child;
  }
  if (chance(3)) {
    lines.push_back("Allowed Names: " + (chance(2) ? flowList(someAmong(namePool)) : quoted("= " + someNames())));
  }
  if (!chance(3)) {
    lines.push_back("Default Names: " + (chance(2) ? flowList(someAmong(namePool)) : quoted("= " + someNames())));
  }
  return child;
}

ProgramEntry RandomRuleBase::someProgram(std::string const& name) {
  ProgramEntry entry;
  entry.name = name;
  entry.function = static_cast<ProgramEntry::Function>(pick(ProgramEntry::Faulty + 1));
  switch (entry.function) {
    case ProgramEntry::ChildExists:
      entry.look = someComponent().substr(1);
      break;
    case ProgramEntry::Siblings:
      entry.look = someOf(typePool);
      break;
    case ProgramEntry::OwnValue:
    case ProgramEntry::ListByPath:
    case ProgramEntry::Faulty:
      entry.look = someOf(paramPool);
      entry.listsReads = chance(2);
      break;
    default:
      break;
  }
  return entry;
}

std::string RandomRuleBase::someParamPath() {
  std::string const name = someOf(paramPool);
  static Strings const near = {"", "", "", "../", "^Domain/", "^Zone/", "@/", "../../", "Turbulence/"};
  static Strings const far = {
      "/Case/",       "/Case/Domain:rotor/", "/Case/Domain:rotor/Zone:a/",    "/Case/Domain:stator/", "Zone:a/",
      "Boundary:ab/", "../Zone:b/",          "/Case/Domain:rotor/Turbulence/"};
  return "${" + someOf(chance(3) ? far : near) + name + '}';
}

std::string RandomRuleBase::someObjects() {
  static Strings const patterns = {"{Zone:*}",
                                   "{Boundary:*}",
                                   "{Layer:*}",
                                   "{*}",
                                   "{**}",
                                   "{../*}",
                                   "{../Zone:*}",
                                   "{^Domain/Zone:*}",
                                   "{^Domain/**}",
                                   "{/Case/Domain:*}",
                                   "{/Case/Domain:*/Zone:*}",
                                   "{/Case/Domain:rotor/Boundary:*}",
                                   "{/Case/**}",
                                   "{/Case/Domain:rotor/Zone:a}",
                                   "{Turbulence}",
                                   "{Zone:ab}",
                                   "{@/*}",
                                   "{..}",
                                   "{/*}"};
  return someOf(patterns);
}

/// Most conditions fail, and what is not available changes nothing else.
std::string RandomRuleBase::someAvailability() {
  std::string const condition = someCondition(2);
  return chance(3) ? condition : "not (" + condition + ") or ${Motion} == 'Air'";
}

std::string RandomRuleBase::someCondition(int depth) {
  int const kinds = depth > 0 ? 19 : 8;
  std::string const limit = std::to_string(pick(3));
  switch (pick(static_cast<std::size_t>(kinds))) {
    case 0:
    case 1:
      return someParamPath() + (chance(2) ? " == " : " != ") + literal(someOf(valuePool));
    case 2:
      return someParamPath() + (chance(2) ? " in " : " not in ") + literalList({someOf(valuePool), "Oil"});
    case 3:
      return someParamPath() + " > " + limit;
    case 4:
      return someParamPath() + " == " + someParamPath();
    case 5:
      return "exists(" + (chance(2) ? someObjects() : someParamPath()) + ")";
    case 6:
      return "count(" + someObjects() + ") > " + limit;
    case 7:
      return "name() == " + literal(someOf(namePool));
    case 8:
      return (chance(2) ? "any(" : "all(") + someObjects() + ", " + someCondition(depth - 1) + ")";
    case 9:
      return "count(" + someObjects() + ", " + someCondition(depth - 1) + ") >= " + limit;
    case 10:
      return literal(someOf(namePool)) + " in " + someNames();
    case 11:
      return "size(" + someValues(depth - 1) + ") > " + limit;
    case 12:
      return "not (" + someCondition(depth - 1) + ")";
    case 13:
      return "(" + someCondition(depth - 1) + (chance(2) ? " and " : " or ") + someCondition(depth - 1) + ")";
    case 15:
      return "any(o in " + someObjects() + ", ${o/" + someOf(paramPool) + "} == " + someParamPath() + " and " +
             someCondition(0) + ")";
    case 16:
      return "all(a in " + someObjects() + ", count(b in " + someObjects() + ", ${a/" + someOf(paramPool) +
             "} != ${b/" + someOf(paramPool) + "} or name(a) == name(b)) > " + limit + ")";
    case 17:
      return "matches(" + someText(depth - 1) + ", '.*[aei].*')";
    case 14:
      return "((" + someCondition(depth - 1) + ") implies " + someCondition(depth - 1) + ")";
    default:
      // A named check may not call itself, so those that are being made call none.
      if (start_.rules.checks.empty()) return someParamPath() + " == 'Water'";
      return chance(2) ? "check('first check')" : "check('second check')";
  }
}

std::string RandomRuleBase::someText(int depth) {
  switch (pick(depth > 0 ? 10 : 4)) {
    case 0:
    case 1:
      return literal(someOf(valuePool));
    case 9:
      return start_.rules.values.empty() ? "'Water'" : "value('text of the model')";
    case 2:
      return "text(" + someParamPath() + ")";
    case 3:
      return "name()";
    case 4:
      return "text(" + someNumber(depth - 1) + ")";
    case 5:
      return "join(" + someNames() + ", ',')";
    case 6:
      return "first(" + someValues(depth - 1) + ")";
    case 7:
      return "if(" + someCondition(depth - 1) + ", " + someText(depth - 1) + ", " + someText(depth - 1) + ")";
    default:
      // Changes with every walk, if it reads what it writes.
      return "text(number(" + someParamPath() + ") + 1)";
  }
}

std::string RandomRuleBase::someNumber(int depth) {
  switch (pick(depth > 0 ? 9 : 3)) {
    case 0:
      return std::to_string(pick(4));
    case 6:
      return "mod(" + someNumber(depth - 1) + ", " + someNumber(depth - 1) + ")";
    case 7:
      return "length(" + someText(depth - 1) + ")";
    case 8:
      return start_.rules.values.empty() ? "2" : "value('number of the model')";
    case 1:
      return "number(" + someParamPath() + ")";
    case 2:
      return "count(" + someObjects() + ")";
    case 3:
      return "count(" + someObjects() + ", " + someCondition(depth - 1) + ")";
    case 4:
      return "size(" + someValues(depth - 1) + ")";
    default:
      return "max(" + someValues(depth - 1) + ")";
  }
}

/// Names that the model gives to objects.
std::string RandomRuleBase::someNames() {
  switch (pick(4)) {
    case 0:
      return "names(filter(" + someObjects() + ", " + someCondition(0) + "))";
    case 1:
      return "union(names(" + someObjects() + "), " + literalList({someOf(namePool)}) + ")";
    case 2:
      return "difference(" + literalList(namePool) + ", names(" + someObjects() + "))";
    default:
      return "names(" + someObjects() + ")";
  }
}

/// Values of the model, or other texts of bounded length.
std::string RandomRuleBase::someValues(int depth) {
  static Strings const many = {"${Zone:*/", "${/Case/Domain:*/",    "${**/", "${/Case/Domain:*/Zone:*/",
                               "${../*/",   "${^Domain/Boundary:*/"};
  switch (pick(depth > 0 ? 8 : 3)) {
    case 6:
      return "duplicates(" + someValues(depth - 1) + ")";
    case 7:
      return "concat(" + someValues(depth - 1) + ", " + literalList({someOf(valuePool)}) + ")";
    case 0:
    case 1:
      return "values(" + someOf(many) + someOf(paramPool) + "})";
    case 2:
      return someNames();
    case 3:
      return "unique(union(" + someValues(depth - 1) + ", " + literalList({someOf(valuePool)}) + "))";
    case 4:
      return "intersection(" + someValues(depth - 1) + ", " + literalList(valuePool) + ")";
    default:
      return "paths(" + someObjects() + ")";
  }
}

std::string RandomRuleBase::someList(Strings const& pool) {
  switch (pick(5)) {
    case 0:
      return literalList(someAmong(pool));
    case 1:
      return "if(" + someCondition(1) + ", " + literalList(someAmong(pool)) + ", " + literalList(someAmong(pool)) + ")";
    case 2:
      return chance(2) ? "list('list of the model')" : "list('list of items')";
    case 3:
      return "union(" + someNames() + ", list('fixed list'))";
    default:
      return "union(" + literalList({someOf(pool)}) + ", " + someValues(1) + ")";
  }
}

std::string RandomRuleBase::someValue() {
  if (chance(4)) {
    return someOf({"", "  ", "Water,Air", "Air,Oil,Water", "a, ab", " Air", "3 [m^3/s]", "none", fault, "7 [kg/s]"});
  }
  return someOf(valuePool);
}

std::string RandomRuleBase::someComponent() {
  std::string const& type = someOf(typePool);
  return '/' + type + (type == singletonType ? std::string() : ':' + someOf(namePool));
}

/// A path of one of the object types of the rules, now and then of any types.
std::string RandomRuleBase::someObject() {
  std::string path = RandomCase::root;
  if (chance(8)) {
    for (std::size_t depth = pick(deepest); depth > 0; --depth) path += someComponent();
    return path;
  }
  constexpr std::string_view domain = "/Case/Domain";
  std::string const& typePath = start_.rules.objects[pick(start_.rules.objects.size())].typePath;
  if (!typePath.starts_with(domain)) return path;
  for (auto const& type : StringUtilities::splitValue(typePath.substr(domain.size()), '/')) {
    if (!type.empty()) path += '/' + type + (type == singletonType ? std::string() : ':' + someOf(namePool));
  }
  return path;
}

void RandomRuleBase::fill(ModelState& state, std::string const& domain) {
  for (std::size_t n = pick(8); n > 0; --n) {
    ObjectState& object = state[domain + someObject().substr(RandomCase::root.size())];
    for (std::string const& name : someAmong(paramPool)) object[name] = someValue();
  }
}

ModelState RandomRuleBase::someBase() {
  ModelState base;
  for (std::string const& name : someAmong({"Motion", "Fluid", "Level"})) base["/Case"][name] = someValue();
  if (!chance(3)) fill(base, RandomCase::root);
  if (chance(2)) fill(base, "/Case/Domain:stator");
  return base;
}

ModelState RandomRuleBase::someGuide() {
  ModelState guide;
  if (chance(2)) fill(guide, RandomCase::root);
  return guide;
}

SessionStep RandomRuleBase::nextStep(ProvisionalTDF const& state) {
  SessionStep step;
  if (chance(6)) {
    // As many marks as ends of marks, and more are rolled back than released.
    constexpr SessionStep::Kind kinds[] = {SessionStep::Kind::SetMark,  SessionStep::Kind::SetMark,
                                           SessionStep::Kind::SetMark,  SessionStep::Kind::RollBack,
                                           SessionStep::Kind::RollBack, SessionStep::Kind::Release};
    step.kind = kinds[pick(std::size(kinds))];
    step.mark = pick(4);
    return step;
  }
  if (!chance(12)) {
    step.edit = someEdit(state);
    return step;
  }
  step.base = someBase();
  step.kind = SessionStep::Kind::BaseUpdate;
  if (chance(4)) {
    step.kind = chance(3) ? SessionStep::Kind::InitialiseBasedOn : SessionStep::Kind::Initialise;
    step.guide = someGuide();
  }
  return step;
}

std::string RandomRuleBase::somePresentObject(ProvisionalTDF const& state) {
  std::string const root = state.getActiveRoot();
  Strings const objects = state.getPathExpansion(root + "/**", "");
  if (objects.empty()) return root;
  return someOf(objects);
}

/// Half of the edits are of what is present or on offer; the others may be of anything.
Edit RandomRuleBase::someEdit(ProvisionalTDF const& state) {
  Edit edit;
  auto const kind = pick(14);
  edit.kind = kind < 9 ? static_cast<Edit::Kind>(kind) : Edit::Kind::SetParam;
  edit.value = someValue();
  edit.name = someOf(paramPool);
  edit.path = chance(4) ? someObject() : somePresentObject(state);
  if (edit.path.empty() && edit.kind <= Edit::Kind::DeactivateParam) edit.path = RandomCase::root;
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      if (auto const params = state.getActiveTDFState().find(edit.path);
          params != state.getActiveTDFState().end() && !chance(4)) {
        edit.name = std::next(params->second.begin(), static_cast<std::ptrdiff_t>(pick(params->second.size())))->first;
      }
      if (chance(3)) {
        auto const allowed = state.getAllowedParamValues(edit.path, edit.name);
        if (!allowed.empty()) edit.value = someOf(allowed);
      }
      break;
    case Edit::Kind::ActivateParam:
    case Edit::Kind::DeactivateParam:
      if (auto const& offers = state.getAvailPotParams(); chance(2) && !offers.empty()) {
        auto const offer = std::next(offers.begin(), static_cast<std::ptrdiff_t>(pick(offers.size())));
        edit.path = offer->first;
        edit.name = offer->second;
      }
      break;
    case Edit::Kind::ActivateObject:
      if (auto const& offers = state.getAvailPotObjects(); chance(2) && !offers.empty()) edit.path = someOf(offers);
      break;
    case Edit::Kind::AddObject:
    case Edit::Kind::RemoveObject:
      if (chance(2)) edit.path = someObject();
      break;
    case Edit::Kind::DuplicateObject:
    case Edit::Kind::RenameObject:
      edit.name = chance(12) ? someOf({"", "a/b", "a:b", "Zone"}) : someOf(namePool);
      break;
    default:
      break;
  }
  if (chance(40)) {
    std::string const& root = RandomCase::root;
    edit.path = someOf({"", "/", "/Case", "/Case/Domain:stator", root + "2", root + "/", root + "//Zone:a",
                        root + "/Zone:", root + "/Zone:a:b", "no path"});
  }
  return edit;
}

}  // namespace tarn::test

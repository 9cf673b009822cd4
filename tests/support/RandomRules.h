#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ModelState.h>

#include "support/RuleSheet.h"

/// Random rules, models and edits for the object `/Case/Domain:rotor`, all out of one seed, or out of bytes.
///
///     RandomCase random(seed);
///     PhysicsData rules;
///     random.rules.fill(rules);
///     MapModel base(random.base);
///     for (int i = 0; i < 20; ++i) {
///       if (auto const edit = random.nextEdit()) (void)resultOf(*edit, state);
///     }
///
/// Names and values come from small pools, so that conditions hold now and then, items collide, and names begin with
/// each other. The same seed gives the same case on every machine: no standard distribution is used.
namespace tarn::test {

/// The numbers that a case is made of: those of a seed, or one for each byte and, when the bytes are used up, those of
/// a fixed seed. So one byte more or less changes what is made of it and of what follows, not what came before.
class RandomNumbers {
 public:
  explicit RandomNumbers(std::uint32_t seed) : rest_(seed) {}
  explicit RandomNumbers(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)), rest_(1) {}

  std::uint32_t operator()() {
    if (next_ < bytes_.size()) return bytes_[next_++];
    return static_cast<std::uint32_t>(rest_());
  }
  [[nodiscard]] bool hasBytes() const { return next_ < bytes_.size(); }

 private:
  std::vector<std::uint8_t> bytes_;
  std::size_t next_ = 0;
  std::mt19937 rest_;  // its sequence is fixed by the standard
};

/// How wild a case is.
struct RandomProfile {
  /// Rules read parameters that follow them, so that one walk need not settle a state; there are default
  /// names, blank defaults, objects that hold nothing and types without rules; and the base model holds what may be
  /// edited.
  bool wild = true;
};

class RandomCase {
 public:
  explicit RandomCase(std::uint32_t seed, RandomProfile profile = {}) : RandomCase(RandomNumbers(seed), profile) {}
  explicit RandomCase(RandomNumbers numbers, RandomProfile profile = {})
      : random_(std::move(numbers)), profile_(profile) {
    addObject("/Case/Domain", 0);
    base["/Case"] = someValues({"Motion", "Fluid", "Level"});
    fillBranch(base, profile_.wild);
    if (chance(2)) fillBranch(guide, true);
  }

  /// Where the edits come from when it is not where the rules came from.
  void continueWith(RandomNumbers numbers) { random_ = std::move(numbers); }
  /// Whether there are bytes left to make an edit of.
  [[nodiscard]] bool hasBytes() const { return random_.hasBytes(); }

  /// Empty means a change of the base model, which the test makes.
  std::optional<Edit> nextEdit() {
    constexpr int baseUpdate = 9;
    int kind = static_cast<int>(pick(profile_.wild ? 10 : 9));
    if (chance(3)) kind = static_cast<int>(Edit::Kind::SetParam);
    Edit edit;
    bool const isOfNamedObject = kind >= static_cast<int>(Edit::Kind::AddObject);
    edit.path = isOfNamedObject ? someNamedObject() : someObject();
    if (chance(25)) {
      edit.path = someOf({"", "/", "/Case", "/Case/Domain:stator", root + "2", root + "/", root + "//Zone:a",
                          root + "/Zone:", root + "/Zone:a:b", "no path"});
    }
    if (kind == static_cast<int>(Edit::Kind::AddObject) && chance(25)) edit.path = root + "/Zone:Zone";
    if (kind <= static_cast<int>(Edit::Kind::DeactivateParam)) {
      edit.name = someName(edit.path);
      edit.value = someValue();
    } else {
      edit.name = chance(12) ? someOf({"", "a/b", "a:b", "Zone"}) : someOf(names());
    }
    if (kind == baseUpdate) return std::nullopt;
    edit.kind = static_cast<Edit::Kind>(kind);
    return edit;
  }

  /// Changes the base model as another user would: values of `/Case`, and the branch of the edited object.
  void changeBase() {
    base["/Case"] = someValues({"Motion", "Fluid", "Level"});
    if (!profile_.wild) return;
    for (auto entry = base.begin(); entry != base.end();) {
      entry = entry->first != "/Case" && chance(3) ? base.erase(entry) : std::next(entry);
    }
    fillBranch(base, true);
  }

  inline static std::string const root = "/Case/Domain:rotor";

  RuleSheet rules;
  ModelState base;
  ModelState guide;

  [[nodiscard]] static std::vector<std::string> types() { return {"Zone", "Boundary", "Turbulence"}; }
  [[nodiscard]] static std::vector<std::string> names() { return {"a", "ab", "b"}; }

 private:
  [[nodiscard]] std::size_t pick(std::size_t n) { return random_() % n; }
  /// True once in `n` times.
  [[nodiscard]] bool chance(std::size_t n) { return pick(n) == 0; }
  [[nodiscard]] std::string someOf(std::vector<std::string> const& items) { return items[pick(items.size())]; }
  [[nodiscard]] std::vector<std::string> someAmong(std::vector<std::string> items) {
    std::vector<std::string> some;
    while (!items.empty()) {
      auto const item = items.begin() + static_cast<std::ptrdiff_t>(pick(items.size()));
      if (!chance(3)) some.push_back(*item);
      items.erase(item);
    }
    return some;
  }

  static std::vector<std::string> values() { return {"Water", "Air", "Oil", "Steam", "1", "2.5"}; }
  static std::vector<std::string> paramNames() { return {"Motion", "Fluid", "Inflow", "Level", "Order", "Title"}; }

  std::string someValue() {
    if (chance(4)) {
      return someOf({"", "  ", "Water,Air", "Air,Oil,Water", "Steam,Steam", " Air", "3 [m^3/s]", "Water, Air", "none"});
    }
    return someOf(values());
  }
  ObjectState someValues(std::vector<std::string> const& params) {
    ObjectState state;
    for (std::string const& name : someAmong(params)) state[name] = someValue();
    return state;
  }

  /// A parameter that a rule may look at, from the entry at `place` of an object that has `params`.
  LookSheet someLook(std::vector<std::string> const& params, std::size_t place) {
    LookSheet look;
    look.where = static_cast<LookSheet::Where>(pick(3));
    look.name = someOf(paramNames());
    if (look.where == LookSheet::Case) look.name = someOf({"Motion", "Fluid", "Level"});
    if (look.where == LookSheet::Case && look.name == "Level" && profile_.wild) look.where = LookSheet::Zone;
    if (look.where == LookSheet::Own) {
      std::size_t const visible = profile_.wild ? params.size() : place;
      if (visible == 0) {
        look.where = LookSheet::Case;
        look.name = "Motion";
      } else {
        look.name = params[pick(visible)];
      }
    }
    return look;
  }
  ConditionSheet someCondition(std::vector<std::string> const& params, std::size_t place) {
    return {someLook(params, place), chance(4) ? "" : someOf(values()), chance(2)};
  }
  ListSheet someList(std::vector<std::string> const& params, std::size_t place, std::vector<std::string> const& pool) {
    return {someCondition(params, place), someAmong(pool), someAmong(pool)};
  }
  TextSheet someText(std::vector<std::string> const& params, std::size_t place) {
    TextSheet sheet;
    if (chance(3)) {
      sheet.copyOf = someLook(params, place);
    } else {
      sheet.fixed = someValue();
    }
    return sheet;
  }
  std::vector<std::string> someContexts() {
    return chance(4) ? someAmong({"Water", "Air", "1", ""}) : std::vector<std::string>();
  }

  void addObject(std::string const& typePath, int depth) {
    ObjectSheet object;
    object.typePath = typePath;
    std::vector<std::string> const params = someAmong(paramNames());
    for (std::size_t place = 0; place < params.size(); ++place) object.params.push_back(someParam(params, place));
    if (!profile_.wild) {
      // An object that holds nothing is not in a saved state.
      ParamSheet kind;
      kind.name = "Kind";
      kind.required = true;
      kind.byDefault = TextSheet{"Any", std::nullopt};
      object.params.push_back(kind);
    }
    std::vector<std::string> below;
    if (depth < 2) below = someAmong(types());
    for (std::string const& type : below) object.children.push_back(someChild(type, params));
    rules.objects.push_back(object);
    for (std::string const& type : below) {
      if (!profile_.wild || !chance(8)) addObject(typePath + '/' + type, depth + 1);
    }
  }

  ParamSheet someParam(std::vector<std::string> const& params, std::size_t place) {
    ParamSheet param;
    param.name = params[place];
    param.type = static_cast<TDFParam::Type>(pick(8));
    if (param.name == "Inflow") param.type = TDFParam::Real;
    if (param.name == "Order") param.type = TDFParam::StringList;
    param.required = chance(2);
    param.relaxed = chance(6);
    param.contextRule = chance(4);
    param.contexts = someContexts();
    if (chance(3)) param.available = someCondition(params, place);
    if (chance(2)) {
      param.allowed = someList(params, place, values());
      if (chance(3)) param.subset = someList(params, place, values());
      param.anyValueAllowed = chance(8);
      param.availableWithNoAllowedValues = chance(4);
      param.completeListRequired = chance(4);
      param.fallbackToBlankDefault = profile_.wild && chance(4);
    }
    if (chance(2)) param.byDefault = someText(params, place);
    for (std::size_t n = pick(5); n > 3; --n) {
      param.overrides.emplace_back(someCondition(params, place), someText(params, place));
    }
    if (!profile_.wild && param.allowed) {
      // A value that was not asked for and would be refused if it were cannot be saved and asked for again.
      param.anyValueAllowed = false;
      param.overrides.clear();
      param.subset.reset();
      param.availableWithNoAllowedValues = false;
      param.completeListRequired = param.completeListRequired && TDFParam::isListType(param.type);
      if (param.byDefault) param.byDefault = TextSheet{someOf(values()), std::nullopt};
    }
    return param;
  }

  ChildSheet someChild(std::string const& type, std::vector<std::string> const& params) {
    ChildSheet child;
    child.type = type;
    child.required = chance(2);
    child.singleton = type == "Turbulence";
    child.coupled = !chance(3);
    child.contexts = someContexts();
    if (chance(4)) child.available = someCondition(params, params.size());
    if (chance(3)) child.allowedNames = someList(params, params.size(), names());
    if (profile_.wild && chance(2)) child.defaultNames = someAmong(names());
    return child;
  }

  /// A path to an object that may be there, of up to two components below the root.
  std::string someObject() {
    std::string path = root;
    for (std::size_t depth = pick(3); depth > 0; --depth) path += someComponent();
    return path;
  }
  std::string someNamedObject() {
    std::string path = chance(3) ? root + someComponent() : root;
    return path + '/' + someOf({"Zone", "Boundary"}) + ':' + someOf(names());
  }
  std::string someComponent() {
    std::string const type = someOf(types());
    return '/' + type + (type == "Turbulence" ? std::string() : ':' + someOf(names()));
  }
  std::string someName(std::string const& /*path*/) { return chance(20) ? "Unknown" : someOf(paramNames()); }

  /// Puts objects below the root into a state; of a tame case only those that are mirrored, since what the user takes
  /// away of the others comes back with the base model.
  void fillBranch(ModelState& state, bool any) {
    if (any && chance(2)) state[root] = someValues(paramNames());
    for (std::size_t n = pick(4); n > 0; --n) {
      std::string const path = someObject();
      if (any || isMirrored(path)) {
        ObjectState const values = someValues(paramNames());
        state[path].insert(values.begin(), values.end());
      }
    }
  }
  bool isMirrored(std::string const& path) const {
    if (path == root) return false;
    std::string const below = path.substr(root.size() + 1);
    std::string const type = below.substr(0, below.find_first_of("/:"));
    for (ChildSheet const& child : rules.objects.front().children) {
      if (child.type == type) return !child.required && !child.coupled && !child.allowedNames;
    }
    return false;
  }

  RandomNumbers random_;
  RandomProfile profile_;
};

}  // namespace tarn::test

// The rules of the case written by hand in C++ over maps of strings. A program without rule files would do this if it
// kept its model in the simplest form that still has paths and names. This is a lower bound for a rule engine on such a
// model.
//
// The rules of each type of object are written once, in a function that takes a visitor. One visitor judges the model.
// The other visitor corrects it and lists the changes.
#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Peer.h"

namespace {

using namespace tarn::benchmarks;

// Can be asked with parts of texts, which std::map<std::string, ...> cannot.
using Values = std::map<std::string, std::string, std::less<>>;
using Store = std::map<std::string, Values, std::less<>>;

Store storeOf(tarn::ModelState const& state) {
  Store store;
  for (auto const& [path, values] : state) store.emplace_hint(store.end(), path, Values(values.begin(), values.end()));
  return store;
}

struct AnyText {
  bool operator()(std::string_view) const { return true; }
};

struct Truth {
  bool operator()(std::string_view value) const { return value == "true" || value == "false"; }
};

struct Number {
  double low = -std::numeric_limits<double>::infinity();
  double high = std::numeric_limits<double>::infinity();

  bool operator()(std::string_view value) const {
    double number = 0;
    auto const [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    return error == std::errc() && end == value.data() + value.size() && number >= low && number <= high;
  }
};

struct OneOf {
  std::string_view first, second, third = second;

  bool operator()(std::string_view value) const { return value == first || value == second || value == third; }
};

/// Properties of the whole case.
struct Situation {
  bool turbulent = false;
  bool transient = false;
  bool heat = false;

  explicit Situation(Values const& values)
      : turbulent(holds(values, "Flow Regime", "Turbulent")),
        transient(holds(values, "Time Dependence", "Transient")),
        heat(holds(values, "Energy Equation", "true")) {}

 private:
  static bool holds(Values const& values, std::string_view name, std::string_view value) {
    auto const found = values.find(name);
    return found != values.end() && found->second == value;
  }
};

// The rules. `required` and `optional` of a visitor return the value that counts from then on, "" when there is none.

template <class Visitor>
void visitCase(Visitor& visitor) {
  visitor.required("Flow Regime", true, "Laminar", OneOf{"Laminar", "Turbulent"});
  visitor.required("Time Dependence", true, "Steady", OneOf{"Steady", "Transient"});
  visitor.required("Energy Equation", true, "false", Truth());
}

template <class Visitor>
void visitDomain(Visitor& visitor, Situation const& now) {
  visitor.required("Material", true, "Water", OneOf{"Water", "Air", "Oil"});
  visitor.required("Reference Pressure", true, "101325", Number{0, 1e9});
  bool const rotates = visitor.required("Motion", true, "Stationary", OneOf{"Stationary", "Rotating"}) == "Rotating";
  visitor.required("Angular Velocity", rotates, "0", Number());
  visitor.required("Time Step", now.transient, "0.01", Number());
  bool const floats = visitor.required("Buoyant", true, "false", Truth()) == "true";
  visitor.required("Gravity", floats, "9.81", Number());
  visitor.required("Reference Temperature", now.heat, "300", Number());
  visitor.optional("Notes", true, AnyText());
  visitor.optional("Label", true, AnyText());
}

template <class Visitor>
void visitTurbulence(Visitor& visitor, Situation const& now) {
  visitor.required("Model", true, "SST", now.transient ? OneOf{"k-epsilon", "SST", "LES"} : OneOf{"k-epsilon", "SST"});
  visitor.required("Intensity", true, "0.05", Number{0, 1});
}

template <class Visitor>
void visitHeat(Visitor& visitor) {
  bool const total = visitor.required("Option", true, "Thermal", OneOf{"Thermal", "Total"}) == "Total";
  visitor.required("Viscous Work", total, "false", Truth());
}

/// Whether there are inlets and outlets, for the rule about the case as a whole.
struct Flow {
  bool enters = false;
  bool leaves = false;

  [[nodiscard]] bool isPossible() const { return enters || !leaves; }
};

template <class Visitor>
void visitBoundary(Visitor& visitor, Situation const& now, Flow& flow) {
  std::string_view const kind = visitor.required("Kind", true, "Wall", OneOf{"Inlet", "Outlet", "Wall"});
  bool const inlet = kind == "Inlet";
  bool const outlet = kind == "Outlet";
  bool const wall = kind == "Wall";
  flow.enters |= inlet;
  flow.leaves |= outlet;
  visitor.required("Velocity", inlet, "1", Number());
  visitor.required("Pressure", outlet, "0", Number());
  bool const sticks = visitor.required("Wall Model", wall, "NoSlip", OneOf{"NoSlip", "FreeSlip"}) == "NoSlip";
  visitor.optional("Roughness", wall && sticks && now.turbulent, Number());
  visitor.required("Temperature", now.heat && (inlet || wall), "300", Number());
  visitor.required("Turbulence Intensity", inlet && now.turbulent, "0.05", Number());
  visitor.optional("Supersonic", inlet || outlet, Truth());
}

struct Finding {
  std::string object;
  std::string parameter;
};

class Judge {
 public:
  Judge(std::string const& path, Values const& values, std::vector<Finding>& findings)
      : path_(path), values_(values), findings_(findings) {}

  template <class Accepts>
  std::string_view required(std::string_view name, bool available, std::string_view, Accepts accepts) {
    return look(name, available, available, accepts);
  }
  template <class Accepts>
  std::string_view optional(std::string_view name, bool available, Accepts accepts) {
    return look(name, available, false, accepts);
  }
  /// Names that no rule knows.
  void judgeTheRest() {
    if (seen_ == values_.size()) return;
    for (auto const& [name, value] : values_) {
      if (std::find(known_.begin(), known_.begin() + knownCount_, name) == known_.begin() + knownCount_) add(name);
    }
  }

 private:
  template <class Accepts>
  std::string_view look(std::string_view name, bool available, bool wanted, Accepts accepts) {
    known_[knownCount_++] = name;
    auto const found = values_.find(name);
    if (found == values_.end()) {
      if (wanted) add(name);
      return {};
    }
    ++seen_;
    if (!available || !accepts(found->second)) add(name);
    return found->second;
  }

  void add(std::string_view name) { findings_.push_back({path_, std::string(name)}); }

  std::string const& path_;
  Values const& values_;
  std::vector<Finding>& findings_;
  std::size_t seen_ = 0;
  std::array<std::string_view, 10> known_;
  std::ptrdiff_t knownCount_ = 0;
};

std::string_view typeOf(std::string_view path) {
  std::string_view const last = path.substr(path.rfind('/') + 1);
  return last.substr(0, last.find(':'));
}

std::vector<Finding> validate(Store const& store) {
  std::vector<Finding> findings;
  Situation const now(store.find("/Case")->second);
  Flow flow;
  // In the order of paths a domain's children follow it with nothing in between.
  std::string const* domain = nullptr;
  bool hasTurbulence = true;
  auto const leaveDomain = [&] {
    if (domain && now.turbulent && !hasTurbulence) findings.push_back({*domain, "Turbulence"});
  };
  for (auto const& [path, values] : store) {
    std::string_view const type = typeOf(path);
    Judge judge(path, values, findings);
    if (type == "Boundary") {
      visitBoundary(judge, now, flow);
    } else if (type == "Domain") {
      leaveDomain();
      domain = &path;
      hasTurbulence = false;
      visitDomain(judge, now);
    } else if (type == "Turbulence" && now.turbulent) {
      hasTurbulence = true;
      visitTurbulence(judge, now);
    } else if (type == "Heat" && now.heat) {
      visitHeat(judge);
    } else if (type == "Case") {
      visitCase(judge);
    } else {
      findings.push_back({path, ""});
      continue;
    }
    judge.judgeTheRest();
  }
  leaveDomain();
  if (!flow.isPossible()) findings.push_back({"", ""});
  return findings;
}

/// The changes of an edit, as lists of full paths of parameters.
struct Changes {
  std::vector<std::string> added, removed, modified, potential;
  bool flowIsPossible = true;
};

class Editor {
 public:
  Editor(std::string const& path, Values& values, Changes& changes) : path_(path), values_(values), changes_(changes) {}

  template <class Accepts>
  std::string_view required(std::string_view name, bool available, std::string_view fallback, Accepts accepts) {
    auto const found = values_.find(name);
    if (found == values_.end()) {
      if (!available) return {};
      changes_.added.push_back(full(name));
      return values_.emplace(name, fallback).first->second;
    }
    if (!available) {
      changes_.removed.push_back(full(name));
      values_.erase(found);
      return {};
    }
    if (!accepts(found->second)) {
      changes_.modified.push_back(full(name));
      found->second = fallback;
    }
    return found->second;
  }

  template <class Accepts>
  std::string_view optional(std::string_view name, bool available, Accepts accepts) {
    auto const found = values_.find(name);
    if (found == values_.end()) {
      if (available) changes_.potential.push_back(full(name));
      return {};
    }
    if (available && accepts(found->second)) return found->second;
    changes_.removed.push_back(full(name));
    values_.erase(found);
    return {};
  }

 private:
  [[nodiscard]] std::string full(std::string_view name) const {
    std::string result;
    result.reserve(path_.size() + 1 + name.size());
    return result.append(path_).append(1, '/').append(name);
  }

  std::string const& path_;
  Values& values_;
  Changes& changes_;
};

/// Brings the whole store in line with the rules, and says what that took. Without a full walk nobody would know what
/// is potential.
Changes update(Store& store) {
  Changes changes;
  Flow flow;
  auto const top = store.find("/Case");
  Editor topEditor(top->first, top->second, changes);
  visitCase(topEditor);
  Situation const now(top->second);
  for (auto object = std::next(top); object != store.end();) {
    auto& [path, values] = *object;
    std::string_view const type = typeOf(path);
    bool const isTurbulence = type == "Turbulence";
    if ((isTurbulence && !now.turbulent) || (type == "Heat" && !now.heat)) {
      for (auto const& [name, value] : values) changes.removed.push_back(path + "/" + name);
      object = store.erase(object);
      continue;
    }
    Editor editor(path, values, changes);
    if (type == "Boundary") {
      visitBoundary(editor, now, flow);
    } else if (isTurbulence) {
      visitTurbulence(editor, now);
    } else if (type == "Heat") {
      visitHeat(editor);
    } else {
      visitDomain(editor, now);
      // A new turbulence follows its domain, so it will still be visited and gets its parameters then.
      if (now.turbulent) store.try_emplace(path + "/Turbulence");
      if (now.heat && !store.contains(path + "/Heat")) changes.potential.push_back(path + "/Heat");
    }
    ++object;
  }
  changes.flowIsPossible = flow.isPossible();
  return changes;
}

EditCounts countsOf(Changes const& changes, Store const& store) {
  EditCounts counts{0, changes.added.size(), changes.removed.size(), changes.modified.size(), changes.potential.size()};
  for (auto const& [path, values] : store) counts.parameters += values.size();
  return counts;
}

void checkCounts(CaseWorkload const& workload) {
  requireSame(validate(storeOf(workload.valid())).size(), 0, "findings in the sound case");
  std::vector<std::string> objects;
  for (Finding const& finding : validate(storeOf(workload.faulty()))) objects.push_back(finding.object);
  std::sort(objects.begin(), objects.end());
  requireSame(objects.size(), workload.findings().size(), "findings in the faulty case");
  if (objects != workload.findings()) throw std::runtime_error("the findings are about other objects");
  requireSame(validate(storeOf(workload.withoutInlets())).size(), 1, "findings without inlets");
  for (Mistake const& mistake : workload.mistakes()) {
    requireSame(validate(storeOf(workload.with(mistake))).empty(), false, "passes with " + mistake.what);
  }

  Store store = storeOf(workload.valid());
  for (CaseEdit const& edit : editsOf(workload, Editing::Plain)) {
    store.find(edit.object)->second.find(edit.parameter)->second = edit.value;
    Changes const changes = update(store);
    requireSame(countsOf(changes, store), edit.expected, edit.what);
    requireSame(changes.flowIsPossible, true, "a possible flow after " + edit.what);
  }
  Store bare = storeOf(workload.bare());
  Changes const changes = update(bare);
  requireSame(countsOf(changes, bare), countsFromBare(workload), "the bare case");
}

void measure(CaseWorkload const& workload) {
  checkCounts(workload);

  // The model differs in one value from that of the last time; a program that keeps nothing does not profit from it.
  Store sound = storeOf(workload.valid());
  std::size_t runs = 0;
  printTime("validate", medianOfBatches([&] {
              sound.find("/Case/Domain:d0")->second.find("Notes")->second = runs++ % 2 ? "one" : "other";
              requireSame(validate(sound).size(), 0, "findings");
            }));
  Store const faulty = storeOf(workload.faulty());
  printTime("validate faulty",
            medianOfBatches([&] { requireSame(validate(faulty).size(), workload.findings().size(), "findings"); }));

  Store edited = storeOf(workload.valid());
  std::vector<std::string> inlets;
  for (std::size_t i = 0; i < workload.domains(); ++i) inlets.push_back(workload.inletOf(workload.domains() / 2 + i));
  runs = 0;
  printTime("edit local", medianOfBatches([&] {
              std::string const& inlet = inlets[runs / 2 % inlets.size()];
              edited.find(inlet)->second.find("Kind")->second = runs % 2 ? "Inlet" : "Wall";
              requireSame(update(edited).added.size(), runs++ % 2 ? 2 : 1, "added");
            }));
  edited = storeOf(workload.valid());
  runs = 0;
  printTime("edit global", medianOfBatches([&] {
              edited.find("/Case")->second.find("Flow Regime")->second = runs % 2 ? "Turbulent" : "Laminar";
              Changes const changes = update(edited);
              requireSame(changes.added.empty(), runs++ % 2 == 0, "added nothing");
            }));
}

}  // namespace

int main(int argc, char** argv) {
  return runPeer(argc, argv, measure);
}

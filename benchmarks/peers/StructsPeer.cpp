// The rules of the case written by hand in C++ over structures with a member for every parameter: enumerations,
// numbers, and a bit for each parameter that is present. There are no paths, names or strings. No program that
// evaluates these rules can be much faster. The difference to this program is the price of everything else.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

#include "Peer.h"

namespace {

using namespace tarn::benchmarks;

/// Parameters of one object, a bit each.
using Set = std::uint32_t;

namespace boundary {
enum : Set {
  Kind = 1,
  Velocity = 2,
  Pressure = 4,
  WallModel = 8,
  Roughness = 16,
  Temperature = 32,
  Intensity = 64,
  Supersonic = 128
};
constexpr Set optional = Roughness | Supersonic;
}  // namespace boundary

namespace domain {
// Those of the turbulence and of the heat are among them, and whether there are such objects at all.
enum : Set {
  Material = 1,
  ReferencePressure = 2,
  Motion = 4,
  AngularVelocity = 8,
  TimeStep = 16,
  Buoyant = 32,
  Gravity = 64,
  ReferenceTemperature = 128,
  Notes = 256,
  Label = 512,
  Model = 1024,
  Intensity = 2048,
  Option = 4096,
  ViscousWork = 8192,
  Turbulence = 1 << 14,
  Heat = 1 << 15
};
constexpr Set optional = Notes | Label | Heat;
constexpr Set objects = Turbulence | Heat;
}  // namespace domain

/// A value that the parameter cannot have.
constexpr std::uint8_t unknown = 255;
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

enum class Kind : std::uint8_t { Inlet, Outlet, Wall };

struct Boundary {
  Set present = 0;
  Kind kind = Kind::Wall;
  std::uint8_t wallModel = 0, supersonic = 0;
  double velocity = 1, pressure = 0, roughness = 0, temperature = 300, intensity = 0.05;
};

struct Domain {
  Set present = 0;
  std::uint8_t material = 0, motion = 0, buoyant = 0, model = 1, option = 0, viscousWork = 0;
  double referencePressure = 101325, angularVelocity = 0, timeStep = 0.01, gravity = 9.81, referenceTemperature = 300,
         intensity = 0.05;
  std::array<Boundary, 5> boundaries;
};

struct Case {
  bool turbulent = false, transient = false, heat = false;
  std::vector<Domain> domains;
};

/// Which parameters the rules offer and which of them they require.
struct Rules {
  Set available;
  Set required;
};

constexpr Set onlyIf(bool condition, Set set) {
  return condition ? set : 0;
}

Rules rulesOf(Boundary const& now, Case const& all) {
  using namespace boundary;
  switch (now.kind) {
    case ::Kind::Inlet: {
      Set const required =
          boundary::Kind | Velocity | onlyIf(all.heat, Temperature) | onlyIf(all.turbulent, boundary::Intensity);
      return {required | Supersonic, required};
    }
    case ::Kind::Outlet:
      return {boundary::Kind | Pressure | Supersonic, boundary::Kind | Pressure};
    default: {
      Set const required = boundary::Kind | WallModel | onlyIf(all.heat, Temperature);
      return {required | onlyIf(all.turbulent && now.wallModel == 0, Roughness), required};
    }
  }
}

Rules rulesOf(Domain const& now, Case const& all) {
  using namespace domain;
  Set const heat = onlyIf(all.heat && (now.present & Heat), Option | onlyIf(now.option == 1, ViscousWork));
  Set const required = Material | ReferencePressure | Motion | onlyIf(now.motion == 1, AngularVelocity) |
                       onlyIf(all.transient, TimeStep) | Buoyant | onlyIf(now.buoyant == 1, Gravity) |
                       onlyIf(all.heat, ReferenceTemperature) |
                       onlyIf(all.turbulent, Turbulence | Model | domain::Intensity) | heat;
  return {required | Notes | Label | onlyIf(all.heat, Heat), required};
}

bool isNumber(double value) {
  return value == value;
}
bool isWithin(double value, double low, double high) {
  return value >= low && value <= high;
}

Set refusedOf(Boundary const& now, Case const&) {
  using namespace boundary;
  return now.present & (onlyIf(now.wallModel == unknown, WallModel) | onlyIf(now.supersonic == unknown, Supersonic) |
                        onlyIf(!isNumber(now.velocity), Velocity) | onlyIf(!isNumber(now.pressure), Pressure) |
                        onlyIf(!isNumber(now.roughness), Roughness) | onlyIf(!isNumber(now.temperature), Temperature) |
                        onlyIf(!isNumber(now.intensity), boundary::Intensity));
}

Set refusedOf(Domain const& now, Case const& all) {
  using namespace domain;
  return now.present &
         (onlyIf(now.material == unknown, Material) |
          onlyIf(!isWithin(now.referencePressure, 0, 1e9), ReferencePressure) | onlyIf(now.motion == unknown, Motion) |
          onlyIf(!isNumber(now.angularVelocity), AngularVelocity) | onlyIf(!isNumber(now.timeStep), TimeStep) |
          onlyIf(now.buoyant == unknown, Buoyant) | onlyIf(!isNumber(now.gravity), Gravity) |
          onlyIf(!isNumber(now.referenceTemperature), ReferenceTemperature) |
          onlyIf(now.model == unknown || (now.model == 2 && !all.transient), Model) |
          onlyIf(!isWithin(now.intensity, 0, 1), domain::Intensity) | onlyIf(now.option == unknown, Option) |
          onlyIf(now.viscousWork == unknown, ViscousWork));
}

/// One parameter, or all of a set, of one object. A boundary of -1 is the domain itself.
struct Item {
  std::uint32_t domain;
  std::int8_t boundary;
  Set parameters;
};

/// The findings, and the number of parameters. A missing object is a single finding without its contents.
struct Verdict {
  std::vector<Item> findings;
  std::size_t count = 0;
  bool flowIsPossible = true;
};

void validate(Case const& all, Verdict& verdict) {
  verdict = {std::move(verdict.findings), 0, true};
  verdict.findings.clear();
  bool enters = false;
  bool leaves = false;
  auto const judge = [&](auto const& object, Set hidden, std::size_t domain, int boundary) {
    Rules const rules = rulesOf(object, all);
    Set const wrong = ((rules.required & ~object.present) | (object.present & ~rules.available) |
                       (refusedOf(object, all) & rules.available)) &
                      ~hidden;
    if (wrong == 0) return;
    verdict.findings.push_back({static_cast<std::uint32_t>(domain), static_cast<std::int8_t>(boundary), wrong});
    verdict.count += static_cast<std::size_t>(std::popcount(wrong));
  };
  for (std::size_t i = 0; i < all.domains.size(); ++i) {
    Domain const& domain = all.domains[i];
    judge(domain, onlyIf(!(domain.present & domain::Turbulence), domain::Model | domain::Intensity), i, -1);
    for (std::size_t j = 0; j < domain.boundaries.size(); ++j) {
      Boundary const& boundary = domain.boundaries[j];
      judge(boundary, 0, i, static_cast<int>(j));
      enters |= boundary.kind == Kind::Inlet;
      leaves |= boundary.kind == Kind::Outlet;
    }
  }
  verdict.flowIsPossible = enters || !leaves;
}

struct Changes {
  std::vector<Item> added, removed, modified, potential;
  bool flowIsPossible = true;
};

void setDefaults(Boundary& object, Set parameters) {
  using namespace boundary;
  Boundary const fresh;
  if (parameters & boundary::Kind) object.kind = fresh.kind;
  if (parameters & Velocity) object.velocity = fresh.velocity;
  if (parameters & Pressure) object.pressure = fresh.pressure;
  if (parameters & WallModel) object.wallModel = fresh.wallModel;
  if (parameters & Temperature) object.temperature = fresh.temperature;
  if (parameters & boundary::Intensity) object.intensity = fresh.intensity;
}

void setDefaults(Domain& object, Set parameters) {
  using namespace domain;
  Domain const fresh;
  if (parameters & Material) object.material = fresh.material;
  if (parameters & ReferencePressure) object.referencePressure = fresh.referencePressure;
  if (parameters & Motion) object.motion = fresh.motion;
  if (parameters & AngularVelocity) object.angularVelocity = fresh.angularVelocity;
  if (parameters & TimeStep) object.timeStep = fresh.timeStep;
  if (parameters & Buoyant) object.buoyant = fresh.buoyant;
  if (parameters & Gravity) object.gravity = fresh.gravity;
  if (parameters & ReferenceTemperature) object.referenceTemperature = fresh.referenceTemperature;
  if (parameters & Model) object.model = fresh.model;
  if (parameters & domain::Intensity) object.intensity = fresh.intensity;
  if (parameters & Option) object.option = fresh.option;
  if (parameters & ViscousWork) object.viscousWork = fresh.viscousWork;
}

void update(Case& all, Changes& changes) {
  changes.added.clear();
  changes.removed.clear();
  changes.modified.clear();
  changes.potential.clear();
  bool enters = false;
  bool leaves = false;
  auto const list = [](std::vector<Item>& items, Set set, std::size_t domain, int boundary) {
    if (set) items.push_back({static_cast<std::uint32_t>(domain), static_cast<std::int8_t>(boundary), set});
  };
  auto const bring = [&](auto& object, std::size_t domain, int boundary) {
    Rules const rules = rulesOf(object, all);
    Set const added = rules.required & ~object.present;
    Set const removed = object.present & ~rules.available;
    Set const refused = refusedOf(object, all) & rules.required;
    if (added | refused) setDefaults(object, added | refused);
    object.present = (object.present & ~removed) | added;
    list(changes.added, added, domain, boundary);
    list(changes.removed, removed, domain, boundary);
    list(changes.modified, refused, domain, boundary);
    list(changes.potential, rulesOf(object, all).available & ~rules.required & ~object.present, domain, boundary);
  };
  for (std::size_t i = 0; i < all.domains.size(); ++i) {
    Domain& domain = all.domains[i];
    bring(domain, i, -1);
    for (std::size_t j = 0; j < domain.boundaries.size(); ++j) {
      bring(domain.boundaries[j], i, static_cast<int>(j));
      enters |= domain.boundaries[j].kind == Kind::Inlet;
      leaves |= domain.boundaries[j].kind == Kind::Outlet;
    }
  }
  changes.flowIsPossible = enters || !leaves;
}

/// Parameters, and not the objects that have a bit among them; of what is potential objects count.
std::size_t count(std::vector<Item> const& items, bool withObjects = false) {
  std::size_t result = 0;
  for (Item const& item : items) {
    Set const objects = item.boundary < 0 && !withObjects ? domain::objects : 0;
    result += static_cast<std::size_t>(std::popcount(item.parameters & ~objects));
  }
  return result;
}

EditCounts countsOf(Changes const& changes, Case const& all) {
  EditCounts counts{3, count(changes.added), count(changes.removed), count(changes.modified),
                    count(changes.potential, true)};
  for (Domain const& domain : all.domains) {
    counts.parameters += static_cast<std::size_t>(std::popcount(domain.present & ~domain::objects));
    for (Boundary const& boundary : domain.boundaries) {
      counts.parameters += static_cast<std::size_t>(std::popcount(boundary.present));
    }
  }
  return counts;
}

// From texts. Done once, and not measured.

double numberIn(std::string_view text) {
  double number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? number : noNumber;
}

std::uint8_t placeIn(std::initializer_list<std::string_view> names, std::string_view name) {
  auto const found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? unknown : static_cast<std::uint8_t>(found - names.begin());
}

void set(Boundary& object, std::string_view name, std::string_view value) {
  using namespace boundary;
  std::initializer_list<std::string_view> const names = {
      "Kind", "Velocity", "Pressure", "Wall Model", "Roughness", "Temperature", "Turbulence Intensity", "Supersonic"};
  Set const parameter = Set{1} << placeIn(names, name);
  object.present |= parameter;
  switch (parameter) {
    case boundary::Kind:
      object.kind = static_cast<::Kind>(placeIn({"Inlet", "Outlet", "Wall"}, value));
      break;
    case Velocity:
      object.velocity = numberIn(value);
      break;
    case Pressure:
      object.pressure = numberIn(value);
      break;
    case WallModel:
      object.wallModel = placeIn({"NoSlip", "FreeSlip"}, value);
      break;
    case Roughness:
      object.roughness = numberIn(value);
      break;
    case Temperature:
      object.temperature = numberIn(value);
      break;
    case boundary::Intensity:
      object.intensity = numberIn(value);
      break;
    default:
      object.supersonic = placeIn({"false", "true"}, value);
  }
}

void set(Domain& object, std::string_view name, std::string_view value) {
  using namespace domain;
  std::initializer_list<std::string_view> const names = {"Material",  "Reference Pressure",
                                                         "Motion",    "Angular Velocity",
                                                         "Time Step", "Buoyant",
                                                         "Gravity",   "Reference Temperature",
                                                         "Notes",     "Label",
                                                         "Model",     "Intensity",
                                                         "Option",    "Viscous Work"};
  Set const parameter = Set{1} << placeIn(names, name);
  object.present |= parameter;
  switch (parameter) {
    case Material:
      object.material = placeIn({"Water", "Air", "Oil"}, value);
      break;
    case ReferencePressure:
      object.referencePressure = numberIn(value);
      break;
    case Motion:
      object.motion = placeIn({"Stationary", "Rotating"}, value);
      break;
    case AngularVelocity:
      object.angularVelocity = numberIn(value);
      break;
    case TimeStep:
      object.timeStep = numberIn(value);
      break;
    case Buoyant:
      object.buoyant = placeIn({"false", "true"}, value);
      break;
    case Gravity:
      object.gravity = numberIn(value);
      break;
    case ReferenceTemperature:
      object.referenceTemperature = numberIn(value);
      break;
    case Model:
      object.model = placeIn({"k-epsilon", "SST", "LES"}, value);
      break;
    case domain::Intensity:
      object.intensity = numberIn(value);
      break;
    case Option:
      object.option = placeIn({"Thermal", "Total"}, value);
      break;
    case ViscousWork:
      object.viscousWork = placeIn({"false", "true"}, value);
      break;
    default:  // notes and label are there or not; no rule looks at them
      break;
  }
}

/// Which domain, from 0, and what of it the path is.
std::pair<std::size_t, std::string_view> domainIn(std::string_view path) {
  path.remove_prefix(std::string_view("/Case/Domain:d").size());
  std::size_t number = 0;
  auto const [end, error] = std::from_chars(path.data(), path.data() + path.size(), number);
  return {number, path.substr(static_cast<std::size_t>(end - path.data()))};
}

std::size_t boundaryIn(std::string_view rest) {
  return static_cast<std::size_t>(rest.back() - '0');
}

Case caseOf(tarn::ModelState const& state, std::size_t domains) {
  Case all;
  all.domains.resize(domains);
  for (auto const& [path, values] : state) {
    if (path == "/Case") {
      for (auto const& [name, value] : values) {
        if (name == "Flow Regime") all.turbulent = value == "Turbulent";
        if (name == "Time Dependence") all.transient = value == "Transient";
        if (name == "Energy Equation") all.heat = value == "true";
      }
      continue;
    }
    auto const [number, rest] = domainIn(path);
    Domain& domain = all.domains[number];
    if (rest.starts_with("/Boundary")) {
      for (auto const& [name, value] : values) set(domain.boundaries[boundaryIn(rest)], name, value);
      continue;
    }
    for (auto const& [name, value] : values) set(domain, name, value);
    if (rest == "/Turbulence") domain.present |= domain::Turbulence;
    if (rest == "/Heat") domain.present |= domain::Heat;
  }
  return all;
}

void apply(Case& all, CaseEdit const& edit) {
  if (edit.object == "/Case") {
    if (edit.parameter == "Flow Regime") all.turbulent = edit.value == "Turbulent";
    if (edit.parameter == "Time Dependence") all.transient = edit.value == "Transient";
    return;
  }
  auto const [number, rest] = domainIn(edit.object);
  set(all.domains[number].boundaries[boundaryIn(rest)], edit.parameter, edit.value);
}

void checkCounts(CaseWorkload const& workload) {
  std::size_t const domains = workload.domains();
  Verdict verdict;
  validate(caseOf(workload.valid(), domains), verdict);
  requireSame(verdict.count, 0, "findings in the sound case");
  validate(caseOf(workload.faulty(), domains), verdict);
  requireSame(verdict.count, workload.findings().size(), "findings in the faulty case");
  validate(caseOf(workload.withoutInlets(), domains), verdict);
  requireSame(verdict.count, 0, "findings about objects without inlets");
  requireSame(verdict.flowIsPossible, false, "a possible flow without inlets");
  for (Mistake const& mistake : workload.mistakes()) {
    validate(caseOf(workload.with(mistake), domains), verdict);
    requireSame(verdict.count == 0, false, "passes with " + mistake.what);
  }

  Case all = caseOf(workload.valid(), domains);
  Changes changes;
  for (CaseEdit const& edit : editsOf(workload, Editing::Plain)) {
    apply(all, edit);
    update(all, changes);
    requireSame(countsOf(changes, all), edit.expected, edit.what);
    requireSame(changes.flowIsPossible, true, "a possible flow after " + edit.what);
  }
  Case bare;
  bare.domains.resize(domains);
  update(bare, changes);
  EditCounts found = countsOf(changes, bare);
  found.added += 3;  // of the case itself, which always has its three values here
  requireSame(found, countsFromBare(workload), "the bare case");
}

void measure(CaseWorkload const& workload) {
  checkCounts(workload);

  Verdict verdict;
  Case sound = caseOf(workload.valid(), workload.domains());
  printTime("validate", medianOfBatches([&] {
              sound.domains[0].gravity += 1e-6;
              validate(sound, verdict);
              if (verdict.count != 0) throw std::logic_error("findings");
            }));
  Case const faulty = caseOf(workload.faulty(), workload.domains());
  printTime("validate faulty", medianOfBatches([&] {
              validate(faulty, verdict);
              if (verdict.count == 0) throw std::logic_error("no findings");
            }));

  Case edited = caseOf(workload.valid(), workload.domains());
  Changes changes;
  std::size_t runs = 0;
  printTime("edit local", medianOfBatches([&] {
              Domain& domain = edited.domains[(workload.domains() / 2 + runs / 2) % workload.domains()];
              domain.boundaries[0].kind = runs++ % 2 ? Kind::Inlet : Kind::Wall;
              update(edited, changes);
              if (changes.added.size() != 1) throw std::logic_error("added");
            }));
  edited = caseOf(workload.valid(), workload.domains());
  printTime("edit global", medianOfBatches([&] {
              edited.turbulent = !edited.turbulent;
              update(edited, changes);
              if (changes.added.empty() != !edited.turbulent) throw std::logic_error("added");
            }));
}

}  // namespace

int main(int argc, char** argv) {
  return runPeer(argc, argv, measure);
}

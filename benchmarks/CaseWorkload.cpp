// The numbers of inlets, outlets and walls, and their turbulence models, were drawn at random once for 25, 250 and 2500
// domains. They are now a table, so results stay comparable, and the table alone determines what an edit adds and
// removes. Their positions and the numbers come from a generator with a fixed seed. `std::mt19937` gives the same
// sequence everywhere; the distributions and `std::shuffle` do not, so they are not used.
#include "CaseWorkload.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace tarn::benchmarks {

namespace {

std::string const root = "/Case";

class Generator {
 public:
  [[nodiscard]] std::size_t below(std::size_t limit) { return engine_() % limit; }

  /// A number with four decimals in the range, as a user interface writes it.
  [[nodiscard]] std::string number(std::size_t low, std::size_t high) {
    std::string decimals = std::to_string(10000 + below(10000)).substr(1);
    decimals.erase(std::min(decimals.find_last_not_of('0') + 1, decimals.size()));
    std::string const whole = std::to_string(low + below(high - low));
    return decimals.empty() ? whole : whole + "." + decimals;
  }

  template <class T>
  void shuffle(std::vector<T>& items) {
    for (std::size_t left = items.size(); left > 1; --left) std::swap(items[left - 1], items[below(left)]);
  }

 private:
  std::mt19937 engine_{20250101};
};

/// `counts[i]` times the text `names[i]`, in no particular order.
std::vector<std::string> mixed(std::vector<std::pair<std::string, std::size_t>> const& counts, Generator& generator) {
  std::vector<std::string> result;
  for (auto const& [name, count] : counts) result.insert(result.end(), count, name);
  generator.shuffle(result);
  return result;
}

std::string domainPath(std::size_t domain) {
  return root + "/Domain:d" + std::to_string(domain);
}

std::string boundaryPath(std::size_t domain, std::size_t boundary) {
  return domainPath(domain) + "/Boundary:b" + std::to_string(boundary);
}

std::string_view typeOf(std::string_view path) {
  std::string_view const last = path.substr(path.rfind('/') + 1);
  return last.substr(0, last.find(':'));
}

}  // namespace

/// How many there are of what differs from domain to domain. Each domain has an inlet, an outlet and a wall as its
/// first boundaries; they are among these.
struct CaseWorkload::Mix {
  std::size_t parameters;
  std::size_t inlets, outlets, roughWalls, smoothWalls;
  std::size_t kEpsilon, sst, les;
};

CaseWorkload::Mix CaseWorkload::mixOf(std::size_t domains) {
  switch (domains) {
    case 25:
      return {845, 41, 39, 35, 10, 9, 7, 9};
    case 250:
      return {8450, 427, 395, 343, 85, 92, 86, 72};
    case 2500:
      return {84269, 4236, 4081, 3294, 889, 882, 832, 786};
    default: {
      std::size_t const inlets = domains + 2 * domains / 3;
      std::size_t const outlets = domains + 2 * domains / 3;
      std::size_t const walls = 5 * domains - inlets - outlets;
      std::size_t const smooth = walls / 5;
      std::size_t const third = domains / 3;
      std::size_t const parameters = 3 + 14 * domains + 5 * inlets + 3 * outlets + 4 * (walls - smooth) + 3 * smooth;
      return {parameters, inlets, outlets, walls - smooth, smooth, domains - 2 * third, third, third};
    }
  }
}

CaseWorkload::CaseWorkload(std::size_t domains) : domains_(domains) {
  if (domains == 0) throw std::invalid_argument("a case to measure with has at least one domain");
  Mix const mix = mixOf(domains);
  addDomains(mix);
  checkCounts(mix);
  faulty_ = valid_;
  addFaults();
}

void CaseWorkload::addDomains(Mix const& mix) {
  Generator generator;
  std::vector<std::string> const kinds = mixed({{"Inlet", mix.inlets - domains_},
                                                {"Outlet", mix.outlets - domains_},
                                                {"Wall", mix.roughWalls + mix.smoothWalls - domains_}},
                                               generator);
  std::vector<std::string> const wallModels =
      mixed({{"NoSlip", mix.roughWalls}, {"FreeSlip", mix.smoothWalls}}, generator);
  std::vector<std::string> const models =
      mixed({{"k-epsilon", mix.kEpsilon}, {"SST", mix.sst}, {"LES", mix.les}}, generator);
  auto nextKind = kinds.begin();
  auto nextWallModel = wallModels.begin();
  std::vector<std::string> const materials = {"Water", "Air", "Oil"};
  std::vector<std::string> const truth = {"true", "false"};

  valid_[root] = {{"Flow Regime", "Turbulent"}, {"Time Dependence", "Transient"}, {"Energy Equation", "true"}};
  for (std::size_t domain = 0; domain < domains_; ++domain) {
    valid_[domainPath(domain)] = {
        {"Material", materials[generator.below(3)]},
        {"Reference Pressure", generator.number(10000, 1000000)},
        {"Motion", "Rotating"},
        {"Angular Velocity", generator.number(0, 500)},
        {"Time Step", generator.number(0, 1)},
        {"Buoyant", "true"},
        {"Gravity", generator.number(9, 10)},
        {"Reference Temperature", generator.number(250, 400)},
        {"Notes", "note " + std::to_string(generator.below(1000)) + " for d" + std::to_string(domain)},
        {"Label", "L" + std::to_string(generator.below(100000))}};
    valid_[domainPath(domain) + "/Turbulence"] = {{"Model", models[domain]}, {"Intensity", generator.number(0, 1)}};
    valid_[domainPath(domain) + "/Heat"] = {{"Option", "Total"}, {"Viscous Work", truth[generator.below(2)]}};
    for (std::size_t boundary = 0; boundary < 5; ++boundary) {
      std::string const kind = boundary == 0   ? "Inlet"
                               : boundary == 1 ? "Outlet"
                               : boundary == 2 ? "Wall"
                                               : *nextKind++;
      ObjectState& values = valid_[boundaryPath(domain, boundary)];
      values["Kind"] = kind;
      if (kind == "Inlet") {
        values["Velocity"] = generator.number(0, 50);
        values["Turbulence Intensity"] = generator.number(0, 1);
      }
      if (kind == "Outlet") values["Pressure"] = generator.number(0, 10000);
      if (kind == "Wall") {
        values["Wall Model"] = *nextWallModel++;
        if (values["Wall Model"] == "NoSlip") values["Roughness"] = generator.number(0, 1);
      }
      if (kind != "Outlet") values["Temperature"] = generator.number(280, 400);
      if (kind != "Wall") values["Supersonic"] = truth[generator.below(2)];
    }
  }
}

void CaseWorkload::checkCounts(Mix const& mix) const {
  std::size_t const expectedObjects = 1 + 8 * domains_;
  if (objects() == expectedObjects && parameters() == mix.parameters && count("Kind", "Inlet") == mix.inlets &&
      count("Wall Model", "NoSlip") == mix.roughWalls && count("Model", "LES") == mix.les) {
    return;
  }
  throw std::logic_error("the case of " + std::to_string(domains_) + " domains has " + std::to_string(parameters()) +
                         " parameters in " + std::to_string(objects()) + " objects, not " +
                         std::to_string(mix.parameters) + " in " + std::to_string(expectedObjects) +
                         "; results could not be compared with earlier ones");
}

void CaseWorkload::addFaults() {
  std::size_t const faults = std::max<std::size_t>(1, parameters() / 100);
  for (std::size_t fault = 0; fault < faults; ++fault) {
    std::size_t const domain = fault * domains_ / faults;
    switch (fault % 5) {
      case 0: {
        std::string const path = domainPath(domain) + "/Turbulence";
        faulty_[path]["Model"] = "Inviscid";
        findings_.push_back(path);
        break;
      }
      case 1: {
        std::string const path = boundaryPath(domain, 1);
        faulty_[path]["Velocity"] = "2";
        findings_.push_back(path);
        break;
      }
      case 2: {
        std::string const path = boundaryPath(domain, 0);
        faulty_[path].erase("Temperature");
        findings_.push_back(path);
        break;
      }
      case 3: {
        std::string const path = domainPath(domain) + "/Turbulence";
        faulty_.erase(path);
        findings_.push_back(domainPath(domain));
        break;
      }
      default: {
        // It lacks a velocity and an intensity now, and has what only a wall can have.
        std::string const path = boundaryPath(domain, 2);
        faulty_[path]["Kind"] = "Inlet";
        findings_.insert(findings_.end(), faulty_[path].contains("Roughness") ? 4 : 3, path);
      }
    }
  }
  std::sort(findings_.begin(), findings_.end());
}

std::vector<Mistake> CaseWorkload::mistakes() const {
  std::string const domain = domainPath(0);
  std::string const inlet = boundaryPath(0, 0);
  std::string const outlet = boundaryPath(0, 1);
  std::string const turbulence = domain + "/Turbulence";
  std::vector<Mistake> result = {
      {"an unknown turbulence model", turbulence, "Model", "Inviscid"},
      {"an intensity out of bounds", turbulence, "Intensity", "1.5", true},
      {"no turbulence", turbulence, "", {}},
      {"no material", domain, "Material", {}},
      {"a velocity of an outlet", outlet, "Velocity", "2"},
      {"an inlet without temperature", inlet, "Temperature", {}},
      {"a wall made an inlet", boundaryPath(0, 2), "Kind", "Inlet"},
      {"the angular velocity of what stands still", domain, "Motion", "Stationary"},
      {"the gravity of what does not float", domain, "Buoyant", "false"},
      {"the viscous work of thermal heat", domain + "/Heat", "Option", "Thermal"},
      {"heat that is not solved", root, "Energy Equation", "false"},
      {"turbulence of a laminar case", root, "Flow Regime", "Laminar"},
      {"time steps of a steady case", root, "Time Dependence", "Steady"},
  };
  for (auto const& [path, values] : valid_) {
    auto const model = values.find("Wall Model");
    if (model == values.end() || model->second != "FreeSlip") continue;
    result.push_back({"the roughness of a smooth wall", path, "Roughness", "0.1"});
    break;
  }
  return result;
}

ModelState CaseWorkload::with(Mistake const& mistake) const {
  ModelState state = valid_;
  if (mistake.parameter.empty()) {
    state.erase(mistake.object);
  } else if (mistake.value) {
    state[mistake.object][mistake.parameter] = *mistake.value;
  } else {
    state[mistake.object].erase(mistake.parameter);
  }
  return state;
}

ModelState CaseWorkload::bare() const {
  ModelState state = valid_;
  std::erase_if(state, [](auto const& object) {
    std::string_view const type = typeOf(object.first);
    return type == "Turbulence" || type == "Heat";
  });
  for (auto& [path, values] : state) values.clear();
  return state;
}

ModelState CaseWorkload::withoutInlets() const {
  ModelState state = valid_;
  for (auto& [path, values] : state) {
    auto const kind = values.find("Kind");
    if (kind == values.end() || kind->second != "Inlet") continue;
    std::string const supersonic = values["Supersonic"];
    values = {{"Kind", "Outlet"}, {"Pressure", "0"}, {"Supersonic", supersonic}};
  }
  return state;
}

std::string CaseWorkload::inletOf(std::size_t domain) const {
  return boundaryPath(domain % domains_, 0);
}

std::size_t CaseWorkload::count(std::string const& parameter, std::string const& value) const {
  return static_cast<std::size_t>(std::count_if(valid_.begin(), valid_.end(), [&](auto const& object) {
    auto const found = object.second.find(parameter);
    return found != object.second.end() && found->second == value;
  }));
}

std::size_t CaseWorkload::countParameters(ModelState const& state) {
  std::size_t count = 0;
  for (auto const& [path, values] : state) count += values.size();
  return count;
}

std::string CaseWorkload::modelText(ModelState const& state) {
  std::string text;
  for (auto const& [path, values] : state) {
    if (values.empty()) text += path + "/\n";
    for (auto const& [name, value] : values) {
      text += path;
      text += '/';
      text += name;
      text += '=';
      text += value;
      text += '\n';
    }
  }
  return text;
}

std::vector<CaseEdit> editsOf(CaseWorkload const& workload, Editing editing) {
  bool const guided = editing == Editing::Guided;
  std::size_t const all = workload.parameters();
  std::size_t const domains = workload.domains();
  std::size_t const rough = workload.count("Wall Model", "NoSlip");
  std::size_t const only = 2 * domains + workload.count("Kind", "Inlet") + rough;  // what only a turbulent case has
  std::string const inlet = workload.inletOf(domains / 2);
  // A plain system has lost, from the second edit on, whether the inlet is supersonic; with the last one, all
  // roughnesses.
  std::size_t const one = guided ? 0 : 1;
  std::size_t const lost = guided ? 0 : 1 + rough;
  std::size_t const models = guided ? domains : workload.count("Model", "LES");
  return {
      {"inlet to wall", inlet, "Kind", "Wall", {all - 2, 1, 3, 0, 1}},
      {"wall to inlet", inlet, "Kind", "Inlet", {all - one, 3 - one, 1, 0, one}},
      {"steady", root, "Time Dependence", "Steady", {all - one - domains, 0, domains, models, one}},
      {"laminar", root, "Flow Regime", "Laminar", {all - one - domains - only, 0, only, 0, one}},
      {"turbulent", root, "Flow Regime", "Turbulent", {all - lost - domains, guided ? only : only - rough, 0, 0, lost}},
  };
}

EditCounts countsFromBare(CaseWorkload const& workload) {
  // The three of the case; of each domain four, and two of each boundary, a wall that is not rough as the case is
  // laminar. Offered are notes and a label.
  std::size_t const all = 3 + workload.domains() * (4 + 5 * 2);
  return {all, all, 0, 0, workload.domains() * 2};
}

}  // namespace tarn::benchmarks

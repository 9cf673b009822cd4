#pragma once

#include <string>
#include <utility>

#include <tarn/PhysicsData.h>
#include <tarn/QuantityModifier.h>

#include "failures/Injection.h"
#include "support/MapModel.h"
#include "support/Rules.h"

/// A pump's rotor with rules of every kind. Each rule may fail when it is evaluated.
namespace tarn::test {

inline std::string const rotor = "/Case/Domain:rotor";

/// A rule that fails where the test demands it.
inline std::unique_ptr<Condition> failingWhen(std::string const& name, std::string const& value) {
  return when([=](TDFContext const& at, ModelTDF const& model) {
    mayFail();
    return model.getParameterValue(at.objPath(), name) == value;
  });
}
inline std::unique_ptr<TextExpression> failingText(std::string const& text) {
  return tarn::test::text([=](TDFContext const&, ModelTDF const&) {
    mayFail();
    return text;
  });
}
inline std::unique_ptr<ListExpression> failingList(std::vector<std::string> const& items) {
  return list([=](TDFContext const&, ModelTDF const&) {
    mayFail();
    return SharedStrings(items);
  });
}

/// The names are longer than what a `std::string` holds without an allocation.
struct RotorRules : PhysicsData {
  RotorRules() {
    Rules rules(*this);
    rules.pertinentRoot("Case");
    rules.object("/Case");
    rules.param("Flow Regime of the Case").required().allowed({"Laminar", "Turbulent"}).byDefault("Laminar");
    rules.param("Turbulence Intensity").availableWhen(failingWhen("Flow Regime of the Case", "Turbulent"));
    rules.child("Domain").required().allowedNames({"rotor", "stator of the pump"});
    rules.child("Solver of the Case").required().singleton();
    rules.object("/Case/Solver of the Case");
    rules.param("Residual to be Reached").required().byDefault("1e-6");
    rules.child("Solver Output").required().singleton();
    rules.object("/Case/Solver of the Case/Solver Output");
    rules.param("Lines to be Written").required().availableWhen(failingWhen("", ""));

    rules.object("/Case/Domain");
    rules.param("Motion of the Domain").required().contextRule();
    rules.allowed(failingList({"Stationary in Space", "Rotating about an Axis"})).byDefault("Stationary in Space");
    rules.param("Angular Velocity of the Rotor").required().inContexts({"Rotating about an Axis"});
    rules.type(TDFParam::Real).byDefault(failingText("10 [rad/s]"));
    rules.bounds(failingText("0 [rad/s]"), copyOf("Largest Angular Velocity"));
    rules.param("Largest Angular Velocity").type(TDFParam::Real).required().byDefault("100 [rad/s]");
    rules.param("Title of the Domain");
    rules.param("Fluid in the Domain").required();
    rules.allowed(failingList({"Water at 25 degrees", "Air at 25 degrees C", "Oil of the gear box"}));
    rules.subset(failingList({"Water at 25 degrees"}))
        .byDefault("Water at 25 degrees")
        .betaValue("Air at 25 degrees C", "Air is on trial in domains.");
    rules.param("Variables to be Written").type(TDFParam::StringList).required().completeListRequired();
    rules.allowed(failingList({"Pressure of the Fluid", "Velocity of the Fluid"}));
    rules.param("Inflow into the Domain").type(TDFParam::Real).required().byDefault(failingText("1.50 [m^3/s]"));
    rules.param("Reference").required().byDefault("1 [bar]");
    rules.overriddenWhen(failingWhen("Motion of the Domain", "Rotating about an Axis"), "0 [bar]");
    rules.param("Note").availableWhen(failingWhen("Motion of the Domain", "Rotating about an Axis"));

    rules.child("Boundary").required().defaultNames(list([](TDFContext const&, ModelTDF const&) {
      mayFail();
      return SharedStrings({"inlet of the pump", "outlet of the pump"});
    }));
    rules.child("Momentum Source").required().availableWhen(failingWhen("Motion of the Domain", "Stationary in Space"));
    rules.child("Monitor").allowedNames(failingList({"pressure at the head", "torque at the shaft"}));
    rules.child("Subdomain").coupled();
    rules.child("Mesh of the Domain").singleton();

    rules.object("/Case/Domain/Boundary");
    rules.param("Kind").required().byDefault(failingText("Wall"));
    rules.object("/Case/Domain/Momentum Source");
    rules.param("Strength").required().byDefault(failingText("1 [kg m/s^2]"));
    rules.object("/Case/Domain/Monitor");
    rules.param("Place").required().byDefault("0 [m], 0 [m], 0 [m]");
    rules.object("/Case/Domain/Subdomain");
    rules.param("Porosity").required().byDefault("0.25");
    rules.param("Permeability").required().byDefault("1e-9 [m^2]");
    rules.object("/Case/Domain/Mesh of the Domain");
    rules.param("Element Size").required();

    rules.globalCheck(
        "A monitor is needed",
        [](ModelTDF const& model) {
          mayFail();
          return model.hasObject(rotor + "/Monitor:pressure at the head");
        },
        PhysicsErrorMsg("Nothing shows whether the run of the pump has converged."));
    rules.globalCheck(
        "A regime is needed",
        [](ModelTDF const& model) {
          mayFail();
          return model.hasParameter("/Case", "Flow Regime of the Case");
        },
        PhysicsErrorMsg("Nothing shows whether the flow in the pump is turbulent."));
  }

  static std::unique_ptr<TextExpression> copyOf(std::string const& name) {
    return text([name](TDFContext const& at, ModelTDF const& model) {
      mayFail();
      return model.getParameterValue(at.objPath(), name);
    });
  }
};

/// The case as the model of a host: each question may fail.
class RotorModel final : public MapModel {
 public:
  RotorModel() {
    add(rotor);
    set("/Case", "Flow Regime of the Case", "Turbulent");
    set(rotor, "Largest Angular Velocity", "200 [rad/s]");
    set(rotor + "/Mesh of the Domain", "Element Size", "0.001 [metres]");
    set(rotor + "/Boundary:casing of the pump", "Kind", "Wall that turns");
  }

  [[nodiscard]] bool hasObject(std::string const& path) const override {
    mayFail();
    return MapModel::hasObject(path);
  }
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override {
    mayFail();
    return MapModel::hasParameter(paramPath);
  }
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override {
    mayFail();
    return MapModel::hasParameter(objPath, name);
  }
  using MapModel::getParameterValue;
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override {
    mayFail();
    return MapModel::getParameterValue(objPath, name);
  }
  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override {
    mayFail();
    return MapModel::getParameterNames(path, out);
  }
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
    mayFail();
    return MapModel::getChildObjectPaths(path, out);
  }
};

/// Makes the inflow a mass flow.
class RotorModifier final : public QuantityModifier {
 public:
  int getQuantityType(ModelTDF const* /*model*/, std::string const& /*objPath*/, std::string const& name,
                      std::string& quantityType) const override {
    mayFail();
    quantityType = "Mass Flow Rate of a Fluid";
    return name == "Inflow into the Domain" ? 1 : 0;
  }
  std::string getQuantityUnits(std::string const& /*quantityType*/, std::string const& /*units*/) const override {
    mayFail();
    return "kg/s of the fluid";
  }
};

}  // namespace tarn::test

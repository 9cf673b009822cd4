#pragma once

#include <memory>
#include <string>
#include <utility>

#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

namespace tarn::session::test {

/// A flow through domains that rotate or stand still, with a material, boundaries and a turbulence model.
inline char const* const flowRules = R"rules(Rule Database: 1
Pertinent Roots: [Case]
Checks:
  flow is turbulent: ${/Case/Flow Regime} == 'Turbulent'
Objects:
  /Case:
    Parameters:
      Flow Regime:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Laminar, Turbulent]
      Summary:
        Available: exists(${Comment}) and ${Steps} > 10
        Parameter Type: String
      Steps:
        Required: yes
        Parameter Type: Integer
        Default Value: 5
      Comment:
        Parameter Type: String
    Children:
      Domain: {Required: yes}
      Heat:
        Coupled: yes
        Singleton: yes
        Available: any({/Case/Domain:*}, ${Material} == 'Water')
        Reason: Only water is heated.
  /Case/Domain:
    Parameters:
      Motion:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Stationary, Rotating, Sliding]
        Default Value: Stationary
        Allowed String List Checks:
          Sliding: check('flow is turbulent')
      Angular Velocity:
        Available: ${Motion} == 'Rotating'
        Reason: Only a rotating domain has an angular velocity.
        Required: yes
        Parameter Type: Real
        Default Value: 1
      Material:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Air, Water]
        Default Value: Air
      Drag:
        Available: ${Angular Velocity} > 10 and ${Material} == 'Water' and check('flow is turbulent')
        Required: yes
        Parameter Type: Real
      Wall Treatment:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Smooth, Rough]
        Default Value Check List:
          - {When: "${Motion} == 'Rotating'", Value: Rough}
        Default Value: Smooth
        Value Override Check List:
          - {When: "${Material} == 'Water'", Value: Smooth}
    Children:
      Turbulence:
        Required: yes
        Singleton: yes
        Available: check('flow is turbulent')
        Reason: A laminar flow has no turbulence.
      Boundary: {Required: yes}
  /Case/Domain/Turbulence:
    Parameters:
      Intensity: {Required: yes, Parameter Type: Real, Default Value: 5}
  /Case/Domain/Boundary:
    Parameters:
      Kind: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Wall, Inlet]}
  /Case/Heat:
    Parameters:
      Source: {Required: yes, Parameter Type: Real, Default Value: 0}
)rules";

struct FlowCase {
  std::unique_ptr<PhysicsData> rules;
  std::unique_ptr<Session> session;

  explicit FlowCase(ModelState const& model = {{"/Case", {}}, {"/Case/Domain:rotor", {}}}, char const* text = flowRules,
                    char const* root = "/Case")
      : rules(tarn::rules::parseRules(text, "flow.rules.yaml")) {
    SessionOptions options;
    options.root = root;
    session = std::move(Session::open(*rules, model, options).session);
  }

  [[nodiscard]] std::string why(std::string const& path, std::string const& name, WhyOptions const& options = {},
                                std::size_t lines = 10) const {
    return '\n' + textOf(session->why({path, name}, options), lines);
  }
  [[nodiscard]] std::string whyObject(std::string const& path) const {
    return '\n' + textOf(session->why({path, std::nullopt}));
  }
};

}  // namespace tarn::session::test

#pragma once

#include <memory>
#include <string>
#include <utility>

#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

namespace tarn::session::test {

/// A small plant: a solver that is steady or transient, tanks whose level may be controlled, pipes that name the tanks
/// which they connect, and instruments that the model alone decides about.
inline char const* const tankRules = R"rules(Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Length: {Units: [m, in]}
Objects:
  /Plant:
    Parameters:
      Title:
        Parameter Type: String
    Children:
      Solver: {Required: Yes, Singleton: Yes}
      Tank: {Required: Yes}
      Pipe: {Coupled: Yes}
      Report: {Singleton: Yes, Coupled: Yes}
      Instrument: {}
      Ambient:
        Singleton: Yes
        Coupled: Yes
        Available: ${/Plant/Solver/Mode} == 'Transient'
        Reason: only a transient plant exchanges heat with its surroundings
  /Plant/Solver:
    Parameters:
      Mode:
        Required: Yes
        Parameter Type: String
        Ordered Allowed String List: [Steady, Transient]
        Default Value: Steady
      Relaxation:
        Available: ${Mode} == 'Steady'
        Reason: a transient run is not relaxed
        Parameter Type: Real
        Lower Bound: 0
        Upper Bound: 1
        Default Value: 0.7
      Time Step:
        Required: Yes
        Available: ${Mode} == 'Transient'
        Reason: a steady run has no time steps
        Parameter Type: Real
        Default Value: 0.1
      Steps:
        Required: Yes
        Available: ${Mode} == 'Transient'
        Parameter Type: Integer
        Default Value: 10
      Verbose:
        Parameter Type: Logical
  /Plant/Tank:
    Parameters:
      Control:
        Required: Yes
        Parameter Type: String
        Ordered Allowed String List: [Free, Fixed]
        Default Value: Free
        Value Override Check List:
          - {When: "${/Plant/Solver/Mode} == 'Transient'", Value: Free}
      Height:
        Required: Yes
        Parameter Type: Real
        Quantity Type: Length
        Default Value: 2 [m]
        Lower Bound: 0 [m]
      Level:
        Required: Yes
        Parameter Type: Real
        Quantity Type: Length
        Default Value: "= if(${Control} == 'Fixed', '1 [m]', '0.5 [m]')"
        Upper Bound: = ${Height}
      Set Level:
        Available: ${Control} == 'Fixed'
        Reason: only a controlled tank has a set level
        Parameter Type: Real
        Quantity Type: Length
  /Plant/Pipe:
    Parameters:
      From:
        Required: Yes
        Parameter Type: String
        Value List Source: names({/Plant/Tank:*})
        Available With No Allowed Values: Yes
      Through:
        Parameter Type: String List
        Value List Source: names({/Plant/Tank:*})
        Available With No Allowed Values: Yes
      Friction Model:
        Required: Yes
        Parameter Type: String
        Ordered Allowed String List: [Laminar, Turbulent, Unsteady]
        Allowed String List Checks:
          Unsteady: ${/Plant/Solver/Mode} == 'Transient'
        Default Value: Laminar
  /Plant/Report:
    Parameters:
      File:
        Required: Yes
        Parameter Type: String
        Default Value: report.txt
  /Plant/Instrument:
    Parameters:
      Gain:
        Parameter Type: Real
  /Plant/Ambient:
    Parameters:
      Temperature:
        Required: Yes
        Parameter Type: Real
        Default Value: 293
)rules";

inline char const* const tankModel = R"(/Plant/Solver/Relaxation=0.6
/Plant/Tank:T1/Height=3 [m]
/Plant/Tank:T1/Control=Fixed
/Plant/Tank:T1/Set Level=1.5 [m]
/Plant/Tank:T2/
/Plant/Pipe:P1/From=T1
/Plant/Pipe:P1/Through=T1,T2
/Plant/Instrument:gauge/Gain=2
)";

/// A session over the plant.
class Tanks {
 public:
  explicit Tanks(char const* model = tankModel, SessionOptions options = {})
      : rules_(rules::parseRules(tankRules, "plant.rules.yaml")),
        opened_(Session::open(*rules_, ModelText("plant.tdf", model), std::move(options))) {}

  Session* operator->() { return opened_.session.get(); }
  Session& operator*() { return *opened_.session; }

 private:
  std::unique_ptr<PhysicsData> rules_;
  Session::Opened opened_;
};

}  // namespace tarn::session::test

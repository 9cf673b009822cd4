#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFParam.h>

namespace tarn::tool {

/// A value that is not what the rules declare the parameter to be.
struct ValueFault {
  /// The object that holds the parameter.
  std::string path;
  std::string name;
  std::string value;
  /// One sentence.
  std::string message;
};

/// Finds values that are not of their declared type or lie outside their bounds.
///
/// An Integer is a number that is whole, a Real a number, both with units or without, a Logical what reads as true or
/// false; a String may be anything, and a list is judged item by item, without the white space at the ends. What stands
/// among the allowed values of the parameter now, "automatic" for a Real, is of the right type whatever it is. A number
/// must lie within the evaluated bounds, which belong to the range; a bound is judged when it is given in the same
/// units as the number.
///
/// Every parameter that the walk comes to is judged when it is present: also one that is not available, or whose
/// validation is relaxed. Objects that are not available are not walked. Of a parameter one fault is told, the first.
class ValueFaults final : private DependencyAnalyser {
 public:
  /// `rules` must outlive the analysis.
  explicit ValueFaults(PhysicsData const& rules);
  ~ValueFaults() = default;
  ValueFaults(ValueFaults const&) = delete;
  ValueFaults& operator=(ValueFaults const&) = delete;

  /// Walks the model of `context` from each of `roots`, and returns what it found in the order of the walk. Passes on
  /// what a rule throws.
  [[nodiscard]] std::vector<ValueFault> find(std::vector<std::string> const& roots, EvalContext& context);

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  [[nodiscard]] std::string faultOf(ParamAvailInfo const& info, std::string_view text, TDFParam::Type type) const;
  [[nodiscard]] bool isAllowed(ParamAvailInfo const& info, std::string_view text) const;

  PhysicsData const& rules_;
  EvalContext* context_ = nullptr;  // of the walk under way
  std::vector<ValueFault> faults_;
};

}  // namespace tarn::tool

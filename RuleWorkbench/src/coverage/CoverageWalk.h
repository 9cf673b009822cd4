#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ObjDependDef.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/OperandRecorder.h>
#include <tarn/session/Findings.h>

namespace tarn::workbench {

/// The names of outcomes. A branch is named by its number.
namespace outcomes {
inline constexpr char const* available = "available";
inline constexpr char const* notAvailable = "unavailable";
inline constexpr char const* holds = "true";
inline constexpr char const* doesNotHold = "false";
inline constexpr char const* kept = "kept";
inline constexpr char const* broken = "broken";
inline constexpr char const* matched = "matched";
inline constexpr char const* notMatched = "unmatched";
inline constexpr char const* passed = "passed";
inline constexpr char const* failed = "failed";
inline constexpr char const* otherwise = "otherwise";
inline constexpr char const* none = "none";
/// "branch 1" is the first.
[[nodiscard]] std::string branch(std::size_t index);
}  // namespace outcomes

/// How often each outcome was seen.
struct CoverageCounts {
  /// The entry of the rules, and the attribute that the outcome is about.
  using Subject = std::pair<void const*, std::string_view>;
  std::map<Subject, std::map<std::string, std::size_t>> times;
  rules::OperandRecorder operands;
};

/// Walks one model along the rules, and counts.
class CoverageWalk final : private DependencyAnalyser {
 public:
  /// `findings` are those of the model.
  CoverageWalk(PhysicsData const& rules, ModelTDF const& model, session::Findings const& findings,
               CoverageCounts& counts);

  void from(std::string const& root);
  /// The checks of the whole model.
  void checkGlobally();

 private:
  struct OpenObject {
    ObjDependDef const* rules;
    std::string contextValue;
    bool isChecked;
  };

  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  void count(void const* subject, std::string_view attribute, std::string const& outcome);
  template <typename Entry>
  [[nodiscard]] bool countEntry(Entry const& entry, bool isAvailable, TDFContext const& context);
  void countValueRule(ParamAvail const& entry, ParamAvailInfo const& info, TDFContext const& context);
  void countValue(ParamAvail const& entry, std::string const& path);
  void countBranches(void const* subject, std::string_view attribute, char const* last,
                     std::vector<ParamValueDef::GuardedText> const& branches, TDFContext const& context);
  void checkOpenObject(std::string const& path);
  void record(RuleExpression const* rule, TDFContext const& context);
  [[nodiscard]] bool isFound(std::string const& path, std::string const& item, session::FindingCode code) const;

  PhysicsData const& rules_;
  ModelTDF const& model_;
  CoverageCounts& counts_;
  EvalContext evaluation_;
  /// From the findings: the object, the parameter or type of children, and the code.
  std::set<std::tuple<std::string, std::string, session::FindingCode>> found_;
  std::vector<OpenObject> open_;
};

}  // namespace tarn::workbench

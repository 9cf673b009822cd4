#pragma once

#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsEvaluator.h>

namespace tarn {

class PhysicsData;

/// Evaluates the checks and lists of a rule database. Copies share the database, which is not owned and must outlive
/// them.
///
///     EvalCheckList const evaluator(&physicsData);
///     auto const [holds, known] = evaluator.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &model);
class TARN_EXPORT EvalCheckList : public PhysicsEvaluator {
 public:
  explicit EvalCheckList(PhysicsData const* physicsData) noexcept : physicsData_(physicsData) {}
  EvalCheckList(EvalCheckList const&) = default;
  EvalCheckList& operator=(EvalCheckList const&) = default;
  ~EvalCheckList() override;

  [[nodiscard]] std::pair<bool, bool> evaluateCheck(std::string const& name, std::string const& path,
                                                    ModelTDF const* model) const override;
  [[nodiscard]] std::pair<std::vector<std::string>, bool> evaluateList(std::string const& name, std::string const& path,
                                                                       ModelTDF const* model) const override;
  [[nodiscard]] bool hasCheck(std::string const& name, bool flag) const override;
  [[nodiscard]] bool hasList(std::string const& name, bool flag) const override;

 private:
  PhysicsData const* physicsData_;
};

}  // namespace tarn

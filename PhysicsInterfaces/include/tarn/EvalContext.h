#pragma once

#include <tarn/Export.h>

namespace tarn {

class BetaLoggingController;
class EvalCache;
class ModelTDF;

/// Says which model an evaluation of rules reads, and optionally which cache it uses and which controller collects its
/// beta messages. Owns none of them. All must outlive it.
class TARN_EXPORT EvalContext {
 public:
  explicit EvalContext(ModelTDF const* model) : model_(model) {}
  EvalContext(ModelTDF const* model, EvalCache* cache) : model_(model), cache_(cache) {}

  /// The model that rules read.
  [[nodiscard]] ModelTDF const* getDB() const noexcept { return model_; }
  /// The cache, or null.
  [[nodiscard]] EvalCache* getCache() const noexcept { return cache_; }

  /// The controller that collects beta messages. If it is null, which it is at the start, the controller that is
  /// attached to the rule database collects them, if there is one.
  void setBetaLoggingController(BetaLoggingController* controller) noexcept { beta_ = controller; }
  [[nodiscard]] BetaLoggingController* getBetaLoggingController() const noexcept { return beta_; }

 private:
  ModelTDF const* model_;
  EvalCache* cache_ = nullptr;
  BetaLoggingController* beta_ = nullptr;
};

}  // namespace tarn

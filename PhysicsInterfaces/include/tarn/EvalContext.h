#pragma once

#include <tarn/Export.h>

namespace tarn {

class BetaLoggingController;
class EvalCache;
class ModelTDF;

/// Ties the evaluation of rules to a model, and optionally to a cache and to a controller that gathers beta messages.
/// Owns none of them; all must outlive it.
class TARN_EXPORT EvalContext {
 public:
  explicit EvalContext(ModelTDF const* model) : model_(model) {}
  EvalContext(ModelTDF const* model, EvalCache* cache) : model_(model), cache_(cache) {}

  /// The model that rules read.
  [[nodiscard]] ModelTDF const* getDB() const noexcept { return model_; }
  /// The cache, or null.
  [[nodiscard]] EvalCache* getCache() const noexcept { return cache_; }

  /// Where beta messages go. Null, the state at the start, leaves it to the controller that is attached to the rule
  /// database, if any.
  void setBetaLoggingController(BetaLoggingController* controller) noexcept { beta_ = controller; }
  [[nodiscard]] BetaLoggingController* getBetaLoggingController() const noexcept { return beta_; }

 private:
  ModelTDF const* model_;
  EvalCache* cache_ = nullptr;
  BetaLoggingController* beta_ = nullptr;
};

}  // namespace tarn

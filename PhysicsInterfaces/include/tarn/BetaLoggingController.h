#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Collects the beta messages of the rule authors while rules are evaluated, and returns them item by item.
///
/// For validation, hand a controller to the validator (`PhysicsValidator2::setBetaLoggingController`). That is enough:
/// the validator passes it on in the `EvalContext`, reads it after each rule and clears it then, so the messages of one
/// rule are never reported with the next. For your own evaluations, set it in the `EvalContext`, and read and clear it
/// yourself.
///
/// Attach a controller to the rule database (`PhysicsData::attach`) only when evaluations must be heard whose
/// `EvalContext` you do not make, those of a `ProvisionalTDF` for example. It then collects from all of them, and
/// nothing clears it but you. Do not attach one while several threads use the database. If the `EvalContext` names a
/// controller, only that one collects. Detach a controller before it is destroyed.
///
/// A message of an item is kept once, however often its rule is evaluated.
class TARN_EXPORT BetaLoggingController {
 public:
  /// The messages for children of the type `type`, for the parameter `name`, and for the value `value` of that
  /// parameter. Empty if none was collected since the last `clearMessages`.
  [[nodiscard]] std::vector<std::string> getObjAvailMessages(std::string const& type) const;
  [[nodiscard]] std::vector<std::string> getParamAvailMessages(std::string const& name) const;
  [[nodiscard]] std::vector<std::string> getParamValAvailMessages(std::string const& name,
                                                                  std::string const& value) const;

  /// Whether a message was collected since the last `clearMessages`.
  [[nodiscard]] bool anyLoggedMessages() const noexcept;
  void clearMessages() noexcept;

  /// Called by the evaluation of rules, when an item with a beta message is available.
  void gatherObjMessage(std::string const& type, std::string const& message);
  void gatherParamMessage(std::string const& name, std::string const& message);
  void gatherParamValueMessage(std::string const& name, std::string const& value, std::string const& message);

 private:
  using Messages = std::vector<std::string>;
  std::map<std::string, Messages> objMessages_;
  std::map<std::string, Messages> paramMessages_;
  std::map<std::pair<std::string, std::string>, Messages> paramValueMessages_;
};

}  // namespace tarn

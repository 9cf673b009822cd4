#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Gathers the rule authors' beta messages while rules are evaluated, and hands them out item by item.
///
/// A host makes one, attaches it to the rule database (`PhysicsData::attach`) and hands it to the validator
/// (`PhysicsValidator2::setBetaLoggingController`). The validator asks after each rule and clears the controller then,
/// so that what one rule gathered is never given with the next. An item's message is kept once, however often its rule
/// is evaluated.
class TARN_EXPORT BetaLoggingController {
 public:
  /// The messages for children of type `type`, for the parameter `name`, and for its value `value`; empty when nothing
  /// was gathered for it since the last clearing.
  [[nodiscard]] std::vector<std::string> getObjAvailMessages(std::string const& type) const;
  [[nodiscard]] std::vector<std::string> getParamAvailMessages(std::string const& name) const;
  [[nodiscard]] std::vector<std::string> getParamValAvailMessages(std::string const& name,
                                                                  std::string const& value) const;

  /// Whether anything was gathered since the last clearing.
  [[nodiscard]] bool anyLoggedMessages() const noexcept;
  void clearMessages() noexcept;

  /// For the evaluation of rules: an item was found available, and its author has something to say about it.
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

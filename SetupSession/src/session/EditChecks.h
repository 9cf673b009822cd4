#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Refusal.h>
#include <tarn/session/Item.h>
#include <tarn/session/Refused.h>

#include "session/RuledState.h"

namespace tarn::session {

/// Tells slips from wishes: see the manual of `Session`. Judges one edit before it is made, and again after it was
/// made. Throws what a rule throws.
class EditChecks {
 public:
  /// Whether an item is on offer.
  using IsOffered = std::function<bool(Item const&)>;

  EditChecks(RuledState const& state, IsOffered isOffered) : state_(state), isOffered_(std::move(isOffered)) {}

  /// Judges `edit` under the present state. Returns why it is refused. Otherwise changes its value to the one to set.
  [[nodiscard]] std::optional<Refused> before(Edit& edit) const;
  /// Judges the edit that was just made, with what the state said to it.
  [[nodiscard]] std::optional<Refused> after(Edit const& edit, std::optional<Refusal> refusal) const;

  /// Reads the value of an edit that sets a known parameter, as `before` does. Allowed values are judged only if it is
  /// available.
  [[nodiscard]] std::optional<Refused> readValue(Edit& edit, bool isAvailable) const;

  /// The item that a path names, or why there is none.
  [[nodiscard]] std::optional<Refused> resolve(std::string const& text, Item& item) const;

 private:
  using Checked = std::optional<Refused>;

  [[nodiscard]] Checked checkPath(Edit const& edit) const;
  [[nodiscard]] Checked checkObject(Edit const& edit, std::string const& path) const;
  [[nodiscard]] Checked checkParam(Edit const& edit) const;
  [[nodiscard]] Checked checkValue(Edit& edit) const;
  [[nodiscard]] Checked checkDeactivateParam(Edit const& edit) const;
  [[nodiscard]] Checked checkSwitch(Edit const& edit) const;
  [[nodiscard]] Checked checkAdd(Edit const& edit) const;
  [[nodiscard]] Checked checkRemove(Edit const& edit) const;
  [[nodiscard]] Checked checkCopy(Edit const& edit) const;
  [[nodiscard]] Checked unknownObject(Edit const& edit, std::string const& path) const;
  [[nodiscard]] Checked nameTaken(Edit const& edit, std::string const& path) const;
  [[nodiscard]] Checked nameNotAllowed(Edit const& edit, std::string const& type, std::string const& name,
                                       std::vector<std::string> const& names) const;
  [[nodiscard]] bool isAskedFor(std::string const& path) const;
  [[nodiscard]] std::string freeName(std::string const& path) const;
  [[nodiscard]] std::vector<std::string> knownChildren(std::string const& parent) const;

  RuledState const& state_;
  IsOffered isOffered_;
};

}  // namespace tarn::session

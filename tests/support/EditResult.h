#pragma once

#include <optional>
#include <string>

#include <tarn/Edit.h>
#include <tarn/Error.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/Refusal.h>

namespace tarn::test {

/// The result of an edit: made, refused for a reason, or with a path that cannot be read.
struct EditResult {
  bool isUnreadable = false;
  std::optional<Refusal> refusal;

  friend bool operator==(EditResult const&, EditResult const&) = default;
};

[[nodiscard]] inline EditResult resultOf(Edit const& edit, ProvisionalTDF& state) {
  try {
    return {false, state.apply(edit)};
  } catch (Error const&) {
    return {true, std::nullopt};
  }
}

/// For messages of tests.
[[nodiscard]] inline std::string textOf(Edit const& edit) {
  static char const* const kinds[] = {"set", "activate", "deactivate", "activate object", "deactivate object",
                                      "add", "remove",   "duplicate",  "rename"};
  return std::string(kinds[static_cast<int>(edit.kind)]) + ' ' + edit.path + " | " + edit.name + " = " + edit.value;
}

}  // namespace tarn::test

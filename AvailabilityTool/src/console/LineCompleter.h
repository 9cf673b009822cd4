#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "console/Completion.h"

namespace tarn {
class ProvisionalTDF;
}

namespace tarn::tool {

/// Tells how a command of the console can go on: the commands themselves, and behind a command the objects, parameters,
/// values or files that it takes, as they are after the last edit.
///
///     sp /Ca                    ->  sp /Case/Domain:rotor/                   as far as there is one way
///     sp /Case/Domain:rotor/Mo  ->  sp /Case/Domain:rotor/Motion=            a parameter to be set
///     sp /Case/Domain:rotor/Motion=  ->  Rotating, Stationary                its allowed values, or else its value
///     do /Case/Domain:rotor     ->  do /Case/Domain:rotor/                   once more behind a whole object: into it
///
/// Paths and files are completed component by component. Offered is only what the command would take as it stands: the
/// loop divides at commas and drops blanks beside them, so a name with a comma is left out where one argument is
/// wanted.
class LineCompleter {
 public:
  /// `state` must outlive the completer.
  explicit LineCompleter(ProvisionalTDF const& state) noexcept : state_(state) {}

  /// How the text of `line` before `cursor` can go on; what stands behind it is not looked at.
  [[nodiscard]] Completion complete(std::string_view line, std::size_t cursor) const;

  /// The commands that are offered.
  [[nodiscard]] static std::vector<std::string> commands();

 private:
  [[nodiscard]] Completion completeArgument(std::string_view command, std::string const& argument) const;
  [[nodiscard]] Completion completeValue(std::string const& paramPath, std::string_view value) const;

  ProvisionalTDF const& state_;
};

}  // namespace tarn::tool

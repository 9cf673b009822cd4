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

/// Finds how a command of the console can continue: the commands themselves, and after a command its objects,
/// parameters, values or files, as they are after the last edit.
///
///     sp /Ca                    ->  sp /Case/Domain:rotor/                   as far as there is only one way
///     sp /Case/Domain:rotor/Mo  ->  sp /Case/Domain:rotor/Motion=            a parameter to be set
///     sp /Case/Domain:rotor/Motion=  ->  Rotating, Stationary                its allowed values, otherwise its value
///     do /Case/Domain:rotor     ->  do /Case/Domain:rotor/                   a second time after a whole object: into
///     it
///
/// Paths and files are completed component by component. Only texts that reach the command unchanged are offered. The
/// loop splits at commas and drops blanks next to them, so a name with a comma is not offered as a single argument.
class LineCompleter {
 public:
  /// `state` must outlive the completer.
  explicit LineCompleter(ProvisionalTDF const& state) noexcept : state_(state) {}

  /// How the text of `line` before `cursor` can continue. The text after the cursor is ignored.
  [[nodiscard]] Completion complete(std::string_view line, std::size_t cursor) const;

  /// The commands that are offered.
  [[nodiscard]] static std::vector<std::string> commands();

 private:
  [[nodiscard]] Completion completeArgument(std::string_view command, std::string const& argument) const;
  [[nodiscard]] Completion completeValue(std::string const& paramPath, std::string_view value) const;

  ProvisionalTDF const& state_;
};

}  // namespace tarn::tool

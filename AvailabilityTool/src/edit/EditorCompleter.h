#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <tarn/session/Session.h>

#include "console/Completion.h"
#include "edit/CommandWords.h"
#include "edit/Editor.h"

namespace tarn::tool {

/// Finds how a command of the editor can continue: the commands themselves, and after a command its objects,
/// parameters, values, units, sections or files, as they are after the last edit.
///
///     se                         ->  set                     a command
///     set /Case/Fl               ->  set /Case/Flow Regime =  a parameter that can be set now
///     set /Case/Flow Regime = L  ->  Laminar                 a value that is allowed now
///     set Time Step = 2.5 [      ->  s, min, h               units
///     show Ti                    ->  also parameters that are not available
///     try of                     ->  the edit that is tried
///
/// Paths are completed component by component, from the root of the model or from the object where the user is. Text
/// that cannot be typed is not offered.
class EditorCompleter {
 public:
  /// Both must outlive the completer.
  EditorCompleter(session::Session const& session, Editor const& editor) noexcept
      : session_(session), editor_(editor) {}

  /// How the text of `line` before `cursor` can continue. The text after the cursor is ignored.
  [[nodiscard]] Completion complete(std::string_view line, std::size_t cursor) const;

 private:
  [[nodiscard]] Completion completeArgument(Word word, std::string_view text) const;
  [[nodiscard]] Completion completeItem(Word word, std::string const& typed) const;
  [[nodiscard]] Completion completeSetting(std::string_view text) const;

  session::Session const& session_;
  Editor const& editor_;
};

}  // namespace tarn::tool

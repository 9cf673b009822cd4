#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Item.h>
#include <tarn/session/Waiting.h>

#include "edit/CommandText.h"

namespace tarn::tool {

/// How texts for people look.
struct TextLook {
  /// The columns of the terminal. Values are shortened so that lines fit. 0: there is no terminal.
  std::size_t width = 0;
  /// The rows of the terminal. 0: there is no terminal.
  std::size_t rows = 0;
  bool colour = false;
};

/// The parts in which the effect of an edit is shown.
enum class Section { Waiting, Gone, Changed, New, Choices, Bounds, Defaults, Units, Offers, Objects };

/// The word that users type for a section: "waiting", "gone".
[[nodiscard]] std::string_view sectionWord(Section section) noexcept;
/// All sections, in the order in which they are shown.
inline constexpr std::array<Section, 10> allSections = {
    Section::Waiting, Section::Gone,     Section::Changed, Section::New,   Section::Objects,
    Section::Choices, Section::Defaults, Section::Bounds,  Section::Units, Section::Offers};

struct ResultTextOptions {
  TextLook look;
  /// The first word when the edits were applied: "done", "tried", "undone".
  std::string done = "done";
  /// The number after it, instead of that of the result. 0: none.
  std::optional<std::size_t> step;
  /// The number of edits that the user gave. `EditResult::made` also has those that followed from them.
  std::size_t given = 1;
  /// Only this section is shown, and it is open.
  std::optional<Section> only;
  /// Nothing is folded and nothing left out.
  bool isOpen = false;
  /// Values that the user had set. One of them that is gone, or waits, is named even where others are folded.
  std::set<session::Item> own;
  /// One sentence about a value that the edit has set and that is doubtful. "" for nothing.
  std::string remark;
  /// The text with which a user makes an edit.
  std::function<std::string(Edit const&)> command = commandText;
  /// The text with which a user opens what is folded: a section, or everything. Not set: folds cannot be opened, and
  /// the text does not say how.
  std::function<std::string(std::optional<Section>)> opener;
};

/// The result of edits as lines for people. Each line ends with a line end.
///
///     done 7: /Case/Analysis/Analysis Type: Steady -> Transient
///       1 waiting, 3 gone, 6 new
///     ! 1 waiting
///         /Case/Analysis
///           Pseudo Time Step = 3 [s]   not available now
///     ...
///
/// The first line is the verdict, the second has the numbers. Then each kind of change has a section, in which changes
/// are grouped by object. If three or more objects of a type have the same change, they are folded into one line that
/// gives their number, and a section is cut off after some lines. Where the text would be longer than the terminal,
/// only the titles of the last sections are shown, so that the verdict stays on the screen. Values that wait are always
/// named. A section without changes is left out, and so is what the verdict says already.
[[nodiscard]] std::string resultText(session::EditResult const& result, ResultTextOptions const& options = {});

/// Why edits were refused, what would be possible, and the nearest edit.
[[nodiscard]] std::string refusalText(session::Refused const& refused, ResultTextOptions const& options = {});

/// The values or paths that would be possible instead: "possible: Laminar, Turbulent". The list is cut off unless
/// `isOpen`.
[[nodiscard]] std::string possibleText(session::Refused const& refused, bool isOpen = false);

/// Why something waits, as a part of a sentence: "not available now: Only a steady case has one".
[[nodiscard]] std::string whyWaiting(session::Waiting const& waiting);

/// The path of an object for a text: "/" for the root of the model.
[[nodiscard]] std::string shownPath(std::string_view path);

/// A colour of the terminal's own palette.
enum class Colour : int { Red = 31, Green = 32, Yellow = 33, Blue = 34, Magenta = 35, Cyan = 36 };

/// The text in a colour, if the terminal has colours.
[[nodiscard]] std::string painted(std::string_view text, Colour colour, TextLook const& look);

}  // namespace tarn::tool

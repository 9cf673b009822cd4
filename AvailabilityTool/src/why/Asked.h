#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/Finding.h>
#include <tarn/session/How.h>
#include <tarn/session/Item.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Session.h>

// The questions to `why` and `how`, in the editor and on the command line, and their answers as text.

namespace tarn::tool {

/// PATH, or PATH = VALUE. The first "=" ends the path.
struct Asked {
  std::string_view path;
  std::optional<std::string> value;
};
[[nodiscard]] Asked dividedAtEquals(std::string_view text);

/// PATH, or PATH=VALUE, for a goal.
[[nodiscard]] std::string goalText(session::Goal const& goal);

/// The proof for an item: why it is there or not, or why a parameter has its value. With a value: why the parameter has
/// that value if it has it, and otherwise why the value is allowed or not allowed.
[[nodiscard]] session::Proof proofOf(session::Session const& session, session::Goal const& goal, std::size_t depth);

/// The fate of a value that no list forbids: it may be refused for its type or its units, or be out of bounds. Without
/// such a value, or if nothing is wrong with it, the remarks are empty.
struct ValueRemarks {
  std::optional<session::Refused> refused;
  /// The findings that the value would bring.
  std::vector<session::Finding> findings;
};
[[nodiscard]] ValueRemarks remarksOn(session::Session& session, session::Goal const& goal, session::Proof const& proof);

/// The proof as text, with the remarks.
[[nodiscard]] std::string whyText(session::Proof const& proof, ValueRemarks const& remarks, std::size_t maxLines);

/// Whether to ask `how` after an answer of `why`: how the absent item comes, or how the value becomes allowed. False if
/// the item is there, the value is allowed, or no edit can help.
[[nodiscard]] bool isWorthHow(session::Proof const& proof);

/// The result of `how`, and after it the commands for each way. `commands` gives the lines that make the edits; none
/// if they cannot be typed.
[[nodiscard]] std::string howText(session::HowResult const& result,
                                  std::function<std::vector<std::string>(std::vector<Edit> const&)> const& commands);

/// The first line of an answer, without a colon at its end.
[[nodiscard]] std::string firstLine(std::string const& text);

}  // namespace tarn::tool

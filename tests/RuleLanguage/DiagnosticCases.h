#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Rule files with the diagnostics that they must give, each beside its line. One file holds many cases:
//
//     #! case a parameter of a type that does not exist
//     Rule Database: 1
//     Objects:
//       /Case:
//         Parameters:
//           Speed: {Parameter Type: Reel}
//     #! error 31-34 unknown-parameter-type: unknown parameter type 'Reel'; did you mean 'Real'?
//     #!   fix 31-34 Real: Replace 'Reel' by 'Real'
//
// Lines that begin with "#!" are taken out before the rules are read, so they can follow any line, also one inside a
// text of several lines. An expectation belongs to the last line before it that stays; several may follow one line:
//
//     #! error COLUMNS CODE: MESSAGE       or warning, or note; the message is compared whole
//     #!   note COLUMNS MESSAGE            belongs to the error or warning above it
//     #!   fix COLUMNS TEXT: TITLE         the same; a line feed in the text is written \n
//
// COLUMNS are the first and the last column, "31-34"; "31" alone is a place where something is missing. When the range
// ends on another line, its last column is "+1:7", one line below, column 7. Notes and fixes at another line name that
// line in the same way, "-2:3-6". A problem of the whole file follows the case line, with "file" for its columns.
//
// A case fails when a diagnostic is missing, unexpected or different; when loading gives other errors than lint; and
// when a fix does not remove its problem. With TARN_UPDATE_CASES=1 the expectations are written anew; read the
// difference before you commit it. Where CI is set that is refused.

namespace tarn::rules::test {

struct DiagnosticCase {
  std::string name;
  std::size_t line = 0;  // of the case in its file
  std::string text;      // the rules
  std::string expected;  // the rules with their expectations, as the file holds them
};

/// The cases of one file, and the text before the first case.
struct DiagnosticCases {
  std::string heading;
  std::vector<DiagnosticCase> cases;
};

[[nodiscard]] DiagnosticCases splitCases(std::string_view file);

/// The rules with the expectations that hold for them now, in the form of `DiagnosticCase::expected`.
[[nodiscard]] std::string withDiagnostics(std::string const& rules);

/// All that is wrong with a case, for people; empty when nothing is.
[[nodiscard]] std::string faultsOf(DiagnosticCase const& one);

}  // namespace tarn::rules::test

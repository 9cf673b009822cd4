#pragma once

#include <iosfwd>
#include <optional>

#include <tarn/ModelTextRewrite.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

namespace tarn::tool {

/// `zev edit` without edits. `file` holds the model that the session was opened with, and `order` is the place of new
/// parameters in it. Runs the commands of the standard input until they end, and returns the exit status.
///
/// On a terminal, a person types them. Mistakes are shown, and the editor goes on. It ends with 0 when the user says
/// so, and with 1 when the terminal goes away while there is work that is not saved; then the model is in a file of its
/// own.
///
/// From a pipe or a file they are a script. It ends at the first command that fails, with 1 if an edit was refused, and
/// otherwise with 2. It ends with 1 if there is work at its end that is not saved.
[[nodiscard]] int runEditor(session::Session& session, std::optional<session::ModelFile> file, ModelTextOrder order,
                            std::ostream& out, std::ostream& err);

}  // namespace tarn::tool

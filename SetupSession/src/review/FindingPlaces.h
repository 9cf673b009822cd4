#pragma once

#include <tarn/ModelText.h>
#include <tarn/session/Findings.h>

namespace tarn::session {

/// Sets the places of all findings and beta messages of the model that `text` holds. Places that are set already stay.
/// Reads the text once if there is a finding to locate.
void locateFindings(ModelText const& text, Findings& findings);

}  // namespace tarn::session

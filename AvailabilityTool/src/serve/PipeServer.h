#pragma once

#include <iosfwd>

#include <tarn/service/Service.h>

#include "serve/TerminationSignals.h"

namespace tarn::tool {

/// Answers each line of the standard input by a line of `out`, until the input ends or a signal comes. Empty lines are
/// skipped.
void serveOverPipe(service::Service& service, TerminationSignals const& signals, std::ostream& out);

}  // namespace tarn::tool

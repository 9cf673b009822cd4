#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include <tarn/service/Service.h>

#include "serve/EditorFiles.h"
#include "serve/RequestGuard.h"
#include "serve/TerminationSignals.h"

namespace tarn::tool {

struct HttpOptions {
  Address address;
  std::string token;
  /// Further names of this machine, without a port.
  std::vector<std::string> names;
  std::optional<EditorFiles> editor;
};

/// Answers requests over HTTP until a signal comes. Writes the URL to `out` when clients can connect. Throws a
/// `Failure` if the address cannot be used.
void serveOverHttp(service::Service& service, HttpOptions const& options, TerminationSignals const& signals,
                   std::ostream& out);

}  // namespace tarn::tool

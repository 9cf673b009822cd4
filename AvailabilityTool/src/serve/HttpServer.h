#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <tarn/service/Service.h>

#include "serve/RequestGuard.h"
#include "serve/TerminationSignals.h"

namespace tarn::tool {

struct HttpOptions {
  Address address;
  std::string token;
  /// Further names of this machine, without a port.
  std::vector<std::string> names;
  /// The folder of the web editor. "" for none.
  std::string web;
};

/// Answers requests over HTTP until a signal comes. Writes the URL to `out` when clients can connect. Throws a
/// `Failure` if the address cannot be used.
void serveOverHttp(service::Service& service, HttpOptions const& options, TerminationSignals const& signals,
                   std::ostream& out);

}  // namespace tarn::tool

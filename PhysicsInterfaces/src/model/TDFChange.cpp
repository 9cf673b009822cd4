// One item of model text, read with the same line grammar as a file of them.
#include <tarn/TDFChange.h>

#include <utility>

#include <tarn/Error.h>

#include "model/ModelTextLine.h"
#include "paths/PathSyntax.h"

namespace tarn {

namespace {

[[noreturn]] void refuse(std::string const& text, char const* reason) {
  throw ParseError("TDFChange", "TDFChange", path_syntax::shown(text) + " is not a change: " + reason);
}

TDFChange parseChange(std::string const& text) {
  ModelTextLine const line = ModelTextLine::parse(text);
  if (line.kind != ModelTextLine::Kind::Item) refuse(text, "it does not begin with \"/\"; write path/name=value");
  if (line.fault) refuse(text, line.fault.reason);
  if (line.path.empty()) return {TDFPath(), std::string(line.name), std::string(line.value)};
  // Checked here, not by the path: "//name=value" has an empty component, though "/" alone is a path.
  if (path_syntax::Fault const fault = path_syntax::findFault(line.path)) refuse(text, fault.reason);
  return {TDFPath(std::string(line.path)), std::string(line.name), std::string(line.value)};
}

}  // namespace

TDFChange::TDFChange(std::string const& text) : TDFChange(parseChange(text)) {}

TDFChange::TDFChange(TDFPath path, std::string paramName, std::string paramValue)
    : TDFPath(std::move(path)), name(std::move(paramName)), value(std::move(paramValue)) {}

}  // namespace tarn

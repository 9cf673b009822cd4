#include "cli/PathArgument.h"

#include <tarn/Error.h>

#include "cli/Failure.h"

namespace tarn::tool {

TDFPath pathArgument(std::string const& option, std::string const& text) {
  try {
    return TDFPath(text);
  } catch (Error const& error) {
    throw Failure(option + ": " + error.getMessage() + "; give the path of an object, such as /Case");
  }
}

TDFPath objectArgument(std::string const& option, std::string const& text) {
  TDFPath path = pathArgument(option, text);
  if (path.size() > 0) return path;
  throw Failure(option + ": \"" + text + "\" names no object; give the path of one, such as /Case");
}

}  // namespace tarn::tool

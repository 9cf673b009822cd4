#include "cli/PathArgument.h"

#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

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
  throw Failure(option + ": \"" + text + "\" is not the path of an object; give one such as /Case");
}

void requireKnownType(std::string const& option, std::string const& path, PhysicsData const& rules) {
  std::string const typePath = PathUtils::typePathOf(path);
  if (rules.getObjDependDef(typePath, true)) return;
  std::vector<std::string> known;
  for (ObjDependDef const* object : rules.objects()) known.push_back(object->typePath());
  std::string const match = StringUtilities::nearMatch(typePath, known);
  throw Failure(option + ": the rules know no objects of the type path " + typePath +
                (match.empty() ? "; give the path of an object that they know" : "; did you mean " + match + "?"));
}

}  // namespace tarn::tool

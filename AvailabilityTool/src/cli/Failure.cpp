#include "cli/Failure.h"

#include <ostream>
#include <sstream>
#include <string>

namespace tarn::tool {

void print(std::ostream& err, Failure const& failure) {
  std::istringstream lines(failure.what());
  for (std::string line; std::getline(lines, line);) err << "zev: " << line << '\n';
}

}  // namespace tarn::tool

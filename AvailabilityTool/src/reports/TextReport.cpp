// The format for people. The two kinds of the validator have the format in which the console prints them.
#include "reports/TextReport.h"

#include <ostream>

namespace tarn::tool {

namespace {

void writeBlock(std::ostream& out, char const* heading, std::string const& path, std::string const& message) {
  out << "**" << heading << " on path \"" << path << "\"\n---\n" << message << "\n===\n";
}

}  // namespace

void writeTextReport(std::ostream& out, std::string const& modelName, session::Findings const& findings) {
  if (!findings.any() && findings.beta.empty()) return;
  out << modelName << ":\n";
  for (auto const& [path, message] : findings.dependency) writeBlock(out, "Dependency error", path, message);
  for (std::string const& message : findings.global) {
    out << "**General physics errors detected \n---\n" << message << "\n===\n";
  }
  for (session::UnknownName const& name : findings.unknown) writeBlock(out, "Unknown name", name.path, name.message);
  for (session::ValueFault const& fault : findings.values) writeBlock(out, "Value fault", fault.path, fault.message);
  for (auto const& [path, message] : findings.beta) writeBlock(out, "Beta message", path, message);
}

}  // namespace tarn::tool

// The printer of the availability tool: a target, a header and a footer around what ProvTDFPrinter writes.

#include <tarn/ProvTDFLogger.h>

#include <iostream>

#include <tarn/ProvisionalTDF.h>

namespace tarn {

namespace {

/// The console stream of that name, or null. The names are matched exactly: with a capital it is a file.
std::ostream* console(std::string const& target) {
  if (target == "stdout" || target == "cout") return &std::cout;
  if (target == "stderr" || target == "cerr") return &std::cerr;
  return nullptr;
}

bool isConsole(std::string const& target) {
  return console(target) != nullptr;
}

void writeHeader(std::ostream& out, std::string const& activeRoot) {
  out << "# BEGIN PROVISIONAL TDF LOGGING ( Active TDF Root = " << activeRoot << " )\n\n" << std::flush;
}

}  // namespace

ProvTDFLogger::ProvTDFLogger(ProvisionalTDF const* provisional, std::string const& target)
    : ownedFile_(isConsole(target) ? nullptr : std::make_shared<std::ofstream>(target, std::ios::app)),
      out_(ownedFile_ ? ownedFile_.get() : console(target)),
      printer_(provisional, out_),
      activeRoot_(provisional->getActiveRoot()) {
  writeHeader(*out_, activeRoot_);
}

ProvTDFLogger::ProvTDFLogger(ProvisionalTDF const* provisional, std::ostream& out)
    : out_(&out), printer_(provisional, out_), activeRoot_(provisional->getActiveRoot()) {
  writeHeader(*out_, activeRoot_);
}

ProvTDFLogger::~ProvTDFLogger() {
  try {
    *out_ << "\n# END PROVISIONAL TDF LOGGING ( Active TDF Root = " << activeRoot_ << " )\n" << std::flush;
  } catch (...) {
    // Nothing may leave a destructor. A host whose stream throws finds it in the stream's state.
  }
}

}  // namespace tarn

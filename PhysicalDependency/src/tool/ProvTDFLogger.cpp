// The printer of the availability tool: a target, a header and a footer around what ProvTDFPrinter writes.

#include <tarn/ProvTDFLogger.h>

#include <iostream>
#include <string_view>

#include <tarn/ModelTDF.h>
#include <tarn/ProvisionalTDF.h>

#include "provisional/dumpModelState.h"

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

/// The name under which an edit is printed. Two differ from the names of the operations; scripts look for them as they
/// are.
std::string_view commandOf(Edit::Kind kind) {
  switch (kind) {
    case Edit::Kind::SetParam:
      return "activeSetParam";
    case Edit::Kind::ActivateParam:
      return "activateOptParam";
    case Edit::Kind::DeactivateParam:
      return "deactivateOptParam";
    case Edit::Kind::ActivateObject:
      return "activateOptObject";
    case Edit::Kind::DeactivateObject:
      return "deactivateOptObject";
    case Edit::Kind::AddObject:
      return "addNewObject";
    case Edit::Kind::RemoveObject:
      return "removeObject";
    case Edit::Kind::DuplicateObject:
      return "duplicateNamedObject";
    case Edit::Kind::RenameObject:
      return "renameNamedObject";
  }
  return {};
}

std::string argumentOf(Edit const& edit) {
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      return edit.path + "/" + edit.name + " = " + edit.value;
    case Edit::Kind::ActivateParam:
    case Edit::Kind::DeactivateParam:
      return edit.path + "/" + edit.name;
    case Edit::Kind::DuplicateObject:
    case Edit::Kind::RenameObject:
      return edit.path + "->" + edit.name;
    case Edit::Kind::ActivateObject:
    case Edit::Kind::DeactivateObject:
    case Edit::Kind::AddObject:
    case Edit::Kind::RemoveObject:
      return edit.path;
  }
  return {};
}

}  // namespace

/// Here and not with the provisional state, which does not know that there is a printer.
void ProvisionalTDF::setLogger(ProvTDFLogger* p_logger) noexcept {
  setObserver(p_logger);
}

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

void ProvTDFLogger::onInitialised(ModelTDF const& base) {
  printString("\n\nBASE TDF BEGIN\n");
  ModelState state;
  dumpModelState(base, "", state);
  printState(state);
  printString("\n\nBASE TDF END\n");
  printString("COMMAND: initialise <BASE TDF>");
  printUpdates();
}

void ProvTDFLogger::onEdit(Edit const& edit, std::optional<Refusal> /*refusal*/) {
  printString(std::string("COMMAND: ").append(commandOf(edit.kind)).append(" ").append(argumentOf(edit)));
  printUpdates();
}

ProvTDFLogger::~ProvTDFLogger() {
  try {
    *out_ << "\n# END PROVISIONAL TDF LOGGING ( Active TDF Root = " << activeRoot_ << " )\n" << std::flush;
  } catch (...) {
    // Nothing may leave a destructor. A host whose stream throws finds it in the stream's state.
  }
}

}  // namespace tarn

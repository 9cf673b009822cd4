// The loop of the availability tool: it reads lines, splits them and finds the handler. ProvTDFDriver.Commands.cpp
// holds the handlers that edit and show the state, ProvTDFDriver.Validation.cpp those that validate.

#include "tool/ProvTDFDriverImpl.h"

#include <algorithm>
#include <iostream>

#include <tarn/Error.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/StringUtilities.h>

#include "tool/CommandArguments.h"

namespace tarn {

namespace {

/// The commands "no" and "ro" are left out on purpose. Some lines end in a blank: keep them, because scripts compare
/// the help of the tools of this family byte by byte.
constexpr char helpText[] =
    "\n"
    "  COMMANDS ----------------------------------------------------------------\n"
    "\n"
    "  pp <param path>           Print information about specified parameter.\n"
    "  po <obj path>             Print information about specified object,\n"
    "                            including optional parameters/named child \n"
    "                            objects that are available but not present\n"
    "                            ('potential' objects/parameters that can be\n"
    "                             'activated').\n"
    "\n"
    "  ps [-b | <object path>]   Print current TDF state. With no argument,\n"
    "                            prints from ProvisionalTDF 'active' root;\n"
    "                            with '-b' prints whole of base and active TDF;\n"
    "                            with path, prints from there.\n"
    "  sp <param path>=[<value>] Set parameter value.\n"
    "  ao <obj path>             Activate an available named optional object.\n"
    "  ap <param path>           Activate an available optional parameter.\n"
    "  do <obj path>             (Attempt to) deactivate an optional named obj.\n"
    "  dp <param path>           (Attempt to) deactivate a parameter from the\n"
    "                            active TDF. (Only optional parameters can\n"
    "                            be deactivated.)\n"
    "  e                         Enter TDF code to update 'base TDF' state.\n"
    "  h                         Print the help message.\n"
    "\n"
    "  q                         Quit the program.\n"
    "\n"
    "  l <tdffile>               Load TDF file to generate new ProvisionalTDF.\n"
    "                            This resets the 'base TDF'. The TDF under the\n"
    "                            ProvisionalTDF root will be used to guide the\n"
    "                            generation of the new ProvisionalTDF data.\n"
    "  lb <tdffile>              Load TDF into 'base TDF', triggering update\n"
    "                            to existing ProvisionalTDF. Note that any TDF\n"
    "                            in the file that is under the ProvisionalTDF\n"
    "                            root will be discarded.\n"
    "  v                         Perform a physics validation on the current\n"
    "                            active TDF state.\n"
    "  vf <filename>             Perform a physics validation on an external\n"
    "                            file. Validation is below the active root.\n"
    "                            Note that this is completely independent of\n"
    "                            the current active TDF state.\n"
    "  -------------------------------------------------------------------------\n"
    "\n";

/// Returns the next line, or "q" at the end of the input. So a last line without a line end is replaced by "q".
std::string readLine(std::istream& stream) {
  stream.clear();
  std::string line;
  std::getline(stream, line);
  if (stream.eof()) line = "q";
  return line;
}

}  // namespace

bool checkArgCount(std::vector<std::string> const& args, std::size_t expected) {
  if (args.size() == expected) return true;
  if (args.size() < expected) {
    std::cout << "Insufficient arguments." << std::endl;
  } else {
    std::vector<std::string> const surplus(args.begin() + static_cast<std::ptrdiff_t>(expected), args.end());
    std::cout << "Unexpected arguments: " << StringUtilities::vectorToString(surplus, ',') << std::endl;
  }
  return false;
}

ProvTDFDriver::Impl::Impl(bool strictLoad, bool quiet, std::string const& validationRoot,
                          PhysicsData const* physicsData, ProvTDFLogger* logger, ProvisionalTDF* provisional)
    : commands_({{"e", &Impl::editTDFHandler},
                 {"pp", &Impl::printParamHandler},
                 {"po", &Impl::printObjHandler},
                 {"ps", &Impl::printStateHandler},
                 {"sp", &Impl::setParamHandler},
                 {"ap", &Impl::activateParamHandler},
                 {"dp", &Impl::deactivateParamHandler},
                 {"ao", &Impl::activateObjHandler},
                 {"do", &Impl::deactivateObjHandler},
                 {"no", &Impl::newNamedObjHandler},
                 {"ro", &Impl::removeNamedObjHandler},
                 {"h", &Impl::helpHandler},
                 {"q", &Impl::quitHandler},
                 {"l", &Impl::loadHandler},
                 {"lb", &Impl::loadBaseHandler},
                 {"v", &Impl::validateHandler},
                 {"vf", &Impl::validateFileHandler}}),
      strictLoad_(strictLoad),
      quiet_(quiet),
      validationRoot_(validationRoot),
      physicsData_(physicsData),
      provisional_(provisional),
      logger_(logger) {}

void ProvTDFDriver::Impl::waitInput() {
  if (!quiet_) {
    std::cout << "\n\n"
                 "  --------------------------------------------\n"
                 "  ---- ZEV-Pre Physical Availability Tool ----\n"
                 "  --------------------------------------------\n\n"
              << std::endl;
  }
  while (!hasQuit()) {
    if (!quiet_) std::cout << "ZEV> ";
    try {
      processInputLine();
    } catch (Error const& error) {
      std::cout << "Error processing input." << std::endl;
      error.write(std::cout);
      std::cout << std::endl;
    } catch (std::string const& text) {
      std::cout << "Error processing input." << std::endl << text << std::endl;
    }
  }
}

void ProvTDFDriver::Impl::processInputLine() {
  processInput(readLine(std::cin));
}

void ProvTDFDriver::Impl::processInput(std::string const& line) {
  Arguments args;
  std::string const command = splitCmdLine(line, args);
  dispatch(command, args);
}

std::string ProvTDFDriver::Impl::splitCmdLine(std::string const& line, Arguments& args) const {
  std::string text = StringUtilities::removeWhitespace(line);
  auto const blank = std::find_if(text.begin(), text.end(), StringUtilities::isSpace);
  args.clear();
  if (blank == text.end()) return text;
  args = StringUtilities::stringToVector(std::string(blank, text.end()), ',');
  text.erase(blank, text.end());
  return text;
}

void ProvTDFDriver::Impl::dispatch(std::string const& command, Arguments const& args) {
  if (command.empty()) return;
  auto const found = commands_.find(command);
  if (found == commands_.end()) {
    std::cout << "Unrecognised command \"" << command << "\"." << std::endl;
    return;
  }
  (this->*found->second)(args);
}

void ProvTDFDriver::Impl::helpHandler(Arguments const& args) {
  // Surplus arguments are reported, but the help is printed anyway.
  (void)checkArgCount(args, 0);
  std::cout << helpText << std::flush;
}

void ProvTDFDriver::Impl::quitHandler(Arguments const& args) {
  if (checkArgCount(args, 0)) setQuit();
}

ProvTDFDriver::ProvTDFDriver(bool strictLoad, bool quiet, std::string const& validationRoot,
                             PhysicsData const* physicsData, ProvTDFLogger* logger, ProvisionalTDF* provisional)
    : impl_(std::make_unique<Impl>(strictLoad, quiet, validationRoot, physicsData, logger, provisional)) {}

ProvTDFDriver::ProvTDFDriver(ProvTDFDriver const& other) : impl_(std::make_unique<Impl>(*other.impl_)) {}

ProvTDFDriver& ProvTDFDriver::operator=(ProvTDFDriver const& other) {
  impl_ = std::make_unique<Impl>(*other.impl_);
  return *this;
}

ProvTDFDriver::~ProvTDFDriver() = default;

void ProvTDFDriver::waitInput() {
  impl_->waitInput();
}

std::shared_ptr<DynamicTDF const> ProvTDFDriver::getLoadedBaseModel() const {
  return impl_->baseTree_;
}

void ProvTDFDriver::printState() const {
  impl_->logger_->printState();
}

}  // namespace tarn

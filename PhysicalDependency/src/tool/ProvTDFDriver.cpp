// The loop of the availability tool: reading lines, dividing them, finding the handler. The handlers that edit and show
// the state stand in ProvTDFDriver.Commands.cpp, those that validate in ProvTDFDriver.Validation.cpp.

#include <tarn/ProvTDFDriver.h>

#include <algorithm>
#include <iostream>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/StringUtilities.h>

#include "tool/CommandArguments.h"

namespace tarn {

namespace {

/// Two commands are not in it: "no" and "ro" are for those who know them. Some lines end in a blank, and whoever
/// compares the help with that of other tools of the family compares it whole.
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

/// The next line. At the end of the input it is "q", which quits; a last line without a line end is lost to it.
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

ProvTDFDriver::ProvTDFDriver(bool strictLoad, bool quiet, std::string const& validationRoot,
                             PhysicsData const* physicsData, ProvTDFLogger* logger, ProvisionalTDF* provisional)
    : commands_({{"e", &ProvTDFDriver::editTDFHandler},
                 {"pp", &ProvTDFDriver::printParamHandler},
                 {"po", &ProvTDFDriver::printObjHandler},
                 {"ps", &ProvTDFDriver::printStateHandler},
                 {"sp", &ProvTDFDriver::setParamHandler},
                 {"ap", &ProvTDFDriver::activateParamHandler},
                 {"dp", &ProvTDFDriver::deactivateParamHandler},
                 {"ao", &ProvTDFDriver::activateObjHandler},
                 {"do", &ProvTDFDriver::deactivateObjHandler},
                 {"no", &ProvTDFDriver::newNamedObjHandler},
                 {"ro", &ProvTDFDriver::removeNamedObjHandler},
                 {"h", &ProvTDFDriver::helpHandler},
                 {"q", &ProvTDFDriver::quitHandler},
                 {"l", &ProvTDFDriver::loadHandler},
                 {"lb", &ProvTDFDriver::loadBaseHandler},
                 {"v", &ProvTDFDriver::validateHandler},
                 {"vf", &ProvTDFDriver::validateFileHandler}}),
      strictLoad_(strictLoad),
      quiet_(quiet),
      validationRoot_(validationRoot),
      physicsData_(physicsData),
      provisional_(provisional),
      logger_(logger) {}

ProvTDFDriver::ProvTDFDriver(ProvTDFDriver const&) = default;
ProvTDFDriver& ProvTDFDriver::operator=(ProvTDFDriver const&) = default;
ProvTDFDriver::~ProvTDFDriver() = default;

void ProvTDFDriver::waitInput() {
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

void ProvTDFDriver::printState() const {
  logger_->printState();
}

void ProvTDFDriver::processInputLine() {
  processInput(readLine(std::cin));
}

void ProvTDFDriver::processInput(std::string const& line) {
  Arguments args;
  std::string const command = splitCmdLine(line, args);
  dispatch(command, args);
}

std::string ProvTDFDriver::splitCmdLine(std::string const& line, Arguments& args) const {
  std::string text = StringUtilities::removeWhitespace(line);
  auto const blank = std::find_if(text.begin(), text.end(), StringUtilities::isSpace);
  args.clear();
  if (blank == text.end()) return text;
  args = StringUtilities::stringToVector(std::string(blank, text.end()), ',');
  text.erase(blank, text.end());
  return text;
}

void ProvTDFDriver::dispatch(std::string const& command, Arguments const& args) {
  if (command.empty()) return;
  auto const found = commands_.find(command);
  if (found == commands_.end()) {
    std::cout << "Unrecognised command \"" << command << "\"." << std::endl;
    return;
  }
  (this->*found->second)(args);
}

void ProvTDFDriver::helpHandler(Arguments const& args) {
  // Surplus arguments are told, and the help comes all the same.
  (void)checkArgCount(args, 0);
  std::cout << helpText << std::flush;
}

void ProvTDFDriver::quitHandler(Arguments const& args) {
  if (checkArgCount(args, 0)) setQuit();
}

}  // namespace tarn

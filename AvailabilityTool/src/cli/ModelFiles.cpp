#include "cli/ModelFiles.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <system_error>
#include <utility>

#include <tarn/Error.h>

#include "cli/Counted.h"

namespace tarn::tool {

namespace {

// The sentence about a file that cannot be read.
std::string unreadable(FileError const& error, std::string const& name) {
  std::error_code ignored;
  return error.getMessage() + (std::filesystem::is_directory(name, ignored)
                                   ? "; give the model files in it, not the folder"
                                   : "; give the name of a model file that can be read");
}

// So many malformed lines are listed. Mostly one mistake has caused them all.
constexpr std::size_t mostListed = 20;

// One line for each malformed line, and the advice at the end of the last.
std::string messageOf(ModelText const& text, bool isModel) {
  std::string message;
  std::size_t const listed = std::min(text.faults().size(), mostListed);
  for (ModelText::Fault const& fault : std::span(text.faults()).first(listed)) {
    if (!message.empty()) message += '\n';
    message +=
        text.source() + ':' + std::to_string(fault.line) + ':' + std::to_string(fault.column) + ": " + fault.reason;
  }
  if (std::size_t const more = text.faultCount() - listed; more > 0) {
    message += '\n' + text.source() + ": " + counted(more, "further malformed line");
  }
  if (text.faultCount() == 1) return message + " (nothing of the model was read; correct the line and run again)";
  if (isModel) return message + " (nothing of the model was read; correct the lines and run again)";
  return message + " (there is nothing to review: the file is not a model with objects that the rules look at)";
}

}  // namespace

ModelFailure::ModelFailure(ModelText const& text, bool isModel)
    : Failure(messageOf(text, isModel)), source_(text.source()), malformed_(text.faults()) {}

ModelState readModelFile(std::string const& name, TDFChangeFile::InputMode mode) {
  if (mode == TDFChangeFile::Strict) {
    ModelText text = readModelText(name);
    if (!text.faults().empty()) throw ModelFailure(text, true);
    return std::move(text).state();
  }
  try {
    return TDFChangeFile({name}, {}, mode).toModelState();
  } catch (FileError const& error) {
    throw ModelFailure(unreadable(error, name));
  }
}

ModelText readModelText(std::string const& name) {
  try {
    return ModelText::read(name);
  } catch (FileError const& error) {
    throw ModelFailure(unreadable(error, name));
  }
}

session::ModelFile readEditedFile(std::string const& name) {
  try {
    return session::ModelFile::read(name);
  } catch (FileError const& error) {
    throw ModelFailure(unreadable(error, name));
  }
}

}  // namespace tarn::tool

#include "cli/ModelFiles.h"

#include <filesystem>
#include <system_error>

#include <tarn/Error.h>

#include "cli/Failure.h"

namespace tarn::tool {

ModelState readModelFile(std::string const& name, TDFChangeFile::InputMode mode) {
  try {
    return TDFChangeFile({name}, {}, mode).toModelState();
  } catch (ParseError const& error) {
    throw Failure(error.getMessage() + " (nothing of the model was read; correct the line and run again)");
  } catch (FileError const& error) {
    std::error_code ignored;
    throw Failure(error.getMessage() + (std::filesystem::is_directory(name, ignored)
                                            ? "; give the model files in it, not the folder"
                                            : "; give the name of a model file that can be read"));
  }
}

}  // namespace tarn::tool

// `zev study`: makes many variants of one model. The work is done by the Python package `tarn`, to which all arguments
// are passed as they are. This front finds Python and the package, and says what is missing.
#include "study/StudyCommand.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;

/// Without the package, Python would print a traceback and end with 1, which means findings.
constexpr char const* bootstrap = R"python(
import sys
try:
    from tarn.study.command import main
except ModuleNotFoundError as error:
    packages = {"yaml": "python3-yaml"}
    sys.stderr.write(f"zev: studies need the Python module {error.name}, which {sys.executable} does not find; install "
                     f"the Debian package {packages.get(error.name, 'python3-tarn')}\n")
    sys.exit(2)
except ImportError as error:
    sys.stderr.write(f"zev: the Python package tarn cannot be used by {sys.executable}: {error}\n")
    sys.exit(2)
sys.exit(main())
)python";

/// The folder that contains the package: in a build folder, or in an installation. "" when it is in neither place;
/// Python may find the package by itself.
std::string packageFolder() {
  std::error_code failed;
  fs::path const program = fs::read_symlink("/proc/self/exe", failed);
  if (failed) return {};
  for (char const* place : {"../python", TARN_PYTHON_FOLDER}) {
    fs::path const folder = (program.parent_path() / place).lexically_normal();
    if (fs::is_regular_file(folder / "tarn/study/command.py", failed)) return folder.string();
  }
  return {};
}

/// The interpreter for which the package was compiled, unless the user names another one.
std::string interpreter() {
  char const* const named = std::getenv("TARN_PYTHON");
  if (named != nullptr && *named != '\0') return named;
  return ::access(TARN_PYTHON_PROGRAM, X_OK) == 0 ? TARN_PYTHON_PROGRAM : "python3";
}

[[noreturn]] void runPython(std::vector<std::string> const& arguments) {
  if (std::string const folder = packageFolder(); !folder.empty()) {
    char const* const others = std::getenv("PYTHONPATH");
    std::string const path = others != nullptr && *others != '\0' ? folder + ':' + others : folder;
    ::setenv("PYTHONPATH", path.c_str(), 1);
  }
  ::setenv("TARN_STUDY_PROGRAM", "zev study", 1);
  std::vector<std::string> words = {interpreter(), "-c", bootstrap};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execvp(pointers.front(), pointers.data());
  std::string const reason = std::generic_category().message(errno);
  throw Failure("studies need Python, and \"" + words.front() + "\" cannot be run: " + reason +
                "; install the Debian package python3-tarn, or name an interpreter by TARN_PYTHON");
}

}  // namespace

void addStudyCommand(CLI::App& app, Command& chosen) {
  CLI::App* command = app.add_subcommand("study", "Make many variants of one model, review them, and write a table");
  command->prefix_command();
  // The help is that of the Python package, which has the options.
  command->set_help_flag();
  command->callback([command, &chosen] {
    chosen = [arguments = command->remaining()](std::ostream& out, std::ostream& err) -> int {
      out.flush();
      err.flush();
      runPython(arguments);
    };
  });
}

}  // namespace tarn::tool

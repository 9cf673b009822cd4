// Runs the built program as a user does and compares its whole output with the files in the repository, byte for
// byte. A case is a folder beside this file:
//
//     command   a shell command; `zev` is the built program, the current folder is the case
//     stdin     the input of the command; empty when the file is missing
//     stdout, stderr, exit   the expected output and exit status
//
// To write stdout, stderr and exit from the present output of the program, set TARN_UPDATE_GOLDEN=1, and read the
// difference before you commit it. This is refused when CI is set.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

#include "Places.h"
#include "support/FileText.h"
#include "support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

fs::path casesFolder() {
  return fs::path(TARN_SOURCE_DIR) / "tests" / "end_to_end";
}

std::vector<std::string> caseNames() {
  std::vector<std::string> names;
  for (fs::directory_entry const& entry : fs::directory_iterator(casesFolder())) {
    if (fs::exists(entry.path() / "command")) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void write(fs::path const& file, std::string const& content) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << content;
  ASSERT_TRUE(stream.flush()) << file;
}

bool isSet(char const* variable) {
  char const* value = std::getenv(variable);
  return value && *value;
}

struct Outcome {
  std::string out;
  std::string err;
  std::string exit;
};

// Runs in the child process between fork and exec. Everything that needs memory was made before.
[[noreturn]] void become(char const* folder, char const* const* argv, char const* const* environment, int in, int out,
                         int err) {
  bool const ready = ::chdir(folder) == 0 && ::dup2(in, 0) != -1 && ::dup2(out, 1) != -1 && ::dup2(err, 2) != -1;
  if (ready) ::execve(argv[0], const_cast<char* const*>(argv), const_cast<char* const*>(environment));
  ::_exit(126);
}

int openOrFail(fs::path const& file, int flags) {
  int const descriptor = ::open(file.c_str(), flags | O_CLOEXEC, 0600);
  EXPECT_NE(descriptor, -1) << file;
  return descriptor;
}

Outcome run(fs::path const& folder) {
  tarn::test::TemporaryFolder const scratchFolder("zev-golden");
  fs::path const& scratch = scratchFolder.path();
  fs::path const input = fs::exists(folder / "stdin") ? folder / "stdin" : fs::path("/dev/null");

  std::string const command = tarn::test::fileText(folder / "command");
  // Nothing of the caller's surroundings gets in, so that a case comes out alike everywhere.
  std::string const path = "PATH=" + fs::path(TARN_ZEV).parent_path().string() + ":/usr/bin:/bin";
  std::string const scratchVariable =
      "SCRATCH=" + scratch.string();  // a folder of its own, for what a case has to make
  // A program that counts its executed lines does not report counts that it could not write.
  char const* const environment[] = {path.c_str(), scratchVariable.c_str(), "LC_ALL=C.UTF-8",
                                     "GCOV_ERROR_FILE=/dev/null", nullptr};
  char const* const argv[] = {"/usr/bin/timeout", "--signal=KILL", "60", "/bin/sh", "-c", command.c_str(), nullptr};

  int const in = openOrFail(input, O_RDONLY);
  int const out = openOrFail(scratch / "stdout", O_WRONLY | O_CREAT | O_TRUNC);
  int const err = openOrFail(scratch / "stderr", O_WRONLY | O_CREAT | O_TRUNC);
  pid_t const child = ::fork();
  if (child == 0) become(folder.c_str(), argv, environment, in, out, err);
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  for (int const descriptor : {in, out, err}) ::close(descriptor);

  Outcome outcome{tarn::test::fileText(scratch / "stdout"), tarn::test::fileText(scratch / "stderr"), ""};
  outcome.exit = (WIFEXITED(status) ? std::to_string(WEXITSTATUS(status))
                                    : "killed by signal " + std::to_string(WTERMSIG(status))) +
                 '\n';
  return outcome;
}

class Golden : public testing::TestWithParam<std::string> {};

TEST_P(Golden, ComesOutAsRecorded) {
  fs::path const folder = casesFolder() / GetParam();
  Outcome const outcome = run(folder);
  if (isSet("TARN_UPDATE_GOLDEN")) {
    ASSERT_FALSE(isSet("CI")) << "Golden files are not written anew where CI is set: run the tests by hand, with "
                                 "TARN_UPDATE_GOLDEN=1 and without CI, and commit what changed.";
    write(folder / "stdout", outcome.out);
    write(folder / "stderr", outcome.err);
    write(folder / "exit", outcome.exit);
    return;
  }
  EXPECT_EQ(outcome.out, tarn::test::fileText(folder / "stdout")) << "in " << folder / "stdout";
  EXPECT_EQ(outcome.err, tarn::test::fileText(folder / "stderr")) << "in " << folder / "stderr";
  EXPECT_EQ(outcome.exit, tarn::test::fileText(folder / "exit")) << "in " << folder / "exit";
}

// A name for the test; folders have words with hyphens.
std::string testName(testing::TestParamInfo<std::string> const& info) {
  std::string name = info.param;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(EndToEnd, Golden, testing::ValuesIn(caseNames()), testName);

}  // namespace

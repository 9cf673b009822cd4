#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace tarn::test {

/// The output of a shell command, including standard error. The test fails if the command does.
inline std::string outputOf(std::string const& command) {
  std::FILE* const pipe = ::popen(("{ " + command + "\n} 2>&1 </dev/null").c_str(), "r");
  if (pipe == nullptr) {
    ADD_FAILURE() << "cannot run " << command;
    return {};
  }
  std::string output;
  char buffer[4096];
  for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, count);
  int const status = ::pclose(pipe);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << command << '\n' << output;
  return output;
}

}  // namespace tarn::test

#include "cli/Progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tarn::tool {
namespace {

using namespace std::chrono_literals;

TEST(Progress, ShowsHowFarTheRunIsAndWipesTheLineAtTheEnd) {
  std::ostringstream terminal;
  {
    Progress progress(terminal, true, 2, 0s);
    progress.begin("pump.tdf");
    progress.begin("fan.tdf");
  }
  EXPECT_EQ(terminal.str(), "\r\033[K[1/2] pump.tdf\r\033[K[2/2] fan.tdf\r\033[K");
}

TEST(Progress, ShowsOfALongNameTheEnd) {
  std::ostringstream terminal;
  Progress progress(terminal, true, 2, 0s);
  progress.begin(std::string(80, 'a') + std::string(60, 'b'));
  EXPECT_EQ(terminal.str(), "\r\033[K[1/2] ..." + std::string(60, 'b'));
}

TEST(Progress, CountsFilesThatPassedBeforeItWasShown) {
  std::ostringstream terminal;
  Progress progress(terminal, true, 3, 1h);
  progress.begin("pump.tdf");
  progress.hide();
  EXPECT_EQ(terminal.str(), "");
}

TEST(Progress, OfOneFileIsNotShown) {
  std::ostringstream terminal;
  Progress progress(terminal, true, 1, 0s);
  progress.begin("pump.tdf");
  EXPECT_EQ(terminal.str(), "");
}

TEST(Progress, SwitchedOffWritesNothing) {
  std::ostringstream file;
  {
    Progress progress(file, false, 9, 0s);
    progress.begin("pump.tdf");
  }
  EXPECT_EQ(file.str(), "");
}

}  // namespace
}  // namespace tarn::tool

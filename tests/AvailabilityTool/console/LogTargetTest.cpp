#include "console/LogTarget.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "cli/Failure.h"
#include "support/FileText.h"
#include "support/TemporaryFolder.h"

namespace tarn::tool {
namespace {

/// While it lives, no file of the process grows beyond so many bytes: a disk that is full, and that gets room again.
class SmallDisk {
 public:
  explicit SmallDisk(rlim_t bytes) : signalBefore_(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    rlimit small = before_;
    small.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signalBefore_);
  }
  SmallDisk(SmallDisk const&) = delete;
  SmallDisk& operator=(SmallDisk const&) = delete;

 private:
  rlimit before_{};
  void (*signalBefore_)(int);
};

class LogTargetTest : public testing::Test {
 protected:
  std::string content() const { return test::fileText(file_); }
  std::string told() const { return told_.str(); }
  std::string tooLarge() const {
    return "zev: the log \"" + file_ +
           "\" cannot be written: File too large; it lacks what was printed last: make room and print it again, or "
           "give "
           "another file\n";
  }

  test::TemporaryFolder const folder_{"zev-log"};
  std::string const file_ = folder_.path() / "pump.log";
  std::ostringstream told_;
};

TEST_F(LogTargetTest, AFileIsAddedTo) {
  std::ofstream(file_) << "of yesterday\n";
  LogTarget log(file_);
  log.stream() << "of today\n";
  EXPECT_TRUE(log.takesMore(told_));
  EXPECT_TRUE(log.finish(told_));
  EXPECT_EQ(content(), "of yesterday\nof today\n");
  EXPECT_EQ(told(), "");
}

TEST_F(LogTargetTest, TheStandardStreamsHaveTheNamesThatThePrinterKnows) {
  for (std::string const target : {"stdout", "cout"}) EXPECT_EQ(&LogTarget(target).stream(), &std::cout);
  for (std::string const target : {"stderr", "cerr"}) EXPECT_EQ(&LogTarget(target).stream(), &std::cerr);
}

TEST_F(LogTargetTest, AFailureIsToldOnceAndDoesNotEndTheRun) {
  LogTarget log(file_);
  SmallDisk const disk(0);
  for (int edit = 0; edit < 3; ++edit) {
    log.stream() << "an edit\n";
    EXPECT_TRUE(log.takesMore(told_));
  }
  EXPECT_EQ(told(), tooLarge());
  EXPECT_FALSE(log.finish(told_));
  EXPECT_EQ(told(), tooLarge());
}

TEST_F(LogTargetTest, IsWrittenAgainWhenThereIsRoomAndEveryNewFailureIsTold) {
  LogTarget log(file_);
  for (std::string const edit : {"first edit\n", "second edit\n"}) {
    {
      SmallDisk const disk(0);
      log.stream() << edit;
      EXPECT_TRUE(log.takesMore(told_));
    }
    log.stream() << "printed again: " << edit;
    EXPECT_TRUE(log.takesMore(told_));
  }
  EXPECT_EQ(told(), tooLarge() + tooLarge());
  EXPECT_FALSE(log.finish(told_)) << "the log has a gap";
  EXPECT_NE(content().find("printed again: first edit\n"), std::string::npos);
  EXPECT_TRUE(content().ends_with("printed again: second edit\n"));
}

TEST_F(LogTargetTest, WhatFailsAtTheVeryEndIsTold) {
  LogTarget log(file_);
  log.stream() << "an edit\n";
  EXPECT_TRUE(log.takesMore(told_));
  log.stream() << "the footer\n";
  SmallDisk const disk(8);
  EXPECT_FALSE(log.finish(told_));
  EXPECT_EQ(told(), tooLarge());
}

TEST_F(LogTargetTest, AStandardStreamThatFailsEndsTheRun) {
  LogTarget log("stderr");
  std::cerr.setstate(std::ios::badbit);
  EXPECT_FALSE(log.takesMore(told_));
  std::cerr.clear();
  EXPECT_FALSE(log.finish(told_)) << "what was lost stays lost";
  EXPECT_EQ(told(), "");
}

}  // namespace
}  // namespace tarn::tool

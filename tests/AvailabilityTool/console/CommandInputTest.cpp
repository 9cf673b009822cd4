#include "console/CommandInput.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarn::tool {
namespace {

bool always() {
  return true;
}

/// A device that gives some bytes and then fails, as a file stream does.
class BadDisk : public std::stringbuf {
 public:
  explicit BadDisk(std::string const& content) : std::stringbuf(content) {}

 protected:
  int_type underflow() override {
    int_type const c = std::stringbuf::underflow();
    if (!traits_type::eq_int_type(c, traits_type::eof())) return c;
    errno = EIO;
    throw std::runtime_error("error reading the file");
  }
};

std::vector<std::string> linesOf(std::istream& in) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

TEST(CommandInput, GivesTheLinesOfTheStreamBelowAndThenItsEnd) {
  std::string const longLine(1'000'000, 'x');
  std::istringstream in("ps\n\n" + longLine + "\nno line end");
  CommandInput const input(in, always);
  EXPECT_EQ(linesOf(in), (std::vector<std::string>{"ps", "", longLine, "no line end"}));
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(input.hasFailed());
}

TEST(CommandInput, WhatCannotBeReadHasEndedAndTheReasonIsKept) {
  BadDisk disk("ps\nv");
  std::istream in(&disk);
  CommandInput const input(in, always);
  EXPECT_EQ(linesOf(in), (std::vector<std::string>{"ps", "v"}));
  EXPECT_TRUE(in.eof());
  EXPECT_TRUE(input.hasFailed());
  EXPECT_EQ(input.error(), EIO);
}

TEST(CommandInput, AFailureIsTheEndForEver) {
  BadDisk disk("");
  std::istream in(&disk);
  CommandInput const input(in, always);
  EXPECT_TRUE(linesOf(in).empty());
  in.clear();
  EXPECT_TRUE(linesOf(in).empty());
  EXPECT_TRUE(in.eof());
}

TEST(CommandInput, AsksBeforeEachLineWhetherToGoOn) {
  std::istringstream in("one\ntwo\nthree\nfour\n");
  int asked = 0;
  CommandInput const input(in, [&] { return ++asked < 3; });
  EXPECT_EQ(linesOf(in), (std::vector<std::string>{"one", "two"}));
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(input.hasFailed());
}

TEST(CommandInput, AfterItsEndTheStreamIsAsBefore) {
  std::istringstream in("one\ntwo\n");
  std::string line;
  {
    CommandInput const input(in, always);
    std::getline(in, line);
  }
  EXPECT_EQ(in.std::istream::rdbuf(), in.rdbuf());
  EXPECT_EQ(linesOf(in), (std::vector<std::string>{"two"}));
}

}  // namespace
}  // namespace tarn::tool

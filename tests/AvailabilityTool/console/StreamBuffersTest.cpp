// The two buffers together, as a loop uses them: a prompt is written, a line is read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <istream>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "console/LineBuffer.h"
#include "console/PromptBuffer.h"

namespace tarn::tool {
namespace {

using testing::ElementsAre;

TEST(PromptBuffer, LinesPassAndTheOneThatIsNotEndedIsKept) {
  std::stringbuf screen;
  PromptBuffer buffer(screen);
  std::ostream out(&buffer);
  out << "one\ntwo\nZEV> " << std::flush;
  EXPECT_EQ(screen.str(), "one\ntwo\n");
  EXPECT_EQ(buffer.takePrompt(), "ZEV> ");
}

TEST(PromptBuffer, APromptThatWasTakenIsNotWritten) {
  std::stringbuf screen;
  {
    PromptBuffer buffer(screen);
    std::ostream out(&buffer);
    out << "ZEV> ";
    EXPECT_EQ(buffer.takePrompt(), "ZEV> ");
    EXPECT_EQ(buffer.takePrompt(), "");
    out << "done\n";
  }
  EXPECT_EQ(screen.str(), "done\n");
}

TEST(PromptBuffer, ALineThatIsWrittenInPiecesStaysInOrder) {
  std::stringbuf screen;
  PromptBuffer buffer(screen);
  std::ostream out(&buffer);
  out << "a" << 'b' << 1 << 'c';
  out.put('\n');
  out << "d";
  EXPECT_EQ(screen.str(), "ab1c\n");
  EXPECT_EQ(buffer.takePrompt(), "d");
}

TEST(PromptBuffer, WhatIsKeptIsWrittenAtTheEnd) {
  std::stringbuf screen;
  {
    PromptBuffer buffer(screen);
    std::ostream(&buffer) << "last line without an end";
    EXPECT_EQ(screen.str(), "");
  }
  EXPECT_EQ(screen.str(), "last line without an end");
}

/// A screen that takes nothing, like a full disk.
class FullBuffer final : public std::streambuf {};

TEST(PromptBuffer, AWriteThatFailsBelowFailsAbove) {
  FullBuffer full;
  PromptBuffer buffer(full);
  std::ostream out(&buffer);
  out << "text\n";
  EXPECT_TRUE(out.bad());
}

TEST(LineBuffer, GivesTheLinesOfItsSourceAndThenTheEnd) {
  std::vector<std::string> lines = {"ps", "", "sp /Case/Title=a b"};
  std::size_t next = 0;
  LineBuffer buffer([&]() -> std::optional<std::string> {
    if (next == lines.size()) return std::nullopt;
    return lines[next++];
  });
  std::istream in(&buffer);
  std::vector<std::string> read;
  for (std::string line; std::getline(in, line);) read.push_back(line);
  EXPECT_EQ(read, lines);
  EXPECT_TRUE(in.eof());
}

TEST(LineBuffer, AsksForALineOnlyWhenOneIsRead) {
  int asked = 0;
  LineBuffer buffer([&] { return std::optional<std::string>(std::to_string(++asked)); });
  std::istream in(&buffer);
  std::string line;
  EXPECT_EQ(asked, 0);
  std::getline(in, line);
  EXPECT_EQ(asked, 1);
  std::getline(in, line);
  EXPECT_EQ(line, "2");
}

TEST(LineBuffer, ASourceThatThrowsHasEnded) {
  LineBuffer buffer([]() -> std::optional<std::string> { throw std::runtime_error("terminal gone"); });
  std::istream in(&buffer);
  std::string line;
  std::getline(in, line);
  EXPECT_TRUE(in.eof());
  EXPECT_FALSE(in.bad());
}

TEST(LineBuffer, GetsThePromptThatALoopWroteBeforeIt) {
  std::stringbuf screen;
  PromptBuffer below(screen);
  std::ostream out(&below);
  std::vector<std::string> prompts;
  LineBuffer lines([&] {
    prompts.push_back(below.takePrompt());
    return std::optional<std::string>("ps");
  });
  std::istream in(&lines);
  in.tie(&out);
  std::string line;
  out << "banner\nZEV> ";
  std::getline(in, line);
  out << "state\n";
  std::getline(in, line);
  EXPECT_THAT(prompts, ElementsAre("ZEV> ", ""));
  EXPECT_EQ(screen.str(), "banner\nstate\n");
}

}  // namespace
}  // namespace tarn::tool

#include "editing/TextBuffer.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using tarn::workbench::TextBuffer;

TEST(TextBuffer, LinesEndAsEditorsEndThem) {
  TextBuffer const buffer("a\nb\r\nc\rd");
  ASSERT_EQ(buffer.lineCount(), 4U);
  EXPECT_EQ(buffer.line(1), "b");
  EXPECT_EQ(buffer.line(2), "c");
  EXPECT_EQ(buffer.line(3), "d");
  EXPECT_EQ(buffer.line(4), "");
}

TEST(TextBuffer, PositionsBeyondALineMeanItsEnd) {
  TextBuffer const buffer("ab\ncd\n");
  EXPECT_EQ(buffer.offsetOf({0, 99}), 2U);
  EXPECT_EQ(buffer.offsetOf({99, 0}), 6U);
}

TEST(TextBuffer, AfterAnyReplacementItIsAsIfMadeFromTheText) {
  std::mt19937 random(7);
  auto const below = [&](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 300; ++round) {
    TextBuffer buffer("a\r\nb\n\rc");
    for (int step = 0; step < 20; ++step) {
      std::size_t const begin = below(buffer.text().size() + 1);
      std::size_t const end = begin + below(buffer.text().size() - begin + 1);
      std::string text;
      for (std::size_t i = below(4); i > 0; --i) text += "\r\nx"[below(3)];
      buffer.replace({begin, end}, text);
      TextBuffer const fresh(buffer.text());
      ASSERT_EQ(buffer.lineCount(), fresh.lineCount()) << round << ' ' << step;
      for (std::size_t line = 0; line < fresh.lineCount(); ++line) {
        ASSERT_EQ(buffer.lineStart(line), fresh.lineStart(line)) << round << ' ' << step;
      }
    }
  }
}

}  // namespace

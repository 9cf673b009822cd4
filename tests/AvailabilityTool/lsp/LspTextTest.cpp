#include "lsp/LspText.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using tarn::tool::bytesOf;
using tarn::tool::pathOf;
using tarn::tool::PositionEncoding;
using tarn::tool::unitsOf;
using tarn::tool::uriOf;

constexpr char const* line = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x99\x82z";  // a ä € 🙂 z

TEST(LspText, CountsInUnitsOfUtf16) {
  EXPECT_EQ(unitsOf(line, PositionEncoding::Utf16), 6U);
  EXPECT_EQ(unitsOf(line, PositionEncoding::Utf8), 11U);
  EXPECT_EQ(bytesOf(line, 3, PositionEncoding::Utf16), 6U);
  EXPECT_EQ(bytesOf(line, 5, PositionEncoding::Utf16), 10U);
}

TEST(LspText, APositionBeyondTheLineOrInsideOfACharacterIsMovedToItsBegin) {
  EXPECT_EQ(bytesOf(line, 99, PositionEncoding::Utf16), 11U);
  EXPECT_EQ(bytesOf(line, 4, PositionEncoding::Utf16), 6U);
}

TEST(LspText, BytesThatAreNotUtf8CountAsOneUnitEach) {
  EXPECT_EQ(unitsOf("\xFF\xC3z\xF0\x9F", PositionEncoding::Utf16), 5U);
}

TEST(LspText, APathBecomesAUriAndComesBack) {
  std::string const path = "/home/ada/a b/\xC3\xA4%.rules.yaml";
  EXPECT_EQ(uriOf(path), "file:///home/ada/a%20b/%C3%A4%25.rules.yaml");
  EXPECT_EQ(pathOf(uriOf(path)), path);
  EXPECT_EQ(pathOf("untitled:Untitled-1"), "untitled:Untitled-1");
}

}  // namespace

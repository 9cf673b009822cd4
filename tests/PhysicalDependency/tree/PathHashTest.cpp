// The hash of a path is computed from the hash of the parent. The index of the tree relies on it.

#include "tree/PathHash.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace tarn {
namespace {

constexpr std::string_view longPath = "/Case/Domain:rotor 1/Boundary:inlet \xc3\xa4\xff/Profile Data:p\x01/Axis";

TEST(PathHash, HowATextIsCutIntoPiecesDoesNotShow) {
  for (std::size_t size = 0; size <= longPath.size(); ++size) {
    std::string_view const path = longPath.substr(0, size);
    PathHash const whole(path);
    for (std::size_t first = 0; first <= size; ++first) {
      for (std::size_t second = first; second <= size; ++second) {
        PathHash pieces(path.substr(0, first));
        pieces.append(path.substr(first, second - first));
        pieces.append(path.substr(second));
        ASSERT_EQ(pieces, whole) << size << " bytes, cut at " << first << " and " << second;
      }
    }
  }
}

TEST(PathHash, TheEmptyTextHasTheHashOfNothing) {
  EXPECT_EQ(PathHash(""), PathHash());
}

TEST(PathHash, TextsThatDifferInOneByteOrInLengthDiffer) {
  std::string const path(longPath);
  for (std::size_t i = 0; i < path.size(); ++i) {
    std::string other = path;
    other[i] = static_cast<char>(other[i] ^ 1);
    EXPECT_NE(PathHash(other), PathHash(path)) << i;
    EXPECT_NE(PathHash(other).value(), PathHash(path).value()) << i;
    EXPECT_NE(PathHash(longPath.substr(0, i)), PathHash(longPath)) << i;
  }
  EXPECT_NE(PathHash(std::string(7, '\0')), PathHash(std::string(6, '\0')));
  EXPECT_NE(PathHash(std::string(8, '\0')), PathHash());
}

TEST(PathHash, TheLowBitsSpreadNumberedObjectsLikeChance) {
  std::set<std::size_t> buckets;
  for (int i = 0; i < 4096; ++i) buckets.insert(PathHash("/Case/Domain:rotor " + std::to_string(i)).value() % 4096);
  // Chance leaves 1 - 1/e of the buckets in use, 2589, give or take 22.
  EXPECT_GT(buckets.size(), 2450U);
}

}  // namespace
}  // namespace tarn

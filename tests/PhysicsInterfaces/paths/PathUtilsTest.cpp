// Order and division of path strings. The order is checked by its laws on random paths, with a comparison of parsed
// components as the second version.
#include <tarn/PathUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>
#include <vector>

#include <tarn/TDFPath.h>

namespace tarn {
namespace {

using PathUtils::comparePaths;

TEST(PathUtils, NamesTheTwoSeparators) {
  EXPECT_EQ(PathUtils::pathSeparator, "/");
  EXPECT_EQ(PathUtils::nameSeparator, ":");
}

TEST(PathUtils, OrdersPathsComponentByComponent) {
  std::vector<std::string> const ordered{"",         "/A",     "/A/B",   "/A/B/C",   "/A/B/C:x", "/A/B:x", "/A/B:x/C",
                                         "/A/B:x y", "/A/B !", "/A/B C", "/A/C",     "/A:x",     "/A:x/B", "/A:x y",
                                         "/A:x y/B", "/A:x!",  "/A B",   "/A B/C",   "/A!",      "/A+",    "/A0",
                                         "/AB",      "/B",     "/a",     "/\xC3\xA4"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      int const order = comparePaths(ordered[i], ordered[j]);
      EXPECT_EQ(order < 0, i < j) << ordered[i] << " and " << ordered[j];
      EXPECT_EQ(order == 0, i == j) << ordered[i] << " and " << ordered[j];
    }
  }
}

TEST(PathUtils, KeepsASubtreeTogetherBesideAnObjectWithABlank) {
  std::vector<std::string> paths{"/A B", "/A/B/C", "/A", "/A/B"};
  std::sort(paths.begin(), paths.end(), PathUtils::PathOrder());
  EXPECT_EQ(paths, (std::vector<std::string>{"/A", "/A/B", "/A/B/C", "/A B"}));
}

class RandomPaths {
 public:
  explicit RandomPaths(unsigned seed) : random_(seed) {}

  std::string next() {
    std::string path;
    for (std::size_t n = pick(4); n > 0; --n) {
      path += '/' + word();
      if (pick(2) == 0) path += ':' + word();
    }
    return path;
  }

 private:
  std::size_t pick(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }
  std::string word() {
    std::string text;
    for (std::size_t n = 1 + pick(2); n > 0; --n) text += std::string_view(" !A0z\xC3")[pick(6)];
    return text;
  }

  std::mt19937 random_;
};

// The components of a path as the contract compares them: type, whether there is a name, name.
std::vector<std::tuple<std::string, bool, std::string>> components(std::string const& path) {
  TDFPath const parsed(path);
  std::vector<std::tuple<std::string, bool, std::string>> parts;
  for (unsigned long long i = 0; i < parsed.size(); ++i) {
    bool const named = parsed.getSubPath(i, 1).find(':') != std::string::npos;
    parts.emplace_back(parsed.getType(i), named, named ? parsed.getName(i) : "");
  }
  return parts;
}

TEST(PathUtils, OrdersRandomPathsAsTheirComponents) {
  RandomPaths random(20261121);
  for (int i = 0; i < 20000; ++i) {
    std::string const a = random.next();
    std::string const b = random.next();
    int const order = comparePaths(a, b);
    ASSERT_EQ(order < 0, components(a) < components(b)) << a << " and " << b;
    ASSERT_EQ(order == 0, a == b) << a << " and " << b;
    ASSERT_EQ(order > 0, comparePaths(b, a) < 0) << a << " and " << b;
  }
}

TEST(PathUtils, TheSubtreeOfEveryPathIsOneRunDirectlyBehindIt) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    RandomPaths random(seed);
    std::vector<std::string> paths;
    for (int i = 0; i < 300; ++i) paths.push_back(random.next());
    std::sort(paths.begin(), paths.end(), PathUtils::PathOrder());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    for (auto p = paths.begin(); p != paths.end(); ++p) {
      auto const isBelow = [&p](std::string const& path) {
        return p->empty() || path == *p || path.compare(0, p->size() + 1, *p + '/') == 0;
      };
      auto const runEnd = std::find_if_not(p, paths.end(), isBelow);
      EXPECT_TRUE(std::none_of(paths.begin(), p, isBelow)) << "seed " << seed << ", subtree of " << *p;
      EXPECT_TRUE(std::none_of(runEnd, paths.end(), isBelow)) << "seed " << seed << ", subtree of " << *p;
    }
  }
}

TEST(PathUtils, AChildPathIsThePathItselfOrBelowIt) {
  EXPECT_TRUE(PathUtils::isChildPath("/A", "/A"));
  EXPECT_TRUE(PathUtils::isChildPath("/A", "/A/B"));
  EXPECT_TRUE(PathUtils::isChildPath("/A", "/A/B:x/C"));
  EXPECT_FALSE(PathUtils::isChildPath("/A", "/AB"));
  EXPECT_FALSE(PathUtils::isChildPath("/A", "/A:x"));
  EXPECT_FALSE(PathUtils::isChildPath("/A:x", "/A:xy"));
  EXPECT_FALSE(PathUtils::isChildPath("/A/B", "/A"));
  EXPECT_TRUE(PathUtils::isChildPath("", ""));
  EXPECT_TRUE(PathUtils::isChildPath("", "/A"));
  EXPECT_TRUE(PathUtils::isChildPath("/", "/A"));
  EXPECT_FALSE(PathUtils::isChildPath("/A", ""));
}

TEST(PathUtils, TheParentIsTheTextBeforeTheLastSeparator) {
  EXPECT_EQ(PathUtils::parentOf("/A/B:x"), "/A");
  EXPECT_EQ(PathUtils::parentOf("/A"), "");
  EXPECT_EQ(PathUtils::parentOf(""), "");
  EXPECT_EQ(PathUtils::parentOf("A"), "");
}

TEST(PathUtils, TheTypePathDropsAllNames) {
  EXPECT_EQ(PathUtils::typePathOf("/A:x/B"), "/A/B");
  EXPECT_EQ(PathUtils::typePathOf("/Case/Domain:main rotor/Boundary:in 1"), "/Case/Domain/Boundary");
  EXPECT_EQ(PathUtils::typePathOf("/Case"), "/Case");
  EXPECT_EQ(PathUtils::typePathOf(""), "");
}

TEST(PathUtils, GivesTypeAndNameOfTheLastComponent) {
  EXPECT_EQ(PathUtils::lastType("/A/B:x"), "B");
  EXPECT_EQ(PathUtils::lastName("/A/B:x"), "x");
  EXPECT_EQ(PathUtils::lastType("/A:x/B"), "B");
  EXPECT_EQ(PathUtils::lastName("/A:x/B"), "B");
  EXPECT_EQ(PathUtils::lastType(""), "");
  EXPECT_EQ(PathUtils::lastName(""), "");
}

}  // namespace
}  // namespace tarn

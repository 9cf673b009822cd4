// Several threads run the tests of one object, with the same rules. Each has its own coverage, which are added
// afterwards.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>
#include <tarn/workbench/RuleCoverage.h>
#include <tarn/workbench/RuleTests.h>

namespace {

using namespace tarn;
using workbench::RuleCoverage;
using workbench::RuleTests;

constexpr char const* rotorRules = R"(Rule Database: 1
Pertinent Roots: [Case]
Objects:
  /Case:
    Parameters:
      Motion:
        Parameter Type: String
        Required: yes
        Ordered Allowed String List: [Stationary, Rotating]
        Default Value: Stationary
      Speed:
        Available: ${Motion} == 'Rotating'
        Parameter Type: Real
        Required: yes
        Default Value: '3'
)";

constexpr char const* rotorTests = R"(Rule Tests: 1
Tests:
  a rotor has a speed:
    Steps:
      - Set: {/Case/Motion: Rotating}
        Expect: {Value: {/Case/Speed: '3'}, Findings: none}
  a stator has none:
    Expect: {Absent: /Case/Speed}
)";

TEST(RuleTestsThreads, RunTestsOfOneObjectAtOnce) {
  auto const rules = rules::parseRules(rotorRules, "rotor.rules.yaml");
  RuleTests const tests = RuleTests::parse(rotorTests, "rotor.rule-tests.yaml");
  ASSERT_EQ(tests.size(), 2U);
  constexpr std::size_t threadCount = 4;
  std::vector<std::optional<RuleCoverage>> coverages(threadCount);
  std::vector<std::size_t> passed(threadCount);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < threadCount; ++i) {
    threads.emplace_back([&, i] {
      RuleCoverage& coverage = coverages[i].emplace(*rules);
      for (int round = 0; round < 20; ++round) {
        for (std::size_t test = 0; test < tests.size(); ++test) {
          passed[i] += tests.run(test, *rules, &coverage).passed() ? 1 : 0;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  RuleCoverage whole(*rules);
  for (std::size_t i = 0; i < threadCount; ++i) {
    EXPECT_EQ(passed[i], 40U);
    whole.add(*coverages[i]);
  }
  for (auto const& item : whole.items()) EXPECT_TRUE(item.isCovered()) << item.entry << ' ' << item.text;
}

}  // namespace

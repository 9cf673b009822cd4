// Mistakes of rule authors, introduced one at a time into sound rule bases of several fields. The files `*.mistakes`
// list them:
//
//     mistake a default out of bounds
//     in 10-plant.rules.yaml
//     - Default Value: -12 [degC]          the lines of the rules that are replaced, from anywhere in a line
//     + Default Value: 12 [degC]           the lines that take their place
//     > 96:24 warning default-out-of-bounds: the default '12 [degC]' is above the upper bound 10 [degC]
//
// Each must be reported exactly so. With TARN_UPDATE_CASES=1 the findings are written anew; read the difference before
// you commit it. Where CI is set that is refused.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

#include "Places.h"
#include "support/FileText.h"

namespace tarn::rules {
namespace {

namespace fs = std::filesystem;

struct Mistake {
  std::string name;
  std::string file;
  std::string written;
  std::string instead;
  std::string found;
};

struct Trial {
  std::string name;
  std::string rules;  // the folder of the sound rule base
  std::size_t least;  // so many mistakes are listed
};

void PrintTo(Trial const& trial, std::ostream* out) {
  *out << trial.name;
}

fs::path listOf(Trial const& trial) {
  return fs::path(TARN_SOURCE_DIR) / "tests/RuleLanguage/lint/mistakes" / (trial.name + ".mistakes");
}

std::vector<Mistake> mistakesOf(Trial const& trial) {
  std::vector<Mistake> mistakes;
  std::istringstream lines(tarn::test::fileText(listOf(trial)));
  for (std::string line; std::getline(lines, line);) {
    auto const append = [&](std::string& text) { text += (text.empty() ? "" : "\n") + line.substr(2); };
    if (line.starts_with("mistake ")) mistakes.push_back({line.substr(8), {}, {}, {}, {}});
    if (mistakes.empty()) continue;
    if (line.starts_with("in ")) mistakes.back().file = line.substr(3);
    if (line.starts_with("- ")) append(mistakes.back().written);
    if (line.starts_with("+ ")) append(mistakes.back().instead);
    if (line.starts_with("> ")) mistakes.back().found += line.substr(2) + "\n";
  }
  return mistakes;
}

std::map<std::string, std::string> filesOf(Trial const& trial) {
  std::map<std::string, std::string> files;
  for (auto const& entry : fs::directory_iterator(fs::path(TARN_SOURCE_DIR) / trial.rules)) {
    if (entry.path().string().ends_with(".rules.yaml")) {
      files[entry.path().filename().string()] = tarn::test::fileText(entry.path());
    }
  }
  return files;
}

/// Place, severity, code and message of each diagnostic, each in a line. The place names a file that is not `file`.
std::string foundIn(std::map<std::string, std::string> const& files, std::string const& file) {
  fs::path const folder = fs::path(testing::TempDir()) / "tarn-mistakes";
  fs::remove_all(folder);
  fs::create_directories(folder);
  for (auto const& [name, text] : files) std::ofstream(folder / name, std::ios::binary) << text;
  std::string found;
  for (auto const& one : lintRules(std::vector<fs::path>{folder}).diagnostics) {
    auto const name = fs::path(one.source).filename().string();
    if (name != file) found += name + ":";
    found += std::to_string(one.line) + ":" + std::to_string(one.column) + " ";
    found.append(severityName(one.severity)).append(" ").append(one.code).append(": ").append(one.message).append("\n");
  }
  return found;
}

/// Each line of `text` after `sign`.
std::string marked(std::string_view sign, std::string const& text) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) result.append(sign).append(line).append("\n");
  return result;
}

bool isSet(char const* variable) {
  char const* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

class MistakeTrial : public testing::TestWithParam<Trial> {};

TEST_P(MistakeTrial, SoundRulesGiveNothing) {
  EXPECT_EQ(foundIn(filesOf(GetParam()), {}), "");
}

TEST_P(MistakeTrial, EachMistakeIsReportedAtItsPlace) {
  auto const files = filesOf(GetParam());
  auto const mistakes = mistakesOf(GetParam());
  EXPECT_GE(mistakes.size(), GetParam().least);
  std::string updated;
  for (auto const& mistake : mistakes) {
    auto changed = files;
    auto& text = changed[mistake.file];
    auto const at = text.find(mistake.written);
    ASSERT_NE(at, std::string::npos) << mistake.name;
    text.replace(at, mistake.written.size(), mistake.instead);
    auto const found = foundIn(changed, mistake.file);
    updated += (updated.empty() ? "mistake " : "\nmistake ") + mistake.name + "\nin " + mistake.file + "\n" +
               marked("- ", mistake.written) + marked("+ ", mistake.instead) + marked("> ", found);
    if (isSet("TARN_UPDATE_CASES")) continue;
    EXPECT_NE(found, "") << mistake.name;
    EXPECT_EQ(found, mistake.found) << mistake.name;
  }
  if (!isSet("TARN_UPDATE_CASES")) return;
  ASSERT_FALSE(isSet("CI")) << "expectations are updated by people, who read them";
  std::ofstream(listOf(GetParam()), std::ios::binary | std::ios::trunc) << updated;
}

std::string nameOf(testing::TestParamInfo<Trial> const& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Of, MistakeTrial,
    testing::Values(Trial{"heating", "examples/heating/rules", 100}, Trial{"flow", "examples/flow/rules", 15},
                    Trial{"microcontroller", "tests/RuleLanguage/lint/mistakes/microcontroller", 100},
                    Trial{"observatory", "tests/RuleLanguage/lint/mistakes/observatory", 150},
                    Trial{"interlocking", "tests/RuleLanguage/lint/mistakes/interlocking", 13},
                    Trial{"brewery", "tests/RuleLanguage/lint/mistakes/brewery", 60}),
    nameOf);

}  // namespace
}  // namespace tarn::rules

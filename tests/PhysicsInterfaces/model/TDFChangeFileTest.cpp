// Model text: both forms, every fault with its exact text in both modes, the result of lenient reading for broken
// blocks, and random bytes.
#include <tarn/TDFChangeFile.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <ios>
#include <iostream>
#include <random>
#include <sstream>
#include <streambuf>

#include <tarn/Error.h>

#include "support/Redirected.h"

namespace tarn {
namespace {

std::string listed(TDFChangeFile const& file) {
  std::string text;
  for (TDFChange const& item : file) text += item.getFullPath() + '|' + item.name + '|' + item.value + '\n';
  return text;
}

// The items of a text without faults.
std::string read(std::string const& text) {
  return listed(TDFChangeFile({}, {text}, TDFChangeFile::Strict));
}

struct Lenient {
  std::string items;
  std::string errors;
};

Lenient readLenient(std::string const& text) {
  tarn::test::Captured const errors(std::cerr);
  std::string const items = listed(TDFChangeFile({}, {text}, TDFChangeFile::Lenient));
  return {items, errors.text()};
}

std::string strictFault(std::string const& text) {
  try {
    TDFChangeFile const file({}, {text}, TDFChangeFile::Strict);
  } catch (ParseError const& error) {
    return error.getMessage();
  }
  return "";
}

class TemporaryFile {
 public:
  explicit TemporaryFile(std::string const& content)
      : path_(testing::TempDir() + "model_" + std::to_string(getpid()) + "_" + std::to_string(++made) + ".tdf") {
    std::ofstream(path_, std::ios::binary) << content;
  }
  TemporaryFile(TemporaryFile const&) = delete;
  TemporaryFile& operator=(TemporaryFile const&) = delete;
  ~TemporaryFile() { std::remove(path_.c_str()); }

  [[nodiscard]] std::string const& path() const { return path_; }

 private:
  static inline int made = 0;
  std::string path_;
};

TEST(TDFChangeFile, ModesHaveFixedNumbers) {
  EXPECT_EQ(static_cast<int>(TDFChangeFile::Lenient), 0);
  EXPECT_EQ(static_cast<int>(TDFChangeFile::Strict), 3);
}

TEST(TDFChangeFile, ReadsOneItemALine) {
  EXPECT_EQ(read("# a model\n"
                 "\n"
                 "/Case/Flow Regime=Turbulent\n"
                 "  \t\n"
                 "  # more\n"
                 "/Case/Domain:rotor/Angular Velocity=120 [rad/s]\n"
                 " /Case/Domain:rotor/Motion \t=  Rotating  \n"
                 "/Title=\n"
                 "/Case/Note=/a=b # c: d\n"
                 "/Case/Domain:stator/\n"),
            "/Case|Flow Regime|Turbulent\n"
            "/Case/Domain:rotor|Angular Velocity|120 [rad/s]\n"
            "/Case/Domain:rotor|Motion|Rotating\n"
            "|Title|\n"
            "/Case|Note|/a=b # c: d\n"
            "/Case/Domain:stator||\n");
}

TEST(TDFChangeFile, ReadsNestedBlocksAsThePrinterWritesThem) {
  EXPECT_EQ(read("\n"
                 "Case: \n"
                 "  Flow Regime = Turbulent\n"
                 "  Domain: rotor\n"
                 "    Angular Velocity = 120 [rad/s]\n"
                 "    Empty = \n"
                 "  END # Domain:rotor\n"
                 "  Domain: stator\n"
                 "  END # Domain:stator\n"
                 "END # Case:\n"
                 "Library: \n"
                 "END # Library:\n"),
            "/Case|Flow Regime|Turbulent\n"
            "/Case/Domain:rotor|Angular Velocity|120 [rad/s]\n"
            "/Case/Domain:rotor|Empty|\n"
            "/Case/Domain:stator||\n"
            "/Library||\n");
}

TEST(TDFChangeFile, MixesItemsAndBlocks) {
  EXPECT_EQ(read("Title = test\n"
                 "Case:\n"
                 "/Other/X=1\n"
                 "A=2\n"
                 "# note\n"
                 "Domain : main rotor \n"
                 "B = x = y # z\n"
                 "END # Domain:main rotor\n"
                 "C = 3\n"
                 "END#Case\n"
                 "/Case/D=4"),
            "|Title|test\n"
            "/Other|X|1\n"
            "/Case|A|2\n"
            "/Case/Domain:main rotor|B|x = y # z\n"
            "/Case|C|3\n"
            "/Case|D|4\n");
}

TEST(TDFChangeFile, ABlockThatHoldsOnlyABlockHasNoItemOfItsOwn) {
  EXPECT_EQ(read("Case:\nDomain: rotor\nEND # Domain:rotor\nEND # Case:\n"), "/Case/Domain:rotor||\n");
}

TEST(TDFChangeFile, AnEndWithoutANameClosesABlockWhoseNameIsItsType) {
  EXPECT_EQ(read("Case: Case\nA = 1\nEND # Case:\n"), "/Case:Case|A|1\n");
}

TEST(TDFChangeFile, AParameterMayBeCalledEnd) {
  EXPECT_EQ(read("END = # 5\nENDING: x\nEND # ENDING:x"), "|END|# 5\n/ENDING:x||\n");
}

TEST(TDFChangeFile, DropsTheByteOrderMarkAndCarriageReturns) {
  EXPECT_EQ(read("\xEF\xBB\xBF/Case/A=1\r\n/Case/B=2\r\n"), "/Case|A|1\n/Case|B|2\n");
  EXPECT_EQ(read("\xEF\xBB\xBF"), "");
  EXPECT_EQ(read("/Case/A=x\ry"), "/Case|A|xy\n");
}

TEST(TDFChangeFile, AnEmptyTextHasNoItems) {
  EXPECT_EQ(read(""), "");
  EXPECT_EQ(read("\n\n"), "");
  EXPECT_EQ(listed(TDFChangeFile({}, {}, TDFChangeFile::Strict)), "");
}

TEST(TDFChangeFile, KeepsBytesThatAreNoText) {
  EXPECT_EQ(read("/Case/A=\xFF\xC3("), "/Case|A|\xFF\xC3(\n");
}

TEST(TDFChangeFile, ReadsFilesInOrderAndThenTheExtraTexts) {
  TemporaryFile const first("/Case/A=1\nCase:\nB=2\nEND # Case:");
  TemporaryFile const second("/Case/C=3\n");
  EXPECT_EQ(listed(TDFChangeFile({second.path(), first.path()}, {"/Case/D=4", "/Case/E=5"}, TDFChangeFile::Strict)),
            "/Case|C|3\n/Case|A|1\n/Case|B|2\n/Case|D|4\n/Case|E|5\n");
}

TEST(TDFChangeFile, ReadsAnEmptyFile) {
  TemporaryFile const file("");
  EXPECT_EQ(listed(TDFChangeFile({file.path()}, {}, TDFChangeFile::Strict)), "");
}

TEST(TDFChangeFile, ReadsTheStandardInput) {
  std::istringstream input("/Case/A=1\n/Case/B\n");
  tarn::test::Redirected const fromInput(std::cin, input.rdbuf());
  tarn::test::Captured const errors(std::cerr);
  std::string const items = listed(TDFChangeFile({"-"}, {}, TDFChangeFile::Lenient));
  EXPECT_EQ(items, "/Case|A|1\n");
  EXPECT_EQ(errors.text(),
            "<stdin>:2:1: neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an "
            "object\n");
}

std::string fileFault(std::string const& name, TDFChangeFile::InputMode mode) {
  try {
    TDFChangeFile const file({name}, {}, mode);
  } catch (FileError const& error) {
    return error.getMessage();
  }
  return "";
}

TEST(TDFChangeFile, AFileThatCannotBeReadThrowsInBothModes) {
  std::string const missing = testing::TempDir() + "no such model.tdf";
  std::string const directory = testing::TempDir() + "model_dir_" + std::to_string(getpid());
  std::filesystem::create_directory(directory);
  for (auto const mode : {TDFChangeFile::Lenient, TDFChangeFile::Strict}) {
    EXPECT_EQ(fileFault(missing, mode), "cannot open \"" + missing + "\": No such file or directory");
    EXPECT_EQ(fileFault(directory, mode), "cannot read \"" + directory + "\": Is a directory");
    EXPECT_EQ(fileFault("", mode), "cannot open \"\": No such file or directory");
  }
  std::filesystem::remove(directory);
}

/// An input that fails as a file stream does.
class BrokenInput : public std::streambuf {
 protected:
  std::streamsize xsgetn(char* /*buffer*/, std::streamsize /*size*/) override {
    errno = EIO;
    throw std::ios_base::failure("error reading the file");
  }
};

TEST(TDFChangeFile, AStandardInputThatCannotBeReadThrowsInBothModes) {
  BrokenInput input;
  tarn::test::Redirected const in(std::cin, &input);
  for (auto const mode : {TDFChangeFile::Lenient, TDFChangeFile::Strict}) {
    EXPECT_EQ(fileFault("-", mode), "cannot read the standard input: Input/output error");
  }
}

TEST(TDFChangeFile, TellsTheNameOfTheFileWithAFault) {
  TemporaryFile const file("/Case/A=1\n\n  rubbish\n");
  std::string message;
  try {
    TDFChangeFile const read({file.path()}, {}, TDFChangeFile::Strict);
  } catch (Error const& error) {
    message = error.getMessage();
  }
  EXPECT_EQ(
      message,
      file.path() + ":3:3: neither \"=\" nor \":\" in the line; write name = value, Type: name or END # Type:name");
}

// A faulty line between two good ones: strict reading throws the text, lenient reading writes it and reads on.
TEST(TDFChangeFile, TellsEveryFaultOfALineWithItsPlace) {
  struct Row {
    char const* line;
    char const* fault;
  };
  std::string const nul("/Case/A=1\0", 10);
  for (Row const& row : {
           Row{"/Case/A",
               "2:1: neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an object"},
           Row{"  /Case",
               "2:3: neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an object"},
           Row{"/Case/=1", "2:7: the name before \"=\" is missing"},
           Row{"=1", "2:1: the name before \"=\" is missing"},
           Row{" /=1", "2:3: the name before \"=\" is missing"},
           Row{"//A=1", "2:1: a component of the path is empty"},
           Row{"/Case//A=1", "2:6: a component of the path is empty"},
           Row{"/Case//", "2:6: a component of the path is empty"},
           Row{"/Case/Domain:/A=1", "2:13: the name after \":\" is missing"},
           Row{"/Case/:rotor/A=1", "2:7: the type before \":\" is missing"},
           Row{"/Case/Domain:a:b/A=1", "2:15: a component of the path holds a second \":\""},
           Row{"/\xC3\x84/\xC3\x96:a:b/A=1", "2:7: a component of the path holds a second \":\""},
           Row{"/Case/Domain:a=1",
               "2:13: a parameter name cannot hold \":\"; an object is divided from its parameter by \"/\""},
           Row{" Domain: a = b",
               "2:8: a parameter name cannot hold \":\", and the name of an object that a block opens cannot hold "
               "\"=\""},
           Row{"Case/A = 1", "2:5: a parameter name cannot hold \"/\"; begin the line with \"/\" to give a whole path"},
           Row{"rubbish",
               "2:1: neither \"=\" nor \":\" in the line; write name = value, Type: name or END # Type:name"},
           Row{"END", "2:1: neither \"=\" nor \":\" in the line; write name = value, Type: name or END # Type:name"},
           Row{" : rotor", "2:2: the type before \":\" is missing"},
           Row{"Domain: a:b", "2:10: the name of an object cannot hold \":\""},
           Row{"Domain: a/b", "2:10: the name of an object cannot hold \"/\""},
           Row{"Case/Domain: a",
               "2:5: the type of an object cannot hold \"/\"; begin the line with \"/\" to give a whole path"},
           Row{"END # Case:", "2:1: no block is open here that \"END\" could close"},
           Row{"END #", "2:1: no block is open here that \"END\" could close"},
       }) {
    std::string const text = "/Case/First=1\n" + std::string(row.line) + "\n/Case/Last=2\n";
    std::string const fault = "<text 1>:" + std::string(row.fault);
    EXPECT_EQ(strictFault(text), fault);
    Lenient const lenient = readLenient(text);
    EXPECT_EQ(lenient.errors, fault + "\n");
    EXPECT_EQ(lenient.items, "/Case|First|1\n/Case|Last|2\n") << row.line;
  }
}

TEST(TDFChangeFile, ANulByteSpoilsItsLineOnly) {
  std::string const text("/Case/A=1\n/Case/B=\0x\n/Case/C=3\n#\0\n", 33);
  Lenient const lenient = readLenient(text);
  EXPECT_EQ(lenient.items, "/Case|A|1\n/Case|C|3\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:2:9: the line holds a NUL byte; model text is plain text\n"
            "<text 1>:4:2: the line holds a NUL byte; model text is plain text\n");
  EXPECT_EQ(strictFault(text), "<text 1>:2:9: the line holds a NUL byte; model text is plain text");
}

TEST(TDFChangeFile, AnEndOfTheInnermostBlockIsWanted) {
  EXPECT_EQ(
      strictFault("Case:\n  Domain: rotor\n  END # Domain:stator\n"),
      "<text 1>:3:3: \"END # Domain:stator\" closes the wrong block: the innermost open one, of line 2, is closed "
      "with \"END # Domain:rotor\"");
  EXPECT_EQ(strictFault("Case:\nEND # Case:x\n"),
            "<text 1>:2:1: \"END # Case:x\" closes the wrong block: the innermost open one, of line 1, is closed with "
            "\"END # Case:\"");
}

TEST(TDFChangeFile, ABlockLeftOpenIsToldWhereItWasOpened) {
  std::string const text = "A = 1\n  Case: \n    B = 2\n    Domain: rotor\n      C = 3\n";
  EXPECT_EQ(strictFault(text), "<text 1>:2:3: the block is left open; close it with \"END # Case:\"");
  Lenient const lenient = readLenient(text);
  EXPECT_EQ(lenient.items, "|A|1\n/Case|B|2\n/Case/Domain:rotor|C|3\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:2:3: the block is left open; close it with \"END # Case:\"\n"
            "<text 1>:4:5: the block is left open; close it with \"END # Domain:rotor\"\n");
}

TEST(TDFChangeFile, ABlockLeftOpenInOneFileIsNotOpenInTheNext) {
  tarn::test::Captured const errors(std::cerr);
  EXPECT_EQ(listed(TDFChangeFile({}, {"Case:\nA=1", "B=2"}, TDFChangeFile::Lenient)), "/Case|A|1\n|B|2\n");
  EXPECT_EQ(errors.text(), "<text 1>:1:1: the block is left open; close it with \"END # Case:\"\n");
}

TEST(TDFChangeFile, AFaultyOpeningLineTakesItsBlockWithIt) {
  Lenient const lenient = readLenient(
      "Case:\n"
      "  Domain: a:b\n"
      "    Motion = Rotating\n"
      "    Boundary: in\n"
      "      Kind = Inlet\n"
      "      /Other/X=1\n"
      "    END # Boundary:in\n"
      "  END # Domain:a:b\n"
      "  Domain: c=d\n"
      "    Motion = Fixed\n"
      "  END # Domain:c=d\n"
      "  Flow Regime = Laminar\n"
      "END # Case:\n");
  EXPECT_EQ(lenient.items, "/Other|X|1\n/Case|Flow Regime|Laminar\n");
  EXPECT_EQ(
      lenient.errors,
      "<text 1>:2:12: the name of an object cannot hold \":\"\n"
      "<text 1>:9:9: a parameter name cannot hold \":\", and the name of an object that a block opens cannot hold "
      "\"=\"\n");
}

TEST(TDFChangeFile, AFaultyLineThatOpensNothingLeavesWhatFollowsInPlace) {
  Lenient const lenient = readLenient("Case:\n  see http://host:80/\n  Flow Regime = Laminar\nEND # Case:\n");
  EXPECT_EQ(lenient.items, "/Case|Flow Regime|Laminar\n");
  EXPECT_EQ(lenient.errors, "<text 1>:2:12: the name of an object cannot hold \"/\"\n");
}

TEST(TDFChangeFile, AnEndForAnOuterBlockClosesWhatIsWithin) {
  Lenient const lenient = readLenient(
      "Case:\n"
      "  Domain: rotor\n"
      "    Motion = Rotating\n"
      "    Boundary: in\n"
      "      Kind = Inlet\n"
      "END # Case:\n"
      "Title = test\n");
  EXPECT_EQ(lenient.items,
            "/Case/Domain:rotor|Motion|Rotating\n/Case/Domain:rotor/Boundary:in|Kind|Inlet\n|Title|test\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:6:1: \"END # Case:\" closes the wrong block: the innermost open one, of line 4, is closed with "
            "\"END # Boundary:in\"\n");
}

TEST(TDFChangeFile, AMistypedEndUnderItsOpeningLineClosesTheBlock) {
  Lenient const lenient = readLenient(
      "Case:\n"
      "  Domain: rotor\n"
      "    Motion = Rotating\n"
      "  END # Domain:roter\n"
      "  Flow Regime = Laminar\n"
      "END # Case:\n");
  EXPECT_EQ(lenient.items, "/Case/Domain:rotor|Motion|Rotating\n/Case|Flow Regime|Laminar\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:4:3: \"END # Domain:roter\" closes the wrong block: the innermost open one, of line 2, is closed "
            "with \"END # Domain:rotor\"\n");
}

TEST(TDFChangeFile, AStrayEndLeavesABlockOpenThatIsClosedLater) {
  Lenient const lenient = readLenient("Case:\nA = 1\nEND # Other:\nB = 2\nEND # Case:\n");
  EXPECT_EQ(lenient.items, "/Case|A|1\n/Case|B|2\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:3:1: \"END # Other:\" closes the wrong block: the innermost open one, of line 1, is closed with "
            "\"END # Case:\"\n");
}

TEST(TDFChangeFile, ANulByteInAnOpeningLineTakesTheBlockWithIt) {
  std::string text = "Case:\nDomain: a@b\nMotion = Fixed\nEND # Domain:a@b\nA = 1\nEND # Case:\n";
  std::replace(text.begin(), text.end(), '@', '\0');
  Lenient const lenient = readLenient(text);
  EXPECT_EQ(lenient.items, "/Case|A|1\n");
  EXPECT_EQ(lenient.errors,
            "<text 1>:2:10: the line holds a NUL byte; model text is plain text\n"
            "<text 1>:4:15: the line holds a NUL byte; model text is plain text\n");
}

TEST(TDFChangeFile, APathHasAtMostAThousandComponents) {
  std::string path;
  for (int i = 0; i < 1000; ++i) path += "/A:b";
  EXPECT_EQ(read(path + "/X=1"), path + "|X|1\n");
  EXPECT_EQ(read(path + "/"), path + "||\n");
  EXPECT_EQ(strictFault(path + "/A/X=1"), "<text 1>:1:4001: a path has at most 1,000 components");
  EXPECT_EQ(strictFault(path + "/A/"), "<text 1>:1:4001: a path has at most 1,000 components");
}

TEST(TDFChangeFile, BlocksNestToAThousand) {
  auto const nested = [](int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "A: b\n";
    text += "X = 1\n";
    for (int i = 0; i < depth; ++i) text += "END # A:b\n";
    return text;
  };
  std::string path;
  for (int i = 0; i < 1000; ++i) path += "/A:b";
  EXPECT_EQ(read(nested(1000)), path + "|X|1\n");
  EXPECT_EQ(strictFault(nested(1001)), "<text 1>:1001:1: a path has at most 1,000 components");
  Lenient const lenient = readLenient(nested(1002));
  EXPECT_EQ(lenient.items, path + "||\n");  // what it held is left out, the deepest object stays
  EXPECT_EQ(lenient.errors,
            "<text 1>:1001:1: a path has at most 1,000 components\n"
            "<text 1>:1002:1: a path has at most 1,000 components\n");
}

TEST(TDFChangeFile, OfAParameterGivenTwiceTheFirstValueStands) {
  TDFChangeFile const file({}, {"/Case/A=1\n/Case/A=2\nCase:\nA=3\nEND # Case:\n/Case/B=\n/Case/B=4"},
                           TDFChangeFile::Strict);
  EXPECT_EQ(file.toModelState(), (ModelState{{"/Case", {{"A", "1"}, {"B", ""}}}}));
}

TEST(TDFChangeFile, AnObjectWithoutParametersHasAnEmptyMapUnlessItHasAnEntry) {
  TDFChangeFile const file(
      {}, {"/Case/A=1\n/Case/\n/Case/Domain:rotor/\n/Case/Domain:stator/\n/Case/Domain:stator/B=2\n/X=0"},
      TDFChangeFile::Strict);
  EXPECT_EQ(file.toModelState(), (ModelState{{"", {{"X", "0"}}},
                                             {"/Case", {{"A", "1"}}},
                                             {"/Case/Domain:rotor", {}},
                                             {"/Case/Domain:stator", {{"B", "2"}}}}));
}

TEST(TDFChangeFile, ReadsLargeValuesAndManyFaultsInLinearTime) {
  std::string const large(8'000'000, 'x');
  std::clock_t const start = std::clock();
  EXPECT_EQ(read("/Case/A=" + large), "/Case|A|" + large + '\n');
  EXPECT_EQ(strictFault(large),
            "<text 1>:1:1: neither \"=\" nor \":\" in the line; write name = value, Type: name or END # Type:name");
  std::string openings;
  for (int i = 0; i < 200000; ++i) openings += "a:\nEND # b:\n";
  std::string junk;
  for (int i = 0; i < 200000; ++i) junk += "a: b:c\n";
  EXPECT_GT(readLenient(openings).errors.size(), 200000U);
  EXPECT_GT(readLenient(junk).errors.size(), 200000U);
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 60) << "seconds of the processor";
}

TEST(TDFChangeFile, NeverFailsForRandomTextInLenientMode) {
  std::mt19937 random(20261121);
  std::vector<std::string> const pieces{"/",
                                        "Case",
                                        "Domain",
                                        ":",
                                        "=",
                                        " ",
                                        "\n",
                                        "\n",
                                        "END # ",
                                        "Case:",
                                        "#",
                                        "Domain:a",
                                        "\r",
                                        std::string(1, '\0'),
                                        "\xFF",
                                        "\xC3\xA4",
                                        "/Case/A=1\n",
                                        "Case:\n",
                                        "END # Case:\n",
                                        "a",
                                        "a:b:c\n",
                                        "END # a:b:c\n",
                                        "\xEF\xBB\xBF",
                                        "END"};
  auto const pick = [&random](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  std::size_t items = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text;
    for (std::size_t n = pick(40); n > 0; --n) {
      if (i % 4 == 0) {
        text += static_cast<char>(pick(256));
      } else {
        text += pieces[pick(pieces.size())];
      }
    }
    Lenient const lenient = readLenient(text);
    std::string const fault = strictFault(text);
    // Both modes see the same first fault, and text without one reads the same in both.
    ASSERT_EQ(lenient.errors.substr(0, fault.size()), fault) << testing::PrintToString(text);
    ASSERT_EQ(lenient.errors.empty(), fault.empty()) << testing::PrintToString(text);
    ASSERT_EQ(fault.empty() ? read(text) : lenient.items, lenient.items);
    items += lenient.items.size();
  }
  EXPECT_GT(items, 0U);
}

}  // namespace
}  // namespace tarn

// Every name and value that a session takes survives saving and loading exactly. The others are refused at the edit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelTextRewrite.h>
#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>

#include "SetupSession/session/TankCase.h"

namespace tarn::session {
namespace {

using namespace std::string_literals;
using test::Tanks;
using testing::ElementsAre;

/// A free list of texts, besides what the plant has.
char const* const noteRules = R"rules(Rule Database: 1
Pertinent Roots: [Notebook]
Objects:
  /Notebook:
    Parameters:
      Keywords: {Parameter Type: String List}
      Weights: {Parameter Type: Real List}
      Numbers: {Parameter Type: Integer List}
      Author: {Parameter Type: String}
      Weight: {Parameter Type: Real}
      Pages: {Parameter Type: Integer}
      Open: {Parameter Type: Logical}
    Children:
      Page: {Coupled: Yes}
  /Notebook/Page:
    Parameters:
      Author: {Parameter Type: String}
    Children:
      Line: {Coupled: Yes}
  /Notebook/Page/Line:
    Parameters:
      Author: {Parameter Type: String}
)rules";

/// The models from which the sessions start: line by line, in blocks, with a byte order mark and other line ends.
std::array<std::string, 4> const models = {
    "/Notebook/Author=me\n/Notebook/Page:1/Author=me\n",
    "Notebook:\n  Author = me\n  Page:1\n    Author = me\n  END # Page:1\nEND # Notebook:\n",
    "\xEF\xBB\xBF# notes\r\nNotebook:\r\n  Page: 1\r\n  END # Page: 1\r\nEND # Notebook:\r\n", "/Notebook/Page:1/"};

/// Texts that model text, or a reader of it, might take for something else.
std::vector<std::string> hostileTexts() {
  std::vector<std::string> texts = {"=",
                                    "==",
                                    "a=b",
                                    "=a",
                                    "a=",
                                    "#",
                                    "#a",
                                    "a # b",
                                    "END",
                                    "END #",
                                    "END # Page:1",
                                    "END#",
                                    "/",
                                    "a/b",
                                    "/a",
                                    "a/",
                                    ":",
                                    "a:b",
                                    ":a",
                                    "a:",
                                    "::",
                                    "\\",
                                    "\\n",
                                    "\"",
                                    "'",
                                    "''",
                                    "{",
                                    "}",
                                    "{a}",
                                    "[",
                                    "]",
                                    "[m]",
                                    "$",
                                    "${a}",
                                    "%s",
                                    "%",
                                    ",",
                                    "a,b",
                                    ",a",
                                    "a,",
                                    ",,",
                                    "a, b",
                                    ";",
                                    "a;b",
                                    "&",
                                    "*",
                                    "?",
                                    "|",
                                    "<",
                                    "<a>",
                                    "!",
                                    "~",
                                    "^",
                                    "`",
                                    "a b",
                                    "a  b",
                                    " a",
                                    "a ",
                                    "\ta",
                                    "a\t",
                                    "\v",
                                    "a\vb",
                                    "a\v",
                                    "\f",
                                    "a\fb",
                                    "\x01",
                                    "\x1b",
                                    "\x1b[2J",
                                    "\b",
                                    "\x7f",
                                    "\n",
                                    "a\nb",
                                    "\r",
                                    "a\rb",
                                    "a\r",
                                    "\0"s,
                                    "a\0b"s,
                                    "\xff",
                                    "\xc3",
                                    "\xe2\x80",
                                    "-",
                                    "--",
                                    "- a",
                                    "---",
                                    "1",
                                    "1e400",
                                    "-0",
                                    "0x1p-3",
                                    "nan",
                                    "inf",
                                    "1.",
                                    ".5",
                                    "1 2",
                                    "yes",
                                    "true",
                                    "Page",
                                    "",
                                    " ",
                                    "Page:",
                                    "Notebook",
                                    "\xC2\xA0",
                                    "a\xC2\xA0",
                                    "\xE2\x80\xA8",
                                    "a\xE2\x80\xAE"
                                    "b",
                                    "\xEF\xBB\xBF",
                                    "\xC2\x85",
                                    "\xF0\x9F\x92\xA7",
                                    "@",
                                    "+",
                                    "null",
                                    "~a",
                                    "&a",
                                    "*a",
                                    "!a",
                                    "%YAML",
                                    "|-",
                                    ">-",
                                    "? a",
                                    "- - a",
                                    "a: b",
                                    "a:  b"};
  texts.push_back(std::string(100'000, 'x'));
  std::mt19937 random(20'240'817);
  std::vector<std::string> const parts(texts.begin(), texts.begin() + 100);
  for (int i = 0; i < 400; ++i) {
    std::string text;
    for (unsigned j = 1 + random() % 4; j > 0; --j) {
      text += random() % 5 == 0 ? std::string(1, static_cast<char>(random() % 256)) : parts[random() % parts.size()];
    }
    texts.push_back(text);
  }
  return texts;
}

/// Why the state does not survive saving and loading; nothing if it does.
std::optional<std::string> lossOf(std::string const& model, ModelState const& state) {
  std::string saved;
  try {
    saved = rewriteModelText(model, state);
  } catch (std::exception const& error) {
    return error.what();
  }
  ModelText const loaded("saved.tdf", saved);
  if (loaded.faultCount() > 0) return "malformed: " + saved;
  for (auto const& [path, params] : state) {
    auto const found = loaded.state().find(path);
    if (params.empty()) continue;
    if (found == loaded.state().end() || found->second != params) return "other parameters: " + saved;
  }
  for (auto const& [path, params] : loaded.state()) {
    if (!params.empty() && state.find(path) == state.end()) return "another object: " + saved;
  }
  return std::nullopt;
}

class SessionSaving : public testing::TestWithParam<std::size_t> {
 protected:
  [[nodiscard]] std::string const& model() const { return models[GetParam()]; }
  std::unique_ptr<PhysicsData> const rules_ = rules::parseRules(noteRules, "notes.rules.yaml");
};

TEST_P(SessionSaving, KeepsWhateverTheSessionHasTaken) {
  auto const opened = Session::open(*rules_, ModelText("notes.tdf", model()));
  ASSERT_TRUE(opened.session);
  Session& session = *opened.session;
  std::size_t taken = 0;
  for (std::string const& text : hostileTexts()) {
    std::vector<Edit> edits = {
        Edit::addObject("/Notebook/Page:" + text), Edit::duplicateObject("/Notebook/Page:1", text),
        Edit::renameObject("/Notebook/Page:1", text), Edit::addObject("/Notebook/Page:1/Line:" + text),
        Edit::activateObject("/Notebook/Page:" + text)};
    for (char const* name : {"Keywords", "Weights", "Numbers", "Author", "Weight", "Pages", "Open", text.c_str()}) {
      edits.push_back(Edit::setParam("/Notebook", name, text));
    }
    edits.push_back(Edit::setParam("/Notebook/Page:" + text, "Author", "x"));
    for (Edit const& edit : edits) {
      EditResult const result = session.edit(edit);
      if (result.refused) {
        EXPECT_NE(result.refused->sentence, "");
        if (result.refused->nearest) {
          EXPECT_TRUE(session.tryEdit(*result.refused->nearest).applied())
              << sentenceOf(*result.refused) << ": " << sentenceOf(session.tryEdit(*result.refused->nearest));
        }
        continue;
      }
      ++taken;
      auto const loss = lossOf(model(), session.result());
      ASSERT_EQ(loss, std::nullopt) << sentenceOf(edit);
      ASSERT_TRUE(session.undo()->applied());
    }
  }
  EXPECT_GT(taken, 1500U);
}

INSTANTIATE_TEST_SUITE_P(InATextOfForm, SessionSaving, testing::Range(std::size_t{0}, models.size()));

TEST(SessionEdit, RefusesNamesThatModelTextCannotHold) {
  struct Case {
    Edit edit;
    std::string verdict;
  };
  std::vector<Case> const cases = {
      {Edit::addObject("/Plant/Tank:p=3"),
       "Refused: \"p=3\" cannot be a name: model text has no place for \"=\" in a name. Nearest: add "
       "/Plant/Tank:p-3."},
      {Edit::renameObject("/Plant/Tank:T1", "p=3"),
       "Refused: \"p=3\" cannot be a name: model text has no place for \"=\" in a name. Nearest: rename /Plant/Tank:T1 "
       "to \"p-3\"."},
      {Edit::duplicateObject("/Plant/Tank:T1", "a/b:c"),
       "Refused: \"a/b:c\" cannot be a name: model text has no place for \"/\" in a name. Nearest: copy /Plant/Tank:T1 "
       "to the name \"a-b-c\"."},
      {Edit::duplicateObject("/Plant/Tank:T1", ""), "Refused: A name is missing."},
      {Edit::duplicateObject("/Plant/Tank:T1", " T3"),
       "Refused: \" T3\" cannot be a name: a name has no white space at its ends. Nearest: copy /Plant/Tank:T1 to the "
       "name "
       "\"T3\"."},
      {Edit::addObject("/Plant/Tank:two\nlines"),
       "Refused: Paths, names and values are a single line of text. Nearest: add /Plant/Tank:two lines."},
  };
  for (auto const& [edit, verdict] : cases) {
    Tanks tanks;
    EXPECT_EQ(sentenceOf(tanks->edit(edit)), verdict);
  }
}

TEST(SessionEdit, AValueOfTenMegabytesIsSavedAndOneThatIsLongerRefused) {
  Tanks tanks;
  std::string const longest(Session::mostCharacters - std::string("/PlantTitle").size(), 'x');
  EXPECT_TRUE(tanks->edit(Edit::setParam("/Plant", "Title", longest)).applied());
  EXPECT_EQ(lossOf(test::tankModel, tanks->result()), std::nullopt);
  EXPECT_EQ(sentenceOf(tanks->edit(Edit::setParam("/Plant", "Title", longest + 'x'))),
            "Refused: The edit is too long: its path, its name and its value can have 10000000 characters together.");
}

}  // namespace
}  // namespace tarn::session

#include "console/HistoryFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "support/FileText.h"
#include "support/TemporaryFolder.h"

namespace tarn::tool {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(HistoryFile, IsUsuallyInTheStateFolderOfTheUser) {
  EXPECT_EQ(HistoryFile::usualPath("/srv/state", "/home/ada"), "/srv/state/zev/history");
  EXPECT_EQ(HistoryFile::usualPath(nullptr, "/home/ada"), "/home/ada/.local/state/zev/history");
}

TEST(HistoryFile, IsNowhereWithoutAFullPathToPutItIn) {
  EXPECT_EQ(HistoryFile::usualPath(nullptr, nullptr), "");
  EXPECT_EQ(HistoryFile::usualPath("", ""), "");
  EXPECT_EQ(HistoryFile::usualPath(nullptr, "ada"), "");
}

TEST(HistoryFile, PassesOverAStateFolderThatIsNoFullPath) {
  EXPECT_EQ(HistoryFile::usualPath("state", "/home/ada"), "/home/ada/.local/state/zev/history");
}

class HistoryFileTest : public testing::Test {
 protected:
  static fs::perms permissionsOf(fs::path const& path) { return fs::status(path).permissions(); }
  void write(std::string const& content) const { std::ofstream(path()) << content; }
  std::string content() const { return test::fileText(path()); }
  fs::path path() const { return folder_ / "history"; }

  test::TemporaryFolder temporary_{"zev-history"};
  fs::path const folder_ = temporary_.path();
};

TEST_F(HistoryFileTest, GivesTheLinesOfEarlierRunsOldestFirst) {
  HistoryFile(path()).add("ps");
  HistoryFile(path()).add("sp /Case/Titel=Größe");
  EXPECT_THAT(HistoryFile(path()).read(), ElementsAre("ps", "sp /Case/Titel=Größe"));
}

TEST_F(HistoryFileTest, MakesItsFolderAndIsForItsOwnerOnly) {
  fs::path const deep = folder_ / "state" / "zev" / "history";
  HistoryFile(deep).add("ps");
  EXPECT_EQ(permissionsOf(deep), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(permissionsOf(deep.parent_path()), fs::perms::owner_all);
}

TEST_F(HistoryFileTest, IsTakenFromOtherReadersWhenItIsWritten) {
  write("ps\n");
  fs::permissions(path(), fs::perms(0644));
  HistoryFile(path()).add("q");
  EXPECT_EQ(permissionsOf(path()), fs::perms(0600));
}

TEST_F(HistoryFileTest, BlankLinesAndWhatIsNoTextAreNotKept) {
  HistoryFile const history(path());
  for (std::string const line : {"", "  \t", "a\x1b[2J", "\xff", "\xc3", "two\nlines"}) history.add(line);
  history.add(std::string(HistoryFile::longestLine + 1, 'x'));
  history.add(std::string(HistoryFile::longestLine, 'x'));
  EXPECT_THAT(history.read(), ElementsAre(std::string(HistoryFile::longestLine, 'x')));
}

TEST_F(HistoryFileTest, LinesThatAreNoTextArePassedOver) {
  write(std::string("ps\nb\0d\n\xff\xfe\n\nq", 12));
  EXPECT_THAT(HistoryFile(path()).read(), ElementsAre("ps", "q"));
}

TEST_F(HistoryFileTest, OfTooManyLinesTheLatestAreRead) {
  std::string lines;
  for (std::size_t i = 0; i < HistoryFile::maxLines + 1; ++i) lines += std::to_string(i) + '\n';
  write(lines);
  std::vector<std::string> const read = HistoryFile(path()).read();
  EXPECT_EQ(read.size(), HistoryFile::maxLines);
  EXPECT_EQ(read.front(), "1");
  EXPECT_EQ(content(), lines);
}

TEST_F(HistoryFileTest, AFileThatHasGrownFarBeyondTheLimitIsCutDown) {
  std::string lines;
  std::string latest;
  for (std::size_t i = 0; i < 2 * HistoryFile::maxLines + 1; ++i) {
    lines += std::to_string(i) + '\n';
    if (i > HistoryFile::maxLines) latest += std::to_string(i) + '\n';
  }
  write(lines);
  fs::permissions(path(), fs::perms(0644));
  EXPECT_EQ(HistoryFile(path()).read().size(), HistoryFile::maxLines);
  EXPECT_EQ(content(), latest);
  EXPECT_EQ(permissionsOf(path()), fs::perms(0600));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1) << "nothing is left beside it";
}

TEST_F(HistoryFileTest, OfAHugeFileTheEndIsRead) {
  write(std::string(3'000'000, 'x') + "\nps\nq\n");
  EXPECT_THAT(HistoryFile(path()).read(), ElementsAre("ps", "q"));
  EXPECT_EQ(content(), "ps\nq\n");
}

TEST_F(HistoryFileTest, ALineThatAFullDiskHasCutShortStandsAlone) {
  write("ps\nsp /Case/Domain:ro");
  HistoryFile(path()).add("v");
  HistoryFile(path()).add("q");
  EXPECT_EQ(content(), "ps\nsp /Case/Domain:ro\nv\nq\n");
}

TEST_F(HistoryFileTest, WhereNothingCanBeWrittenThereIsNoHistoryAndNoComplaint) {
  write("a file, where a folder is wanted");
  HistoryFile const history(path() / "zev" / "history");
  history.add("ps");
  EXPECT_THAT(history.read(), IsEmpty());
  HistoryFile const none{fs::path()};
  none.add("ps");
  EXPECT_THAT(none.read(), IsEmpty());
}

TEST_F(HistoryFileTest, APipeIsNotWaitedFor) {
  ASSERT_EQ(::mkfifo(path().c_str(), 0600), 0);
  HistoryFile(path()).add("ps");
  EXPECT_THAT(HistoryFile(path()).read(), IsEmpty());
}

TEST_F(HistoryFileTest, ADeviceIsLeftAsItIs) {
  fs::create_symlink("/dev/null", path());
  fs::perms const before = permissionsOf("/dev/null");
  HistoryFile(path()).add("ps");
  EXPECT_THAT(HistoryFile(path()).read(), IsEmpty());
  EXPECT_EQ(permissionsOf("/dev/null"), before);
}

}  // namespace
}  // namespace tarn::tool

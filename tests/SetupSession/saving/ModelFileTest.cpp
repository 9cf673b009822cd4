#include <tarn/session/ModelFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sys/resource.h>

#include <tarn/Error.h>

namespace {

namespace fs = std::filesystem;
using tarn::ModelState;
using tarn::session::ModelFile;
using tarn::session::Overwrite;
using tarn::session::SaveFault;

class ModelFileTest : public testing::Test {
 protected:
  ModelFileTest()
      : folder_(fs::temp_directory_path() /
                ("model_file_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()))) {
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    write("pump.tdf", "# Pump 7\n/Case/Speed = 120 [rad/s]\n");
  }
  ~ModelFileTest() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string at(std::string const& name) const { return (folder_ / name).string(); }
  void write(std::string const& name, std::string const& text) const {
    std::ofstream(at(name), std::ios::binary) << text;
  }
  [[nodiscard]] std::string read(std::string const& name) const {
    std::ifstream stream(at(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  [[nodiscard]] std::size_t numFiles() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), {}));
  }
  static ModelState withSpeed(std::string const& speed) { return {{"/Case", {{"Speed", speed}}}}; }

  fs::path folder_;
};

TEST_F(ModelFileTest, SavingKeepsWhatWasNotTouched) {
  ModelFile file = ModelFile::read(at("pump.tdf"));
  EXPECT_EQ(file.text().state(), withSpeed("120 [rad/s]"));
  EXPECT_EQ(file.save(withSpeed("90 [rad/s]")), std::nullopt);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 90 [rad/s]\n");
  EXPECT_EQ(file.save(withSpeed("80 [rad/s]")), std::nullopt);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 80 [rad/s]\n");
  EXPECT_EQ(numFiles(), 1U);
}

TEST_F(ModelFileTest, AFileThatSomeoneElseChangedIsOverwrittenOnlyWhenAsked) {
  ModelFile file = ModelFile::read(at("pump.tdf"));
  write("pump.tdf", "/Case/Speed=1\n");
  auto const error = file.save(withSpeed("2"));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->fault, SaveFault::FileChanged);
  EXPECT_EQ(error->sentence, '"' + at("pump.tdf") +
                                 "\" has been changed by someone else since it was read; save under another name, or "
                                 "overwrite it");
  EXPECT_EQ(read("pump.tdf"), "/Case/Speed=1\n");
  EXPECT_EQ(file.save(withSpeed("2"), {}, Overwrite::Yes), std::nullopt);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 2\n");
}

TEST_F(ModelFileTest, AFileThatIsGoneIsWrittenAgain) {
  ModelFile file = ModelFile::read(at("pump.tdf"));
  fs::remove(at("pump.tdf"));
  EXPECT_EQ(file.save(withSpeed("2")), std::nullopt);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 2\n");
}

TEST_F(ModelFileTest, AnotherNameIsTheFileFromThenOn) {
  ModelFile file = ModelFile::read(at("pump.tdf"));
  write("other.tdf", "mine");
  auto const error = file.saveAs(at("other.tdf"), withSpeed("2"));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->sentence, '"' + at("other.tdf") + "\" exists already; save under another name, or overwrite it");
  EXPECT_EQ(file.name(), at("pump.tdf"));
  EXPECT_EQ(read("other.tdf"), "mine");
  EXPECT_EQ(file.saveAs(at("new.tdf"), withSpeed("2")), std::nullopt);
  EXPECT_EQ(file.name(), at("new.tdf"));
  EXPECT_EQ(read("new.tdf"), "# Pump 7\n/Case/Speed = 2\n");
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 120 [rad/s]\n");
}

TEST_F(ModelFileTest, ANewFileIsMade) {
  ModelFile file = ModelFile::named(at("new.tdf"));
  EXPECT_EQ(file.save(withSpeed("2")), std::nullopt);
  EXPECT_EQ(read("new.tdf"), "Case:\n  Speed = 2\nEND # Case:\n");
  write("old.tdf", "mine");
  auto const error = ModelFile::named(at("old.tdf")).save(withSpeed("2"));
  ASSERT_TRUE(error);
  EXPECT_EQ(error->fault, SaveFault::FileChanged);
  EXPECT_EQ(read("old.tdf"), "mine");
}

TEST_F(ModelFileTest, AFullDiskLeavesTheOldFile) {
  std::string const large(1'000'000, 'x');
  ModelFile file = ModelFile::read(at("pump.tdf"));
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  rlimit const small{10'000, former.rlim_max};
  auto* const formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  auto const error = file.save(withSpeed(large));
  setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, formerHandler);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->fault, SaveFault::WriteFailed);
  EXPECT_EQ(error->sentence, "cannot write \"" + at("pump.tdf") + "\": File too large; nothing was changed there");
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 120 [rad/s]\n");
  EXPECT_EQ(numFiles(), 1U);
  EXPECT_EQ(file.save(withSpeed(large)), std::nullopt);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = " + large + '\n');
}

TEST_F(ModelFileTest, ALinkAndPermissionsStay) {
  fs::permissions(at("pump.tdf"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("pump.tdf", at("link.tdf"));
  ModelFile file = ModelFile::read(at("link.tdf"));
  EXPECT_EQ(file.save(withSpeed("2")), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(at("link.tdf")));
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 2\n");
  EXPECT_EQ(fs::status(at("pump.tdf")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(ModelFileTest, WhatCannotBeSavedIsExplained) {
  ModelFile file = ModelFile::read(at("pump.tdf"));
  auto const unwritable = file.save(withSpeed("1\n2"));
  ASSERT_TRUE(unwritable);
  EXPECT_EQ(unwritable->fault, SaveFault::NotWritable);
  EXPECT_THAT(unwritable->sentence, testing::StartsWith("the value \"1?2\" of the parameter \"/Case/Speed\""));
  auto const noFolder = file.saveAs(at("none/pump.tdf"), withSpeed("2"));
  ASSERT_TRUE(noFolder);
  EXPECT_EQ(noFolder->sentence,
            "cannot write \"" + at("none/pump.tdf") + "\": No such file or directory; nothing was changed there");
  auto const folder = file.saveAs(at("."), withSpeed("2"));
  ASSERT_TRUE(folder);
  EXPECT_EQ(folder->fault, SaveFault::WriteFailed);
  EXPECT_EQ(read("pump.tdf"), "# Pump 7\n/Case/Speed = 120 [rad/s]\n");
}

TEST_F(ModelFileTest, AFileThatCannotBeReadIsNamed) {
  try {
    (void)ModelFile::read(at("none.tdf"));
    FAIL();
  } catch (tarn::FileError const& error) {
    EXPECT_EQ(error.getMessage(), "cannot open \"" + at("none.tdf") + "\": No such file or directory");
  }
}

}  // namespace

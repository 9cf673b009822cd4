#include <tarn/ModelTextRename.h>

#include <gtest/gtest.h>

#include <tarn/Error.h>
#include <tarn/ModelText.h>

namespace tarn {
namespace {

TEST(ModelTextRename, NothingToRenameLeavesEveryByte) {
  std::string const text = "\xEF\xBB\xBF# pump\r\n\r\nCase: \r\n\tMode =  a=b \r\nEND # Case:\r\n/Case/X=1";
  EXPECT_EQ(renameInModelText(text, {}), text);
}

TEST(ModelTextRename, AnObjectIsRenamedInEveryLineAndBlockThatMentionsIt) {
  ModelTextNames names;
  names.objects["/Case/Loop:a"] = "Circuit:a";
  EXPECT_EQ(renameInModelText("/Case/Loop:a/Valve=Loop:a\n"
                              "/Case/Loop:b/Valve=1\n"
                              "/Case/Loop:a/Sensor:x/\n"
                              "Case:\n"
                              "  Loop : a\n"
                              "    Pump = Loop\n"
                              "  END # Loop:a\n"
                              "END # Case:\n",
                              names),
            "/Case/Circuit:a/Valve=Loop:a\n"
            "/Case/Loop:b/Valve=1\n"
            "/Case/Circuit:a/Sensor:x/\n"
            "Case:\n"
            "  Circuit : a\n"
            "    Pump = Loop\n"
            "  END # Circuit:a\n"
            "END # Case:\n");
}

TEST(ModelTextRename, NestedObjectsAreRenamedByTheirPathsInTheOldText) {
  ModelTextNames names;
  names.objects["/System"] = "Plant";
  names.objects["/System/Loop:a"] = "Circuit:ground";
  EXPECT_EQ(renameInModelText("/System/Loop:a/Valve=1\nSystem:\n  Loop: a\n  END # Loop:a\nEND # System:\n", names),
            "/Plant/Circuit:ground/Valve=1\nPlant:\n  Circuit: ground\n  END # Circuit:ground\nEND # Plant:\n");
}

TEST(ModelTextRename, AParameterIsRenamedInItsObjectOnly) {
  ModelTextNames names;
  names.params["/Case"]["dt"] = "Time Step";
  EXPECT_EQ(renameInModelText("/Case/dt = 0.1 \n/Case/dt=0.2\n/Case/Solver/dt=1\nCase:\n  dt=dt\nEND # Case:\n", names),
            "/Case/Time Step = 0.1 \n/Case/Time Step=0.2\n/Case/Solver/dt=1\nCase:\n  Time Step=dt\nEND # Case:\n");
}

TEST(ModelTextRename, AParameterWithoutANewNameLosesItsLines) {
  ModelTextNames names;
  names.params["/Case"]["dt"] = std::nullopt;
  EXPECT_EQ(renameInModelText("/Case/dt=0.1\n# kept\n/Case/Time Step=0.1\n", names), "# kept\n/Case/Time Step=0.1\n");
}

TEST(ModelTextRename, AParameterAtTheRootCanBeRenamed) {
  ModelTextNames names;
  names.params[""]["Titel"] = "Title";
  EXPECT_EQ(renameInModelText("/Titel=x\nTitel=y\n", names), "/Title=x\nTitle=y\n");
}

TEST(ModelTextRename, AnObjectSpeltWithTheNameOfItsTypeIsTheSingleton) {
  ModelTextNames names;
  names.objects["/Case/Solver"] = "Algorithm";
  EXPECT_EQ(renameInModelText("/Case/Solver:Solver/Steps=5\n/Case/Solver/Kind=x\n", names),
            "/Case/Algorithm/Steps=5\n/Case/Algorithm/Kind=x\n");
}

TEST(ModelTextRename, MalformedTextIsRefusedWithItsPlace) {
  try {
    (void)renameInModelText("/Case/dt=1\nCase:\n", {});
    FAIL();
  } catch (ParseError const& error) {
    EXPECT_EQ(error.getMessage(), "2:1: the block is left open; close it with \"END # Case:\"");
  }
}

}  // namespace
}  // namespace tarn

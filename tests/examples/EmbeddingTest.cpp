// The table of the embedding example is compared with the whole state after every edit.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "Places.h"
#include "embedding/Table.h"

namespace {

using tarn::ProvisionalTDF;

std::map<Table::Cell, std::string> wholeState(ProvisionalTDF const& object) {
  std::map<Table::Cell, std::string> cells;
  for (auto const& [path, params] : object.getActiveTDFState()) {
    for (auto const& [name, value] : params) cells[{path, name}] = value;
  }
  return cells;
}

class EmbeddingTest : public testing::Test {
 protected:
  EmbeddingTest() : rules_(tarn::rules::loadRules({std::string(TARN_SOURCE_DIR "/examples/flow/rules")})) {
    auto const file = std::string(TARN_SOURCE_DIR "/examples/flow/models/sound.tdf");
    auto const model = tarn::TDFChangeFile({file}, {}, tarn::TDFChangeFile::Strict).toModelState();
    base_.initialise(model.begin(), model.end());
  }

  std::unique_ptr<tarn::PhysicsData> rules_;
  tarn::DynamicTDF base_{false};
};

TEST_F(EmbeddingTest, TheTableIsTheStateAfterEveryEdit) {
  ProvisionalTDF object(rules_.get(), "/Case");
  object.initialise(&base_, {});
  Table table;
  table.refresh(object);
  ASSERT_EQ(table.cells(), wholeState(object));
  ASSERT_GT(table.cells().size(), 50U);

  std::vector<std::string> const edits = {
      "/Case/Flow Regime=Laminar",
      "/Case/Energy Equation=no",
      "/Case/Analysis/Analysis Type=Transient",
      "/Case/Domain:channel/Material=Water",
      "/Case/Domain:channel/Colour=Red",
      "/Case/Domain:sink/Domain Type=Fluid",
      "/Case/Flow Regime=Turbulent",
      "/Case/Energy Equation=yes",
      "/Case/Domain:new/Material=Air",
      "/Case/Analysis/Analysis Type=Steady",
      "/Case/Flow Regime=Sideways",
      "/Elsewhere/Title=x",
      "/Case/Domain:sink/Domain Type=Solid",
  };
  bool changed = false;
  for (auto const& edit : edits) {
    tarn::TDFChange const change(edit);
    auto const before = table.cells();
    object.activeSetParam(change.getFullPath(), change.name, change.value);
    table.refresh(object);
    EXPECT_EQ(table.cells(), wholeState(object)) << "after " << edit;
    changed |= before != table.cells();
  }
  EXPECT_TRUE(changed);
}

TEST_F(EmbeddingTest, TheTableFollowsObjectsThatComeAndGo) {
  ProvisionalTDF object(rules_.get(), "/Case");
  object.initialise(&base_, {});
  Table table;
  table.refresh(object);
  auto const expectSame = [&](char const* edit) {
    table.refresh(object);
    EXPECT_EQ(table.cells(), wholeState(object)) << "after " << edit;
  };
  object.addNewNamedObject("/Case/Domain:spare");
  expectSame("adding a domain");
  object.duplicateNamedObject("/Case/Domain:channel", "channel 2");
  expectSame("duplicating a domain");
  object.renameNamedObject("/Case/Domain:channel 2", "channel 3");
  expectSame("renaming a domain");
  object.removeNamedObject("/Case/Domain:spare");
  expectSame("removing a domain");
  object.activateOptParam("/Case/Domain:sink", "Colour");
  expectSame("activating a parameter");
  object.deactivateOptParam("/Case/Domain:sink", "Colour");
  expectSame("deactivating a parameter");
}

}  // namespace

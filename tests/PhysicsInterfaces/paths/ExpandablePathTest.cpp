#include <tarn/ExpandablePath.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/Error.h>

#include "support/MapModel.h"

namespace tarn {
namespace {

using test::MapModel;
using testing::ElementsAre;
using testing::IsEmpty;

class ExpandablePathOverAPump : public testing::Test {
 protected:
  [[nodiscard]] std::vector<std::string> expand(std::string const& pattern, std::string const& context = "") {
    return ExpandablePath(nullptr, pattern, {false, true, true}).expand(TDFContext(context), &evaluation_);
  }

  MapModel model_{{"/Case/Domain:rotor/Boundary:in", {}},
                  {"/Case/Domain:rotor/Boundary:out", {}},
                  {"/Case/Domain:stator/Boundary:wall", {}}};
  EvalContext evaluation_{&model_};
};

TEST_F(ExpandablePathOverAPump, GivesTheObjectsThatMatchInTheOrderOfTheModel) {
  EXPECT_THAT(expand("/Case/Domain:*/Boundary:*"),
              ElementsAre("/Case/Domain:rotor/Boundary:in", "/Case/Domain:rotor/Boundary:out",
                          "/Case/Domain:stator/Boundary:wall"));
}

TEST_F(ExpandablePathOverAPump, StartsAtTheContextUnlessItBeginsAtTheRoot) {
  EXPECT_THAT(expand("Boundary:*", "/Case/Domain:stator"), ElementsAre("/Case/Domain:stator/Boundary:wall"));
  EXPECT_THAT(expand("/Case/Domain:stator", "/Case/Domain:rotor"), ElementsAre("/Case/Domain:stator"));
}

TEST_F(ExpandablePathOverAPump, APathWithoutAWildcardMatchesOnlyWhatTheModelHolds) {
  EXPECT_THAT(expand("/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor"));
  EXPECT_THAT(expand("/Case/Domain:diffuser"), IsEmpty());
}

TEST_F(ExpandablePathOverAPump, GivesEveryObjectOnce) {
  EXPECT_THAT(expand("/Case/Domain:*/.."), ElementsAre("/Case"));
}

TEST_F(ExpandablePathOverAPump, ReadsTheModelAnewEachTime) {
  ExpandablePath const path(nullptr, "/Case/Domain:*", {false, true, true});
  EXPECT_THAT(path.expand(TDFContext(""), &evaluation_), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));

  model_.remove("/Case/Domain:rotor");
  EXPECT_THAT(path.expand(TDFContext(""), &evaluation_), ElementsAre("/Case/Domain:stator"));
}

TEST_F(ExpandablePathOverAPump, ATextThatIsNoPatternThrows) {
  EXPECT_THROW(ExpandablePath(nullptr, "/Case//Domain", {false, true, true}), Error);
  EXPECT_THROW(ExpandablePath(nullptr, "", {false, true, true}), Error);
}

}  // namespace
}  // namespace tarn

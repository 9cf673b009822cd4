// The library's exceptions as their callers see them: through `Error`.

#include <tarn/PhysicsDepErrors.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace tarn {
namespace {

template <typename Exception>
Exception made() {
  return Exception("DynamicTDF::Node::ParamVal", "modifyValue", "The value does not fit.", errorType::InvalidState);
}

/// The content of an error, as seen by a caller that catches the base class.
std::string told(Error const& error) {
  std::ostringstream written;
  error.write(written);
  std::ostringstream all;
  all << error.exceptionName() << '|' << error.getClass() << '|' << error.getMethod() << '|' << error.getMessage()
      << '|' << static_cast<int>(error.getType()) << '|' << error.code() << '|' << written.str();
  return all.str();
}

template <typename Exception>
std::string caughtAsError(Exception const& exception) {
  try {
    throw Exception(exception);
  } catch (Error const& error) {
    return told(error);
  }
}

TEST(PhysicsDepErrors, AnErrorCaughtByItsBaseTellsItsNameAndItsPlace) {
  EXPECT_EQ(caughtAsError(made<physics_dep::error>()),
            "physical_dependency::error|DynamicTDF::Node::ParamVal|modifyValue|The value does not fit.|4|0|"
            "physical_dependency::error in DynamicTDF::Node::ParamVal::modifyValue: The value does not fit.");
}

TEST(PhysicsDepErrors, AnInvalidParamValCaughtByItsBaseTellsItsNameAndItsPlace) {
  EXPECT_EQ(caughtAsError(made<physics_dep::invalidParamVal>()),
            "physical_dependency::invalidParamVal|DynamicTDF::Node::ParamVal|modifyValue|The value does not fit.|4|0|"
            "physical_dependency::invalidParamVal in DynamicTDF::Node::ParamVal::modifyValue: The value does not fit.");
}

TEST(PhysicsDepErrors, AnEmptyRequiredChildCaughtByItsBaseTellsItsNameAndItsPlace) {
  EXPECT_EQ(
      caughtAsError(made<physics_dep::emptyRequiredChild>()),
      "physical_dependency::emptyRequiredChild|DynamicTDF::Node::ParamVal|modifyValue|The value does not fit.|4|0|"
      "physical_dependency::emptyRequiredChild in DynamicTDF::Node::ParamVal::modifyValue: The value does not fit.");
}

TEST(PhysicsDepErrors, TheOtherTwoAreCaughtAsTheLibrarysError) {
  EXPECT_THROW(throw made<physics_dep::invalidParamVal>(), physics_dep::error);
  EXPECT_THROW(throw made<physics_dep::emptyRequiredChild>(), physics_dep::error);
}

TEST(PhysicsDepErrors, ACopyTellsTheSameAlsoWhenTheOriginalIsGone) {
  auto original = std::make_unique<physics_dep::invalidParamVal>(made<physics_dep::invalidParamVal>());
  std::string const before = told(*original);
  physics_dep::invalidParamVal const copy(*original);
  original.reset();
  EXPECT_EQ(told(copy), before);
}

TEST(PhysicsDepErrors, AnAssignedErrorTellsTheSame) {
  auto const original = made<physics_dep::invalidParamVal>();
  physics_dep::invalidParamVal assigned;
  assigned = original;
  EXPECT_EQ(told(assigned), told(original));
}

TEST(PhysicsDepErrors, AnErrorMadeFromNothingTellsNothing) {
  EXPECT_EQ(told(physics_dep::error()), "||||0|0|");
  EXPECT_EQ(told(physics_dep::invalidParamVal()), "||||0|0|");
  EXPECT_EQ(told(physics_dep::emptyRequiredChild()), "||||0|0|");
}

TEST(PhysicsDepErrors, ADerivedErrorGoesUnderItsOwnName) {
  struct UnknownMaterial : physics_dep::error {
    UnknownMaterial()
        : error("pump::unknownMaterial", "Materials", "find", "There is no Mercury.", errorType::Unknown) {}
  };
  EXPECT_EQ(caughtAsError(UnknownMaterial()),
            "pump::unknownMaterial|Materials|find|There is no Mercury.|0|0|"
            "pump::unknownMaterial in Materials::find: There is no Mercury.");
}

}  // namespace
}  // namespace tarn

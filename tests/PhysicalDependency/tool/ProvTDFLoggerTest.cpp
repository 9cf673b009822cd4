// The printer, to the character: each operation's text is compared as a whole.

#include <tarn/ProvTDFLogger.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "support/FileText.h"
#include "support/Redirected.h"

namespace tarn {
namespace {

using test::Captured;
using test::fileText;
using test::rotor;
using test::Rules;
using test::when;

std::string const header = "# BEGIN PROVISIONAL TDF LOGGING ( Active TDF Root = /Case/Domain:rotor )\n\n";
std::string const footer = "\n# END PROVISIONAL TDF LOGGING ( Active TDF Root = /Case/Domain:rotor )\n";

class ProvTDFLoggerTest : public test::ProvisionalTest {
 protected:
  ProvTDFLoggerTest() { std::remove(file_.c_str()); }
  ~ProvTDFLoggerTest() override { std::remove(file_.c_str()); }

  /// The text that `print` writes, without header and footer.
  std::string printed(std::function<void(ProvTDFLogger const&)> const& print) {
    Captured const out(std::cout);
    {
      ProvTDFLogger const printer(&state(), "stdout");
      print(printer);
    }
    std::string const text = out.text();
    EXPECT_TRUE(text.starts_with(header)) << text;
    EXPECT_TRUE(text.ends_with(footer)) << text;
    return text.substr(header.size(), text.size() - header.size() - footer.size());
  }
  std::string printedObject(std::string const& path) {
    return printed([&](auto const& printer) { printer.printObjectState(path); });
  }
  std::string printedParam(std::string const& objPath, std::string const& name, bool subset) {
    return printed([&](auto const& printer) { printer.printParamState(objPath, name, subset); });
  }
  std::string printedUpdates() {
    return printed([](auto const& printer) { printer.printUpdates(); });
  }

  std::string const file_ = testing::TempDir() + "ProvTDFLoggerTest.log";
};

// Targets.

TEST_F(ProvTDFLoggerTest, AStreamOfTheCallersGetsAllToTheFooter) {
  start();
  std::ostringstream out;
  {
    ProvTDFLogger const printer(&state(), out);
    printer.printString("done");
    EXPECT_EQ(out.str(), header + "done\n");
  }
  EXPECT_EQ(out.str(), header + "done\n" + footer);
}

TEST_F(ProvTDFLoggerTest, TheStandardStreamsAreChosenByTheirNames) {
  start();
  for (std::string const target : {"stdout", "cout"}) {
    Captured const out(std::cout);
    { ProvTDFLogger const printer(&state(), target); }
    EXPECT_EQ(out.text(), header + footer) << target;
  }
  for (std::string const target : {"stderr", "cerr"}) {
    Captured const out(std::cerr);
    { ProvTDFLogger const printer(&state(), target); }
    EXPECT_EQ(out.text(), header + footer) << target;
  }
}

TEST_F(ProvTDFLoggerTest, AStandardStreamLeavesNoFile) {
  start();
  Captured const out(std::cout);
  { ProvTDFLogger const printer(&state(), "stdout"); }
  EXPECT_FALSE(std::ifstream("stdout").is_open());
}

TEST_F(ProvTDFLoggerTest, TheSameWordWithACapitalIsAFileName) {
  start();
  Captured const out(std::cout);
  { ProvTDFLogger const printer(&state(), testing::TempDir() + "Stdout"); }
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(fileText(testing::TempDir() + "Stdout"), header + footer);
  std::remove((testing::TempDir() + "Stdout").c_str());
}

TEST_F(ProvTDFLoggerTest, AFileIsAppendedTo) {
  start();
  { ProvTDFLogger(&state(), file_).printString("first"); }
  { ProvTDFLogger(&state(), file_).printString("second"); }
  EXPECT_EQ(fileText(file_), header + "first\n" + footer + header + "second\n" + footer);
}

TEST_F(ProvTDFLoggerTest, WhatIsPrintedCanBeReadAtOnce) {
  start();
  ProvTDFLogger const printer(&state(), file_);
  printer.printString("now");
  EXPECT_EQ(fileText(file_), header + "now\n");
}

TEST_F(ProvTDFLoggerTest, AFileThatCannotBeOpenedSwallowsWhatIsPrinted) {
  start();
  ProvTDFLogger const printer(&state(), testing::TempDir() + "no such folder/printed.log");
  printer.printString("lost");
  printer.printUpdates();
}

TEST_F(ProvTDFLoggerTest, CopiesShareTheFileAndEachPrintsAFooter) {
  start();
  {
    std::optional<ProvTDFLogger> printer(std::in_place, &state(), file_);
    ProvTDFLogger const copy = *printer;
    printer.reset();
    copy.printString("still there");
  }
  EXPECT_EQ(fileText(file_), header + footer + "still there\n" + footer);
}

TEST_F(ProvTDFLoggerTest, TheFooterDoesNotNeedTheState) {
  std::optional<ProvisionalTDF> state(std::in_place, &rules_, rotor);
  {
    ProvTDFLogger const printer(&*state, file_);
    state.reset();
  }
  EXPECT_EQ(fileText(file_), header + footer);
}

// The state.

TEST_F(ProvTDFLoggerTest, TheStateIsPrintedAsBlocks) {
  Rules(rules_, "/Case/Domain")
      .param("Motion")
      .required()
      .byDefault("Rotating")
      .child("Turbulence")
      .required()
      .singleton();
  Rules(rules_, "/Case/Domain/Turbulence").param("Model").required().byDefault("SST");
  start();
  EXPECT_EQ(printed([](auto const& printer) { printer.printState(); }),
            "\n"
            "Case: \n"
            "  Domain: rotor\n"
            "    Motion = Rotating\n"
            "    Turbulence: \n"
            "      Model = SST\n"
            "    END # Turbulence:\n"
            "  END # Domain:rotor\n"
            "END # Case:\n");
}

TEST_F(ProvTDFLoggerTest, AnotherStateCanBePrinted) {
  start();
  ModelState const other{{"/Case", {{"Title", "Pump"}}}};
  EXPECT_EQ(printed([&](auto const& printer) { printer.printState(other); }),
            "\nCase: \n  Title = Pump\nEND # Case:\n");
  EXPECT_EQ(printed([](auto const& printer) { printer.printState(ModelState()); }), "\n");
}

// One object.

class ProvTDFLoggerObjectTest : public ProvTDFLoggerTest {
 protected:
  ProvTDFLoggerObjectTest() {
    Rules rules(rules_, "/Case/Domain");
    rules.param("Motion").required().byDefault("Rotating");
    rules.param("Fluid").allowed({"Water", "Air"}).subset({"Air"}).param("Axis");
    rules.param("Coolant").required().allowed({"Oil", "Water"}).subset({"Oil"});
    rules.child("Turbulence").singleton().coupled().child("Boundary").allowedNames({"outlet", "inlet"});
    rules.child("Zone").required().allowedNames({"core"});
    rules.object("/Case/Domain/Boundary").param("Kind").required().child("Patch").singleton().coupled();
    rules.object("/Case/Domain/Boundary/Patch").param("Area").required();
    rules.object("/Case/Domain/Zone").param("Volume").child("Source").singleton().coupled();
    rules.object("/Case/Domain/Zone/Source").param("Strength").required();
  }
};

TEST_F(ProvTDFLoggerObjectTest, AnObjectIsPrintedWithAllThatItHoldsAndOffers) {
  start();
  EXPECT_EQ(printedObject(rotor),
            "/Case/Domain:rotor : \n"
            "Parameters:\n"
            "  Coolant = Oil\n"
            "  Motion = Rotating\n"
            "Inactive available parameters:\n"
            "  Fluid( allowed values:  [Water|Air] )\n"
            "  Axis\n"
            "Inactive available child objects:\n"
            "  /Case/Domain:rotor/Boundary:inlet\n"
            "  /Case/Domain:rotor/Boundary:outlet\n"
            "  /Case/Domain:rotor/Turbulence\n");
}

TEST_F(ProvTDFLoggerObjectTest, AnObjectThatOnlyOffersIsPrintedWithoutParameters) {
  start();
  EXPECT_EQ(printedObject(rotor + "/Zone:core"),
            "/Case/Domain:rotor/Zone:core : \n"
            "Inactive available parameters:\n"
            "  Volume\n"
            "Inactive available child objects:\n"
            "  /Case/Domain:rotor/Zone:core/Source\n");
}

TEST_F(ProvTDFLoggerObjectTest, OnlyObjectsDirectlyBelowArePrinted) {
  start({{rotor + "/Boundary:inlet", {{"Kind", "Opening"}}}});
  state().activateOptParam(rotor + "/Zone:core", "Volume");
  std::string const text = printedObject(rotor);
  EXPECT_EQ(text.find("Patch"), std::string::npos) << text;
  EXPECT_EQ(text.find("Source"), std::string::npos) << text;
  EXPECT_EQ(printedObject(rotor + "/Boundary:inlet"),
            "/Case/Domain:rotor/Boundary:inlet : \n"
            "Parameters:\n"
            "  Kind = Opening\n"
            "Inactive available child objects:\n"
            "  /Case/Domain:rotor/Boundary:inlet/Patch\n");
}

TEST_F(ProvTDFLoggerObjectTest, ObjectsWhosePathMerelyBeginsTheSameAreNotPrinted) {
  start();
  EXPECT_EQ(printedObject(rotor + "/Bound"),
            "No data found for object /Case/Domain:rotor/Bound\n"
            "It possibly exists only as a container for sub-objects - check full TDF state\n");
}

TEST_F(ProvTDFLoggerObjectTest, WithOnlyInactiveObjectsOnlyTheseArePrinted) {
  start();
  EXPECT_EQ(printedObject("/Case/Domain:rotor/Zone:core"), printedObject(rotor + "/Zone:core"));
  Rules(rules_, "/Case/Bare").child("Turbulence").singleton().coupled();
  startAt("/Case/Bare");
  Captured const out(std::cout);
  ProvTDFLogger const printer(&state(), "stdout");
  printer.printObjectState("/Case/Bare");
  EXPECT_EQ(out.text(),
            "# BEGIN PROVISIONAL TDF LOGGING ( Active TDF Root = /Case/Bare )\n\n"
            "/Case/Bare : \n"
            "Inactive available child objects:\n"
            "  /Case/Bare/Turbulence\n");
}

TEST_F(ProvTDFLoggerObjectTest, AnObjectWithNothingToShowIsSaidToBeSo) {
  start();
  EXPECT_EQ(printedObject("/Case"),
            "No data found for object /Case\n"
            "It possibly exists only as a container for sub-objects - check full TDF state\n");
}

// One parameter.

TEST_F(ProvTDFLoggerObjectTest, APresentParameterIsPrintedWithItsValueAndWhatIsAllowed) {
  start();
  EXPECT_EQ(printedParam(rotor, "Motion", false), "/Case/Domain:rotor/Motion = Rotating\n");
  EXPECT_EQ(printedParam(rotor, "Coolant", false), "/Case/Domain:rotor/Coolant = Oil [Oil|Water]\n");
  EXPECT_EQ(printedParam(rotor, "Coolant", true), "/Case/Domain:rotor/Coolant = Oil [Oil]\n");
}

TEST_F(ProvTDFLoggerObjectTest, APotentialParameterIsPrintedAsUnset) {
  start();
  EXPECT_EQ(printedParam(rotor, "Axis", false), "/Case/Domain:rotor/Axis (optional - unset)\n");
  EXPECT_EQ(printedParam(rotor, "Fluid", false), "/Case/Domain:rotor/Fluid (optional - unset) [Water|Air]\n");
  EXPECT_EQ(printedParam(rotor, "Fluid", true), "/Case/Domain:rotor/Fluid (optional - unset)\n");
}

TEST_F(ProvTDFLoggerObjectTest, AParameterThatIsNeitherIsSaidToBeSo) {
  start();
  EXPECT_EQ(printedParam(rotor, "Colour", false),
            "Parameter \"Colour\" not present or available in object /Case/Domain:rotor\n");
}

TEST_F(ProvTDFLoggerObjectTest, AParameterOfAnObjectThatIsNotInTheStateIsSaidToHaveNone) {
  start();
  EXPECT_EQ(printedParam("/Case/Domain:stator", "Motion", false), "Object \"/Case/Domain:stator\" does not exist\n");
  // It offers a Volume, but holds nothing.
  EXPECT_EQ(printedParam(rotor + "/Zone:core", "Volume", false),
            "Object \"/Case/Domain:rotor/Zone:core\" does not exist\n");
}

TEST_F(ProvTDFLoggerObjectTest, AParameterIsPrintedUnderTitles) {
  start();
  EXPECT_EQ(printed([](auto const& printer) {
              printer.printParamStateWithDecoration("pp", "/Case/Domain:rotor/Coolant", rotor, "Coolant");
            }),
            "COMMAND: pp /Case/Domain:rotor/Coolant\n"
            "\n"
            "Allowed Values\n"
            "--------------\n"
            "/Case/Domain:rotor/Coolant = Oil [Oil|Water]\n"
            "\n"
            "Subset Allowed Values\n"
            "---------------------\n"
            "/Case/Domain:rotor/Coolant = Oil [Oil]\n"
            "\n");
}

// Updates.

TEST_F(ProvTDFLoggerTest, AnUpdateThatChangedNothingIsPrintedSectionBySection) {
  start();
  walkAgain();
  EXPECT_EQ(printedUpdates(),
            "\n"
            ">>>> == BEGIN UPDATE SUMMARY ==\n"
            "\n"
            "*No new parameters*\n"
            "\n"
            "*No modified parameters*\n"
            "\n"
            "*No deleted parameters*\n"
            "\n"
            "*No new (unset) optional parameters available*\n"
            "\n"
            "*No unset optional parameters with modified allowed value lists*\n"
            "\n"
            "*No (unset) optional parameters made unavailable*\n"
            "\n"
            "*No new (inactive) optional objects made available\n"
            "\n"
            "*No (inactive) optional objects made unavailable*\n"
            "\n"
            "*No quantities have been adjusted for real parameters*\n"
            "\n"
            "*No object deletions*\n"
            "\n"
            "<<<< == END UPDATE SUMMARY ==\n"
            "\n");
}

TEST_F(ProvTDFLoggerTest, AnUpdateThatChangedEverythingIsPrintedSectionBySection) {
  auto const rotating = [] { return when("Motion", "Rotating"); };
  auto const stationary = [] { return when("Motion", "Stationary"); };
  Rules rules(rules_, "/Case/Domain");
  rules.param("Motion").required().allowed({"Stationary", "Rotating"});
  rules.param("Velocity").required().byDefault("1").availableWhen(rotating());
  rules.param("Inflow").type(TDFParam::Real).required().byDefault("2").availableWhen(rotating());
  rules.param("Support").required().byDefault("Bolts").availableWhen(stationary());
  rules.param("Axis").availableWhen(rotating()).param("Blades").availableWhen(rotating());
  rules.param("Paint").availableWhen(stationary());
  rules.param("Fluid").allowed(test::list([](TDFContext const& at, ModelTDF const& model) {
    bool const isRotating = model.getParameterValue(at.objPath(), "Motion") == "Rotating";
    return isRotating ? SharedStrings{"Water", "Air"} : SharedStrings{"Water"};
  }));
  rules.child("Cavitation").singleton().coupled().availableWhen(rotating());
  rules.child("Foundation").singleton().coupled().availableWhen(stationary());
  rules.child("Mount").required().singleton().availableWhen(stationary());
  rules.object("/Case/Domain/Mount").param("Height").required().byDefault("1");
  rules.object("/Case/Other");
  start();
  set("Motion", "Rotating");
  EXPECT_EQ(printedUpdates(),
            "\n"
            ">>>> == BEGIN UPDATE SUMMARY ==\n"
            "\n"
            "New Parameters in TDF\n"
            "---------------------\n"
            "/Case/Domain:rotor/Velocity = 1\n"
            "/Case/Domain:rotor/Inflow = 2 [kg/s]\n"
            "\n"
            "Modified Parameters in TDF\n"
            "--------------------------\n"
            "/Case/Domain:rotor/Motion = Rotating\n"
            "\n"
            "Parameters deleted from TDF\n"
            "---------------------------\n"
            "/Case/Domain:rotor/Support\n"
            "/Case/Domain:rotor/Mount/Height\n"
            "\n"
            "New Optional parameters available (not set)\n"
            "-------------------------------------------\n"
            "/Case/Domain:rotor/Axis\n"
            "/Case/Domain:rotor/Blades\n"
            "\n"
            "Unset Optional Parameters with modified allowed value lists\n"
            "-----------------------------------------------------------\n"
            "/Case/Domain:rotor/Fluid [Water|Air]\n"
            "\n"
            "Formerly unset optional parameters now unavailable\n"
            "--------------------------------------------------\n"
            "/Case/Domain:rotor/Paint\n"
            "\n"
            "New optional objects now available (inactive)\n"
            "---------------------------------------------\n"
            "/Case/Domain:rotor/Cavitation\n"
            "\n"
            "Formerly inactive optional objects now unavailable\n"
            "--------------------------------------------------\n"
            "/Case/Domain:rotor/Foundation\n"
            "\n"
            "Parameters for which Quantity Types have been adjusted\n"
            "------------------------------------------------------\n"
            "/Case/Domain:rotor/Inflow (Quantity Type = Mass Flow)\n"
            "\n"
            "Object Deletions\n"
            "----------------\n"
            "/Case/Domain:rotor/Mount\n"
            "\n"
            "<<<< == END UPDATE SUMMARY ==\n"
            "\n");
}

TEST_F(ProvTDFLoggerTest, BeforeTheStartEverythingIsPrintedAsEmpty) {
  ProvisionalTDF const state(&rules_, rotor);
  Captured const out(std::cout);
  ProvTDFLogger const printer(&state, "stdout");
  printer.printState();
  printer.printParamState(rotor, "Motion", true);
  EXPECT_EQ(out.text(), header + "\nObject \"/Case/Domain:rotor\" does not exist\n");
}

}  // namespace
}  // namespace tarn

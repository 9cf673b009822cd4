#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <tarn/ModelText.h>

#include "tests/TestPlan.h"
#include "yaml/MapReader.h"

namespace tarn::workbench {

/// Reads one file of tests. It reports a problem where it finds it and goes on. A test with problems is left out.
class TestReader : private rules::MapReader {
 public:
  /// Paths of models start at `folder`. `isIncomplete`: a part of the file could not be read as YAML.
  TestReader(rules::SourceText const& source, std::filesystem::path folder, bool isIncomplete,
             rules::DiagnosticList& diagnostics);

  /// Adds the tests of the file to `tests`.
  void read(rules::YamlNode const& root, std::vector<TestPlan>& tests);

 private:
  using Item = rules::Item;

  [[nodiscard]] Item at(rules::YamlNode const* node) const { return {&source_, node}; }
  [[nodiscard]] static PlacedText placed(Item const& item) { return {item.node->value, item.place()}; }

  void readTest(Item const& name, Item const& body, TestPlan& test);
  void readModel(Item const& item, TestPlan& test);
  void readModelText(Item const& item, TestPlan& test);
  void readModelFile(Item const& item, TestPlan& test);
  void readSteps(Item const& item, TestPlan& test);
  void readStep(Item const& item, PlannedStep& step);
  void readEdits(PlannedEdit::Kind kind, Item const& item, PlannedStep& step);
  void readExpect(Item const& item, PlannedStep& step);
  void readTextsByPath(Expectation::Kind kind, Item const& item, PlannedStep& step);
  void readPaths(Expectation::Kind kind, Item const& item, PlannedStep& step);
  void readAllowed(Item const& item, PlannedStep& step);
  void readRefused(Item const& item, PlannedStep& step);
  /// Codes of findings, or names of failed checks.
  void readFindings(Expectation::Kind kind, Item const& item, PlannedStep& step);
  [[nodiscard]] std::vector<std::string> findingCodesOf(Expectation::Kind kind, Item const& item);
  void readEvaluate(Item const& item, TestPlan& test);
  void readEvaluation(Item const& item, TestPlan& test);
  /// Calls `each` with every item of a list, or with the node itself when it is a single value.
  template <typename Each>
  void forEachPath(Item const& item, Each each);

  rules::SourceText const& source_;
  std::filesystem::path folder_;
  bool isIncomplete_;
  /// The models of files, by path: several tests may use one.
  std::map<std::filesystem::path, std::shared_ptr<ModelText const>> models_;
};

}  // namespace tarn::workbench

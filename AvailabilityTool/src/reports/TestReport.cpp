#include "reports/TestReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ostream>
#include <string_view>

#include <tinyxml2.h>

#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <nlohmann/json.hpp>

#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using workbench::TestFailure;

/// The text with `indent` before each line.
std::string indented(std::string_view text, std::string_view indent) {
  std::string result;
  while (!text.empty()) {
    std::string_view const line = text.substr(0, text.find('\n'));
    result += std::string(indent) + harmless(line) + '\n';
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return result;
}

std::string failureText(TestFailure const& failure) {
  std::string text = "  " + harmless(failure.place.text()) + ": " + harmless(failure.subject) + '\n';
  text += "    expected: " + harmless(failure.expected) + '\n';
  text += "    actual:   " + harmless(failure.actual) + '\n';
  text += indented(failure.because, "      ");
  // The proof names its rules itself.
  if (failure.because.empty() && failure.rule.isKnown())
    text += "    rule:     " + harmless(failure.rule.text()) + '\n';
  return text;
}

Json failureAsJson(TestFailure const& failure) {
  Json json;
  json["subject"] = failure.subject;
  json["expected"] = failure.expected;
  json["actual"] = failure.actual;
  if (!failure.because.empty()) json["because"] = failure.because;
  json["place"] = service::placeAsJson(failure.place);
  if (failure.rule.isKnown()) json["rule"] = service::placeAsJson(failure.rule);
  return json;
}

Json outcomeAsJson(TestOutcome const& outcome) {
  Json json;
  json["name"] = outcome.name;
  json["place"] = service::placeAsJson(outcome.place);
  json["passed"] = outcome.result.passed();
  json["expectations"] = outcome.result.expectations;
  json["seconds"] = outcome.result.seconds;
  json["failures"] = service::jsonList(outcome.result.failures, failureAsJson);
  return json;
}

/// Seconds, to the microsecond.
std::string secondsText(double seconds) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.6f", seconds);
  return text.data();
}

void writeSuite(tinyxml2::XMLPrinter& xml, std::vector<TestOutcome> const& suite) {
  std::string const file = harmless(suite.front().place.source());
  double seconds = 0;
  for (TestOutcome const& outcome : suite) seconds += outcome.result.seconds;
  xml.OpenElement("testsuite");
  xml.PushAttribute("name", file.c_str());
  xml.PushAttribute("tests", std::to_string(suite.size()).c_str());
  xml.PushAttribute("failures", std::to_string(failedTests(suite)).c_str());
  xml.PushAttribute("errors", "0");
  xml.PushAttribute("time", secondsText(seconds).c_str());
  for (TestOutcome const& outcome : suite) {
    xml.OpenElement("testcase");
    xml.PushAttribute("name", harmless(outcome.name).c_str());
    xml.PushAttribute("classname", file.c_str());
    xml.PushAttribute("file", file.c_str());
    xml.PushAttribute("line", std::to_string(outcome.place.line()).c_str());
    xml.PushAttribute("time", secondsText(outcome.result.seconds).c_str());
    for (TestFailure const& failure : outcome.result.failures) {
      std::string const message =
          harmless(failure.subject + "; expected: " + failure.expected + "; actual: " + failure.actual);
      xml.OpenElement("failure");
      xml.PushAttribute("message", message.c_str());
      xml.PushText(failureText(failure).c_str());
      xml.CloseElement();
    }
    xml.CloseElement();
  }
  xml.CloseElement();
}

}  // namespace

std::size_t failedTests(std::vector<TestOutcome> const& outcomes) noexcept {
  return static_cast<std::size_t>(
      std::count_if(outcomes.begin(), outcomes.end(), [](TestOutcome const& one) { return !one.result.passed(); }));
}

void writeTestAsText(std::ostream& out, TestOutcome const& outcome) {
  if (outcome.result.passed()) return;
  out << "FAILED " << harmless(outcome.name) << "  (" << harmless(outcome.place.text()) << ")\n";
  for (TestFailure const& failure : outcome.result.failures) out << failureText(failure);
  out << '\n';
}

void writeTestsAsJson(std::ostream& out, std::vector<TestOutcome> const& outcomes) {
  std::size_t const failed = failedTests(outcomes);
  Json json;
  json["schema"] = 1;
  json["passed"] = outcomes.size() - failed;
  json["failed"] = failed;
  json["tests"] = service::jsonList(outcomes, outcomeAsJson);
  out << service::jsonLine(json) << '\n';
}

void writeTestsAsJUnit(std::ostream& out, std::vector<TestOutcome> const& outcomes) {
  tinyxml2::XMLPrinter xml;
  xml.PushHeader(false, true);
  xml.OpenElement("testsuites");
  xml.PushAttribute("tests", std::to_string(outcomes.size()).c_str());
  xml.PushAttribute("failures", std::to_string(failedTests(outcomes)).c_str());
  for (auto first = outcomes.begin(); first != outcomes.end();) {
    auto const last = std::find_if(first, outcomes.end(),
                                   [&](TestOutcome const& one) { return one.place.source() != first->place.source(); });
    writeSuite(xml, {first, last});
    first = last;
  }
  xml.CloseElement();
  out << xml.CStr();
}

}  // namespace tarn::tool

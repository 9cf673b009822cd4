#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include <tarn/rules/RuleLoader.h>
#include <tarn/service/Service.h>

#include "support/TemporaryFolder.h"

namespace tarn::service {

using Json = nlohmann::ordered_json;

/// A service for a small plant. Each request and its answer go to the file that the environment variable
/// `TARN_MESSAGES` names, if there is one: tests/serve/serve.py holds them to the schema.
class ServiceCase : public testing::Test {
 protected:
  static constexpr char const* plantRules = R"(
Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Length: {Units: [m, mm]}
Objects:
  /Plant:
    Parameters:
      Title: {Parameter Type: String, Default Value: Untitled}
      Control: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Free, Fixed], Default Value: Free}
      Level:
        Required: yes
        Parameter Type: Real
        Quantity Type: Length
        Default Value: 1 [m]
        Lower Bound: 0 [m]
        Available: ${Control} == 'Fixed'
        Reason: Only a controlled plant has a level.
    Children:
      Tank: {Coupled: yes}
  /Plant/Tank:
    Parameters:
      Height:
        Required: yes
        Parameter Type: Real
        Quantity Type: Length
        Lower Bound: 0 [m]
        Default Value: 2 [m]
)";

  ServiceCase() : rules_(rules::parseRules(plantRules, "plant.rules.yaml")) { restart(); }

  /// Ends the service and starts another.
  void restart() {
    service_.reset();
    service_ = std::make_unique<Service>(*rules_, options());
  }
  [[nodiscard]] ServiceOptions options() const {
    ServiceOptions options;
    options.version = "1.2.3";
    options.limits = limits_;
    return options;
  }

  [[nodiscard]] std::string send(std::string const& text) {
    std::string answer = service_->answer(text);
    char const* const log = std::getenv("TARN_MESSAGES");
    if (log != nullptr && nlohmann::json::accept(text) && nlohmann::json::parse(text).is_object() && !answer.empty()) {
      std::ofstream(log, std::ios::app) << nlohmann::json::parse(text).dump() + '\n' + answer + '\n';
    }
    return answer;
  }
  [[nodiscard]] Json ask(std::string const& method, Json const& params = Json::object()) {
    Json const request = {{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}, {"params", params}};
    return Json::parse(send(request.dump()));
  }
  /// The result of a request that must succeed.
  Json call(std::string const& method, Json const& params = Json::object()) {
    Json answer = ask(method, params);
    EXPECT_TRUE(answer.contains("result")) << answer;
    return answer.value("result", Json::object());
  }
  /// The error of a request that must fail.
  [[nodiscard]] Json error(std::string const& method, Json const& params = Json::object()) {
    Json answer = ask(method, params);
    EXPECT_TRUE(answer.contains("error")) << answer;
    return answer.value("error", Json::object());
  }

  /// Opens a plant with tanks, and returns the name of the document.
  std::string openPlant() {
    return call("open",
                {{"text", "/Plant/Title = Works\n/Plant/Tank:a/Height = 3 [m]\n/Plant/Tank:b/Height = 4 [m]\n"}})
        .at("document");
  }
  static Json set(std::string const& path, std::string const& name, std::string const& value) {
    return {{"kind", "set-param"}, {"path", path}, {"name", name}, {"value", value}};
  }
  static Json list(std::initializer_list<Json> entries) {
    Json all = Json::array();
    for (Json const& entry : entries) all.push_back(entry);
    return all;
  }
  Json edit(std::string const& document, std::size_t revision, Json const& edits) {
    return call("edit", {{"document", document}, {"revision", revision}, {"edits", edits}});
  }

  std::unique_ptr<PhysicsData> rules_;
  ServiceLimits limits_;
  std::unique_ptr<Service> service_;
};

}  // namespace tarn::service

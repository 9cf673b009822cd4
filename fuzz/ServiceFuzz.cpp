// Lines of bytes as messages for a service with a small model. Every message that is not a notification
// gets one line of JSON with a result or an error, and the document answers afterwards.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/rules/RuleLoader.h>
#include <tarn/service/Service.h>

#include "fuzz/support/Laws.h"

namespace {

using nlohmann::json;

constexpr char const* rules = R"(
Rule Database: 1
Pertinent Roots: [Plant]
Objects:
  /Plant:
    Parameters:
      Title: {Parameter Type: String, Default Value: Untitled}
      Control: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Free, Fixed], Default Value: Free}
      Level: {Required: yes, Parameter Type: Real, Available: "${Control} == 'Fixed'", Default Value: 1}
    Children:
      Tank: {Coupled: yes}
  /Plant/Tank:
    Parameters:
      Height: {Required: yes, Parameter Type: Real, Default Value: 2}
)";

constexpr char const* open =
    R"({"jsonrpc":"2.0","id":1,"method":"open","params":{"text":"/Plant/Tank:a/Height = 3\n"}})";
constexpr char const* state = R"({"jsonrpc":"2.0","id":1,"method":"documents"})";

bool isAnswer(json const& answer) {
  return answer.is_object() && answer.contains("id") && answer.contains("result") != answer.contains("error");
}

void judge(std::string_view message, std::string const& answer) {
  if (answer.empty()) return;  // a notification, or a batch of them
  json const parsed = json::parse(answer, nullptr, false);
  bool isRight = answer.find('\n') == std::string::npos && !parsed.is_discarded();
  if (isRight && parsed.is_array()) {
    for (json const& one : parsed) isRight = isRight && isAnswer(one);
  } else {
    isRight = isRight && isAnswer(parsed);
  }
  if (!isRight) tarn::fuzz::fail("a message gets an answer", std::string(message) + '\n' + answer);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static auto const database = tarn::rules::parseRules(rules, "plant.rules.yaml");
  tarn::service::Service service(*database);
  judge(open, service.answer(open));
  std::string_view rest(reinterpret_cast<char const*>(data), size);  // NOLINT: bytes are characters here
  while (!rest.empty()) {
    std::size_t const end = std::min(rest.find('\n'), rest.size());
    judge(rest.substr(0, end), service.answer(rest.substr(0, end)));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  std::string const last = service.answer(state);
  judge(state, last);
  if (last.empty()) tarn::fuzz::fail("a service answers to the end", std::string());
  return 0;
}

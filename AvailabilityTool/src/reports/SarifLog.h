#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tarn::tool {

/// Writes one run of the program as a log in the format SARIF 2.1.0 (OASIS), which code review services and editors
/// read. Results are written as they are added, so a long run needs no memory for them.
class SarifLog {
 public:
  using Json = nlohmann::ordered_json;

  /// A kind of result. `level` is "error", "warning" or "note".
  struct Rule {
    std::string_view id;
    std::string_view meaning;
    std::string_view level;
  };

  /// A place in a file. Lines and columns count from 1; 0 for what is not known.
  struct Place {
    std::string file;
    std::size_t line = 0;
    std::size_t column = 0;
    std::size_t endLine = 0;
    std::size_t endColumn = 0;
    /// The meaning of a related place: "the rule".
    std::string message = {};
  };

  struct Result {
    std::string ruleId;
    std::string level;
    std::string message;
    /// Where the problem is: each of these places alone. The first is the most important.
    std::vector<Place> places;
    /// Places that help to understand it.
    std::vector<Place> related;
    /// The path of the object in the model; "" for none.
    std::string object;
  };

  /// Writes the beginning of the log. `out` must outlive the log.
  SarifLog(std::ostream& out, std::vector<Rule> const& rules);
  SarifLog(SarifLog const&) = delete;
  SarifLog& operator=(SarifLog const&) = delete;

  /// `properties` is more data about the result; null for none.
  void add(Result const& result, Json const& properties = nullptr);
  /// Something that kept the program from its work.
  void addFailure(std::string const& message, std::vector<Place> const& places = {});
  /// Writes the end of the log. Call it once, at the end.
  void finish(int exitStatus);

 private:
  std::ostream& out_;
  bool isFirst_ = true;
  Json failures_ = Json::array();
};

}  // namespace tarn::tool

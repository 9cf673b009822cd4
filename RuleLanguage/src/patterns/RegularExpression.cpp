#include "patterns/RegularExpression.h"

#include <re2/re2.h>

namespace tarn::rules {

RegularExpression::RegularExpression(std::string const& pattern) : text_(pattern) {
  if (pattern.size() > longestPattern) {
    fault_ = "it is longer than " + std::to_string(longestPattern) + " bytes";
    return;
  }
  re2::RE2::Options options;
  options.set_log_errors(false);  // a library writes nothing to the standard streams
  options.set_never_capture(true);
  compiled_ = std::make_unique<re2::RE2>(pattern, options);
  if (!compiled_->ok()) fault_ = compiled_->error();
}

RegularExpression::~RegularExpression() = default;

std::string notAPattern(RegularExpression const& expression) {
  std::string message = "this is not a regular expression: " + expression.fault();
  auto const& text = expression.text();
  bool const looksAround = text.find("(?=") != std::string::npos || text.find("(?!") != std::string::npos ||
                           text.find("(?<=") != std::string::npos || text.find("(?<!") != std::string::npos;
  if (looksAround) message += "; the syntax has no look-ahead and no look-behind, so write that part as a check";
  return message;
}

bool RegularExpression::matchesWhole(std::string_view text) const {
  return re2::RE2::FullMatch(re2::StringPiece(text.data(), text.size()), *compiled_);
}

}  // namespace tarn::rules

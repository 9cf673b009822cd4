#include "yaml/YamlItem.h"

#include <string>

#include <tarn/StringUtilities.h>

#include "yaml/ScalarText.h"

namespace tarn::rules {

RulePlace Item::place() const {
  return {source->sharedName(), node->line, node->column};
}

std::size_t Item::beginOfExpression(std::size_t skipped) const noexcept {
  auto const& text = node->value;
  for (std::size_t begin = skipped; begin < text.size(); ++begin) {
    if (!StringUtilities::isSpace(text[begin])) return begin;
  }
  return skipped;
}

RulePlace Item::placeOfExpression(std::size_t skipped) const {
  skipped = beginOfExpression(skipped);
  // Nearly all expressions are plain and on one line. For them no search is needed: the skipped bytes are a sign and
  // blanks, so each is one character in the file.
  if (node->style == YamlNode::Style::Plain && node->line == node->endLine && !node->hasProperties) {
    return {source->sharedName(), node->line, node->column + skipped};
  }
  Place const begin = rangeInScalar(*source, *node, skipped, 1).begin;
  return {source->sharedName(), begin.line, begin.column};
}

}  // namespace tarn::rules

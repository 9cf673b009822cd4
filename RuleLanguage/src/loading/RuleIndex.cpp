#include "loading/RuleIndex.h"

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

void RuleIndex::read(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits,
                     DiagnosticList& diagnostics) {
  set_.read(filesOrFolders, limits.fileSize, diagnostics);
  parse(limits, diagnostics);
}

void RuleIndex::readText(std::string const& text, std::string const& sourceName, LoadLimits const& limits,
                         DiagnosticList& diagnostics) {
  set_.names.push_back(sourceName);
  if (text.size() > limits.fileSize) {
    diagnostics.addAboutFile(Code::UnreadableFile, sourceName,
                             "the text is larger than " + std::to_string(limits.fileSize) + " bytes");
  } else {
    set_.sources.emplace_back(sourceName, text);
  }
  parse(limits, diagnostics);
}

bool RuleIndex::lacksPartOf(Item const& item) const {
  auto const found = incomplete_.find(item.source);
  return found != incomplete_.end() && found->second->lacksPartOf(item.node->line);
}

void RuleIndex::parse(LoadLimits const& limits, DiagnosticList& diagnostics) {
  for (auto const& source : set_.sources) {
    std::size_t const errorsBefore = diagnostics.errorCount();
    auto const& document =
        documents_.emplace_back(source, YamlDocument::Limits{limits.yamlDepth, limits.yamlNodes}, diagnostics);
    if (document.isIncomplete()) incomplete_.emplace(&source, &document);
    if (document.root() != nullptr) {
      files_.push_back({&source, document.root()});
    } else if (diagnostics.errorCount() == errorsBefore) {
      diagnostics.add(Code::EmptyFile, source, {}, "the file contains no rules; it must begin with 'Rule Database: 1'");
    }
  }
}

}  // namespace tarn::rules

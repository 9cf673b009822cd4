#include "loading/RuleIndex.h"

namespace tarn::rules {

Item EntryPlace::attribute(std::string_view key) const {
  return {body.source, valueIn(*body.node, key)};
}

void RuleIndex::read(std::vector<std::filesystem::path> const& filesOrFolders, LoadLimits const& limits,
                     DiagnosticList& diagnostics) {
  set_.read(filesOrFolders, ruleFiles, limits.fileSize, diagnostics);
  parse(limits, diagnostics);
}

void RuleIndex::readTexts(std::vector<RuleText> const& texts, LoadLimits const& limits, DiagnosticList& diagnostics) {
  if (texts.empty()) diagnostics.addAboutFile(Code::NoRuleFiles, "<rules>", "no text of a rule file is given");
  for (auto const& [source, text] : texts) {
    set_.names.push_back(source);
    if (text.size() > limits.fileSize) {
      diagnostics.addAboutFile(Code::UnreadableFile, source,
                               "the text is larger than " + std::to_string(limits.fileSize) + " bytes");
    } else {
      set_.sources.emplace_back(source, text);
    }
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

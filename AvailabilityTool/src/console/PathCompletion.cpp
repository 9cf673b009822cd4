// A path is completed level by level. The text up to the last "/" says where to search; the rest is the beginning of a
// component.
#include "console/PathCompletion.h"

#include <algorithm>
#include <cstddef>

namespace tarn::tool {

namespace {

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// The first and the last key are the smallest and the greatest. So they differ where any two keys differ.
std::string commonStart(Candidates const& candidates) {
  std::string const& first = candidates.begin()->first;
  std::string const& last = candidates.rbegin()->first;
  auto common = static_cast<std::size_t>(std::mismatch(first.begin(), first.end(), last.begin(), last.end()).first -
                                         first.begin());
  while (common > 0 && common < first.size() && isContinuation(first[common])) --common;  // do not split a character
  return first.substr(0, common);
}

void name(Candidates const& candidates, Completion& completion) {
  completion.total = candidates.size();
  for (auto const& [component, candidate] : candidates) {
    if (completion.choices.size() == Completion::maxChoices) break;
    completion.choices.push_back(component + (candidate.deeper && !candidate.whole ? "/" : ""));
  }
}

bool isTypeable(std::string const& text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; });
}

}  // namespace

Completion completePath(std::string const& typed, PathLevel const& level, Arrives const& arrives,
                        std::string_view end) {
  auto const slash = typed.rfind('/') + 1;  // 0 if there is none
  std::string folder = typed.substr(0, slash);
  std::string start = typed.substr(slash);
  Completion completion;
  for (;;) {
    Candidates found = level(folder, start);
    std::erase_if(found, [&](auto const& entry) {
      return !isTypeable(entry.first) || !arrives(folder + entry.first + (entry.second.whole ? "" : "/"));
    });
    name(found, completion);
    if (found.empty()) return completion;

    std::string const common = commonStart(found);
    completion.insert += common.substr(start.size());
    if (found.size() > 1) return completion;

    Candidate const only = found.begin()->second;
    if (only.whole) {
      // A component that is complete is entered only if it is already typed.
      bool const enter = only.deeper && completion.insert.empty();
      completion.insert += enter ? "/" : end;
      return completion;
    }
    completion.insert += '/';
    folder += common + '/';
    start.clear();
  }
}

Completion completeWord(std::vector<std::string> const& words, std::string_view typed) {
  Candidates found;
  for (std::string const& word : words) {
    if (word.starts_with(typed) && isTypeable(word)) found[word].whole = true;
  }
  Completion completion;
  name(found, completion);
  if (!found.empty()) completion.insert = commonStart(found).substr(typed.size());
  return completion;
}

}  // namespace tarn::tool

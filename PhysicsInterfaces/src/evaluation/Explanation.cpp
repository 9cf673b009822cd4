#include <tarn/Explanation.h>

namespace tarn {

std::string_view Explanation::textOf(Node const& node) const noexcept {
  if (node.source >= sources.size()) return {};
  std::string_view const text = sources[node.source].text;
  return node.offset < text.size() ? text.substr(node.offset, node.length) : std::string_view();
}

std::vector<bool> Explanation::neededReads() const {
  std::vector<bool> isNeeded(reads.size());
  if (nodes.empty()) return isNeeded;
  // A node comes before its children, so one pass in order reaches all that are part of the proof.
  std::vector<bool> decides(nodes.size());
  decides.front() = true;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!decides[i] || nodes[i].alsoFails) continue;
    for (std::size_t const read : nodes[i].reads) isNeeded[read] = true;
    for (std::size_t const child : nodes[i].children) decides[child] = true;
  }
  return isNeeded;
}

}  // namespace tarn

// The form of a pattern: what kind it is, and its text.

#include <tarn/PathPattern.h>

#include <algorithm>

#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

using StringUtilities::isSpace;

void appendEscaped(std::string& out, std::string_view word) {
  bool const dots = word == "..";
  for (std::size_t i = 0; i < word.size(); ++i) {
    char const c = word[i];
    bool const end = i == 0 || i + 1 == word.size();
    if (c == '\\' || c == '*' || c == '}' || c == '{' || (i == 0 && (c == '^' || c == '@' || dots)) ||
        (end && isSpace(c))) {
      out += '\\';
    }
    out += c;
  }
}

}  // namespace

void PathPattern::classify() noexcept {
  single_ = std::all_of(steps_.begin(), steps_.end(),
                        [](Step const& step) { return step.kind == StepKind::Child || step.kind == StepKind::Parent; });
}

std::string PathPattern::escapedPath(std::string_view path) {
  std::string out;
  while (!path.empty()) {
    std::size_t const end = std::min(path.find_first_of("/:"), path.size());
    appendEscaped(out, path.substr(0, end));
    if (end < path.size()) out += path[end];
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return out;
}

std::string PathPattern::text() const {
  std::string out;
  bool separate = false;
  switch (start_) {
    case Start::Root:
      out = "/";
      break;
    case Start::Owner:
      out = "@";
      separate = true;
      break;
    case Start::Nearest:
      out = "^";
      appendEscaped(out, startType_);
      separate = true;
      break;
    case Start::Context:
      break;
  }
  for (auto const& step : steps_) {
    if (separate) out += '/';
    separate = true;
    switch (step.kind) {
      case StepKind::Child:
      case StepKind::ChildrenOfType:
        appendEscaped(out, step.type);
        if (step.kind == StepKind::ChildrenOfType) {
          out += ":*";
        } else if (!step.name.empty()) {
          out += ':';
          appendEscaped(out, step.name);
        }
        break;
      case StepKind::AnyChild:
        out += '*';
        break;
      case StepKind::AnyDepth:
        out += "**";
        break;
      case StepKind::Parent:
        out += "..";
        break;
    }
  }
  return out;
}

}  // namespace tarn

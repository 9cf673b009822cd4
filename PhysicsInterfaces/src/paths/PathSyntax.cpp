// The grammar of object paths: one pass from left to right that finds the position of the first fault. `TDFPath` and
// `TDFChange` use it, and `TDFChangeFile` for the columns in its messages.
#include "paths/PathSyntax.h"

namespace tarn::path_syntax {

namespace {

constexpr std::size_t longestShown = 100;
constexpr std::size_t shownOfHead = 60;
constexpr std::size_t shownOfTail = 30;

bool isContinuation(char c) noexcept {
  return (static_cast<unsigned char>(c) & 0xC0u) == 0x80u;
}

}  // namespace

Fault findFault(std::string_view path) noexcept {
  if (path.empty() || path.front() != '/') return {"a path begins with \"/\"", 0};
  std::size_t begin = 1;
  for (;;) {
    std::size_t const end = path.find('/', begin);
    std::string_view const component = path.substr(begin, end == std::string_view::npos ? end : end - begin);
    if (component.empty()) return {"a component of the path is empty", begin - 1};
    std::size_t const colon = component.find(':');
    if (colon == 0) return {"the type before \":\" is missing", begin};
    if (colon != std::string_view::npos) {
      std::size_t const second = component.find(':', colon + 1);
      if (second != std::string_view::npos) return {"a component of the path holds a second \":\"", begin + second};
      if (colon + 1 == component.size()) return {"the name after \":\" is missing", begin + colon};
    }
    if (end == std::string_view::npos) return {};
    begin = end + 1;
  }
}

std::string shown(std::string_view text) {
  std::string quoted = "\"";
  auto const add = [&quoted](std::string_view part) {
    for (char const c : part) quoted += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
  };
  if (text.size() <= longestShown) {
    add(text);
  } else {
    // Cut between characters, not within one.
    std::size_t head = shownOfHead;
    while (head > 0 && isContinuation(text[head])) --head;
    std::size_t tail = text.size() - shownOfTail;
    while (tail < text.size() && isContinuation(text[tail])) ++tail;
    add(text.substr(0, head));
    quoted += "...";
    add(text.substr(tail));
  }
  return quoted + '"';
}

}  // namespace tarn::path_syntax

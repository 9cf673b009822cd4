#include "console/ChoiceList.h"

#include <algorithm>
#include <cwchar>
#include <vector>

namespace tarn::tool {

namespace {

constexpr std::size_t gap = 2;

/// Calls `show(text, columns)` for each character. A byte that is not a character, or a
/// character that would move the cursor, is shown as "?".
template <typename Show>
void forEachCharacter(std::string const& text, Show const& show) {
  std::mbstate_t state{};
  for (std::size_t at = 0; at < text.size();) {
    wchar_t character = 0;
    std::size_t const length = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
    bool const broken = length == 0 || length > text.size() - at;
    int const columns = broken ? -1 : ::wcwidth(character);
    if (columns < 0) {
      state = {};
      show("?", std::size_t{1});
      at += broken ? 1 : length;
    } else {
      show(text.substr(at, length), static_cast<std::size_t>(columns));
      at += length;
    }
  }
}

struct Cell {
  std::string text;
  std::size_t columns = 0;
};

Cell cellOf(std::string const& text) {
  Cell cell;
  forEachCharacter(text, [&cell](std::string const& character, std::size_t columns) {
    cell.text += character;
    cell.columns += columns;
  });
  return cell;
}

}  // namespace

std::size_t columnsOf(std::string const& text) {
  return cellOf(text).columns;
}

std::string choiceList(Completion const& completion, std::size_t width) {
  std::vector<Cell> cells;
  std::size_t widest = 0;
  for (std::string const& choice : completion.choices) {
    cells.push_back(cellOf(choice));
    widest = std::max(widest, cells.back().columns);
  }
  std::size_t const columns = std::max<std::size_t>(1, (width + gap) / (widest + gap));
  std::size_t const rows = (cells.size() + columns - 1) / columns;

  std::string list;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t at = row; at < cells.size(); at += rows) {
      list += cells[at].text;
      if (at + rows < cells.size()) list += std::string(widest + gap - cells[at].columns, ' ');
    }
    list += '\n';
  }
  if (completion.total > completion.choices.size()) {
    list += "... and " + std::to_string(completion.total - completion.choices.size()) + " more\n";
  }
  return list;
}

}  // namespace tarn::tool

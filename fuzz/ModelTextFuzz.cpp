// Any bytes as model text: it is read, or refused with an error. `ModelText` finds malformed lines in the same texts,
// and finds each parameter of the others where its value is given. A model that was read is printed as blocks and read
// again: the same parameters must come back, if the names are plain enough for the block form. Rewriting a text for its
// own state keeps every byte; objects and parameters that come and go can always be written.

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Error.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/TDFPath.h>
#include <tarn/printModelState.h>

namespace {

bool isTrimmed(std::string_view text) {
  auto const blank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
  return text.empty() || (!blank(text.front()) && !blank(text.back()));
}

// Letters, digits, inner blanks and the separators of a path.
bool isPlain(std::string_view text) {
  for (char const c : text) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != ' ' && c != '/' && c != ':') return false;
  }
  return text.find("END") == std::string_view::npos && text.find(" /") == std::string_view::npos &&
         text.find("/ ") == std::string_view::npos && text.find(" :") == std::string_view::npos &&
         text.find(": ") == std::string_view::npos && isTrimmed(text);
}

// True when an object of the path is named as its type: a block opens with the type alone then, as a singleton's does.
bool hasTypeForName(std::string const& objPath) {
  tarn::TDFPath const path(objPath);
  for (unsigned long long i = 0; i < path.size(); ++i) {
    if (path.getName(i) == path.getType(i) && path.getSubPath(i, 1).find(':') != std::string::npos) return true;
  }
  return false;
}

bool comesBackAsItIs(tarn::ModelState const& state) {
  for (auto const& [path, parameters] : state) {
    if (path.empty() || !isPlain(path) || hasTypeForName(path)) return false;
    for (auto const& [name, value] : parameters) {
      if (name.empty() || !isPlain(name) || name.front() == '/') return false;
      if (!isTrimmed(value) || value.find_first_of("\r\n") != std::string::npos) return false;
    }
  }
  return true;
}

tarn::ModelState withoutEmptyObjects(tarn::ModelState state) {
  std::erase_if(state, [](auto const& entry) { return entry.second.empty(); });
  return state;
}

// Whether each parameter is found first where it is given the value that counts, and each object is found.
bool isLocated(tarn::ModelText const& text) {
  std::vector<tarn::ModelText::Item> items;
  std::vector<std::string> values;
  for (auto const& [path, parameters] : text.state()) {
    if (!path.empty()) {
      items.push_back({path, std::nullopt});
      values.emplace_back();
    }
    for (auto const& [name, value] : parameters) {
      items.push_back({path, name});
      values.push_back(value);
    }
  }
  auto const found = text.locate(items);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (found[i].empty() || found[i].front().value != values[i]) return false;
  }
  return true;
}

bool isRewritten(std::string const& text, tarn::ModelState state) {
  bool const isSpeltInOneWay =
      std::none_of(state.begin(), state.end(), [](auto const& object) { return hasTypeForName(object.first); });
  if (isSpeltInOneWay && tarn::rewriteModelText(text, state) != text) return false;
  for (auto object = state.begin(); object != state.end();) {
    object = state.erase(object);
    if (object != state.end()) ++object;
  }
  for (auto& [path, parameters] : state) parameters["Added"] = "1";
  std::string const rewritten = tarn::rewriteModelText(text, state);
  return tarn::rewriteModelText(rewritten, state) == rewritten;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::string const text(reinterpret_cast<char const*>(data), size);
  tarn::ModelText const modelText("m", text);
  tarn::ModelState state;
  try {
    state = tarn::TDFChangeFile({}, {text}, tarn::TDFChangeFile::Strict).toModelState();
  } catch (tarn::Error const&) {
    if (modelText.faults().empty()) std::abort();
    return 0;
  }
  if (!modelText.faults().empty() || modelText.state() != state || !isLocated(modelText)) std::abort();
  if (!isRewritten(text, state)) std::abort();
  if (!comesBackAsItIs(state)) return 0;

  std::ostringstream blocks;
  tarn::printModelState(state, blocks);
  auto const again = tarn::TDFChangeFile({}, {blocks.str()}, tarn::TDFChangeFile::Strict).toModelState();
  if (withoutEmptyObjects(again) != withoutEmptyObjects(state)) std::abort();
  return 0;
}

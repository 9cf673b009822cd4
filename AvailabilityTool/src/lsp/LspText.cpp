#include "lsp/LspText.h"

#include <algorithm>

namespace tarn::tool {

namespace {

/// The bytes of the character at the beginning of a text.
std::size_t characterBytes(std::string_view text) noexcept {
  auto const first = static_cast<unsigned char>(text.front());
  std::size_t const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
  if (length > text.size()) return 1;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return 1;
  }
  return length;
}

constexpr std::string_view fileScheme = "file://";

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~/").find(c) != std::string_view::npos;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::size_t unitsOf(std::string_view text, PositionEncoding encoding) noexcept {
  if (encoding == PositionEncoding::Utf8) return text.size();
  std::size_t units = 0;
  while (!text.empty()) {
    std::size_t const bytes = characterBytes(text);
    units += bytes == 4 ? 2 : 1;
    text.remove_prefix(bytes);
  }
  return units;
}

std::size_t bytesOf(std::string_view line, std::size_t units, PositionEncoding encoding) noexcept {
  if (encoding == PositionEncoding::Utf8) return std::min(units, line.size());
  std::size_t at = 0;
  while (at < line.size() && units > 0) {
    std::size_t const bytes = characterBytes(line.substr(at));
    std::size_t const taken = bytes == 4 ? 2 : 1;
    if (taken > units) break;  // in the middle of a pair
    units -= taken;
    at += bytes;
  }
  return at;
}

std::string uriOf(std::string const& path) {
  if (!path.starts_with('/')) return path;
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri(fileScheme);
  for (char const c : path) {
    if (isPlain(c)) {
      uri += c;
    } else {
      auto const byte = static_cast<unsigned char>(c);
      uri += '%';
      uri += digits[byte / 16];
      uri += digits[byte % 16];
    }
  }
  return uri;
}

std::string pathOf(std::string const& uri) {
  if (!uri.starts_with(fileScheme)) return uri;
  std::size_t const begin = uri.find('/', fileScheme.size());
  if (begin == std::string::npos) return uri;
  std::string path;
  for (std::size_t i = begin; i < uri.size(); ++i) {
    if (uri[i] == '%' && i + 2 < uri.size() && hexValue(uri[i + 1]) >= 0 && hexValue(uri[i + 2]) >= 0) {
      path += static_cast<char>(hexValue(uri[i + 1]) * 16 + hexValue(uri[i + 2]));
      i += 2;
    } else {
      path += uri[i];
    }
  }
  return path;
}

nlohmann::ordered_json LspPositions::json(std::string const& file, workbench::EditorPosition position) const {
  std::string_view const line = rules_.line(file, position.line);
  return {{"line", position.line},
          {"character", unitsOf(line.substr(0, std::min(position.byte, line.size())), encoding_)}};
}

nlohmann::ordered_json LspPositions::json(std::string const& file, workbench::EditorRange const& range) const {
  return {{"start", json(file, range.begin)}, {"end", json(file, range.end)}};
}

workbench::EditorPosition LspPositions::position(std::string const& file, std::size_t line, std::size_t unit) const {
  return {line, bytesOf(rules_.line(file, line), unit, encoding_)};
}

}  // namespace tarn::tool

#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

/// Functions that fuzz targets share: they report a broken law and divide bytes.
namespace tarn::fuzz {

[[noreturn]] inline void fail(std::string_view law, std::string_view input) {
  std::cerr << "broken law: " << law << "\non: " << input << std::endl;
  std::abort();
}

/// Ends the program when the law does not hold, and prints the law and the input.
inline void require(bool holds, std::string_view law, std::string_view input) {
  if (!holds) fail(law, input);
}

[[nodiscard]] inline std::string textOf(std::uint8_t const* data, std::size_t size) {
  return {reinterpret_cast<char const*>(data), size};
}

/// The lines of a text, without their ends; text after the last line end is a line as well.
[[nodiscard]] inline std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines(1);
  for (char const c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

}  // namespace tarn::fuzz

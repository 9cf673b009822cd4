#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tarn::test {

/// All bytes of a file; empty when the file cannot be read.
[[nodiscard]] inline std::string fileText(std::filesystem::path const& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace tarn::test

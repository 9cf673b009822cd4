// Runs a fuzz target over the files of its corpus, one by one, without a fuzzer: in every build and under every
// sanitizer. The name of the current file is printed first, so that a crash shows its input.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) {
  std::size_t inputs = 0;
  for (int i = 1; i < argc; ++i) {
    for (auto const& entry : std::filesystem::directory_iterator(argv[i])) {
      std::cout << entry.path().string() << std::endl;
      std::ifstream file(entry.path(), std::ios::binary);
      std::string const content{std::istreambuf_iterator<char>(file), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(content.data()), content.size());
      ++inputs;
    }
  }
  if (inputs == 0) {
    std::cerr << "usage: name the folders of a corpus that holds at least one file\n";
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

// Reads the bytes of model text.
#include "model/ModelTextFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ios>
#include <iostream>
#include <memory>
#include <system_error>
#include <utility>

#include <tarn/Error.h>

#include "paths/PathSyntax.h"

namespace tarn {

namespace {

using path_syntax::shown;

[[noreturn]] void failToRead(char const* what, std::string const& name, int error) {
  throw FileError("TDFChangeFile", "TDFChangeFile",
                  std::string("cannot ") + what + ' ' + name + ": " + std::generic_category().message(error));
}

// All data that `take(buffer, size)` returns, until it returns less than `size`.
template <typename Take>
std::string readToEnd(Take take) {
  std::string text;
  std::size_t held = 0;
  for (;;) {
    text.resize(std::max<std::size_t>(std::size_t{1} << 16, held * 2));
    std::size_t const wanted = text.size() - held;
    std::size_t const got = take(text.data() + held, wanted);
    held += got;
    if (got < wanted) break;
  }
  text.resize(held);
  return text;
}

std::string readStandardInput() {
  bool failed = false;
  errno = 0;
  std::string text;
  try {
    text = readToEnd([](char* buffer, std::size_t size) {
      return static_cast<std::size_t>(std::cin.rdbuf()->sgetn(buffer, static_cast<std::streamsize>(size)));
    });
    failed = std::ferror(stdin) != 0;
  } catch (std::ios_base::failure const&) {  // a stream that is not synchronised with C
    failed = true;
  }
  if (failed) failToRead("read", "the standard input", errno ? errno : EIO);
  return text;
}

std::string readFile(std::string const& name) {
  struct Close {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };
  errno = 0;
  std::unique_ptr<std::FILE, Close> const file(std::fopen(name.c_str(), "rb"));
  if (!file) failToRead("open", shown(name), errno ? errno : ENOENT);
  std::string text =
      readToEnd([&file](char* buffer, std::size_t size) { return std::fread(buffer, 1, size, file.get()); });
  if (std::ferror(file.get())) failToRead("read", shown(name), errno ? errno : EIO);
  return text;
}

}  // namespace

ModelTextFile ModelTextFile::read(std::string const& name) {
  if (name == "-") return {"<stdin>", cleaned(readStandardInput())};
  return {name, cleaned(readFile(name))};
}

std::string ModelTextFile::cleaned(std::string text) {
  if (text.find('\r') != std::string::npos) std::erase(text, '\r');
  if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
  return text;
}

}  // namespace tarn

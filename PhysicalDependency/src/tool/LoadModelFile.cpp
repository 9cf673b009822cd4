#include "tool/LoadModelFile.h"

#include <exception>
#include <iostream>

#include <tarn/Error.h>
#include <tarn/TDFChangeFile.h>

namespace tarn {

bool loadFile(std::string const& fileName, bool strictLoad, ModelState& state) {
  state.clear();
  auto const refuse = [&] { std::cout << "Failed to load " << fileName << std::endl; };
  try {
    auto const mode = strictLoad ? TDFChangeFile::Strict : TDFChangeFile::Lenient;
    state = TDFChangeFile({fileName}, {}, mode).toModelState();
    return true;
  } catch (Error const& error) {
    refuse();
    error.write(std::cout);
    std::cout << std::endl;
  } catch (std::string const& text) {
    refuse();
    std::cout << text << std::endl;
  } catch (std::exception const& error) {
    refuse();
    std::cout << error.what() << std::endl;
  } catch (...) {
    refuse();
  }
  return false;
}

}  // namespace tarn

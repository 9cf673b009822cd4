#pragma once

#include <stdexcept>

namespace tarn::tool {

/// What keeps the program from doing its work: a sentence for the user that names the file or argument and says what to
/// do. Ends the program with `ExitStatus::Failed`, unless the subcommand can go on with the next file.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tarn::tool

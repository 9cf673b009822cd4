#pragma once

#include <iosfwd>
#include <stdexcept>

namespace tarn::tool {

/// Thrown when the program cannot do its work. The message is a sentence for the user: it names the file or the
/// argument and says what to do. The program ends with `ExitStatus::Failed`, unless the subcommand can continue with
/// the next file.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes the message, each of its lines with the name of the program in front.
void print(std::ostream& err, Failure const& failure);

}  // namespace tarn::tool

#pragma once

#include <iosfwd>
#include <string>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class ProvisionalTDF;

/// Writes a `ProvisionalTDF` as text for people: its state, one object or parameter of it, and what the last update
/// changed. The printer only reads, through the getters of the state. Output that the stream does not accept is lost
/// without notice. Each operation flushes the stream once at its end.
class TARN_EXPORT ProvTDFPrinter {
 public:
  /// Neither is owned; both must outlive all printing.
  ProvTDFPrinter(ProvisionalTDF const* provisional, std::ostream* out) noexcept
      : provisional_(provisional), out_(out) {}

  /// Writes the text and a line end.
  void printString(std::string const& text) const;

  /// Write the active state, or any other state, as nested blocks. See `printModelState` for the form.
  void printState() const;
  void printState(ModelState const& state) const;

  /// Writes one object: its parameters with their values, the potential parameters with their allowed values, and the
  /// potential objects directly in it. A section without entries is left out. When all are empty, the output says that
  /// there is nothing.
  void printObjectState(std::string const& path) const;

  /// Writes one parameter on one line: its value, or that it is potential, followed by its allowed values or, with
  /// `subset`, by the subset on offer. When there is no such parameter, the line gives the reason. An object that holds
  /// no parameters is treated as absent, even if it has potential parameters.
  void printParamState(std::string const& objPath, std::string const& name, bool subset) const;

  /// Writes the command that asked, and then what `printParamState` writes with all allowed values and with the subset,
  /// each under a title.
  void printParamStateWithDecoration(std::string const& command, std::string const& argument,
                                     std::string const& objPath, std::string const& name) const;

  /// Writes what the last update changed, in ten sections. A section without entries has a line that says so. The
  /// values are those at the time of the call.
  void printUpdates() const;

 private:
  ProvisionalTDF const* provisional_;
  std::ostream* out_;
};

}  // namespace tarn

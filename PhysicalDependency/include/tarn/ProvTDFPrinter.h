#pragma once

#include <iosfwd>
#include <string>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class ProvisionalTDF;

/// Writes a `ProvisionalTDF` as text for people: its state, one object or parameter of it, and what the last update
/// changed. Only reads, through the getters of the state. Text that cannot be written is lost without notice. Each
/// operation ends with the stream flushed.
class TARN_EXPORT ProvTDFPrinter {
 public:
  /// Neither is owned; both must outlive all printing.
  ProvTDFPrinter(ProvisionalTDF const* provisional, std::ostream* out) noexcept
      : provisional_(provisional), out_(out) {}

  /// The text and a line end.
  void printString(std::string const& text) const;

  /// The active state, or any other, as nested blocks; see `printModelState`.
  void printState() const;
  void printState(ModelState const& state) const;

  /// One object: its parameters with their values, the potential parameters with their allowed values, the potential
  /// objects directly in it. What there is none of is left out. Says so when there is nothing at all.
  void printObjectState(std::string const& path) const;

  /// One parameter on one line: its value, or that it is potential, with its allowed values or the subset on offer; or
  /// why there is nothing to show. A parameter of an object that holds no parameters yet counts as one of an absent
  /// object.
  void printParamState(std::string const& objPath, std::string const& name, bool subset) const;

  /// The command that asked, and `printParamState` with all allowed values and with the subset, each under a title.
  void printParamStateWithDecoration(std::string const& command, std::string const& argument,
                                     std::string const& objPath, std::string const& name) const;

  /// What the last update changed, in ten sections, each of which is there also when it has nothing to tell. Values are
  /// the present ones.
  void printUpdates() const;

 private:
  [[nodiscard]] std::string allowedValuesSuffix(std::string const& objPath, std::string const& name, bool subset) const;
  void writeParamState(std::string const& objPath, std::string const& name, bool subset) const;

  ProvisionalTDF const* provisional_;
  std::ostream* out_;
};

}  // namespace tarn

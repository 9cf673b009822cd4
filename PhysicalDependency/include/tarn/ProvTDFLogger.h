#pragma once

#include <fstream>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ProvTDFObserver.h>
#include <tarn/ProvTDFPrinter.h>

namespace tarn {

class ProvisionalTDF;

/// Prints a `ProvisionalTDF` to a target of its own, between a header and a footer: its state, one object or parameter
/// of it, and what the last update changed. As the observer of a state it also prints every edit.
///
///     ProvTDFLogger printer(&domain, "stdout");
///     domain.setLogger(&printer);                 // from here on every edit is printed with what it changed
///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");
///     printer.printObjectState("/Case/Domain:rotor");
///
/// For each edit it prints a line with the command and its argument, and then the summary of `printUpdates`; also for a
/// refused edit, whose summary is empty. For the start of a state it prints the whole base model first. Two commands
/// are not called as their operations: `addNewNamedObject` is printed as "addNewObject", `removeNamedObject` as
/// "removeObject".
///
/// Output that the target does not accept is lost without notice. Each operation flushes the target at its end.
class TARN_EXPORT ProvTDFLogger : public ProvTDFObserver {
 public:
  /// A printer of `provisional`, which is not owned and must outlive all printing. The target "stdout" or "cout" is the
  /// standard output, "stderr" or "cerr" the standard error. Any other target is the name of a file, to which the
  /// output is appended. When the file cannot be opened, all output is lost without notice.
  ///
  /// Prints a header with the active root. The destructor prints a footer; it no longer reads the state.
  ProvTDFLogger(ProvisionalTDF const* provisional, std::string const& target);
  /// The same on a stream of the caller's, which must outlive the printer and all its copies. The caller can ask the
  /// stream whether everything was written, also after the footer.
  ProvTDFLogger(ProvisionalTDF const* provisional, std::ostream& out);
  /// Copies print to the same target, and each prints a footer when it is destroyed. The last of them closes the file.
  ProvTDFLogger(ProvTDFLogger const&) = default;
  ProvTDFLogger& operator=(ProvTDFLogger const&) = default;
  virtual ~ProvTDFLogger();

  /// These print what the operations of the same names in `ProvTDFPrinter` write.
  void printString(std::string const& text) const { printer_.printString(text); }
  void printState() const { printer_.printState(); }
  void printState(ModelState const& state) const { printer_.printState(state); }
  void printObjectState(std::string const& path) const { printer_.printObjectState(path); }
  void printParamState(std::string const& objPath, std::string const& name, bool subset) const {
    printer_.printParamState(objPath, name, subset);
  }
  void printParamStateWithDecoration(std::string const& command, std::string const& argument,
                                     std::string const& objPath, std::string const& name) const {
    printer_.printParamStateWithDecoration(command, argument, objPath, name);
  }
  void printUpdates() const { printer_.printUpdates(); }

 private:
  void onInitialised(ModelTDF const& base) override;
  void onEdit(Edit const& edit, std::optional<Refusal> refusal) override;

  std::shared_ptr<std::ofstream> ownedFile_;  // null for a console target and for a stream of the caller's
  std::ostream* out_;
  ProvTDFPrinter printer_;
  std::string activeRoot_;
};

}  // namespace tarn

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
/// of it, and what the last update changed.
///
///     ProvTDFLogger printer(&domain, "stdout");
///     domain.setLogger(&printer);                 // from here on every edit prints itself and what it changed
///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");
///     printer.printObjectState("/Case/Domain:rotor");
///
/// Text that cannot be written is lost without notice. Each operation ends with the stream flushed.
class TARN_EXPORT ProvTDFLogger : public ProvTDFObserver {
 public:
  /// A printer of `provisional`, which is not owned and must outlive all printing. "stdout" or "cout" is the standard
  /// output, "stderr" or "cerr" the standard error; any other text is the name of a file to append to. A file that
  /// cannot be opened takes all that is printed and keeps nothing.
  ///
  /// Prints a header with the active root, and the end of the printer a footer, which does not read the state any more.
  ProvTDFLogger(ProvisionalTDF const* provisional, std::string const& target);
  /// The same on a stream of the caller's, which must outlive the printer and all its copies. For those who want to
  /// know whether all was written: the stream can tell, behind the footer too.
  ProvTDFLogger(ProvisionalTDF const* provisional, std::ostream& out);
  /// Copies print to the same target, and each prints a footer at its end. A file is closed with the last of them.
  ProvTDFLogger(ProvTDFLogger const&) = default;
  ProvTDFLogger& operator=(ProvTDFLogger const&) = default;
  virtual ~ProvTDFLogger();

  /// See `ProvTDFPrinter` for what each writes.
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

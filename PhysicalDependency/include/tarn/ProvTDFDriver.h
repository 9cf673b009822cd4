#pragma once

#include <memory>
#include <string>

#include <tarn/Export.h>

namespace tarn {

class PhysicsData;
class ProvisionalTDF;
class ProvTDFLogger;

/// The command loop of the availability tool. It reads commands from the standard input and edits a `ProvisionalTDF`
/// with them, shows it through a `ProvTDFLogger`, and validates. The driver writes its own output to the standard
/// output.
///
///     ProvisionalTDF domain(rules.get(), "/Case/Domain:rotor");
///     ProvTDFLogger printer(&domain, "stdout");
///     domain.setLogger(&printer);
///     domain.initialise(&model, {});
///     ProvTDFDriver(true, false, "/Case/Domain:rotor", rules.get(), &printer, &domain).waitInput();
///
/// A line is a command word, white space, and arguments separated by commas. Only the first white space of a line
/// separates, so a path with blanks needs no quotes. The command "h" prints the list of commands.
///
/// Two commands work but are not in that list: "no" adds a named object and "ro" removes one. Where the list names a
/// file ("l", "lb", "vf"), the file name "-" means the standard input. The driver reads its commands from there too:
/// the rest of the input, up to its end, is then model text, and the loop quits after the command.
///
/// The rule database, the printer and the provisional state must outlive the driver.
class TARN_EXPORT ProvTDFDriver {
 public:
  /// `strictLoad`: a malformed line makes a model file unreadable. Without it, such a line is reported and skipped.
  /// `quiet`: no banner and no prompt. `validationRoot`: the object at which every validation starts.
  ProvTDFDriver(bool strictLoad, bool quiet, std::string const& validationRoot, PhysicsData const* physicsData,
                ProvTDFLogger* logger, ProvisionalTDF* provisional);
  /// The copy and the original share the model that was loaded last. The one that is destroyed last frees it.
  ProvTDFDriver(ProvTDFDriver const&);
  ProvTDFDriver& operator=(ProvTDFDriver const&);
  virtual ~ProvTDFDriver();

  /// Reads lines and runs their commands until "q" or the end of the input. A last line that has no line end is
  /// ignored, because the end of the input takes its place.
  ///
  /// When a command throws an `Error` or a `std::string`, the driver prints it and the loop goes on. Any other
  /// exception ends the loop and reaches the caller. The state is then as the failed command left it.
  void waitInput();

  /// Prints the active state.
  void printState() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn

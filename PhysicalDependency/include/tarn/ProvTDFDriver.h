#pragma once

#include <memory>
#include <string>

#include <tarn/Export.h>

namespace tarn {

class DynamicTDF;
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
///
/// After "l" or "lb" the provisional state reads a base model that belongs to the driver and its copies. When the last
/// of them is destroyed, that model goes too, and the next use of the state would read freed memory. A host that goes
/// on using the state takes a share of the model before the driver ends:
///
///     std::shared_ptr<DynamicTDF const> base;
///     {
///       ProvTDFDriver driver(true, false, "/Case/Domain:rotor", rules.get(), &printer, &domain);
///       driver.waitInput();
///       base = driver.getLoadedBaseModel();
///     }
///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");   // reads *base if it is not null
///
/// It keeps the share until it has given the state another base model, or as long as it uses the state.
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

  /// The base model that "l" or "lb" loaded, null if neither has loaded a file. Later loads put the new content into
  /// the same model.
  [[nodiscard]] std::shared_ptr<DynamicTDF const> getLoadedBaseModel() const;

  /// Prints the active state.
  void printState() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn

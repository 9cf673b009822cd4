#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class DynamicTDF;
class PhysicsData;
class ProvisionalTDF;
class ProvTDFLogger;

/// The command loop of the availability tool: reads commands from the standard input, edits a `ProvisionalTDF` by them,
/// shows it through a `ProvTDFLogger`, and validates. Everything it says of its own goes to the standard output.
///
///     ProvisionalTDF domain(rules.get(), "/Case/Domain:rotor");
///     ProvTDFLogger printer(&domain, "stdout");
///     domain.setLogger(&printer);
///     domain.initialise(&model, {});
///     ProvTDFDriver(true, false, "/Case/Domain:rotor", rules.get(), &printer, &domain).waitInput();
///
/// A line is a command word and, behind the first white space, arguments divided by commas; so a path needs no quotes
/// for the blanks in it. "h" tells the commands. What the driver is given must outlive it.
class TARN_EXPORT ProvTDFDriver {
 public:
  /// `strictLoad`: a malformed line of a model file refuses the file, instead of being told and skipped. `quiet`:
  /// neither banner nor prompt. `validationRoot`: the object at which every validation starts.
  ProvTDFDriver(bool strictLoad, bool quiet, std::string const& validationRoot, PhysicsData const* physicsData,
                ProvTDFLogger* logger, ProvisionalTDF* provisional);
  /// A copy shares the model that was loaded last with its original.
  ProvTDFDriver(ProvTDFDriver const&);
  ProvTDFDriver& operator=(ProvTDFDriver const&);
  virtual ~ProvTDFDriver();

  /// Reads and obeys lines until "q" or the end of the input. A last line without a line end is not obeyed: the end of
  /// the input stands in its place.
  ///
  /// A failure that is an `Error` or a thrown text is told and the loop goes on. Any other exception leaves the loop
  /// and reaches the caller; the state is then what the broken command made of it.
  void waitInput();

  /// Prints the active state.
  void printState() const;

 private:
  using Arguments = std::vector<std::string>;
  using Handler = void (ProvTDFDriver::*)(Arguments const&);

  void processInputLine();
  void processInput(std::string const& line);
  [[nodiscard]] std::string splitCmdLine(std::string const& line, Arguments& args) const;
  void dispatch(std::string const& command, Arguments const& args);
  [[nodiscard]] bool hasQuit() const noexcept { return quit_; }
  void setQuit() noexcept { quit_ = true; }

  void helpHandler(Arguments const& args);
  void quitHandler(Arguments const& args);

  // Showing and editing the state
  void editTDFHandler(Arguments const& args);
  void printParamHandler(Arguments const& args);
  void printObjHandler(Arguments const& args);
  void printStateHandler(Arguments const& args);
  void setParamHandler(Arguments const& args);
  void activateParamHandler(Arguments const& args);
  void deactivateParamHandler(Arguments const& args);
  void activateObjHandler(Arguments const& args);
  void deactivateObjHandler(Arguments const& args);
  void newNamedObjHandler(Arguments const& args);
  void removeNamedObjHandler(Arguments const& args);
  void loadHandler(Arguments const& args);
  void loadBaseHandler(Arguments const& args);
  [[nodiscard]] bool loadIntoBase(Arguments const& args);
  [[nodiscard]] DynamicTDF* getBaseTDF();
  [[nodiscard]] bool hasPotObject(std::string const& path) const;
  [[nodiscard]] bool hasPotParam(std::string const& objPath, std::string const& name) const;

  // Validation
  void validateHandler(Arguments const& args);
  void validateFileHandler(Arguments const& args);
  void doPhysicsValidation(ModelState const& state) const;

  std::map<std::string, Handler, std::less<>> commands_;
  bool strictLoad_;
  bool quiet_;
  std::string validationRoot_;
  PhysicsData const* physicsData_;
  ProvisionalTDF* provisional_;
  std::shared_ptr<DynamicTDF> baseTree_;  // null until a file is loaded; then used again for every load
  ProvTDFLogger* logger_;
  bool quit_ = false;
};

}  // namespace tarn

#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/ProvTDFDriver.h>

namespace tarn {

class DynamicTDF;
struct Edit;

/// The loop, the command table and the handlers. A handler checks its arguments and calls one operation of the
/// provisional state, the printer or the validator.
struct [[gnu::visibility("hidden")]] ProvTDFDriver::Impl {
  using Arguments = std::vector<std::string>;
  using Handler = void (Impl::*)(Arguments const&);

  Impl(bool strictLoad, bool quiet, std::string const& validationRoot, PhysicsData const* physicsData,
       ProvTDFLogger* logger, ProvisionalTDF* provisional);

  void waitInput();

  void processInputLine();
  void processInput(std::string const& line);
  [[nodiscard]] std::string splitCmdLine(std::string const& line, Arguments& args) const;
  void dispatch(std::string const& command, Arguments const& args);
  [[nodiscard]] bool hasQuit() const noexcept {
    return quit_;
  }
  void setQuit() noexcept {
    quit_ = true;
  }

  void helpHandler(Arguments const& args);
  void quitHandler(Arguments const& args);

  // Show and edit the state
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
  void edit(Edit const& edit);
  [[nodiscard]] bool hasPotObject(std::string const& path) const;
  [[nodiscard]] bool hasPotParam(std::string const& objPath, std::string const& name) const;

  // Validate
  void validateHandler(Arguments const& args);
  void validateFileHandler(Arguments const& args);
  void doPhysicsValidation(ModelState const& state) const;

  std::map<std::string, Handler, std::less<>> commands_;
  bool strictLoad_;
  bool quiet_;
  std::string validationRoot_;
  PhysicsData const* physicsData_;
  ProvisionalTDF* provisional_;
  std::shared_ptr<DynamicTDF> baseTree_;  // null until a file is loaded; every later load uses it again
  ProvTDFLogger* logger_;
  bool quit_ = false;
};

}  // namespace tarn

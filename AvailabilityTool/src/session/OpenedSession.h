#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

namespace tarn::tool {

/// The arguments with which a subcommand opens a session.
struct SessionArguments {
  std::vector<std::string> rules;
  /// The model file; "-" is the standard input. Empty: an empty model.
  std::string model;
  /// The object to edit. Empty: the only one that there can be.
  std::string root;
};

/// A command line that a shell runs as it is: `commandLine("zev edit", …, "--on Title")` is
/// `zev edit --rules rules/ pump.tdf --on Title`. `rest` must be written for a shell.
[[nodiscard]] std::string commandLine(std::string const& command, SessionArguments const& arguments,
                                      std::string const& rest);

/// A session with everything it needs, in the order of their lifetimes.
class OpenedSession {
 public:
  /// Loads the rules, reads the model and opens the session. Throws a `Failure` that says what to do if one of them
  /// fails.
  OpenedSession(SessionArguments const& arguments, std::ostream& err);

  [[nodiscard]] PhysicsData const& rules() const noexcept { return *rules_; }
  [[nodiscard]] session::Session& session() noexcept { return *session_; }
  [[nodiscard]] session::Session const& session() const noexcept { return *session_; }
  /// The file of the model. Empty for an empty model.
  [[nodiscard]] std::optional<session::ModelFile>& file() noexcept { return file_; }

 private:
  std::unique_ptr<PhysicsData> rules_;
  std::optional<session::ModelFile> file_;
  std::unique_ptr<session::Session> session_;
};

}  // namespace tarn::tool

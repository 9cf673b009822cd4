#pragma once

namespace tarn::tool {

/// Runs the command that the arguments of `main` name, on the standard streams, and returns the exit status. Throws
/// nothing: every failure becomes a message on the standard error and `ExitStatus::Failed`.
[[nodiscard]] int runCommandLine(int argc, char const* const* argv) noexcept;

}  // namespace tarn::tool

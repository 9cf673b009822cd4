#pragma once

namespace tarn::tool {

/// Does what the arguments of `main` ask for, on the standard streams, and returns the exit status. Throws nothing:
/// whatever goes wrong becomes a message on the standard error and `ExitStatus::Failed`.
[[nodiscard]] int runCommandLine(int argc, char const* const* argv) noexcept;

}  // namespace tarn::tool

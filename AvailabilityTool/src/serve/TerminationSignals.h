#pragma once

namespace tarn::tool {

/// Takes SIGINT and SIGTERM as something to wait for, in this thread and in those that it starts from now on. SIGPIPE
/// is ignored: a client that is gone must not end the server.
class TerminationSignals {
 public:
  TerminationSignals();
  ~TerminationSignals();
  TerminationSignals(TerminationSignals const&) = delete;
  TerminationSignals& operator=(TerminationSignals const&) = delete;

  enum class Event { Terminate, Input, None };
  /// Waits until a signal comes, until `input` can be read, or for so long. An `input` of -1 is not waited for.
  [[nodiscard]] Event wait(int input, int milliseconds) const;

 private:
  int descriptor_;
};

}  // namespace tarn::tool

#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

namespace tarn::service {

/// The codes of JSON-RPC, and ours from -32001 down. The numbers are part of the protocol.
enum class ErrorCode : int {
  ParseError = -32700,
  InvalidRequest = -32600,
  MethodNotFound = -32601,
  InvalidParams = -32602,
  InternalError = -32603,
  OutdatedRevision = -32001,
  UnknownDocument = -32002,
  LimitExceeded = -32003,
  OutsideFolders = -32004,
  OpenFailed = -32005,
  UnsavedEdits = -32006,
  FileFailed = -32007,
  RecoveryFailed = -32008,
  LosesOwnValues = -32009
};

/// Ends a request with an error instead of a result.
class ProtocolError : public std::runtime_error {
 public:
  ProtocolError(ErrorCode code, std::string const& sentence, nlohmann::ordered_json data = {})
      : std::runtime_error(sentence), code_(code), data_(std::move(data)) {}

  [[nodiscard]] ErrorCode code() const noexcept { return code_; }
  /// Null when there is nothing to add.
  [[nodiscard]] nlohmann::ordered_json const& data() const noexcept { return data_; }

 private:
  ErrorCode code_;
  nlohmann::ordered_json data_;
};

}  // namespace tarn::service

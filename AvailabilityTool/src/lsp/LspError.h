#pragma once

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include <tarn/workbench/EditorAnswers.h>

#include "lsp/LspText.h"
#include "lsp/RuleBases.h"

namespace tarn::tool {

/// Ends a request with an error instead of a result.
class LspError : public std::runtime_error {
 public:
  /// The numbers are those of the protocol.
  enum Code : int {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
    ServerNotInitialized = -32002,
    RequestCancelled = -32800,
    RequestFailed = -32803
  };

  LspError(Code code, std::string const& sentence) : std::runtime_error(sentence), code_(code) {}
  [[nodiscard]] Code code() const noexcept { return code_; }

 private:
  Code code_;
};

/// The position that a client sent; throws an `LspError` if it is not a position.
[[nodiscard]] workbench::EditorPosition positionAt(RuleBase const& base, PositionEncoding encoding,
                                                   std::string const& file, nlohmann::json const* position);

}  // namespace tarn::tool

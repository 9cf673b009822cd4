// The base of the family's exceptions, and the few exceptions that this layer throws itself. The texts are composed on
// demand, because most handlers use only the bare message.
#include <tarn/Error.h>

#include <ostream>

namespace tarn {

Error::Error() = default;
Error::~Error() = default;

Error::Error(std::string const& exceptionName, std::string const& className, std::string const& method,
             std::string const& message, errorType type, int code)
    : exceptionName_(exceptionName),
      className_(className),
      method_(method),
      message_(message),
      type_(type),
      code_(code) {}

errorType Error::getType() const {
  return type_;
}

void Error::write(std::ostream& stream) const {
  stream << errorMessage();
}

std::string Error::getClass() const {
  return className_;
}

std::string Error::getMethod() const {
  return method_;
}

std::string Error::errorMessage() const {
  std::string text = exceptionName_;
  if (!className_.empty() || !method_.empty()) {
    if (!text.empty()) text += " in ";
    text += className_;
    if (!className_.empty() && !method_.empty()) text += "::";
    text += method_;
  }
  // A virtual call, so that the composed text contains the message of a derived error that words it itself.
  std::string const message = getMessage();
  if (!text.empty() && !message.empty()) text += ": ";
  return text + message;
}

std::string Error::getMessage() const {
  return message_;
}

ParseError::ParseError(std::string const& className, std::string const& method, std::string const& message)
    : Error("tarn::ParseError", className, method, message, errorType::InvalidInput, 0) {}

void ParseError::write(std::ostream& stream) const {
  stream << getMessage();
}

RangeError::RangeError(std::string const& className, std::string const& method, std::string const& message)
    : Error("tarn::RangeError", className, method, message, errorType::InvalidState, 0) {}

FileError::FileError(std::string const& className, std::string const& method, std::string const& message)
    : Error("tarn::FileError", className, method, message, errorType::InputOutput, 0) {}

void FileError::write(std::ostream& stream) const {
  stream << getMessage();
}

AssertionError::AssertionError(std::string const& condition, std::string const& file, int line)
    : Error("tarn::AssertionError", "", "",
            "assertion failed: " + condition + " (" + file + ":" + std::to_string(line) + ")", errorType::Assertion,
            0) {}

}  // namespace tarn

#pragma once

#include <exception>
#include <iosfwd>
#include <string>

#include <tarn/Export.h>

namespace tarn {

/// The kind of failure that an `Error` reports.
enum class errorType : int { Unknown = 0, Assertion = 1, InvalidInput = 2, InputOutput = 3, InvalidState = 4 };

/// The base of the family's exceptions. It is a `std::exception` too. A program that handles both differently catches
/// `Error` first.
class TARN_EXPORT Error : public std::exception {
 public:
  Error(Error const&) = default;
  Error& operator=(Error const&) = default;
  ~Error() override;

  [[nodiscard]] virtual errorType getType() const;
  /// Writes the whole error to `stream`, without a line end. This is the composed text; for an error in something that
  /// a user wrote, it is the message alone.
  virtual void write(std::ostream& stream) const;
  /// The class and the method that failed, as the constructor got them.
  [[nodiscard]] virtual std::string getClass() const;
  [[nodiscard]] virtual std::string getMethod() const;
  /// The composed text: name of the exception, class and method, and message.
  [[nodiscard]] virtual std::string errorMessage() const;
  /// The bare message.
  [[nodiscard]] virtual std::string getMessage() const;

  /// The name of the exception, "physical_dependency::error" for example.
  [[nodiscard]] std::string const& exceptionName() const noexcept { return exceptionName_; }
  [[nodiscard]] int code() const noexcept { return code_; }
  /// The same as `getMessage`, for handlers of `std::exception`. Valid as long as the error.
  [[nodiscard]] char const* what() const noexcept override { return message_.c_str(); }

 protected:
  Error();
  Error(std::string const& exceptionName, std::string const& className, std::string const& method,
        std::string const& message, errorType type, int code);

 private:
  std::string exceptionName_;
  std::string className_;
  std::string method_;
  std::string message_;
  errorType type_ = errorType::Unknown;
  int code_ = 0;
};

/// A text that cannot be parsed: a path, a change, a model file.
class TARN_EXPORT ParseError : public Error {
 public:
  ParseError(std::string const& className, std::string const& method, std::string const& message);
  /// Writes the message alone. It names the position in the user's text. Class and method would not help the user.
  void write(std::ostream& stream) const override;
};

/// An index that is out of range: the fourth component of a path of three.
class TARN_EXPORT RangeError : public Error {
 public:
  RangeError(std::string const& className, std::string const& method, std::string const& message);
};

/// A file that cannot be opened, or that cannot be read or written completely.
class TARN_EXPORT FileError : public Error {
 public:
  FileError(std::string const& className, std::string const& method, std::string const& message);
  /// Writes the message alone, which names the file.
  void write(std::ostream& stream) const override;
};

/// A failed assertion: a fault of the program, not of its input.
class TARN_EXPORT AssertionError : public Error {
 public:
  AssertionError(std::string const& condition, std::string const& file, int line);
};

}  // namespace tarn

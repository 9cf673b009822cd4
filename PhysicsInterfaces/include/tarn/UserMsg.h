#pragma once

#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A message for a user, made from a template with the tokens %1 to %9.
///
///     UserMsg message("The object \"%1\" has no \"%2\".", nullptr);
///     message << path << name;
///     std::string text = message;
///
/// The template is the key of the message and at the same time its English wording. Two texts are kept: the wording
/// that is shown and the English one. They are the same, since no translation is supplied.
class TARN_EXPORT UserMsg {
 public:
  /// `translated` may be null; otherwise it tells on return whether a translation of `text` was found.
  UserMsg(std::string const& text, bool* translated);

  /// Fills the next token, %1 first, with `value`, in both texts. Each search for the token starts at the front, and
  /// two characters are replaced wherever it stands. So a value that holds the token of a later number has that
  /// replaced by the later value; a value that holds its own token keeps it as text, and so does one that would make
  /// tokens with its neighbours without end. When the token is nowhere, a warning goes to the standard error and the
  /// texts stay as they are.
  UserMsg& operator<<(std::string const& value);

  /// The text for display.
  operator std::string() const { return shown_.text; }  // NOLINT(google-explicit-constructor)

 private:
  struct Text {
    std::string text;
    int filled = 0;
  };
  static void fill(Text& target, std::string const& value);

  Text shown_;
  Text english_;
};

}  // namespace tarn

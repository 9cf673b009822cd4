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
/// The template is both the key of the message and its English wording. The object keeps two texts, the one for display
/// and the English one. They are equal, because this library has no translations.
class TARN_EXPORT UserMsg {
 public:
  /// If `translated` is not null, sets it to whether a translation of `text` was found.
  UserMsg(std::string const& text, bool* translated);

  /// Replaces the next token, %1 first, by `value` in both texts, everywhere it occurs. Each search for the token
  /// starts at the front. So if a value contains the token of a later value, the later value replaces it. If a value
  /// contains its own token, that stays as text; the same holds for a value that would form new tokens with its
  /// neighbours without end. If the token does not occur, writes a warning to the standard error and leaves the texts
  /// as they are.
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

#pragma once

#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn {

/// A pattern that the text of a parameter must match. The loader of rule files makes patterns of regular expressions; a
/// program can derive its own, or use `lambda::pattern` of `<tarn/RuleLambdas.h>`.
///
/// One pattern may be used from several threads at once.
class TARN_EXPORT TextPattern {
 public:
  virtual ~TextPattern();

  /// Returns whether the whole of `text` matches. Must not throw. Should take time linear in the length of `text`,
  /// because users write the texts.
  [[nodiscard]] virtual bool matches(std::string_view text) const = 0;
  /// The pattern as its author wrote it, for messages.
  [[nodiscard]] virtual std::string text() const = 0;

 protected:
  TextPattern() = default;
  TextPattern(TextPattern const&) = default;
  TextPattern& operator=(TextPattern const&) = default;
};

}  // namespace tarn

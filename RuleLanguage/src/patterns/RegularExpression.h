#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <tarn/TextPattern.h>

namespace re2 {
class RE2;
}

namespace tarn::rules {

/// A regular expression in the syntax of RE2. It takes time linear in the length of a text, and limited memory.
class RegularExpression {
 public:
  /// Reads a pattern of at most `longestPattern` bytes. When that fails, `fault` says why and nothing else may be
  /// asked.
  explicit RegularExpression(std::string const& pattern);
  ~RegularExpression();
  RegularExpression(RegularExpression const&) = delete;
  RegularExpression& operator=(RegularExpression const&) = delete;

  /// Why the pattern cannot be read; empty when it can.
  [[nodiscard]] std::string const& fault() const noexcept { return fault_; }
  /// Whether the whole text matches.
  [[nodiscard]] bool matchesWhole(std::string_view text) const;
  [[nodiscard]] std::string const& text() const noexcept { return text_; }

  static constexpr std::size_t longestPattern = 10'000;

 private:
  std::string text_;
  std::string fault_;
  std::unique_ptr<re2::RE2> compiled_;
};

/// The sentence about a pattern that cannot be read, with what to write instead where that is known.
[[nodiscard]] std::string notAPattern(RegularExpression const& expression);

/// A regular expression as a record of the rules owns it. Parameters with the same pattern share one expression.
class RegularPattern final : public TextPattern {
 public:
  explicit RegularPattern(std::shared_ptr<RegularExpression const> expression) : expression_(std::move(expression)) {}
  [[nodiscard]] bool matches(std::string_view text) const override { return expression_->matchesWhole(text); }
  [[nodiscard]] std::string text() const override { return expression_->text(); }

 private:
  std::shared_ptr<RegularExpression const> expression_;
};

}  // namespace tarn::rules

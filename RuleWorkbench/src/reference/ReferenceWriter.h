#pragma once

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/workbench/RuleReference.h>

namespace tarn::workbench {

/// A run of text in one style.
struct TextRun {
  enum class Kind { Plain, Code, Strong, Mark, Link };
  std::string text;
  Kind kind = Kind::Plain;
  /// The anchor that a link leads to.
  std::string target = {};
};
using TextRuns = std::vector<TextRun>;

/// A link of the table of contents.
struct ContentsEntry {
  std::string text;
  std::string anchor;
  std::size_t level = 0;
};

/// Writes the parts of a document, in the order in which they come. All texts are escaped here.
class ReferenceWriter {
 public:
  explicit ReferenceWriter(std::ostream& out) : out_(out) {}
  virtual ~ReferenceWriter() = default;
  ReferenceWriter(ReferenceWriter const&) = delete;
  ReferenceWriter& operator=(ReferenceWriter const&) = delete;

  virtual void begin(std::string const& title, std::vector<ContentsEntry> const& contents) = 0;
  virtual void end() = 0;
  /// Level 1 is a chapter, 2 an object type, 3 a heading in it, 4 an entry. A section ends where the next one of its
  /// level, or of a smaller one, begins.
  virtual void heading(std::size_t level, std::string const& anchor, TextRuns const& text) = 0;
  virtual void paragraph(TextRuns const& text) = 0;
  /// A list of terms with one or more lines each; not empty.
  struct Term {
    std::string name;
    std::vector<TextRuns> lines;
  };
  virtual void terms(std::vector<Term> const& terms) = 0;

 protected:
  [[nodiscard]] std::ostream& out() const noexcept { return out_; }

 private:
  std::ostream& out_;
};

[[nodiscard]] std::unique_ptr<ReferenceWriter> makeReferenceWriter(std::ostream& out, ReferenceFormat format);

}  // namespace tarn::workbench

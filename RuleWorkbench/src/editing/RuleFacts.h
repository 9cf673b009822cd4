#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/workbench/EditorAnswers.h>

#include "editing/ExpressionScan.h"
#include "editing/TextBuffer.h"

// The names that a part of a file gives and uses. They are found in one file alone, so a change of another file does
// not change them.

namespace tarn::workbench {

/// The owner of an entry: an object type (by its path), a template, or a named rule. A global check, and whatever
/// nobody has, has the kind `Section`: its paths start at the root of the model. An expression of a test has the kind
/// `Test`, when it is evaluated at the object that the test edits, or below it at the type path `name`.
struct FactOwner {
  EditorItemKind kind = EditorItemKind::Section;
  std::string name;
  friend bool operator==(FactOwner const&, FactOwner const&) = default;
};

/// An entry of a file, to which uses belong.
struct FactEntry {
  FactOwner owner;
  EditorItemKind kind = EditorItemKind::Section;
  std::string name;
};

/// The place where an item is given. Spans count from the beginning of the part of the file.
struct Definition {
  EditorItemKind kind = EditorItemKind::Section;
  std::string name;
  FactOwner owner;
  Span nameSpan;
  Span span;
  bool isExact = false;  // the name is written exactly as it reads
  /// The keys of the item, each with its text, or with the texts of its list, or with the keys of its map.
  std::vector<std::pair<std::string, std::vector<std::string>>> attributes;

  [[nodiscard]] std::vector<std::string> const* attribute(std::string_view key) const noexcept;
  /// The first text of an attribute, or "".
  [[nodiscard]] std::string const& firstOf(std::string_view key) const noexcept;
};

/// A place where an item is used.
struct Reference {
  enum class Kind {
    Parameter,     // ${path}
    Objects,       // {path}
    TypeKey,       // the type path of an object entry
    RootType,      // an item of Pertinent Roots
    NamedRule,     // check('name'), list('name'), value('name')
    Template,      // an item of Use
    QuantityType,  // the value of Quantity Type
    ModelPath      // the path of an object or parameter of a model, in a test
  };
  Kind kind = Kind::Parameter;
  EditorItemKind named = EditorItemKind::Section;  // of a NamedRule
  std::string text;                                // the path or the name
  /// The object where a model path without "/" in front starts, "/" for the root of the model. If it is empty, the path
  /// starts at the object that a test edits.
  std::string base = {};
  std::shared_ptr<ExpressionScope const> scope;
  std::size_t entry = 0;  // index in `Facts::entries`
  std::string attribute;  // the key of the entry
  Span span;
  bool isExact = false;  // written exactly as `text`
};

struct Facts {
  std::vector<FactEntry> entries;
  std::vector<Definition> definitions;
  std::vector<Reference> references;
};

/// A part of a file that can be read by itself: whole entries of one map. `context` has the keys above it.
struct FactSource {
  std::string_view text;
  std::vector<std::string> const& context;
  bool isTest = false;
};

[[nodiscard]] Facts factsOf(FactSource const& source);

/// The owner of an expression that a test evaluates at the object `at`. `root` is the type path of the object that the
/// test edits, or empty if the test does not say which.
[[nodiscard]] FactOwner testOwner(std::string const& root, std::string const& at);

/// Where the expressions of the part of a file are, with their quotes; spans count from its beginning.
[[nodiscard]] std::vector<Span> expressionsIn(FactSource const& source);

/// Calls `each` for the parts of every expression in the part of a file, in the order of the file; spans count from its
/// beginning. The part of an expression that is on several lines has one span for each line.
void forEachExpressionPart(FactSource const& source,
                           std::function<void(ExpressionPart const& part, Span written)> const& each);

}  // namespace tarn::workbench

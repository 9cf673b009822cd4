#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/TypeTree.h>
#include <tarn/workbench/EditorAnswers.h>

#include "editing/FileParts.h"
#include "editing/TextBuffer.h"

namespace tarn::workbench {

/// A file of the rule base, and what was read from it.
struct EditedFile {
  std::string name;
  bool isTest = false;
  TextBuffer buffer;
  std::vector<ReadPart> parts;
  bool isRead = false;  // `parts` are those of the present text

  /// The part at an offset, or null.
  [[nodiscard]] ReadPart const* partAt(std::size_t offset) const noexcept;
};

using EditedFiles = std::vector<std::unique_ptr<EditedFile>>;

/// Where an item is given or used: `shift` is where the spans of its part begin in the file.
struct DefinitionAt {
  Definition const* definition = nullptr;
  EditedFile const* file = nullptr;
  std::size_t shift = 0;

  [[nodiscard]] Span nameSpan() const noexcept {
    return {definition->nameSpan.begin + shift, definition->nameSpan.end + shift};
  }
  [[nodiscard]] EditorLocation location() const { return {file->name, file->buffer.rangeOf(nameSpan())}; }
};

struct ReferenceAt {
  Reference const* reference = nullptr;
  FactEntry const* entry = nullptr;
  EditedFile const* file = nullptr;
  std::size_t shift = 0;

  [[nodiscard]] Span span() const noexcept { return {reference->span.begin + shift, reference->span.end + shift}; }
};

/// The meaning of a name at a position.
struct Meaning {
  EditorItemKind kind = EditorItemKind::Section;
  std::string name;
  /// For an object type, its type paths; for a parameter, those of the objects that it can belong to.
  std::set<std::string> types;
  /// Where it is given.
  std::vector<DefinitionAt> definitions;
  /// Where the name is written that was asked for.
  Span span;
  bool isExact = false;
};

/// All names of a rule base: who gives them, who uses them, and what paths can mean. Made from all files at one moment;
/// valid until one of them changes.
class RuleNames {
 public:
  /// Costs the number of names and uses in all files.
  explicit RuleNames(EditedFiles const& files);

  /// The entries of an object type, or of a template.
  struct Entries {
    std::vector<DefinitionAt> definitions;  // of the type or template itself
    std::vector<DefinitionAt> params;
    std::vector<DefinitionAt> children;
    std::vector<std::string> uses;  // names of templates

    /// Appends the parameters of that name to `found`.
    void addParams(std::string_view name, std::vector<DefinitionAt>& found) const;

   private:
    // Names are read again after each edit, and then few of them are searched. So an index is made only for many
    // searches.
    mutable std::size_t searches_ = 0;
    mutable std::unordered_multimap<std::string_view, std::size_t> byName_;
  };
  using NameKey = std::pair<EditorItemKind, std::string>;

  [[nodiscard]] std::map<std::string, Entries> const& types() const noexcept { return types_; }
  [[nodiscard]] std::map<std::string, Entries> const& templates() const noexcept { return templates_; }
  /// Named rules, quantity types and global checks.
  [[nodiscard]] std::map<NameKey, std::vector<DefinitionAt>> const& named() const noexcept { return named_; }
  /// Whether a rule file names an object type that validation looks at.
  [[nodiscard]] bool hasRoots() const noexcept { return !roots_.empty(); }
  [[nodiscard]] TypeTree const& tree() const noexcept { return *tree_; }

  /// The parameters or children of an object type, those of templates included.
  [[nodiscard]] std::vector<DefinitionAt> paramsOf(std::string const& type) const;
  [[nodiscard]] std::vector<DefinitionAt> childrenOf(std::string const& type) const;
  [[nodiscard]] std::vector<DefinitionAt> findParam(std::string const& type, std::string_view name) const;
  [[nodiscard]] std::vector<DefinitionAt> findChild(std::string const& type, std::string_view name) const;
  /// Where an object type is given: its entry under Objects, and the entries of children that lead to it.
  [[nodiscard]] std::vector<DefinitionAt> definitionsOfType(std::string const& type) const;

  /// The object types in whose objects the rules of an owner are evaluated: for a template those that use it, for a
  /// named rule those whose rules call it. {""} for the root of the model.
  [[nodiscard]] std::set<std::string> contextsOf(FactOwner const& owner) const;
  /// The same, or {""} if there are none: a path from the root of the model is understood even in a rule that nobody
  /// uses.
  [[nodiscard]] std::set<std::string> viewpointsOf(FactOwner const& owner) const;
  /// The types that a path can name, seen from the rules of an owner.
  [[nodiscard]] std::set<std::string> resolve(std::string_view path, ExpressionScope const* scope,
                                              FactOwner const& owner) const;
  /// The same without the last component, which is the name of a parameter.
  [[nodiscard]] std::set<std::string> resolveOwners(std::string_view path, ExpressionScope const* scope,
                                                    FactOwner const& owner) const;

  /// The meaning of the name at an offset of a file. Nothing if there is no name.
  [[nodiscard]] std::optional<Meaning> meaningAt(EditedFile const& file, std::size_t offset) const;
  /// The meaning of a component of a path, counted from 0; the last one unless said otherwise.
  [[nodiscard]] Meaning meaningOf(ReferenceAt const& use, std::size_t component = lastComponent) const;
  /// That of a place where an item is given.
  [[nodiscard]] Meaning meaningOf(DefinitionAt const& given) const;
  static constexpr std::size_t lastComponent = static_cast<std::size_t>(-1);

  /// A place where an item is used.
  struct Use {
    ReferenceAt at;
    Span span;  // of the name, in the file
    bool isExact = false;
    /// The path can also mean other items.
    bool isShared = false;
  };
  [[nodiscard]] std::vector<Use> usesOf(Meaning const& meaning) const;
  /// The uses that an entry has, in the order of the files.
  [[nodiscard]] std::vector<ReferenceAt> usesIn(EditedFile const& file, Span span) const;

 private:
  using Names = std::unordered_map<std::string, std::vector<ReferenceAt>>;

  void add(EditedFile const& file, ReadPart const& part);
  void makeTree();
  /// The entries of an object type, and of the templates that it uses.
  [[nodiscard]] std::vector<Entries const*> withTemplates(std::string const& type) const;
  [[nodiscard]] std::set<std::string> collectContexts(FactOwner const& owner) const;
  /// The types of the objects that a test can edit, each with `below`.
  [[nodiscard]] std::set<std::string> editedTypes(std::string const& below) const;
  /// The type path that a path of a type or model means.
  [[nodiscard]] std::string absoluteType(Reference const& use, std::string_view path) const;
  [[nodiscard]] Names const& byName() const;
  void addUses(ReferenceAt const& use, Meaning const& meaning, std::vector<Use>& result) const;

  EditedFiles const& files_;
  std::map<std::string, Entries> types_;
  std::map<std::string, Entries> templates_;
  std::map<NameKey, std::vector<DefinitionAt>> named_;
  std::map<std::string, std::set<std::string>> takers_;          // by template: object types that use it themselves
  std::map<std::string, std::set<std::string>> templateTakers_;  // by template: templates that use it
  std::map<NameKey, std::vector<ReferenceAt>> calls_;            // by named rule, template or quantity type
  std::vector<ReferenceAt> roots_;
  std::unique_ptr<TypeTree> tree_;
  mutable std::optional<Names> byName_;                        // made when it is first asked for
  mutable std::map<NameKey, std::set<std::string>> contexts_;  // of owners that were asked for
};

}  // namespace tarn::workbench

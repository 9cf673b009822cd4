// Walks over the YAML of a part of a file beside the form that the file must have, which says what each scalar is.

#include "editing/RuleFacts.h"

#include <algorithm>
#include <array>

#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>
#include <tarn/StringUtilities.h>

#include "diagnostics/DiagnosticList.h"
#include "editing/FileKeys.h"
#include "yaml/ScalarText.h"
#include "yaml/YamlDocument.h"

namespace tarn::workbench {

using rules::forEachIn;
using rules::valueIn;
using rules::YamlNode;

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr rules::YamlDocument::Limits yamlLimits{64, 20'000'000};

using Kind = EditorItemKind;

/// The sections that give names, and what they give.
struct NamingSection {
  std::string_view key;
  Kind kind;
};
constexpr std::array<NamingSection, 5> namingSections = {{{"Quantity Types", Kind::QuantityType},
                                                          {"Values", Kind::NamedValue},
                                                          {"Lists", Kind::NamedList},
                                                          {"Checks", Kind::NamedCheck},
                                                          {"Global Checks", Kind::GlobalCheck}}};
constexpr std::array<NamingSection, 3> entrySections = {
    {{"Parameters", Kind::Parameter}, {"Children", Kind::Child}, {"Checks", Kind::ObjectCheck}}};

template <typename Sections>
NamingSection const* findSection(Sections const& sections, std::string_view key) {
  auto const found = std::find_if(sections.begin(), sections.end(), [&](auto const& one) { return one.key == key; });
  return found != sections.end() ? &*found : nullptr;
}

class Walk {
 public:
  using EachExpression = std::function<void(YamlNode const& scalar, std::size_t skipped)>;

  Walk(FactSource const& given, Facts& facts)
      : given_(given),
        source_("", std::string(given.text)),
        shift_(given.text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0),
        facts_(facts) {}

  void run(EachExpression const& each) {
    each_ = each;
    rules::DiagnosticList diagnostics(1);
    rules::YamlDocument const document(source_, yamlLimits, diagnostics);
    if (document.root() == nullptr) return;
    facts_.entries.emplace_back();
    if (given_.isTest) {
      tests(*document.root());
    } else {
      part(*document.root());
    }
  }

  [[nodiscard]] rules::SourceText const& source() const noexcept { return source_; }
  [[nodiscard]] Span spanOf(rules::SourceRange const& range) const {
    return {source_.offsetOf(range.begin) + shift_, source_.offsetOf(range.end) + shift_};
  }

  /// The parts of an expression become uses.
  void addUses(YamlNode const& scalar, std::size_t skipped) {
    rules::ScalarWalk walk;
    for (ExpressionPart& part : scanExpression(std::string_view(scalar.value).substr(skipped))) {
      Reference use;
      switch (part.kind) {
        case ExpressionPart::Kind::Parameter:
          use.kind = Reference::Kind::Parameter;
          break;
        case ExpressionPart::Kind::Objects:
          use.kind = Reference::Kind::Objects;
          break;
        case ExpressionPart::Kind::CheckName:
          use.kind = Reference::Kind::NamedRule;
          use.named = Kind::NamedCheck;
          break;
        case ExpressionPart::Kind::ListName:
          use.kind = Reference::Kind::NamedRule;
          use.named = Kind::NamedList;
          break;
        case ExpressionPart::Kind::ValueName:
          use.kind = Reference::Kind::NamedRule;
          use.named = Kind::NamedValue;
          break;
        default:
          continue;
      }
      if (part.isOpen) continue;
      use.scope = std::move(part.scope);
      use.text = std::move(part.text);
      use.span = spanOf(rangeInScalar(source_, scalar, skipped + part.content.begin, part.content.size(), &walk));
      add(std::move(use));
    }
  }

 private:
  // Rule files

  void part(YamlNode const& map) {
    auto const& context = given_.context;
    if (context.empty()) {
      forEachIn(&map, [&](YamlNode const& key, YamlNode const& value) { section(key, value); });
    } else if (context.size() == 1) {
      named(context.front(), map);
    } else {
      FactOwner const owner{context.front() == "Templates" ? Kind::Template : Kind::ObjectType, context[1]};
      form_ = ownerForm(owner);
      if (context.size() == 2) {
        object(owner, map);
      } else {
        entries(owner, context[2], map);
      }
    }
  }

  void section(YamlNode const& key, YamlNode const& value) {
    if (key.value == "Pertinent Roots") {
      for (auto const* root : value.children) {
        if (root->kind != YamlNode::Kind::Scalar) continue;
        Reference use;
        use.kind = Reference::Kind::RootType;
        use.text = root->value;
        use.attribute = key.value;
        use.span = contentOf(*root);
        add(std::move(use));
      }
      return;
    }
    named(key.value, value);
  }

  /// The entries of a section of a file.
  void named(std::string const& sectionKey, YamlNode const& map) {
    bool const isTemplates = sectionKey == "Templates";
    if (isTemplates || sectionKey == "Objects") {
      forEachIn(&map, [&](YamlNode const& key, YamlNode const& value) {
        FactOwner const owner{isTemplates ? Kind::Template : Kind::ObjectType, key.value};
        Definition& definition = define(owner.kind, key, value, {});
        attribute(definition, value);
        if (!isTemplates) {
          beginEntry({}, Kind::ObjectType, key.value);
          Reference use;
          use.kind = Reference::Kind::TypeKey;
          use.text = key.value;
          use.span = contentOf(key);
          add(std::move(use));
        }
        form_ = ownerForm(owner);
        object(owner, value);
      });
      return;
    }
    auto const* naming = findSection(namingSections, sectionKey);
    if (naming == nullptr) return;
    KeyForm const* const form = FileKeys::ofRules().root().valueOf(sectionKey);
    forEachIn(&map, [&](YamlNode const& key, YamlNode const& value) {
      Definition& definition = define(naming->kind, key, value, {});
      attributes(definition, value);
      bool const isCalled = naming->kind != Kind::GlobalCheck && naming->kind != Kind::QuantityType;
      FactOwner const owner = isCalled ? FactOwner{naming->kind, key.value} : FactOwner{};
      beginEntry(owner, naming->kind, key.value);
      attribute_ = naming->kind == Kind::GlobalCheck ? "" : sectionKey;
      walk(form != nullptr ? form->valueOf(key.value) : nullptr, value, true);
    });
  }

  [[nodiscard]] static KeyForm const* ownerForm(FactOwner const& owner) {
    return formAt(FileKeys::ofRules().root(), {owner.kind == Kind::Template ? "Templates" : "Objects", owner.name});
  }

  void object(FactOwner const& owner, YamlNode const& map) {
    forEachIn(&map, [&](YamlNode const& key, YamlNode const& value) {
      if (key.value == "Use") {
        beginEntry(owner, owner.kind, owner.name);
        uses(value);
      } else {
        entries(owner, key.value, value);
      }
    });
  }

  void entries(FactOwner const& owner, std::string const& sectionKey, YamlNode const& map) {
    auto const* naming = findSection(entrySections, sectionKey);
    if (naming == nullptr) return;
    KeyForm const* const form = form_ != nullptr ? form_->valueOf(sectionKey) : nullptr;
    forEachIn(&map, [&](YamlNode const& key, YamlNode const& value) {
      if (key.value == "Use" && value.kind != YamlNode::Kind::Mapping) {
        beginEntry(owner, owner.kind, owner.name);
        uses(value);
        return;
      }
      Definition& definition = define(naming->kind, key, value, owner);
      attributes(definition, value);
      beginEntry(owner, naming->kind, key.value);
      walk(form != nullptr ? form->valueOf(key.value) : nullptr, value, true);
    });
  }

  void uses(YamlNode const& value) {
    auto const one = [&](YamlNode const& name) {
      if (name.kind != YamlNode::Kind::Scalar || name.value.empty()) return;
      Reference use;
      use.kind = Reference::Kind::Template;
      use.text = name.value;
      use.attribute = "Use";
      use.span = contentOf(name);
      add(std::move(use));
    };
    if (value.kind == YamlNode::Kind::Scalar) one(value);
    if (value.kind == YamlNode::Kind::Sequence) {
      for (auto const* name : value.children) one(*name);
    }
  }

  /// The values of an entry. `isTop`: its keys are attributes of the entry.
  void walk(KeyForm const* form, YamlNode const& node, bool isTop) {
    if (form == nullptr) return;
    switch (node.kind) {
      case YamlNode::Kind::Scalar:
        scalar(*form, node);
        break;
      case YamlNode::Kind::Sequence:
        for (auto const* item : node.children) walk(form->items, *item, false);
        break;
      case YamlNode::Kind::Mapping:
        forEachIn(&node, [&](YamlNode const& key, YamlNode const& value) {
          if (isTop) attribute_ = key.value;
          walk(form->valueOf(key.value), value, false);
        });
        break;
    }
  }

  void scalar(KeyForm const& form, YamlNode const& node) {
    bool const isComputed = form.scalar == KeyForm::Scalar::TextOrExpression && node.value.starts_with('=');
    if (form.scalar == KeyForm::Scalar::Expression || isComputed) {
      each_(node, isComputed ? 1 : 0);
    } else if (attribute_ == RuleAttributes::quantityType && !node.value.empty()) {
      Reference use;
      use.kind = Reference::Kind::QuantityType;
      use.text = node.value;
      use.span = contentOf(node);
      add(std::move(use));
    }
  }

  // Tests

  void tests(YamlNode const& root) {
    auto const* all = valueIn(root, "Tests");
    KeyForm const* const form = formAt(FileKeys::ofTests().root(), {"Tests"});
    forEachIn(all, [&](YamlNode const& key, YamlNode const& value) {
      define(Kind::Test, key, value, {});
      auto const* edited = valueIn(value, "Root");
      bool const isGiven = edited != nullptr && edited->value.starts_with('/');
      root_ = isGiven ? PathUtils::typePathOf(edited->value) : std::string();
      beginEntry({}, Kind::Test, key.value);
      testValue(form->valueOf(key.value), value);
      auto const* evaluate = valueIn(value, "Evaluate");
      if (evaluate == nullptr) return;
      if (evaluate->kind == YamlNode::Kind::Sequence) {
        for (auto const* one : evaluate->children) evaluation(key.value, *one);
      } else {
        evaluation(key.value, *evaluate);
      }
    });
  }

  /// The expression of a test, which is evaluated at an object of the model.
  void evaluation(std::string const& test, YamlNode const& node) {
    auto const* at = valueIn(node, "At");
    auto const* expression = valueIn(node, "Expression");
    if (expression == nullptr || expression->kind != YamlNode::Kind::Scalar) return;
    beginEntry(testOwner(root_, at != nullptr ? at->value : ""), Kind::Test, test);
    attribute_ = "Expression";
    each_(*expression, 0);
  }

  void testValue(KeyForm const* form, YamlNode const& node) {
    switch (node.kind) {
      case YamlNode::Kind::Scalar:
        if (attribute_ == "Model") {
          modelText(node);
        } else if (form != nullptr && form->scalar == KeyForm::Scalar::Path) {
          modelPath(node);
        }
        break;
      case YamlNode::Kind::Sequence:
        for (auto const* item : node.children) testValue(form != nullptr ? form->items : nullptr, *item);
        break;
      case YamlNode::Kind::Mapping: {
        bool const hasPaths = form != nullptr && form->keys.empty() && form->named != nullptr;
        forEachIn(&node, [&](YamlNode const& key, YamlNode const& value) {
          std::string const before = attribute_;
          attribute_ = key.value;
          if (hasPaths) {
            modelPath(key);
          } else {
            testValue(form != nullptr ? form->valueOf(key.value) : nullptr, value);
          }
          attribute_ = before;
        });
        break;
      }
    }
  }

  void modelPath(YamlNode const& node) {
    if (!node.value.empty()) addModelPath(root_, node.value, contentOf(node));
  }

  /// The paths of a model: whole ones, and those of nested blocks. A line that is neither is passed over.
  void modelText(YamlNode const& node) {
    std::string_view const text = node.value;
    rules::ScalarWalk walk;
    std::vector<std::string> open = {""};  // the paths of the blocks around the line
    for (std::size_t begin = 0; begin < text.size();) {
      std::size_t const end = std::min(text.find('\n', begin), text.size());
      std::string_view const line = StringUtilities::trimmed(text.substr(begin, end - begin));
      auto const take = [&](std::string const& base, std::string_view path) {
        if (path.empty()) return;
        std::size_t const from = static_cast<std::size_t>(path.data() - text.data());
        addModelPath(base.empty() ? "/" : base, std::string(path),
                     spanOf(rangeInScalar(source_, node, from, path.size(), &walk)));
      };
      std::size_t const equals = line.find('=');
      if (line.starts_with('/')) {
        std::string_view path = line.substr(0, equals);
        while (path.ends_with(' ') || path.ends_with('/')) path.remove_suffix(1);
        take("", path);
      } else if (line.starts_with("END #")) {
        if (open.size() > 1) open.pop_back();
        std::string_view name = StringUtilities::trimmed(line.substr(5));
        if (name.ends_with(':')) name.remove_suffix(1);
        take(open.back(), name);
      } else if (!line.starts_with('#') && equals != std::string_view::npos) {
        take(open.back(), StringUtilities::trimmed(line.substr(0, equals)));
      } else if (std::size_t const colon = line.find(':'); !line.starts_with('#') && colon != std::string_view::npos) {
        std::string_view const type = StringUtilities::trimmed(line.substr(0, colon));
        std::string_view const name = StringUtilities::trimmed(line.substr(colon + 1));
        take(open.back(), type);
        open.push_back(open.back() + '/' + std::string(type) + (name.empty() ? "" : ':' + std::string(name)));
      }
      begin = end + 1;
    }
  }

  void addModelPath(std::string base, std::string path, Span span) {
    Reference use;
    use.kind = Reference::Kind::ModelPath;
    use.base = path.starts_with('/') ? std::string() : std::move(base);
    use.text = std::move(path);
    use.span = span;
    add(std::move(use));
  }

  // Both

  Definition& define(Kind kind, YamlNode const& key, YamlNode const& value, FactOwner owner) {
    Definition& definition = facts_.definitions.emplace_back();
    definition.kind = kind;
    definition.name = key.value;
    definition.owner = std::move(owner);
    definition.nameSpan = contentOf(key);
    Span const whole = spanOf(key.range());
    Span const body = spanOf(value.range());
    // The value of an alias is written elsewhere.
    definition.span = {whole.begin, body.begin >= whole.end ? std::max(whole.end, body.end) : whole.end};
    definition.isExact = isWritten(definition.nameSpan, key.value);
    return definition;
  }

  static void attributes(Definition& definition, YamlNode const& value) {
    if (value.kind != YamlNode::Kind::Mapping) {
      addAttribute(definition, "", value);
      return;
    }
    forEachIn(&value, [&](YamlNode const& key, YamlNode const& one) { addAttribute(definition, key.value, one); });
  }

  static void attribute(Definition& definition, YamlNode const& value) {
    if (auto const* text = valueIn(value, "Description")) addAttribute(definition, "Description", *text);
  }

  static void addAttribute(Definition& definition, std::string const& key, YamlNode const& value) {
    std::vector<std::string> texts;
    switch (value.kind) {
      case YamlNode::Kind::Scalar:
        texts.push_back(value.value);
        break;
      case YamlNode::Kind::Sequence:
        for (auto const* item : value.children) {
          auto const* text = item->kind == YamlNode::Kind::Mapping ? valueIn(*item, "Value") : item;
          if (text != nullptr && text->kind == YamlNode::Kind::Scalar) texts.push_back(text->value);
        }
        break;
      case YamlNode::Kind::Mapping:
        forEachIn(&value, [&](YamlNode const& name, YamlNode const& /*one*/) { texts.push_back(name.value); });
        break;
    }
    definition.attributes.emplace_back(key, std::move(texts));
  }

  void beginEntry(FactOwner const& owner, Kind kind, std::string const& name) {
    facts_.entries.push_back({owner, kind, name});
    attribute_.clear();
  }

  void add(Reference use) {
    use.entry = facts_.entries.size() - 1;
    if (use.attribute.empty()) use.attribute = attribute_;
    use.isExact = isWritten(use.span, use.text);
    facts_.references.push_back(std::move(use));
  }

  /// The text of a scalar without its quotes.
  [[nodiscard]] Span contentOf(YamlNode const& scalar) const {
    return spanOf(rangeInScalar(source_, scalar, 0, scalar.value.size()));
  }

  [[nodiscard]] bool isWritten(Span span, std::string_view text) const {
    return given_.text.substr(std::min(span.begin, given_.text.size()), span.size()) == text;
  }

  FactSource const& given_;
  rules::SourceText source_;
  std::size_t shift_;
  Facts& facts_;
  EachExpression each_;
  KeyForm const* form_ = nullptr;  // of the object or template
  std::string root_;               // the type path of the object that a test edits, if it says which
  std::string attribute_;
};

}  // namespace

FactOwner testOwner(std::string const& root, std::string const& at) {
  if (at.starts_with('/')) return {Kind::ObjectType, PathUtils::typePathOf(at)};
  std::string const type = at.empty() ? std::string() : PathUtils::typePathOf('/' + at);
  return root.empty() ? FactOwner{Kind::Test, type} : FactOwner{Kind::ObjectType, root + type};
}

std::vector<std::string> const* Definition::attribute(std::string_view key) const noexcept {
  auto const found =
      std::find_if(attributes.begin(), attributes.end(), [&](auto const& one) { return one.first == key; });
  return found != attributes.end() ? &found->second : nullptr;
}

std::string const& Definition::firstOf(std::string_view key) const noexcept {
  static std::string const none;
  auto const* texts = attribute(key);
  return texts != nullptr && !texts->empty() ? texts->front() : none;
}

Facts factsOf(FactSource const& source) {
  Facts facts;
  Walk walk(source, facts);
  walk.run([&](YamlNode const& scalar, std::size_t skipped) { walk.addUses(scalar, skipped); });
  return facts;
}

std::vector<Span> expressionsIn(FactSource const& source) {
  Facts facts;
  std::vector<Span> spans;
  Walk walk(source, facts);
  walk.run([&](YamlNode const& scalar, std::size_t /*skipped*/) { spans.push_back(walk.spanOf(scalar.range())); });
  return spans;
}

void forEachExpressionPart(FactSource const& source,
                           std::function<void(ExpressionPart const& part, Span written)> const& each) {
  Facts facts;
  Walk walk(source, facts);
  walk.run([&](YamlNode const& scalar, std::size_t skipped) {
    rules::ScalarWalk place;
    for (ExpressionPart const& part : scanExpression(std::string_view(scalar.value).substr(skipped))) {
      each(part,
           walk.spanOf(rangeInScalar(walk.source(), scalar, skipped + part.span.begin, part.span.size(), &place)));
    }
  });
}

}  // namespace tarn::workbench

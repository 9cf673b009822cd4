// Reads YAML through the events of libyaml, which are fast and carry exact positions. The tree is built with its own
// stack. When a part is not YAML, its lines are left out and the file is read again. An alias shares the node of its
// anchor, but the node limit counts it as a copy: so a file whose aliases multiply is refused before anything walks
// over it.

#include "yaml/YamlDocument.h"

#include <yaml.h>

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <string_view>

#include <tarn/StringUtilities.h>

#include "yaml/YamlAdvice.h"

namespace tarn::rules {

namespace {

class Parser {
 public:
  explicit Parser(std::string const& text) : good_(yaml_parser_initialize(&parser_) != 0) {
    if (!good_) throw std::bad_alloc();
    yaml_parser_set_input_string(&parser_, reinterpret_cast<unsigned char const*>(text.data()), text.size());
    yaml_parser_set_encoding(&parser_, YAML_UTF8_ENCODING);
  }
  Parser(Parser const&) = delete;
  Parser& operator=(Parser const&) = delete;
  ~Parser() { yaml_parser_delete(&parser_); }

  bool next(yaml_event_t& event) {
    if (yaml_parser_parse(&parser_, &event) != 0) return true;
    // This is not the fault of the file.
    if (parser_.error == YAML_MEMORY_ERROR) throw std::bad_alloc();
    return false;
  }
  [[nodiscard]] yaml_parser_t const& state() const noexcept { return parser_; }

 private:
  yaml_parser_t parser_{};
  bool good_;
};

class Event {
 public:
  Event() = default;
  Event(Event const&) = delete;
  Event& operator=(Event const&) = delete;
  ~Event() { yaml_event_delete(&event_); }
  yaml_event_t* operator->() noexcept { return &event_; }
  yaml_event_t& get() noexcept { return event_; }

 private:
  yaml_event_t event_{};
};

YamlNode::Style styleOf(yaml_scalar_style_t style) {
  switch (style) {
    case YAML_SINGLE_QUOTED_SCALAR_STYLE:
      return YamlNode::Style::SingleQuoted;
    case YAML_DOUBLE_QUOTED_SCALAR_STYLE:
      return YamlNode::Style::DoubleQuoted;
    case YAML_LITERAL_SCALAR_STYLE:
      return YamlNode::Style::Literal;
    case YAML_FOLDED_SCALAR_STYLE:
      return YamlNode::Style::Folded;
    default:
      return YamlNode::Style::Plain;
  }
}

Place placeOf(yaml_mark_t const& mark) {
  return {mark.line + 1, mark.column + 1};
}

/// A word in front of a node that YAML takes for an anchor or a tag.
struct Word {
  YamlNode const* node;
  SourceRange range;
  std::string text;
  bool isUsed = false;  // an anchor that an alias refers to
};

/// An error that ended a reading.
struct Error {
  Code code = Code::YamlSyntax;
  SourceRange range;
  std::string message;
  std::optional<Place> noteAt;
  std::string note;
  std::string anchor;  // that is not known
  YamlFailure failure;
  bool isConflict = false;  // a line of a merge
};

class Builder {
 public:
  Builder(SourceText const& source, YamlDocument::Limits const& limits, std::deque<YamlNode>& nodes)
      : source_(source), limits_(limits), nodes_(nodes) {}

  [[nodiscard]] std::optional<Error>& error() noexcept { return error_; }
  [[nodiscard]] std::vector<Word>& words() noexcept { return words_; }

  /// Reads `text`, which has the lines and columns of the source. On an error the root is null, except for a second
  /// document, before which everything was read.
  YamlNode* build(std::string const& text) {
    Parser parser(text);
    for (;;) {
      Event event;
      if (!parser.next(event.get())) return syntaxError(parser.state());
      switch (event->type) {
        case YAML_STREAM_END_EVENT:
          return root_;
        case YAML_DOCUMENT_START_EVENT:
          if (root_ != nullptr) {
            fail(Code::SeveralDocuments, rangeFrom(placeOf(event->start_mark), 3),
                 "a rule file has one YAML document; remove '---' and everything after it");
            return root_;
          }
          break;
        case YAML_SCALAR_EVENT:
          if (!scalar(event.get())) return nullptr;
          break;
        case YAML_SEQUENCE_START_EVENT: {
          auto const& start = event->data.sequence_start;
          bool const flow = start.style == YAML_FLOW_SEQUENCE_STYLE;
          if (!open(event.get(), YamlNode::Kind::Sequence, start.anchor, start.tag, flow)) return nullptr;
          break;
        }
        case YAML_MAPPING_START_EVENT: {
          auto const& start = event->data.mapping_start;
          bool const flow = start.style == YAML_FLOW_MAPPING_STYLE;
          if (!open(event.get(), YamlNode::Kind::Mapping, start.anchor, start.tag, flow)) return nullptr;
          break;
        }
        case YAML_SEQUENCE_END_EVENT:
        case YAML_MAPPING_END_EVENT:
          if (!close(event.get())) return nullptr;
          break;
        case YAML_ALIAS_EVENT:
          if (!alias(event.get())) return nullptr;
          break;
        default:
          break;
      }
    }
  }

 private:
  YamlNode* fail(Code code, SourceRange const& range, std::string message) {
    error_ = Error{code, range, std::move(message), {}, {}, {}, {range.begin.line, 0, 0}};
    return nullptr;
  }

  YamlNode* syntaxError(yaml_parser_t const& parser) {
    std::string const problem = parser.problem != nullptr ? parser.problem : "cannot be read";
    if (parser.error == YAML_READER_ERROR) {
      return fail(Code::YamlEncoding, rangeFrom(source_.placeOf(parser.problem_offset), 1),
                  problem + "; a rule file must be text in UTF-8 without control characters");
    }
    YamlProblem reported{problem, placeOf(parser.problem_mark), {}, {}};
    if (parser.context != nullptr) {
      reported.context = parser.context;
      reported.contextAt = placeOf(parser.context_mark);
    }
    // Where the reading stopped can be a line below the mistake.
    Place const stopped = reported.at;
    auto const advice = adviceFor(source_, reported);
    fail(Code::YamlSyntax, {advice.at, advice.at}, advice.message);
    error_->failure = {advice.line != 0 ? advice.line : stopped.line, 0, 0};
    error_->isConflict = advice.isConflict;
    if (lastQuote_ && lastQuote_->begin.line < stopped.line && lastQuote_->end.line == stopped.line) {
      error_->failure.quoteLine = lastQuote_->begin.line;
      error_->noteAt = lastQuote_->begin;
      error_->note = "the text in quotes that ends in this line begins here";
      return nullptr;
    }
    if (parser.context == nullptr || reported.contextAt.line == stopped.line) return nullptr;
    if (advice.needsContext) {
      error_->noteAt = reported.contextAt;
      error_->note = std::string(reported.context) + " that begins here";
    }
    if (reported.context.starts_with("while parsing a flow") || reported.context == "while scanning a quoted scalar") {
      error_->failure.openLine = reported.contextAt.line;
    }
    return nullptr;
  }

  YamlNode* make(yaml_event_t const& event, YamlNode::Kind kind) {
    if (nodes_.size() >= limits_.nodes) {
      return fail(
          Code::LimitExceeded, rangeFrom(placeOf(event.start_mark), 1),
          "the file has more than " + std::to_string(limits_.nodes) + " YAML nodes; divide it into several files");
    }
    auto& node = nodes_.emplace_back();
    node.kind = kind;
    node.line = static_cast<std::uint32_t>(event.start_mark.line + 1);
    node.column = static_cast<std::uint32_t>(event.start_mark.column + 1);
    setEnd(node, event.end_mark);
    return &node;
  }

  void setEnd(YamlNode& node, yaml_mark_t const& mark) {
    node.endLine = static_cast<std::uint32_t>(mark.line + 1);
    node.endColumn = static_cast<std::uint32_t>(mark.column + 1);
    lastEnd_ = mark;
  }

  void remember(yaml_char_t const* anchor, YamlNode* node, std::size_t word = noWord) {
    if (anchor != nullptr) anchors_[reinterpret_cast<char const*>(anchor)] = {node, word};
  }

  /// Keeps the anchor and the tag in the line in which a node begins, as they are written.
  void keepWords(yaml_mark_t const& start, YamlNode const& node) {
    std::string_view const text = source_.text();
    std::size_t at = source_.offsetOf(placeOf(start));
    while (at < text.size() && (text[at] == '&' || text[at] == '!')) {
      std::size_t const end = std::min(text.find_first_of(" \t\n\r,[]{}", at), text.size());
      auto const word = text.substr(at, end - at);
      words_.push_back({&node, rangeFrom(source_.placeOf(at), characterCount(word)), std::string(word)});
      at = text.find_first_not_of(" \t", end);
    }
  }

  /// Adds a finished node to the open collection. False when the file is beyond its limit.
  bool place(YamlNode* node, Place at) {
    if (open_.empty()) {
      root_ = node;
      return true;
    }
    auto& parent = *open_.back();
    parent.children.push_back(node);
    parent.weight += node->weight;
    if (parent.weight <= limits_.nodes) return true;
    fail(Code::LimitExceeded, rangeFrom(at, 1),
         "with each alias counted as a copy the file has more than " + std::to_string(limits_.nodes) + " YAML nodes");
    return false;
  }

  /// A tag says nothing here. One that looks like a part of an expression is a slip, and so is one without a value.
  bool refuseTag(yaml_event_t const& event) {
    auto const& scalar = event.data.scalar;
    if (scalar.tag == nullptr || scalar.tag[0] != '!') return false;
    std::string_view const name = reinterpret_cast<char const*>(scalar.tag);
    bool const isEmpty = scalar.length == 0 && scalar.style == YAML_PLAIN_SCALAR_STYLE;
    if (!isEmpty && name.find_first_of("('\"{$=") == std::string_view::npos) return false;
    fail(Code::YamlSyntax, rangeFrom(placeOf(event.start_mark), characterCount(name)), adviceForTag());
    return true;
  }

  bool scalar(yaml_event_t const& event) {
    if (refuseTag(event)) return false;
    auto* node = make(event, YamlNode::Kind::Scalar);
    if (node == nullptr) return false;
    auto const& scalar = event.data.scalar;
    node->value.assign(reinterpret_cast<char const*>(scalar.value), scalar.length);
    node->style = styleOf(scalar.style);
    node->hasProperties = scalar.anchor != nullptr || scalar.tag != nullptr;
    if (node->style == YamlNode::Style::SingleQuoted || node->style == YamlNode::Style::DoubleQuoted) {
      lastQuote_ = node->range();
    }
    // The event does not have a tag '!' alone.
    bool const isPlain = node->style == YamlNode::Style::Plain;
    bool const mayHaveTag = isPlain && event.end_mark.index - event.start_mark.index != scalar.length;
    std::size_t anchor = noWord;
    if (node->hasProperties || mayHaveTag) {
      std::size_t const known = words_.size();
      keepWords(event.start_mark, *node);
      for (std::size_t i = known; i < words_.size(); ++i) {
        if (words_[i].text.front() == '&') anchor = i;
        if (!isPlain || words_[i].text != "!") continue;
        fail(Code::YamlSyntax, words_[i].range, adviceForTag());
        return false;
      }
    }
    remember(scalar.anchor, node, anchor);
    return place(node, node->place());
  }

  bool open(yaml_event_t const& event, YamlNode::Kind kind, yaml_char_t const* anchor, yaml_char_t const* tag,
            bool flow) {
    if (open_.size() >= limits_.depth) {
      fail(Code::LimitExceeded, rangeFrom(placeOf(event.start_mark), 1),
           "this is nested deeper than " + std::to_string(limits_.depth) + " levels, which no rule file needs");
      return false;
    }
    auto* node = make(event, kind);
    if (node == nullptr) return false;
    node->flow = flow;
    remember(anchor, node);
    if (tag != nullptr) keepWords(event.start_mark, *node);
    open_.push_back(node);
    return true;
  }

  bool close(yaml_event_t const& event) {
    auto* node = open_.back();
    open_.pop_back();
    // The library closes a collection in block style where the next token begins, which may be many lines below.
    setEnd(*node, node->flow ? event.end_mark : lastEnd_);
    return place(node, node->place());
  }

  bool alias(yaml_event_t const& event) {
    auto const* const name = reinterpret_cast<char const*>(event.data.alias.anchor);
    auto const found = anchors_.find(name);
    std::size_t const length = characterCount(name) + 1;
    Place const at = placeOf(event.start_mark);
    lastEnd_ = event.end_mark;
    if (found == anchors_.end()) {
      fail(Code::UnknownAnchor, rangeFrom(at, length),
           "there is no anchor '&" + std::string(name) + "' before this" +
               (isMerged(event) ? "; put entries that objects share into Templates, and take them by Use"
                                : "; put quotes around a value that begins with '*'"));
      error_->anchor = name;
      return false;
    }
    if (std::find(open_.begin(), open_.end(), found->second.node) != open_.end()) {
      fail(Code::RecursiveAlias, rangeFrom(at, length), "the alias is part of the value that it refers to");
      return false;
    }
    if (found->second.word != noWord) words_[found->second.word].isUsed = true;
    return place(found->second.node, at);
  }

  /// Whether an alias is the value of a key '<<'.
  [[nodiscard]] bool isMerged(yaml_event_t const& event) const {
    auto const before = source_.line(event.start_mark.line + 1).substr(0, event.start_mark.column);
    return StringUtilities::trimmed(before).ends_with("<<:");
  }

  SourceText const& source_;
  YamlDocument::Limits limits_;
  std::deque<YamlNode>& nodes_;
  std::optional<Error> error_;
  std::optional<SourceRange> lastQuote_;  // the text in quotes that was read last
  std::vector<YamlNode*> open_;
  static constexpr std::size_t noWord = static_cast<std::size_t>(-1);
  struct Anchor {
    YamlNode* node;
    std::size_t word;  // index in `words_`; only a scalar has one
  };
  std::map<std::string, Anchor, std::less<>> anchors_;
  std::vector<Word> words_;
  yaml_mark_t lastEnd_{};  // of the item that was read last
  YamlNode* root_ = nullptr;
};

void report(Error const& error, SourceText const& source, DiagnosticList& diagnostics) {
  auto& diagnostic = diagnostics.add(error.code, source, error.range, error.message);
  if (error.noteAt) DiagnosticList::note(diagnostic, source, {*error.noteAt, *error.noteAt}, error.note);
}

/// Whether a tag is one of the standard types, which change nothing: every value is taken as its text.
bool isStandardTag(std::string_view word) {
  return word.starts_with("!!") || word.starts_with("!<");
}

void warnOf(Word const& word, SourceText const& source, DiagnosticList& diagnostics) {
  auto const& node = *word.node;
  bool const isPlain = node.kind == YamlNode::Kind::Scalar && node.style == YamlNode::Style::Plain;
  // An anchor of anything else was meant as one, whether something uses it or not.
  if (word.text.front() == '&' ? word.isUsed || !isPlain : isStandardTag(word.text)) return;
  auto const text = isPlain ? std::optional<std::string_view>(node.value) : std::nullopt;
  auto& warning = diagnostics.add(Code::LostWord, source, word.range, adviceForWord(word.text, text));
  bool const isOnly = word.range.begin.line == node.line && word.range.begin.column == node.column;
  auto const quoted = isPlain && isOnly && node.line == node.endLine
                          ? inYamlQuotes(word.text + (node.value.empty() ? "" : " ") + node.value)
                          : std::string();
  if (!quoted.empty()) DiagnosticList::fix(warning, source, node.range(), quoted, "Put quotes around the whole text");
}

}  // namespace

struct YamlDocument::Attempt {
  YamlNode* root = nullptr;
  std::optional<Error> error;
  std::deque<YamlNode> nodes;
  std::vector<Word> words;

  void read(SourceText const& source, std::string const& text, Limits const& limits) {
    nodes.clear();
    Builder builder(source, limits, nodes);
    root = builder.build(text);
    error = std::move(builder.error());
    words = std::move(builder.words());
  }
};

YamlDocument::YamlDocument(SourceText const& source, Limits const& limits, DiagnosticList& diagnostics) {
  Attempt attempt;
  attempt.read(source, source.text(), limits);
  std::size_t errors = 0;
  bool hasConflict = false;
  while (attempt.error) {
    incomplete_ = true;
    if (!recovery_) recovery_ = std::make_unique<YamlRecovery>(source);
    // Without the lines before it, a map seems to begin later.
    if (errors > 0 && attempt.error->note.starts_with("while parsing a block")) attempt.error->noteAt.reset();
    // The anchor may be in a part that was left out.
    bool const isKnown = !attempt.error->anchor.empty() && recovery_->hadAnchor(attempt.error->anchor);
    bool const isSame =
        isSameIndentation(source, attempt.error->range.begin) || (attempt.error->isConflict && hasConflict);
    hasConflict |= attempt.error->isConflict;
    if (!isKnown && !isSame) report(*attempt.error, source, diagnostics);
    bool const isLast = attempt.error->code == Code::SeveralDocuments || attempt.error->code == Code::LimitExceeded;
    if (isLast || ++errors == mostErrors || !recover(source, limits, attempt)) break;
  }
  // The alias of an anchor may be in a part that was left out.
  for (auto const& word : attempt.words) {
    if (!incomplete_ || word.text.front() == '!') warnOf(word, source, diagnostics);
  }
  nodes_ = std::move(attempt.nodes);
  root_ = attempt.root;
}

/// Lines that are indented alike have one mistake. True when the error is at the beginning of a line, the one before it
/// was so further up, these lines have the same indentation, and everything between them was left out.
bool YamlDocument::isSameIndentation(SourceText const& source, Place const& at) {
  std::size_t const indent = source.line(at.line).find_first_not_of(' ');
  bool const isAtBegin = at.column == indent + 1;
  bool const isSame =
      isAtBegin && wrongLine_ != 0 && wrongIndent_ == indent && recovery_->isLeftOut(wrongLine_, at.line);
  wrongLine_ = isAtBegin ? at.line : 0;
  wrongIndent_ = indent;
  return isSame;
}

/// Leaves out lines so that the reading comes beyond them. False when that does not succeed.
bool YamlDocument::recover(SourceText const& source, Limits const& limits, Attempt& attempt) {
  auto const candidates = recovery_->candidates(attempt.error->failure);
  std::deque<YamlRecovery::Lines> waiting(candidates.begin(), candidates.end());
  std::set<std::size_t> tried;
  std::size_t const mostBytes = std::max(4 * source.text().size(), mostReadings * freeLength / 4);
  while (!waiting.empty()) {
    auto const lines = waiting.front();
    waiting.pop_front();
    if (++readings_ > mostReadings || (readBytes_ += source.text().size()) > mostBytes) return false;
    Attempt next;
    next.read(source, recovery_->textWithout(lines), limits);
    if (!next.error || next.error->failure.first() > lines.last) {
      recovery_->leaveOut(lines);
      attempt = std::move(next);
      return true;
    }
    // A construct without an end may begin before the lines that were tried.
    std::size_t const first = next.error->failure.first();
    if (first < lines.first && tried.insert(first).second) waiting.push_front(recovery_->entryAt(first));
  }
  return false;
}

}  // namespace tarn::rules

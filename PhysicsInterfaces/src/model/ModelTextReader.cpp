// Reads model text: splits it into lines and keeps the open blocks. All views point into the one buffer of a file. The
// path of an item is checked only if it differs from that of the item before. So a line takes some tens of nanoseconds.
// The grammar of a line is in ModelTextLine.
//
// Reading continues after a fault. It must then know which opening line belongs to which `END`. `BlockMatching` finds
// that out in a second pass over the text. The pass is made at the first fault that needs it, and never for good text.
#include "model/ModelTextReader.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <vector>

#include <tarn/TDFChangeFile.h>

#include "model/ModelTextLine.h"
#include "paths/PathSyntax.h"

namespace tarn {

namespace {

using Kind = ModelTextLine::Kind;
using path_syntax::Fault;
using path_syntax::shown;

// The lines of a text, numbered from 1.
class Lines {
 public:
  explicit Lines(std::string_view text) noexcept : rest_(text) {}

  [[nodiscard]] bool next(std::string_view& line) noexcept {
    if (rest_.empty()) return false;
    std::size_t const end = rest_.find('\n');
    line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    ++number_;
    return true;
  }

  [[nodiscard]] std::size_t number() const noexcept { return number_; }

 private:
  std::string_view rest_;
  std::size_t number_ = 0;
};

// Whether the line opens a block, or is a malformed line that seems to be meant to.
bool seemsToOpen(ModelTextLine const& line) noexcept {
  return line.kind == Kind::Opening || (line.kind == Kind::Parameter && line.label.type.data());
}

// Finds which `END` belongs to which opening line: the innermost open one of its type and name. Blocks that were opened
// within it and not closed are skipped.
class BlockMatching {
 public:
  explicit BlockMatching(std::string_view text) {
    struct Open {
      std::string label;
      std::size_t line;
    };
    std::vector<Open> open;
    std::unordered_map<std::string, std::size_t> openOfLabel;
    Lines lines(text);
    for (std::string_view raw; lines.next(raw);) {
      partner_.resize(lines.number() + 1);
      ModelTextLine const line = ModelTextLine::parse(raw);
      if (seemsToOpen(line)) {
        open.push_back({line.label.text(), lines.number()});
        ++openOfLabel[open.back().label];
      } else if (line.kind == Kind::End) {
        std::string const label = line.label.text();
        auto const known = openOfLabel.find(label);
        if (known == openOfLabel.end() || known->second == 0) continue;
        while (open.back().label != label) {
          --openOfLabel[open.back().label];
          open.pop_back();
        }
        partner_[lines.number()] = open.back().line;
        partner_[open.back().line] = lines.number();
        --known->second;
        open.pop_back();
      }
    }
  }

  /// For an `END`, the line that opened its block. For an opening line, the line that closes it. 0 if there is none.
  [[nodiscard]] std::size_t partner(std::size_t line) const noexcept { return partner_[line]; }

 private:
  std::vector<std::size_t> partner_;
};

class Reader {
 public:
  Reader(std::string_view text, ModelTextSink& sink)
      : text_(text), holdsNul_(text.find('\0') != std::string_view::npos), sink_(sink) {}

  void run() {
    Lines lines(text_);
    while (lines.next(line_)) {
      number_ = lines.number();
      readLine();
    }
    for (Block const& block : open_) {
      if (block.skipped) continue;
      line_ = block.line;
      number_ = block.number;
      tell("the block is left open; close it with \"END # " + block.label.text() + '"', block.indent);
    }
  }

 private:
  struct Block {
    BlockLabel label;
    std::string_view line;  // the opening line, its number and where its text begins
    std::size_t number;
    std::size_t indent;
    std::size_t outerPathSize;
    bool skipped;                 // its content is skipped
    bool holdsSomething = false;  // it contains a parameter or a block
  };

  void readLine() {
    ModelTextLine line = ModelTextLine::parse(line_);
    if (holdsNul_) {
      if (std::size_t const nul = line_.find('\0'); nul != std::string_view::npos) {
        line.fault = {"the line holds a NUL byte; model text is plain text", nul};
      }
    }
    switch (line.kind) {
      case Kind::Blank:
      case Kind::Other:
        if (line.fault) tell(line.fault.reason, line.fault.offset);
        break;
      case Kind::Item:
        readItem(line);
        break;
      case Kind::Parameter:
        readParameter(line);
        break;
      case Kind::Opening:
        readOpening(line);
        break;
      case Kind::End:
        readEnd(line);
        break;
    }
  }

  void readItem(ModelTextLine const& line) {
    if (line.fault) {
      tell(line.fault.reason, line.fault.offset);
    } else if (line.path.empty() || line.path == lastPath_) {
      add(line.path, line, true);
    } else if (Fault const fault = findPathFault(line.path)) {
      tell(fault.reason, static_cast<std::size_t>(line.path.data() - line_.data()) + fault.offset);
    } else {
      lastPath_ = line.path;
      add(line.path, line, true);
    }
  }

  void readParameter(ModelTextLine const& line) {
    if (line.fault) {
      tell(line.fault.reason, line.fault.offset);
      if (seemsToOpen(line)) openFaulty(line);
    } else if (open_.empty()) {
      add({}, line, false);
    } else if (Block& block = open_.back(); !block.skipped) {
      block.holdsSomething = true;
      add(path_, line, false);
    }
  }

  void readOpening(ModelTextLine const& line) {
    Fault fault = line.fault;
    if (!fault && open_.size() >= TDFChangeFile::maxComponents) fault = {tooManyComponents, line.indent};
    if (fault) {
      tell(fault.reason, fault.offset);
      openFaulty(line);
      return;
    }
    bool const skipped = !open_.empty() && open_.back().skipped;
    if (!open_.empty()) open_.back().holdsSomething = true;
    push(line, skipped);
    if (skipped) return;
    path_ += '/';
    path_ += line.label.type;
    if (!line.label.name.empty()) {
      path_ += ':';
      path_ += line.label.name;
    }
    std::string_view const label = line_.substr(line.indent);
    sink_.onOpening(path_, label, place());
  }

  // A malformed opening line. If its block is closed later, the lines between are skipped. If not, the line was not
  // meant to open a block.
  void openFaulty(ModelTextLine const& line) {
    if (matching().partner(number_) != 0) push(line, true);
  }

  void readEnd(ModelTextLine const& line) {
    bool const matches = !open_.empty() && open_.back().label == line.label;
    if (line.fault) {
      tell(line.fault.reason, line.fault.offset);
    } else if (open_.empty()) {
      tell("no block is open here that \"END\" could close", line.indent);
    } else if (!matches) {
      Block const& block = open_.back();
      tell(shown("END # " + line.label.text()) + " closes the wrong block: the innermost open one, of line " +
               std::to_string(block.number) + ", is closed with " + shown("END # " + block.label.text()),
           line.indent);
    }
    if (matches) {
      Block const& block = open_.back();
      if (!block.skipped && !block.holdsSomething) sink_.onItem(path_, {}, {}, place(), false);
      if (!block.skipped) sink_.onClosing(place());
      pop();
    } else if (!open_.empty()) {
      closeOutOfTurn(line);
    }
  }

  // Lenient mode only: an `END` that does not belong to the innermost block.
  void closeOutOfTurn(ModelTextLine const& line) {
    std::size_t const opened = matching().partner(number_);
    auto const target = std::lower_bound(open_.begin(), open_.end(), opened,
                                         [](Block const& block, std::size_t number) { return block.number < number; });
    if (opened != 0 && target != open_.end() && target->number == opened) {
      std::size_t const stay = static_cast<std::size_t>(target - open_.begin());
      while (open_.size() > stay) pop();
    } else if (open_.back().indent == line.indent && matching().partner(open_.back().number) == 0) {
      pop();
    }
  }

  void push(ModelTextLine const& line, bool skipped) {
    open_.push_back({line.label, line_, number_, line.indent, path_.size(), skipped});
  }

  void pop() {
    path_.resize(open_.back().outerPathSize);
    open_.pop_back();
  }

  void add(std::string_view path, ModelTextLine const& line, bool isPathInLine) {
    sink_.onItem(path, line.name, line.value, place(), isPathInLine);
  }

  [[nodiscard]] ModelTextPlace place() const noexcept { return {line_, number_}; }

  [[nodiscard]] static Fault findPathFault(std::string_view path) noexcept {
    if (Fault const fault = path_syntax::findFault(path)) return fault;
    std::size_t components = 0;
    for (std::size_t slash = 0; slash != std::string_view::npos; slash = path.find('/', slash + 1)) {
      if (++components > TDFChangeFile::maxComponents) return {tooManyComponents, slash};
    }
    return {};
  }

  void tell(std::string const& reason, std::size_t offset) const {
    sink_.onFault(reason, place().columnOf(line_.substr(offset)), number_);
  }

  [[nodiscard]] BlockMatching const& matching() {
    if (!matching_) matching_.emplace(text_);
    return *matching_;
  }

  static constexpr char const* tooManyComponents = "a path has at most 1,000 components";

  std::string_view const text_;
  bool const holdsNul_;
  ModelTextSink& sink_;

  std::string_view line_;
  std::size_t number_ = 0;
  std::vector<Block> open_;
  std::string path_;           // of the innermost open block that is not skipped
  std::string_view lastPath_;  // the path of the previous item that has one in its line
  std::optional<BlockMatching> matching_;
};

}  // namespace

std::size_t ModelTextPlace::columnOf(std::string_view part) const noexcept {
  std::size_t column = 1;
  for (char const c : line.substr(0, static_cast<std::size_t>(part.data() - line.data()))) {
    column += (static_cast<unsigned char>(c) & 0xC0u) == 0x80u ? 0 : 1;
  }
  return column;
}

void ModelTextSink::onOpening(std::string_view, std::string_view, ModelTextPlace const&) {}

void ModelTextSink::onClosing(ModelTextPlace const&) {}

void readModelText(std::string_view text, ModelTextSink& sink) {
  Reader(text, sink).run();
}

}  // namespace tarn

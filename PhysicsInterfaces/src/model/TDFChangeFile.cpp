// Reads model text: splits it into lines, keeps the open blocks, and collects the items. All views point into the one
// buffer of a file. The path of an item is parsed only if it differs from that of the item before. So a line takes a
// few hundred nanoseconds. The grammar of a line is in ModelTextLine.
//
// Lenient reading continues after a fault. It must then know which opening line belongs to which `END`. `BlockMatching`
// finds that out in a second pass over the text. The pass is made at the first fault that needs it, and never for good
// text.
#include <tarn/TDFChangeFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ios>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <utility>

#include <tarn/Error.h>

#include "model/ModelTextLine.h"
#include "paths/PathSyntax.h"

namespace tarn {

namespace {

using Kind = ModelTextLine::Kind;
using path_syntax::Fault;
using path_syntax::shown;

// ---------------------------------------------------------------------------------------------------------- the bytes

[[noreturn]] void failToRead(char const* what, std::string const& name, int error) {
  throw FileError("TDFChangeFile", "TDFChangeFile",
                  std::string("cannot ") + what + ' ' + name + ": " + std::generic_category().message(error));
}

// All data that `take(buffer, size)` returns, until it returns less than `size`.
template <typename Take>
std::string readToEnd(Take take) {
  std::string text;
  std::size_t held = 0;
  for (;;) {
    text.resize(std::max<std::size_t>(std::size_t{1} << 16, held * 2));
    std::size_t const wanted = text.size() - held;
    std::size_t const got = take(text.data() + held, wanted);
    held += got;
    if (got < wanted) break;
  }
  text.resize(held);
  return text;
}

std::string readStandardInput() {
  bool failed = false;
  errno = 0;
  std::string text;
  try {
    text = readToEnd([](char* buffer, std::size_t size) {
      return static_cast<std::size_t>(std::cin.rdbuf()->sgetn(buffer, static_cast<std::streamsize>(size)));
    });
    failed = std::ferror(stdin) != 0;
  } catch (std::ios_base::failure const&) {  // a stream that is not synchronised with C
    failed = true;
  }
  if (failed) failToRead("read", "the standard input", errno ? errno : EIO);
  return text;
}

std::string readFile(std::string const& name) {
  struct Close {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
  };
  errno = 0;
  std::unique_ptr<std::FILE, Close> const file(std::fopen(name.c_str(), "rb"));
  if (!file) failToRead("open", shown(name), errno ? errno : ENOENT);
  std::string text =
      readToEnd([&file](char* buffer, std::size_t size) { return std::fread(buffer, 1, size, file.get()); });
  if (std::ferror(file.get())) failToRead("read", shown(name), errno ? errno : EIO);
  return text;
}

// ---------------------------------------------------------------------------------------------------------- the lines

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

// ---------------------------------------------------------------------------------------------------------- the items

// Reads one text and appends its items.
class Reader {
 public:
  Reader(std::string source, std::string_view text, TDFChangeFile::InputMode mode, std::vector<TDFChange>& items)
      : source_(std::move(source)),
        text_(text),
        holdsNul_(text.find('\0') != std::string_view::npos),
        strict_(mode == TDFChangeFile::Strict),
        items_(items) {}

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
    bool skipped;                      // its content is skipped
    bool holdsSomething = false;       // it contains a parameter or a block
    std::optional<TDFPath> path = {};  // parsed when the first item asks for it
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
    } else if (line.path.empty()) {
      add(TDFPath(), line);
    } else if (line.path == lastPathText_) {
      add(lastPath_, line);
    } else if (Fault const fault = findPathFault(line.path)) {
      tell(fault.reason, static_cast<std::size_t>(line.path.data() - line_.data()) + fault.offset);
    } else {
      lastPath_ = TDFPath(std::string(line.path));
      lastPathText_ = line.path;
      add(lastPath_, line);
    }
  }

  void readParameter(ModelTextLine const& line) {
    if (line.fault) {
      tell(line.fault.reason, line.fault.offset);
      if (seemsToOpen(line)) openFaulty(line);
    } else if (open_.empty()) {
      add(TDFPath(), line);
    } else if (Block& block = open_.back(); !block.skipped) {
      block.holdsSomething = true;
      add(pathOf(block), line);
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
      if (!block.skipped && !block.holdsSomething)
        items_.emplace_back(pathOf(open_.back()), std::string(), std::string());
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

  // `block` is the innermost block, so `path_` is its path.
  TDFPath const& pathOf(Block& block) {
    if (!block.path) block.path.emplace(path_);
    return *block.path;
  }

  void add(TDFPath const& path, ModelTextLine const& line) {
    items_.emplace_back(path, std::string(line.name), std::string(line.value));
  }

  [[nodiscard]] static Fault findPathFault(std::string_view path) noexcept {
    if (Fault const fault = path_syntax::findFault(path)) return fault;
    std::size_t components = 0;
    for (std::size_t slash = 0; slash != std::string_view::npos; slash = path.find('/', slash + 1)) {
      if (++components > TDFChangeFile::maxComponents) return {tooManyComponents, slash};
    }
    return {};
  }

  // Strict mode stops here.
  void tell(std::string const& reason, std::size_t offset) const {
    std::size_t column = 1;
    for (char const c : line_.substr(0, offset)) column += (static_cast<unsigned char>(c) & 0xC0u) == 0x80u ? 0 : 1;
    std::string const text = source_ + ':' + std::to_string(number_) + ':' + std::to_string(column) + ": " + reason;
    if (strict_) throw ParseError("TDFChangeFile", "TDFChangeFile", text);
    std::cerr << text << '\n';
  }

  [[nodiscard]] BlockMatching const& matching() {
    if (!matching_) matching_.emplace(text_);
    return *matching_;
  }

  static constexpr char const* tooManyComponents = "a path has at most 1,000 components";

  std::string const source_;
  std::string_view const text_;
  bool const holdsNul_;
  bool const strict_;

  std::string_view line_;
  std::size_t number_ = 0;
  std::vector<Block> open_;
  std::string path_;               // of the innermost open block that is not skipped
  std::string_view lastPathText_;  // the path text of the previous item, and its parsed path
  TDFPath lastPath_;
  std::optional<BlockMatching> matching_;
  std::vector<TDFChange>& items_;
};

void readText(std::string const& source, std::string text, TDFChangeFile::InputMode mode,
              std::vector<TDFChange>& items) {
  if (text.find('\r') != std::string::npos) std::erase(text, '\r');
  std::string_view content = text;
  if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
  Reader(source, content, mode, items).run();
}

}  // namespace

TDFChangeFile::TDFChangeFile(std::vector<std::string> const& files, std::vector<std::string> const& extra,
                             InputMode mode) {
  for (std::string const& name : files) {
    if (name == "-") {
      readText("<stdin>", readStandardInput(), mode, items_);
    } else {
      readText(name, readFile(name), mode, items_);
    }
  }
  for (std::size_t i = 0; i < extra.size(); ++i) {
    readText("<text " + std::to_string(i + 1) + '>', extra[i], mode, items_);
  }
}

ModelState TDFChangeFile::toModelState() const {
  ModelState state;
  std::string const* path = nullptr;
  ObjectState* object = nullptr;
  for (TDFChange const& item : items_) {
    // Most items of one object are adjacent.
    if (!path || *path != item.getFullPath()) {
      path = &item.getFullPath();
      object = &state[*path];
    }
    if (!item.name.empty()) object->emplace(item.name, item.value);
  }
  return state;
}

}  // namespace tarn

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "editing/RuleFacts.h"
#include "editing/TextBuffer.h"

namespace tarn::workbench {

/// A part of a rule file that can be read by itself, with the keys of the maps that it is in.
struct FilePart {
  /// A line above that has nothing but a key of the context.
  struct Header {
    Span line;
    std::size_t indent = 0;
  };
  Span span;
  std::vector<std::string> context;
  std::vector<Header> headers = {};  // of the keys in `context`
};

/// Divides a rule file into parts, so that only the part that was edited must be read again. A part is some entries of
/// one map. A file in which that cannot be seen from the indentation is one part, and so is a small one.
///
/// The borders of a part depend on the first lines of entries only. So an edit inside of an entry changes one part.
[[nodiscard]] std::vector<FilePart> divideRuleFile(std::string_view text);

/// The key at the beginning of a line, without indentation and quotes; nothing if the line has none. `valueBegin` is
/// the byte after the colon.
struct LineKey {
  std::string key;
  std::size_t indent = 0;
  std::size_t valueBegin = 0;
  Span span;  // the key without its quotes
};
[[nodiscard]] bool readLineKey(std::string_view line, LineKey& key);

/// A part of a file, and what was found in it. The facts are shared with the next state of the file if the part does
/// not change.
struct ReadPart {
  FilePart part;
  std::uint64_t hash = 0;
  std::shared_ptr<Facts const> facts;
  /// The parts of its expressions that get colours; spans count from the beginning of the part. Null until asked for.
  struct Coloured {
    Span span;
    EditorTokenKind kind = EditorTokenKind::Text;
  };
  mutable std::shared_ptr<std::vector<Coloured> const> coloured = nullptr;
};

/// The parts of a text. The facts of parts that are also in `former` are taken from there.
[[nodiscard]] std::vector<ReadPart> readParts(std::string_view text, bool isTest, std::vector<ReadPart> const& former);

}  // namespace tarn::workbench

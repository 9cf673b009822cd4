#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/ModelTextReader.h"

namespace tarn {

/// Which line of a model text says what: the raw lines, the blocks, and the objects with the lines that mention them.
/// Lines, blocks and objects are known by their index. All views point into the text.
class ModelTextOutline final : private ModelTextSink {
 public:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  enum class Kind { Other, Parameter, EmptyObject, Opening, Closing };

  struct Line {
    /// With its line end.
    std::string_view raw;
    Kind kind = Kind::Other;
    /// The innermost block that the line is in. An opening or closing line is in its own block.
    std::size_t block = none;
    /// Parameter, EmptyObject: the object, and whether its path is in the line.
    std::size_t object = none;
    bool isPathInLine = false;
    /// Parameter. These point into a copy of the text that lives as long as the outline.
    std::string_view name;
    std::string_view value;
    /// Whether it is the first line for the parameter. An object that is spelt in two ways is two objects here.
    bool isFirst = false;
    bool isSpeltOtherwise = false;
  };
  struct Block {
    std::size_t object = none;
    std::size_t opening = none;
    std::size_t closing = none;
    /// The block around it.
    std::size_t outer = none;
  };
  struct Object {
    /// In canonical form, see `canonicalPath`.
    std::string path;
    std::size_t parent = none;
    std::vector<std::size_t> blocks;
    /// The first line of each parameter.
    std::map<std::string_view, std::size_t> params;
    /// Whether a line of its own says that the object exists.
    bool hasOwnLine = false;
    /// The first and the last line with the path of this object, or of one below it, in the line.
    std::size_t firstInLine = none;
    std::size_t lastInLine = none;
  };

  /// Throws a `ParseError` if `text` is malformed. `text` must outlive the outline.
  explicit ModelTextOutline(std::string_view text);
  ModelTextOutline(ModelTextOutline const&) = delete;
  ModelTextOutline& operator=(ModelTextOutline const&) = delete;

  /// The byte order mark of the text, or nothing. It is not part of the first line.
  [[nodiscard]] std::string_view mark() const noexcept { return mark_; }
  [[nodiscard]] std::vector<Line> const& lines() const noexcept { return lines_; }
  [[nodiscard]] std::vector<Block> const& blocks() const noexcept { return blocks_; }
  /// The first one is the root. A parent comes before its children.
  [[nodiscard]] std::vector<Object> const& objects() const noexcept { return objects_; }
  /// The object that the text mentions under a canonical path, possibly only as a part of longer ones, or `none`.
  [[nodiscard]] std::size_t find(std::string_view path) const;

  /// A path in which names that equal their types are left out.
  [[nodiscard]] static std::string canonicalPath(std::string_view path);

 private:
  void splitLines(std::string_view text);
  std::size_t mention(std::string_view path);
  void onItem(std::string_view path, std::string_view name, std::string_view value, ModelTextPlace const& place,
              bool isPathInLine) override;
  void onOpening(std::string_view path, std::string_view label, ModelTextPlace const& place) override;
  void onClosing(ModelTextPlace const& place) override;
  [[noreturn]] void onFault(std::string const& reason, std::size_t column, std::size_t line) override;

  std::string cleaned_;
  std::string_view mark_;
  std::vector<Line> lines_;
  std::vector<Block> blocks_;
  std::vector<Object> objects_;
  std::map<std::string, std::size_t, std::less<>> byPath_;

  /// The parameters of objects that are spelt in more ways than one.
  std::set<std::pair<std::string, std::string_view>> otherwiseSpelt_;

  std::size_t openBlock_ = none;
  // The last item: most items are of the same object as the one before.
  std::string lastPath_;
  std::size_t lastObject_ = none;
};

}  // namespace tarn

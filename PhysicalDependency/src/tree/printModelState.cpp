// A state as nested blocks. The state is a flat list of paths, so each object's path is compared with the previous one:
// the blocks that both share stay open, the others of the previous path are closed and those of the new one opened.
// TDFChangeFile reads the text back.

#include <tarn/printModelState.h>

#include <ostream>
#include <string>
#include <utility>

#include <tarn/TDFPath.h>

namespace tarn {

namespace {

class BlockPrinter {
 public:
  explicit BlockPrinter(std::ostream& stream) : stream_(stream) { text_ = "\n"; }

  void printObject(std::string const& path, ObjectState const& params) {
    TDFPath current(path);
    auto const common = commonPrefixLength(current);
    closeDownTo(common);
    for (auto i = common; i < current.numComponent(); ++i) open(current, i);
    for (auto const& [name, value] : params) {
      indent();
      text_.append(name).append(" = ").append(value).append("\n");
      passOn();
    }
    previous_ = std::move(current);
  }

  void finish() {
    closeDownTo(0);
    stream_ << text_ << std::flush;
  }

 private:
  [[nodiscard]] unsigned long long commonPrefixLength(TDFPath const& current) const {
    unsigned long long i = 0;
    while (i < previous_.numComponent() && i < current.numComponent() && previous_.getType(i) == current.getType(i) &&
           previous_.getName(i) == current.getName(i)) {
      ++i;
    }
    return i;
  }

  void open(TDFPath const& path, unsigned long long i) {
    indent();
    text_.append(path.getType(i)).append(": ");
    appendName(path, i);
    ++depth_;
  }

  void closeDownTo(unsigned long long common) {
    for (auto i = previous_.numComponent(); i > common; --i) {
      --depth_;
      indent();
      text_.append("END # ").append(previous_.getType(i - 1)).append(":");
      appendName(previous_, i - 1);
    }
  }

  void appendName(TDFPath const& path, unsigned long long i) {
    if (path.getName(i) != path.getType(i)) text_.append(path.getName(i));
    text_.append("\n");
    passOn();
  }

  void indent() { text_.append(2 * depth_, ' '); }

  /// Writes in large pieces, because each write to a stream is expensive.
  void passOn() {
    constexpr std::size_t pieceSize = 1U << 16U;
    if (text_.size() < pieceSize) return;
    stream_ << text_;
    text_.clear();
  }

  std::ostream& stream_;
  std::string text_;
  TDFPath previous_;
  std::size_t depth_ = 0;
};

}  // namespace

void printModelState(ModelState const& state, std::ostream& stream) {
  BlockPrinter printer(stream);
  for (auto const& [path, params] : state) printer.printObject(path, params);
  printer.finish();
}

}  // namespace tarn

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/TextPlace.h>

namespace tarn {

/// The text of one model, kept together with what it says: the state of the model, the malformed lines, the parameters
/// that are given more than once, and where each item is written. `TDFChangeFile` describes the text.
///
///     ModelText const text = ModelText::read("pump.tdf");
///     for (ModelText::Fault const& fault : text.faults()) std::cout << fault.line << ": " << fault.reason << '\n';
///     if (text.faults().empty()) use(text.state());
///
/// Reading does not stop at a malformed line; such a line has no effect of its own, as in the lenient mode of
/// `TDFChangeFile`. A program that must not work with half a model asks `faults` first.
///
/// Reading is linear in the length of the text and keeps no positions. `locate` searches them when they are wanted.
class TARN_EXPORT ModelText {
 public:
  /// A malformed line. Lines and columns count from 1, columns in characters.
  struct Fault {
    std::size_t line = 0;
    std::size_t column = 0;
    std::string reason;
  };

  /// An object, or with `name` one of its parameters.
  struct Item {
    std::string path;
    std::optional<std::string> name;
  };

  /// A place where an item is written. For a parameter: its name, and the value that it is given there. For an object:
  /// its type, where the object is first mentioned, possibly as a part of a longer path.
  struct Occurrence {
    TextPlace place;
    std::string value;
  };

  /// More faults than these are counted and not kept.
  static constexpr std::size_t mostFaults = 1000;
  /// More occurrences than these of one parameter are not listed by `locate`.
  static constexpr std::size_t mostOccurrences = 100;

  /// Reads a file to its end; "-" is the standard input, which messages call "<stdin>". Throws a `FileError` that names
  /// the file if it cannot be opened or read to its end, and `std::bad_alloc` when memory runs out.
  [[nodiscard]] static ModelText read(std::string const& file);
  /// Takes the text of a model that messages call `source`.
  ModelText(std::string source, std::string text);

  /// The name of the text in messages.
  [[nodiscard]] std::string const& source() const noexcept { return *source_; }
  /// The state that the well-formed lines give. If a parameter is given twice, the first value counts. An object
  /// without parameters has an entry with an empty map.
  [[nodiscard]] ModelState const& state() const& noexcept { return state_; }
  [[nodiscard]] ModelState state() && noexcept { return std::move(state_); }
  /// The malformed lines, in the order of the text; the first `mostFaults` of them.
  [[nodiscard]] std::vector<Fault> const& faults() const noexcept { return faults_; }
  /// The number of all malformed lines.
  [[nodiscard]] std::size_t faultCount() const noexcept { return faultCount_; }
  /// The parameters that are given more than once, in the order of paths and names, each once.
  [[nodiscard]] std::vector<Item> const& repeated() const noexcept { return repeated_; }

  /// The occurrences of each of `items`, in the order of the text. The result has one entry for each item, in the order
  /// of `items`. The entry is empty if the text does not mention the item. An object has one occurrence. The root of
  /// the model has none. Reads the text once again: linear in its length.
  [[nodiscard]] std::vector<std::vector<Occurrence>> locate(std::vector<Item> const& items) const;

 private:
  std::shared_ptr<std::string const> source_;
  std::string text_;
  ModelState state_;
  std::vector<Fault> faults_;
  std::size_t faultCount_ = 0;
  std::vector<Item> repeated_;
};

}  // namespace tarn

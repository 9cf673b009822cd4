#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include <tarn/Export.h>

namespace tarn {

/// Where something is written: file, line and column, both counted from 1. The column counts characters.
///
/// A rule that a program made, and an object of a model that was not read from text, have no place: `isKnown` is false,
/// the numbers are 0. Copies share the name of the file, so that a rule database with 100,000 entries keeps each name
/// once; a copy stays valid when the database is gone.
class TARN_EXPORT TextPlace {
 public:
  TextPlace() = default;
  /// `source` must not be null.
  TextPlace(std::shared_ptr<std::string const> source, std::size_t line, std::size_t column) noexcept
      : source_(std::move(source)),
        line_(static_cast<std::uint32_t>(line)),
        column_(static_cast<std::uint32_t>(column)) {}

  [[nodiscard]] bool isKnown() const noexcept { return source_ != nullptr; }
  /// The file, named as it was given to whoever read it; "" when the place is not known.
  [[nodiscard]] std::string const& source() const noexcept;
  [[nodiscard]] std::size_t line() const noexcept { return line_; }
  [[nodiscard]] std::size_t column() const noexcept { return column_; }

  /// "flow.rules.yaml:34:20"; "" when the place is not known.
  [[nodiscard]] std::string text() const;

 private:
  std::shared_ptr<std::string const> source_;
  std::uint32_t line_ = 0;
  std::uint32_t column_ = 0;
};

}  // namespace tarn

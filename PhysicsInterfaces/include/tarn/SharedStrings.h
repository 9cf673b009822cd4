#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// An immutable list of texts that is cheap to hand on: copies share one body, however long the list is. Reads like a
/// `std::vector<std::string>`. Reading one list from many threads at once is safe.
class TARN_EXPORT SharedStrings {
 public:
  using value_type = std::string;
  using size_type = std::size_t;
  using const_iterator = std::vector<std::string>::const_iterator;
  using iterator = const_iterator;

  /// The empty list.
  SharedStrings() noexcept = default;
  SharedStrings(std::vector<std::string> items);                                  // NOLINT(google-explicit-constructor)
  SharedStrings(std::initializer_list<std::string> items);                        // NOLINT(google-explicit-constructor)
  operator std::vector<std::string> const&() const noexcept { return vector(); }  // NOLINT(google-explicit-constructor)

  /// The items. Valid as long as any copy of this list.
  [[nodiscard]] std::vector<std::string> const& vector() const noexcept;

  [[nodiscard]] const_iterator begin() const noexcept { return vector().begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return vector().end(); }
  [[nodiscard]] size_type size() const noexcept { return vector().size(); }
  [[nodiscard]] bool empty() const noexcept { return vector().empty(); }
  [[nodiscard]] std::string const& operator[](size_type i) const { return vector()[i]; }
  [[nodiscard]] std::string const& front() const { return vector().front(); }
  [[nodiscard]] std::string const& back() const { return vector().back(); }

  /// Whether `item` is among the items, byte for byte. Short lists are searched; for a long one an index is made at the
  /// first question, so that asking for n items costs O(n), not O(n * size).
  [[nodiscard]] bool contains(std::string_view item) const;

  /// Same items in the same order. Constant time for two copies of one list.
  friend TARN_EXPORT bool operator==(SharedStrings const& a, SharedStrings const& b) noexcept;
  friend bool operator==(SharedStrings const& a, std::vector<std::string> const& b) noexcept { return a.vector() == b; }

 private:
  struct Body;
  std::shared_ptr<Body const> body_;
};

}  // namespace tarn

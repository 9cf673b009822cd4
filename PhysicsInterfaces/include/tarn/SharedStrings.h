#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// An immutable list of strings. Copies share one body, so copying takes constant time, however long the list is. It
/// reads like a `std::vector<std::string>`. Several threads may read one list at once.
class TARN_EXPORT SharedStrings {
 public:
  using value_type = std::string;
  using size_type = std::size_t;
  using const_iterator = std::vector<std::string>::const_iterator;
  using iterator = const_iterator;

  /// The empty list.
  SharedStrings() noexcept = default;
  SharedStrings(std::vector<std::string> items);            // NOLINT(google-explicit-constructor)
  SharedStrings(std::initializer_list<std::string> items);  // NOLINT(google-explicit-constructor)
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator std::vector<std::string> const&() const& noexcept { return vector(); }
  // A reference to the items of a temporary list would dangle: write `.vector()`.
  // NOLINTNEXTLINE(google-explicit-constructor)
  operator std::vector<std::string> const&() const&& = delete;

  /// The items. The reference is valid as long as this list or a copy of it exists. The items of a temporary list are
  /// copied, because a reference to them would dangle at the end of the statement.
  [[nodiscard]] std::vector<std::string> const& vector() const& noexcept { return items(); }
  [[nodiscard]] std::vector<std::string> vector() const&& { return items(); }

  [[nodiscard]] const_iterator begin() const noexcept { return items().begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return items().end(); }
  [[nodiscard]] size_type size() const noexcept { return items().size(); }
  [[nodiscard]] bool empty() const noexcept { return items().empty(); }
  [[nodiscard]] std::string const& operator[](size_type i) const { return items()[i]; }
  [[nodiscard]] std::string const& front() const { return items().front(); }
  [[nodiscard]] std::string const& back() const { return items().back(); }

  /// Whether `item` is one of the items, byte for byte. A short list is searched. For a long one, the first call makes
  /// an index. So n calls take O(n + size), not O(n * size).
  [[nodiscard]] bool contains(std::string_view item) const;

  /// Whether every item of `other` is one of these items. Linear in the size of both; constant time when the last call
  /// was about the same two lists or copies of them.
  [[nodiscard]] bool containsAll(SharedStrings const& other) const;

  /// Whether both have the same items in the same order. Constant time for two copies of one list.
  friend TARN_EXPORT bool operator==(SharedStrings const& a, SharedStrings const& b) noexcept;
  friend bool operator==(SharedStrings const& a, std::vector<std::string> const& b) noexcept { return a.items() == b; }

 private:
  struct Body;

  [[nodiscard]] std::vector<std::string> const& items() const noexcept;

  std::shared_ptr<Body const> body_;
};

}  // namespace tarn

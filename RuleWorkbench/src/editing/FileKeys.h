#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::workbench {

/// The contents that a file of one kind may have in one place: the keys of a map, the items of a list, the values of a
/// scalar.
struct KeyForm {
  /// How a scalar is read.
  enum class Scalar { Text, Expression, TextOrExpression, YesOrNo, Path };

  /// A key of a map.
  struct Property {
    std::string description;
    KeyForm const* form = nullptr;
    bool isRequired = false;
  };

  std::string description;
  /// In the order in which the reference lists them.
  std::vector<std::pair<std::string, Property>> keys;
  /// The values of keys that are names. Null if there are none.
  KeyForm const* named = nullptr;
  /// The items of a list. Null if it cannot be a list.
  KeyForm const* items = nullptr;
  std::vector<std::string> values;
  Scalar scalar = Scalar::Text;
  /// The name under which the schema defines it, or "".
  std::string name;

  [[nodiscard]] Property const* find(std::string_view key) const noexcept;
  /// The form of the value of a key, or null.
  [[nodiscard]] KeyForm const* valueOf(std::string_view key) const noexcept;
};

/// The forms of a whole file, from its JSON Schema. So the keys, and the sentences about them, are written once.
class FileKeys {
 public:
  explicit FileKeys(std::string_view schema);
  FileKeys(FileKeys const&) = delete;
  FileKeys& operator=(FileKeys const&) = delete;

  [[nodiscard]] KeyForm const& root() const noexcept { return *root_; }

  /// Those of rule files, and those of tests of rules.
  [[nodiscard]] static FileKeys const& ofRules();
  [[nodiscard]] static FileKeys const& ofTests();

 private:
  struct Reader;
  std::deque<KeyForm> forms_;
  KeyForm const* root_ = nullptr;
};

/// The key that divides the levels of a path of keys for an item of a list.
inline constexpr char const* listItem = "";

/// The form at the end of a path of keys; null if the file may have nothing there.
[[nodiscard]] KeyForm const* formAt(KeyForm const& root, std::vector<std::string> const& path);

}  // namespace tarn::workbench

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/StringUtilities.h>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/NearMatch.h"
#include "yaml/YamlDocument.h"
#include "yaml/YamlItem.h"

// Reads the maps, lists and single values of a file in YAML by tables of their keys. Each mistake is reported where
// it is found, and suggestions for unknown keys come from the same tables. Rule files and tests of rules are read with
// it.

namespace tarn::rules {

/// A key, and the enumerator by which the reader of the map knows it.
template <typename Id>
struct Key {
  std::string_view text;
  Id id;
};

template <typename Table>
std::vector<std::string> keyTexts(Table const& table) {
  std::vector<std::string> texts;
  texts.reserve(table.size());
  for (auto const& key : table) texts.emplace_back(key.text);
  return texts;
}

/// An empty plain scalar: a section without content.
inline bool isNothing(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Scalar && node.style == YamlNode::Style::Plain && node.value.empty();
}

/// Whether missing keys of `node` are worth reporting. For a node that is not a map, that error is enough.
inline bool canHoldKeys(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Mapping || isNothing(node);
}

inline std::string_view kindText(YamlNode const& node) {
  switch (node.kind) {
    case YamlNode::Kind::Scalar:
      return "a single value";
    case YamlNode::Kind::Sequence:
      return "a list";
    case YamlNode::Kind::Mapping:
      return "a map";
  }
  return "";
}

inline bool hasKey(YamlNode const& map, std::string_view key) {
  for (std::size_t i = 0; i + 1 < map.children.size(); i += 2) {
    if (map.children[i]->kind == YamlNode::Kind::Scalar && map.children[i]->value == key) return true;
  }
  return false;
}

inline bool isExpression(YamlNode const& node) {
  return node.kind == YamlNode::Kind::Scalar && node.value.starts_with('=');
}

/// The key by which YAML 1.1 merges maps. Rule files are YAML 1.2, which has no such key.
inline bool isMergeKey(YamlNode const& key) {
  return key.style == YamlNode::Style::Plain && key.value == "<<";
}
/// Stands for all keys that a map lacks.
inline constexpr char const* anyKey = "";
inline constexpr char const* mergeKeyMessage =
    "'<<' does not merge maps here; put entries that objects share into Templates, or take a whole map by an alias";

class MapReader {
 public:
  explicit MapReader(DiagnosticList& diagnostics) : diagnostics_(diagnostics) {}
  virtual ~MapReader() = default;
  MapReader(MapReader const&) = delete;
  MapReader& operator=(MapReader const&) = delete;

  /// Gives a diagnostic a fix that replaces the whole text of a scalar, where the new text can be written there.
  static void fixText(Diagnostic& diagnostic, Item const& item, std::string_view text);

 protected:
  Diagnostic& error(Code code, Item const& item, std::string message);
  static void fixAsList(Diagnostic& diagnostic, Item const& item);
  void twice(Code code, Item const& item, Item const& former, std::string message);

  [[nodiscard]] std::optional<std::string_view> scalar(Item const& item, std::string_view what);
  void yesNo(Item const& item, bool& value);
  [[nodiscard]] std::optional<std::vector<std::string>> texts(Item const& item, bool oneAllowed,
                                                              std::string_view otherwise = {});
  [[nodiscard]] bool isMapping(Item const& item, std::string_view what);
  [[nodiscard]] bool isName(Item const& item, std::string_view what);

  /// Calls `each` with every key and value of a map. A duplicate key is reported and left out.
  template <typename Each>
  void forEach(Item const& item, std::string_view what, Each each);
  /// Calls `each` with the identifier, the key and the value of every entry whose key is in `table`. Other keys are
  /// reported, with the key of the table that was probably meant.
  template <typename Table, typename Each>
  void forEachKnown(Item const& item, std::string_view what, Table const& table, Each each);
  /// The first part of a key that holds its value as well, as in "Key:value" and "Key=value". Empty for other keys.
  [[nodiscard]] static std::string_view keyBeforeValue(std::string_view key);
  /// Whether a key that `map` lacks may be written in it under another name, which was reported.
  [[nodiscard]] bool isMisspelled(std::string_view key, YamlNode const& map) const;

  DiagnosticList& diagnostics_;  // NOLINT(cppcoreguidelines-non-private-member-variables-in-classes)

 private:
  /// The key of `keys` by which the purpose of an unknown key of `what` is served. Empty when there is none.
  [[nodiscard]] virtual std::string keyInsteadOf(std::string_view /*key*/, std::string_view /*what*/,
                                                 std::vector<std::string> const& /*keys*/) const {
    return {};
  }

  /// Where an unknown key of `what` belongs, as the end of a sentence. Empty when that is not known.
  [[nodiscard]] virtual std::string whyMisplaced(std::string_view /*key*/, YamlNode const& /*value*/,
                                                 std::string_view /*what*/) const {
    return {};
  }

  std::set<std::pair<YamlNode const*, std::string>, std::less<>> proposedKeys_;  // instead of unknown keys, by map
};

template <typename Each>
void MapReader::forEach(Item const& item, std::string_view what, Each each) {
  if (!isMapping(item, what)) return;
  auto const& children = item.node->children;
  std::unordered_map<std::string_view, YamlNode const*> seen;
  seen.reserve(children.size() / 2);
  for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
    Item const key{item.source, children[i]};
    if (!scalar(key, "a key")) continue;
    if (isMergeKey(*key.node)) {
      error(Code::UnknownKey, key, mergeKeyMessage);
      continue;
    }
    auto const [former, isNew] = seen.try_emplace(key.node->value, key.node);
    if (isNew) {
      each(key, Item{item.source, children[i + 1]});
    } else {
      twice(Code::DuplicateKey, key, {item.source, former->second}, inQuotes(key.node->value) + " is given twice");
    }
  }
}

template <typename Table, typename Each>
void MapReader::forEachKnown(Item const& item, std::string_view what, Table const& table, Each each) {
  if (!isMapping(item, what)) return;
  auto const& children = item.node->children;
  std::array<YamlNode const*, std::tuple_size_v<Table>> seen{};
  // At most one fix in a map: two slips of the same key cannot both become that key, and the search of the map for the
  // proposed key is made once.
  bool isProposed = false;
  for (std::size_t i = 0; i + 1 < children.size(); i += 2) {
    Item const key{item.source, children[i]};
    if (!scalar(key, "a key")) continue;
    auto const known =
        std::find_if(table.begin(), table.end(), [&](auto const& entry) { return entry.text == key.node->value; });
    if (known == table.end()) {
      if (isMergeKey(*key.node)) {
        error(Code::UnknownKey, key, mergeKeyMessage);
        proposedKeys_.emplace(item.node, anyKey);
        continue;
      }
      auto const keys = keyTexts(table);
      auto const habit = keyInsteadOf(key.node->value, what, keys);
      auto const near = habit.empty() ? StringUtilities::nearMatch(key.node->value, keys) : habit;
      auto& diagnostic = error(Code::UnknownKey, key,
                               "unknown key " + inQuotes(key.node->value.substr(0, 100)) + " in " + std::string(what) +
                                   (!habit.empty()  ? "; here it is called " + inQuotes(habit)
                                    : !near.empty() ? didYouMean(near)
                                                    : whyMisplaced(key.node->value, *children[i + 1], what)));
      auto const proposed = near.empty() ? std::string(keyBeforeValue(key.node->value)) : near;
      if (!proposed.empty()) proposedKeys_.emplace(item.node, proposed);
      if (!near.empty() && !std::exchange(isProposed, true) && !hasKey(*item.node, near)) {
        fixText(diagnostic, key, near);
      }
      continue;
    }
    auto& former = seen[static_cast<std::size_t>(known - table.begin())];
    if (former != nullptr) {
      twice(Code::DuplicateKey, key, {item.source, former}, inQuotes(key.node->value) + " is given twice");
      continue;
    }
    former = key.node;
    each(known->id, key, Item{item.source, children[i + 1]});
  }
}

}  // namespace tarn::rules

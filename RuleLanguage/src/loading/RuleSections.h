#pragma once

#include <array>
#include <string_view>

#include <tarn/RuleAttributes.h>

#include "loading/RuleIndex.h"
#include "yaml/MapReader.h"

// Several kinds of sections of a rule file have these in common.

namespace tarn::rules {

namespace attributes = RuleAttributes;

enum class GuardKey { When, Value };
constexpr auto guardKeys = std::to_array<Key<GuardKey>>({{"When", GuardKey::When}, {"Value", GuardKey::Value}});

/// Whether an entry of a section is a `Use`. A parameter or child type may have that name: its value is a map.
inline bool isUse(YamlNode const& key, YamlNode const& value) {
  return key.kind == YamlNode::Kind::Scalar && key.value == "Use" && value.kind != YamlNode::Kind::Mapping;
}

inline std::string_view sectionName(EntryKind kind) {
  switch (kind) {
    case EntryKind::Parameter:
      return "Parameters";
    case EntryKind::Child:
      return "Children";
    case EntryKind::Check:
      return "Checks";
  }
  return "";
}

}  // namespace tarn::rules

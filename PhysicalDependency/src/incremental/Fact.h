#pragma once

#include <cstdint>
#include <string_view>

#include "tree/PathHash.h"

namespace tarn {

/// Something that a visit of a walk can read, and that can change. A fact is known by a hash alone, so that it takes no
/// memory for paths. Its highest bits are its kind. Should two facts have the same hash, visits run that need not.
using Fact = std::uint64_t;

enum class FactKind : std::uint64_t {
  Param,       // the existence and value of a parameter
  ParamNames,  // the set of an object's parameters
  Object,      // the existence of an object
  Children,    // an object's children of one type, and their order
  AllChildren,
  GuideObject,  // the existence of an object in the guide, for who has made it and nothing in it
  Kept,         // a result that rules keep
  Outside,      // anything outside of the active root
  Any           // any change of the active tree
};

constexpr unsigned bitsOfFactKind = 4;

[[nodiscard]] inline FactKind kindOf(Fact fact) noexcept {
  return static_cast<FactKind>(fact >> (64U - bitsOfFactKind));
}

[[nodiscard]] inline Fact mixedFact(FactKind kind, std::uint64_t a, std::uint64_t b) noexcept {
  constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15U;
  std::uint64_t mixed = (a + static_cast<std::uint64_t>(kind)) * multiplier;
  mixed = (mixed ^ mixed >> 29U ^ b) * multiplier;
  mixed ^= mixed >> 32U;
  return mixed >> bitsOfFactKind | static_cast<std::uint64_t>(kind) << (64U - bitsOfFactKind);
}

[[nodiscard]] inline Fact factOf(FactKind kind, PathHash const& object, std::string_view name = {}) noexcept {
  return mixedFact(kind, object.value(), PathHash(name).value());
}

}  // namespace tarn

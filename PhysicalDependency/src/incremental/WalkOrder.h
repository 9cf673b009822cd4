#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "incremental/WalkTree.h"
#include "journal/Journal.h"

namespace tarn {

/// The visits to which the entries of a list belong, in the order of the walk. So the entries of one visit can be
/// replaced without building the list again. The list itself is kept by its owner. Replacements are collected during a
/// walk, in its order, and made at its end.
class WalkOrder {
 public:
  /// For the walk that builds the list: the next entry is of this visit.
  void append(VisitRef visit) { visits_.push_back(visit); }

  /// Later, the entries of `visit` become `texts`.
  void replace(VisitRef visit, std::vector<std::string> texts) { replacements_.push_back({visit, std::move(texts)}); }
  /// Makes all replacements. The objects of replaced visits may go after that. Linear in the part of the list after the
  /// first replacement; a list without replacements costs nothing. With a journal, that can be undone, and the whole
  /// list is copied.
  void apply(std::vector<std::string>& list, Journal* journal);

  void clear() noexcept;

 private:
  struct Replacement {
    VisitRef visit;
    std::vector<std::string> texts;
  };

  std::vector<VisitRef> visits_;
  std::vector<Replacement> replacements_;
};

}  // namespace tarn

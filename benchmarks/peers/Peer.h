#pragma once

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

#include "CaseWorkload.h"
#include "Measure.h"

namespace tarn::benchmarks {

/// Prints `operation <tab> milliseconds`, as every program does that `side_by_side` runs.
inline void printTime(std::string const& operation, double milliseconds) {
  std::cout << operation << '\t' << milliseconds << std::endl;
}

/// A peer that counts otherwise than the case says has solved another problem; its times are not to be shown.
inline void requireSame(std::size_t found, std::size_t expected, std::string const& what) {
  if (found != expected) {
    throw std::runtime_error(what + ": " + std::to_string(found) + " and not " + std::to_string(expected));
  }
}

inline void requireSame(EditCounts const& found, EditCounts const& expected, std::string const& edit) {
  requireSame(found.parameters, expected.parameters, "parameters after " + edit);
  requireSame(found.added, expected.added, "added by " + edit);
  requireSame(found.removed, expected.removed, "removed by " + edit);
  requireSame(found.modified, expected.modified, "modified by " + edit);
  requireSame(found.potential, expected.potential, "potential after " + edit);
}

/// `PEER DOMAINS`: runs `measure` on the case of that size.
template <class Measure>
int runPeer(int argc, char** argv, Measure measure) {
  try {
    if (argc != 2) throw std::invalid_argument("the number of domains is wanted, and nothing else");
    measure(CaseWorkload(countIn(argv[1])));
    return 0;
  } catch (std::exception const& error) {
    std::cerr << argv[0] << ": " << error.what() << '\n';
    return 2;
  }
}

}  // namespace tarn::benchmarks

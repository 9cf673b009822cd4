// The parameters form trees. A new parameter chooses its parent among four candidates and takes the deepest, which
// gives long chains; three of ten parameters may become parents, so most have nothing below them. The generator has a
// fixed seed, and `std::mt19937` gives the same sequence everywhere.
#include "FlatWorkload.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>
#include <random>
#include <stdexcept>

namespace tarn::benchmarks {

namespace {

constexpr std::size_t greatestDepth = 65;
constexpr std::size_t mostReads = 340;

/// The last tree begins with the deepest chain.
constexpr std::array<std::size_t, 13> treeSizes = {2500, 2000, 1500, 1500, 1000, 1000, 1000,
                                                   500,  500,  500,  500,  300,  200};
static_assert(std::accumulate(treeSizes.begin(), treeSizes.end(), std::size_t{0}) == FlatWorkload::parameterCount);

void require(bool holds, std::string const& what) {
  if (!holds) throw std::logic_error("flat workload: " + what);
}

}  // namespace

class FlatWorkload::Generator {
 public:
  [[nodiscard]] std::size_t below(std::size_t limit) { return engine_() % limit; }
  [[nodiscard]] bool once(std::size_t in) { return below(in) == 0; }

 private:
  std::mt19937 engine_{4};
};

FlatWorkload::FlatWorkload() {
  Generator generator;
  addTrees(generator);
  addReads(generator);
  countSubtrees();
  checkShape();
}

std::string FlatWorkload::object() {
  return "/Program";
}

std::string FlatWorkload::name(std::size_t parameter) {
  return "Option " + std::to_string(parameter);
}

std::size_t FlatWorkload::parameterOfEdit(std::size_t edit) {
  // The step has no divisor in common with the number of parameters, so every parameter has its turn.
  constexpr std::size_t step = 4'999;
  static_assert(std::gcd(step, parameterCount) == 1);
  return edit * step % parameterCount;
}

void FlatWorkload::addTrees(Generator& generator) {
  for (std::size_t const size : treeSizes) {
    bool const isChain = size == treeSizes.back();
    std::size_t const root = rules_.size();
    rules_.push_back({noParent, {}});
    depths_.push_back(1);
    std::vector<std::size_t> possibleParents = {root};
    while (rules_.size() < root + size) {
      std::size_t parent = root;
      if (isChain && depths_.back() < greatestDepth && rules_.size() - root < greatestDepth) {
        parent = rules_.size() - 1;
      } else {
        for (int candidates = 0; candidates < 4; ++candidates) {
          std::size_t const candidate = possibleParents[generator.below(possibleParents.size())];
          if (depths_[candidate] > depths_[parent]) parent = candidate;
        }
      }
      if (generator.below(10) < 3 && depths_[parent] + 2 < greatestDepth) possibleParents.push_back(rules_.size());
      rules_.push_back({parent, {}});
      depths_.push_back(depths_[parent] + 1);
    }
  }
}

void FlatWorkload::addReads(Generator& generator) {
  bool isLargestDue = true;
  for (std::size_t parameter = 0; parameter < rules_.size(); ++parameter) {
    Rule& rule = rules_[parameter];
    if (rule.parent == noParent) continue;
    bool const isLarge = parameter > mostReads && generator.once(330);
    if (!isLarge && generator.below(100) < 38) continue;

    std::size_t count = isLarge ? 50 + generator.below(289) : 1 + generator.below(4);
    if (isLarge && isLargestDue) {
      count = mostReads - 2;
      isLargestDue = false;
    }
    for (std::size_t i = 0; i < count; ++i) rule.reads.push_back(generator.below(parameter));
    std::size_t const grandparent = rules_[rule.parent].parent;
    rule.reads.push_back(grandparent == noParent ? rule.parent : grandparent);
  }
}

void FlatWorkload::countSubtrees() {
  subtreeSizes_.assign(rules_.size(), 1);
  for (std::size_t parameter = rules_.size(); parameter-- > 0;) {
    if (rules_[parameter].parent != noParent) subtreeSizes_[rules_[parameter].parent] += subtreeSizes_[parameter];
  }
}

void FlatWorkload::checkShape() const {
  require(rules_.size() == parameterCount, "wrong number of parameters");
  require(*std::max_element(depths_.begin(), depths_.end()) == greatestDepth, "the deepest chain is not 65 deep");

  std::vector<std::size_t> sizes = subtreeSizes_;
  std::sort(sizes.begin(), sizes.end());
  require(sizes[sizes.size() / 2] == 1, "the median edit changes more than itself");
  require(sizes.back() == 2500, "the largest edit does not change 2,500 parameters");
  auto const mean = static_cast<double>(std::accumulate(sizes.begin(), sizes.end(), std::size_t{0})) /
                    static_cast<double>(sizes.size());
  require(mean > 21 && mean < 23, "an edit changes " + std::to_string(mean) + " parameters on average, not 22");

  std::size_t total = 0;
  std::size_t most = 0;
  for (Rule const& rule : rules_) {
    std::size_t const reads = rule.reads.size() + (rule.parent != noParent);
    total += reads;
    most = std::max(most, reads);
  }
  require(most == mostReads, "the largest rule has " + std::to_string(most) + " reads, not 340");
  double const reads = static_cast<double>(total) / static_cast<double>(rules_.size());
  require(reads > 3.6 && reads < 3.8, "a rule has " + std::to_string(reads) + " reads on average, not 3.7");
}

std::string FlatWorkload::rules() const {
  std::string text =
      "Rule Database: 1\n"
      "Pertinent Roots: [Program]\n"
      "Objects:\n"
      "  /Program:\n"
      "    Parameters:\n";
  auto const read = [](std::size_t parameter) { return "${" + name(parameter) + "}"; };
  for (std::size_t parameter = 0; parameter < rules_.size(); ++parameter) {
    Rule const& rule = rules_[parameter];
    text += "      " + name(parameter) + ":\n";
    if (rule.parent != noParent) {
      text += "        Available: " + read(rule.parent);
      for (std::size_t i = 0; i < rule.reads.size(); ++i) {
        text += i == 0 ? " and (" : " or ";
        // Every second read does not hold while everything is on, so that more than the first one is looked at.
        if (i % 2 == 0 && i + 1 < rule.reads.size()) text += "not ";
        text += read(rule.reads[i]);
      }
      if (!rule.reads.empty()) text += ")";
      text += "\n";
    }
    text +=
        "        Required: yes\n"
        "        Parameter Type: Logical\n"
        "        Default Value: false\n";
  }
  return text;
}

ModelState FlatWorkload::everythingOn() const {
  ModelState state;
  ObjectState& options = state[object()];
  for (std::size_t parameter = 0; parameter < rules_.size(); ++parameter) options[name(parameter)] = "true";
  return state;
}

}  // namespace tarn::benchmarks

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/ModelState.h>

namespace tarn::benchmarks {

/// A single mistake in a case.
struct Mistake {
  std::string what;
  std::string object;
  std::string parameter;             // empty: the object is missing
  std::optional<std::string> value;  // none: the parameter is missing
  bool isOfBounds = false;           // judged by those who look at bounds
};

/// The measured case: a turbulent, transient case with heat and any number of fluid domains, each with turbulence, heat
/// and five boundaries, under the rules of `case.rules.yaml`. A domain has about 34 parameters and 8 objects.
/// Everything that the rules offer is present, so every condition is evaluated.
///
///     CaseWorkload const workload(25);
///     workload.valid();    // 845 parameters in 201 objects
///
/// The same number of domains gives the same case on every machine; a case that is not as large as it has always been
/// throws an error, so that no figures are compared that belong to different work. Needs the standard library only, so
/// that programs that know nothing of this project's libraries can be measured with it.
class CaseWorkload {
 public:
  explicit CaseWorkload(std::size_t domains);

  [[nodiscard]] std::size_t domains() const noexcept { return domains_; }
  [[nodiscard]] std::size_t objects() const noexcept { return valid_.size(); }
  [[nodiscard]] std::size_t parameters() const noexcept { return countParameters(valid_); }

  /// The case with nothing wrong in it.
  [[nodiscard]] ModelState const& valid() const noexcept { return valid_; }

  /// The case with one mistake in a hundred parameters, at least one, spread evenly: a turbulence model that does not
  /// exist, a parameter that its boundary cannot have, one that is missing, a turbulence that is missing, and a wall
  /// that was made an inlet and nothing else. Each is in a domain of its own.
  [[nodiscard]] ModelState const& faulty() const noexcept { return faulty_; }
  /// The expected findings: for each, the path of its object, sorted.
  [[nodiscard]] std::vector<std::string> const& findings() const noexcept { return findings_; }

  /// One mistake for each kind of rule. They are made one at a time, for systems that report only the first mistake.
  [[nodiscard]] std::vector<Mistake> mistakes() const;
  [[nodiscard]] ModelState with(Mistake const& mistake) const;

  /// The objects of the case without any parameters, as when a user has only named them.
  [[nodiscard]] ModelState bare() const;

  /// The same case with every inlet made an outlet, which breaks the one rule about the case as a whole.
  [[nodiscard]] ModelState withoutInlets() const;

  /// An inlet of the domain, the place of a local edit.
  [[nodiscard]] std::string inletOf(std::size_t domain) const;

  /// How many objects hold the parameter with that value.
  [[nodiscard]] std::size_t count(std::string const& parameter, std::string const& value) const;

  [[nodiscard]] static std::size_t countParameters(ModelState const& state);
  /// Model text, one parameter a line.
  [[nodiscard]] static std::string modelText(ModelState const& state);

 private:
  struct Mix;
  [[nodiscard]] static Mix mixOf(std::size_t domains);
  void addDomains(Mix const& mix);
  void addFaults();
  void checkCounts(Mix const& mix) const;

  std::size_t domains_;
  ModelState valid_;
  ModelState faulty_;
  std::vector<std::string> findings_;
};

/// Counts of the changes after an edit. `potential` counts parameters and objects.
struct EditCounts {
  std::size_t parameters = 0;
  std::size_t added = 0;
  std::size_t removed = 0;
  std::size_t modified = 0;
  std::size_t potential = 0;

  bool operator==(EditCounts const&) const = default;
};

/// An edit of the valid case, and what must come of it.
struct CaseEdit {
  std::string what;
  std::string object;
  std::string parameter;
  std::string value;
  EditCounts expected;
};

/// How a system lets its users edit. A guided system restores the value of an item when the rules allow the item again,
/// and reports a parameter with other allowed values as modified. A plain system only has its state: the user enters
/// the value again, and a parameter is modified if it was reset.
enum class Editing { Guided, Plain };

/// Edits to be made one after the other: a boundary of the middle domain from inlet to wall and back, then the case
/// from turbulent to laminar and back, then from transient to steady. The rules and the numbers of inlets,
/// walls and models in the case determine the additions and removals. The edited parameter itself does not count as
/// modified.
[[nodiscard]] std::vector<CaseEdit> editsOf(CaseWorkload const& workload, Editing editing);

/// The counts for the bare case: everything that the rules require, and nothing that they merely offer.
[[nodiscard]] EditCounts countsFromBare(CaseWorkload const& workload);

}  // namespace tarn::benchmarks

// Bytes as random rules, models and edits of the object `/Case/Domain:rotor`. After every edit the laws of
// ProvisionalTDF hold. A second state agrees, which has the same edits over a model of another kind and walks
// everything for each of them. A plain second implementation of the edits agrees as well.
//
// The first byte decides whether the rules are wild. The second byte, times sixteen, is the number of bytes for the
// rules and the models. The remaining bytes are for the edits. When rules need more than their bytes, they take them
// from a fixed sequence. So a few bytes make a whole case, and a change of one byte does not change the meaning of the
// others.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "fuzz/support/Laws.h"
#include "support/EditLaws.h"
#include "support/EqualWalks.h"

namespace {

using tarn::test::RandomCase;
using tarn::test::RandomNumbers;

constexpr int mostEdits = 40;
constexpr int bytesOfACount = 16;

std::unique_ptr<tarn::DynamicTDF> treeOf(tarn::ModelState const& state) {
  auto tree = std::make_unique<tarn::DynamicTDF>(false);
  tree->initialise(state.begin(), state.end());
  return tree;
}

/// The state as model text would give it: a tree drops white space around values, the plain model keeps it.
tarn::ModelState trimmed(tarn::ModelState state) {
  for (auto& object : state) {
    for (auto& parameter : object.second) parameter.second = tarn::StringUtilities::removeWhitespace(parameter.second);
  }
  return state;
}

/// The same edits on three readings of what they mean.
class Readings {
 public:
  Readings(RandomCase const& random, tarn::ModelState const& base)
      : sheet_(random.rules), plain_(sheet_, RandomCase::root), model_(base), tree_(treeOf(base)) {
    sheet_.fill(rules_);
    state_ = std::make_unique<tarn::ProvisionalTDF>(&rules_, &modifier_, RandomCase::root);
    twin_ = std::make_unique<tarn::ProvisionalTDF>(&rules_, &modifier_, RandomCase::root);
    tarn::test::forceFullWalks(*twin_, true);
    state_->initialise(&model_, random.guide);
    twin_->initialise(tree_.get(), random.guide);
    plain_.initialise(base, random.guide);
  }
  [[nodiscard]] tarn::ProvisionalTDF& state() { return *state_; }

  tarn::test::EditResult edit(tarn::Edit const& edit) {
    auto const result = tarn::test::resultOf(edit, *state_);
    auto const ofTwin = tarn::test::resultOf(edit, *twin_);
    agreesOnResult_ = result == ofTwin && result == plain_.apply(edit);
    return result;
  }
  void changeBase(tarn::ModelState const& base) {
    model_ = tarn::test::MapModel(base);
    auto former = std::move(tree_);
    tree_ = treeOf(base);
    state_->baseUpdate(&model_);
    twin_->baseUpdate(tree_.get());
    plain_.baseUpdate(base);
  }
  [[nodiscard]] std::string disagreement() const {
    if (!agreesOnResult_) return "an edit is refused for the same reason";
    std::string const fromPlain = tarn::test::difference(*state_, plain_);
    return fromPlain.empty() ? tarn::test::difference(*state_, *twin_) : fromPlain;
  }
  /// For a tame case: a state that is saved and used as the guide gives the same state.
  [[nodiscard]] bool comesBackFromItsSavedForm() {
    // An override that was taken over settles with the next walk.
    for (int i = 0; i < 2; ++i) (void)edit(tarn::Edit::setParam(RandomCase::root, "Unknown", "1"));
    tarn::ModelState const saved = state_->getActiveTDFState();
    tarn::ProvisionalTDF again(&rules_, &modifier_, RandomCase::root);
    again.initialise(&model_, saved);
    return again.getActiveTDFState() == saved;
  }

 private:
  tarn::test::RuleSheet const sheet_;
  tarn::test::PlainProvisional plain_;
  tarn::PhysicsData rules_;
  tarn::test::FlowModifier modifier_;
  tarn::test::MapModel model_;
  std::unique_ptr<tarn::DynamicTDF> tree_;
  std::unique_ptr<tarn::ProvisionalTDF> state_;
  std::unique_ptr<tarn::ProvisionalTDF> twin_;
  bool agreesOnResult_ = true;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 2) return 0;
  bool const wild = data[0] % 4 != 0;
  std::size_t const ofRules = std::min<std::size_t>(std::size_t{data[1]} * bytesOfACount, size - 2);
  std::uint8_t const* const edits = data + 2 + ofRules;

  RandomCase random(RandomNumbers(std::vector<std::uint8_t>(data + 2, edits)), {wild});
  random.continueWith(RandomNumbers(std::vector<std::uint8_t>(edits, data + size)));
  Readings readings(random, trimmed(random.base));
  std::string history = wild ? "a wild case" : "a tame case";
  tarn::fuzz::require(readings.disagreement().empty(), readings.disagreement(), history);

  for (int i = 0; i < mostEdits && random.hasBytes(); ++i) {
    tarn::test::StateSnapshot const before(readings.state());
    std::optional<tarn::Edit> const edit = random.nextEdit();
    history += "\n" + (edit ? tarn::test::textOf(*edit) : "base update");
    tarn::test::EditResult result;
    if (!edit) {
      random.changeBase();
      readings.changeBase(trimmed(random.base));
    } else {
      result = readings.edit(*edit);
    }
    std::string const broken = brokenLaw(before, readings.state(), result);
    tarn::fuzz::require(broken.empty(), broken, history);
    std::string const disagreement = readings.disagreement();
    tarn::fuzz::require(disagreement.empty(), disagreement, history);
  }
  if (!wild) {
    tarn::fuzz::require(readings.comesBackFromItsSavedForm(), "a saved state used as guide comes out the same",
                        history);
  }
  return 0;
}

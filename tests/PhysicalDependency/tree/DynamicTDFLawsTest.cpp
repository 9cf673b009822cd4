// Laws of the editable tree under random edits: it agrees with a plain second model that consists of two maps, and its
// change log, applied to the content before, gives the content after. Seeds are fixed and printed with a failure.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/AllowedValues.h"
#include "support/RandomState.h"

namespace tarn {
namespace {

using Strings = std::vector<std::string>;
using ParamId = DynamicTDF::ParamId;

bool atOrBelow(std::string const& root, std::string const& path) {
  return root.empty() || path == root || path.compare(0, root.size() + 1, root + "/") == 0;
}

/// The slow model: every object with its children in order, and every parameter under its object. No links, no index.
struct PlainModel {
  std::map<std::string, Strings> children{{"", {}}};
  std::map<ParamId, std::string> params;

  void ensure(std::string const& path) {
    if (children.count(path) != 0) return;
    std::string const parent = path.substr(0, path.rfind('/'));
    ensure(parent);
    children[path];
    children[parent].push_back(path);
  }

  void set(std::string const& path, std::string const& name, std::string const& value) {
    ensure(path);
    params[{path, name}] = value;
  }

  void remove(std::string const& path) {
    if (path.empty() || children.count(path) == 0) return;
    auto& siblings = children[path.substr(0, path.rfind('/'))];
    siblings.erase(std::find(siblings.begin(), siblings.end(), path));
    std::erase_if(children, [&](auto const& entry) { return atOrBelow(path, entry.first); });
    std::erase_if(params, [&](auto const& entry) { return atOrBelow(path, entry.first.first); });
  }

  void mirror(PlainModel const& source, std::string const& path) {
    if (source.children.count(path) == 0) return remove(path);
    ensure(path);
    std::erase_if(params, [&](auto const& entry) { return atOrBelow(path, entry.first.first); });
    for (auto const& [id, value] : source.params) {
      if (atOrBelow(path, id.first)) params[id] = value;
    }
    mirrorChildren(source, path);
  }

  void mirrorChildren(PlainModel const& source, std::string const& path) {
    Strings const wanted = source.children.at(path);
    Strings const present = children.at(path);
    for (auto const& child : wanted) {
      ensure(child);
      mirrorChildren(source, child);
    }
    for (auto const& child : present) {
      if (std::find(wanted.begin(), wanted.end(), child) == wanted.end()) remove(child);
    }
  }

  [[nodiscard]] ModelState state(std::string const& root) const {
    ModelState result;
    for (auto const& [id, value] : params) {
      if (atOrBelow(root, id.first)) result[id.first][id.second] = value;
    }
    return result;
  }
};

class RandomEdits {
 public:
  explicit RandomEdits(unsigned seed) : random_(seed) {}

  std::string path() {
    static Strings const types{"A", "A B", "B", "C"};
    static Strings const names{"x", "y", "A"};
    std::string result;
    for (int depth = upTo(4); depth > 0; --depth) {
      std::string const& type = types[static_cast<std::size_t>(upTo(3))];
      result += "/" + type;
      std::string const& name = names[static_cast<std::size_t>(upTo(2))];
      if (upTo(1) == 0 && name != type) result += ":" + name;
    }
    return result;
  }
  std::string name() { return std::string(1, static_cast<char>('p' + upTo(3))); }
  std::string value() { return std::to_string(upTo(3)); }
  int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit)(random_); }

 private:
  std::mt19937 random_;
};

void expectSame(DynamicTDF const& tree, PlainModel const& plain, RandomEdits& edits) {
  ASSERT_EQ(tree.getState(""), plain.state(""));
  std::string const root = edits.path();
  ASSERT_EQ(tree.getState(root), plain.state(root)) << root;
  ASSERT_EQ(tree.isObjectEmpty(root), plain.state(root).empty()) << root;
  ASSERT_EQ(tree.hasObject(root), plain.children.count(root) != 0) << root;
  for (auto const& [path, children] : plain.children) {
    Strings listed;
    ASSERT_EQ(tree.getChildObjectPaths(path, listed), !children.empty()) << path;
    ASSERT_EQ(listed, children) << path;
  }
}

/// Applies the log to `before`. The reader combines the entries: a parameter that is in any list has its present value,
/// or is gone.
ModelState replayed(ModelState before, DynamicTDF const& tree) {
  std::set<ParamId> touched;
  for (auto const* list : {&tree.getAddedParameters(), &tree.getModifiedParameters(), &tree.getDeletedParameters()}) {
    touched.insert(list->begin(), list->end());
  }
  for (auto const& [path, name] : touched) {
    if (tree.hasParameter(path, name)) {
      before[path][name] = tree.getParameterValue(path, name);
    } else {
      before[path].erase(name);
    }
  }
  std::erase_if(before, [](auto const& entry) { return entry.second.empty(); });
  return before;
}

/// Additions and deletions of one parameter alternate, so their numbers show whether it existed before and exists now.
void expectBalancedLog(ModelState const& before, DynamicTDF const& tree) {
  std::map<ParamId, int> balance;
  for (auto const& id : tree.getAddedParameters()) ++balance[id];
  for (auto const& id : tree.getDeletedParameters()) --balance[id];
  for (auto const& [id, sum] : balance) {
    auto const place = before.find(id.first);
    int const was = place != before.end() && place->second.count(id.second) != 0 ? 1 : 0;
    int const is = tree.hasParameter(id.first, id.second) ? 1 : 0;
    ASSERT_EQ(was + sum, is) << id.first << "|" << id.second;
  }
}

void editOnce(RandomEdits& edits, DynamicTDF& tree, PlainModel& plain, DynamicTDF const& other,
              PlainModel const& plainOther) {
  std::string const path = edits.path();
  std::string const name = edits.name();
  std::string const value = edits.value();
  switch (edits.upTo(11)) {
    case 0:
      tree.deleteObject(path);
      plain.remove(path);
      break;
    case 1:
      tree.deleteObjectUnrecorded(path);
      plain.remove(path);
      break;
    case 2:
      tree.deleteParameter(path, name);
      plain.params.erase({path, name});
      break;
    case 3: {
      bool const isNew = plain.children.count(path + "/D:" + name) == 0;
      ASSERT_EQ(tree.createObject(path, "D", name), isNew);
      plain.ensure(path + "/D:" + name);
      break;
    }
    case 4:
      tree.copyBranch(&other, path);
      plain.mirror(plainOther, path);
      break;
    case 5: {
      ModelState const part = plainOther.state(path);
      tree.update(part.begin(), part.end());
      for (auto const& [id, partValue] : plainOther.params) {
        if (atOrBelow(path, id.first)) plain.set(id.first, id.second, partValue);
      }
      break;
    }
    default:
      tree.setParameter(path, name, " " + value);
      plain.set(path, name, value);
  }
}

TEST(DynamicTDFLaws, RandomEditsAgreeWithAPlainModelAndWithTheLogReplayed) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomEdits edits(seed);
    DynamicTDF other;
    PlainModel plainOther;
    for (int i = 0; i < 30; ++i) {
      std::string const path = edits.path();
      other.setParameter(path, "p", std::to_string(i));
      plainOther.set(path, "p", std::to_string(i));
    }
    DynamicTDF tree;
    PlainModel plain;
    for (int batch = 0; batch < 20; ++batch) {
      ModelState const before = tree.getState("");
      tree.resetChanges();
      for (int i = edits.upTo(12); i > 0; --i) {
        editOnce(edits, tree, plain, other, plainOther);
        ASSERT_FALSE(HasFatalFailure());
      }
      expectSame(tree, plain, edits);
      ASSERT_FALSE(HasFatalFailure());
      ASSERT_EQ(replayed(before, tree), tree.getState(""));
      expectBalancedLog(before, tree);
      ASSERT_FALSE(HasFatalFailure());
    }
  }
}

TEST(DynamicTDFLaws, AMirrorOfTheWholeTreeEqualsItAndASecondOneIsNoEvent) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomEdits edits(seed);
    DynamicTDF source;
    DynamicTDF tree;
    for (int i = 0; i < 40; ++i) {
      source.setParameter(edits.path(), edits.name(), edits.value());
      tree.setParameter(edits.path(), edits.name(), edits.value());
    }
    ModelState const before = tree.getState("");
    tree.resetChanges();
    tree.copyBranch(&source, "");
    ASSERT_EQ(tree.getState(""), source.getState(""));
    ASSERT_EQ(replayed(before, tree), tree.getState(""));
    tree.resetChanges();
    tree.copyBranch(&source, "");
    ASSERT_TRUE(tree.getAddedParameters().empty());
    ASSERT_TRUE(tree.getModifiedParameters().empty());
    ASSERT_TRUE(tree.getDeletedParameters().empty());
    ASSERT_TRUE(tree.getDeletedObjects().empty());
  }
}

Strings listing(DynamicTDF const& tree, std::string const& path = "") {
  Strings all{path};
  Strings children;
  tree.getChildObjectPaths(path, children);
  for (std::string const& child : children) {
    Strings const below = listing(tree, child);
    all.insert(all.end(), below.begin(), below.end());
  }
  return all;
}

TEST(DynamicTDFLaws, ATreeThatIsLoadedAgainAndAgainIsAsOneLoadedOnce) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    DynamicTDF often(false);
    for (int load = 0; load < 50; ++load) {
      ModelState const state = test::randomState(random, {"0", "1", "2", " "});
      auto const middle = std::next(state.begin(), static_cast<std::ptrdiff_t>(state.size() / 2));
      bool const skipEmpty = random() % 2 == 0;
      std::vector<DynamicTDF::StateRange> const parts{{state.begin(), middle}, {middle, state.end()}};
      often.initialise(parts, skipEmpty);
      DynamicTDF once(false);
      once.initialise(state.begin(), state.end(), skipEmpty);
      ASSERT_EQ(often.getState(""), once.getState("")) << "seed " << seed << ", load " << load;
      ASSERT_EQ(listing(often), listing(once)) << "seed " << seed << ", load " << load;
      // Changes between two loads do not affect a later load.
      if (random() % 3 == 0) often.setParameter("/Case/Domain:a", "Extra", "1");
      if (random() % 3 == 0) often.setParameter("/Log", "Title", "by hand");
      if (random() % 5 == 0) often.deleteParameter("/Case", "Motion");
      if (random() % 5 == 0) often.createObject("/Case", "Solver", "");
      if (random() % 5 == 0) often.deleteObject("/Case/Domain:a");
    }
  }
}

TEST(DynamicTDFLaws, AParameterOfAllowedValueTypeIsAnOrdinaryOneAfterALoad) {
  DynamicTDF tree(false);
  ModelState const state{{"/Case", {{"Motion", "Rotating"}}}};
  tree.initialise(state.begin(), state.end());
  tree.deleteParameter("/Case", "Motion");
  tree.setParameter("/Case", "Motion", test::allowing({}), "Rotating");
  tree.initialise(state.begin(), state.end());
  EXPECT_FALSE(tree.getAllowedValueData("/Case", "Motion").hasAllowedValues);
}

TEST(DynamicTDFLaws, AStateIsRefreshedFromTheLogToWhatTheTreeHolds) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    DynamicTDF tree;
    for (int i = 0; i < 40; ++i) tree.setParameter("/Case/Domain:x" + std::to_string(i), "Motion", "Stationary");
    std::string const root = seed % 3 == 0 ? "/Case/Domain:a" : "/Case";
    tree.resetChanges();
    ModelState state = tree.getState(root);
    for (int batch = 0; batch < 40; ++batch) {
      tree.resetChanges();
      for (auto edits = random() % 6; edits > 0; --edits) {
        std::string const domain = std::string("/Case/Domain:") + "ab"[random() % 2];
        std::string const wall = domain + (seed % 5 == 0 ? "/Wall:Wall" : "/Wall");
        switch (random() % 5) {
          case 0:
            tree.deleteObject(random() % 2 ? domain : wall);
            break;
          case 1:
            tree.deleteParameter(domain, "Motion");
            break;
          case 2:
            tree.setParameter(wall, "Area", std::to_string(random() % 2));
            break;
          default:
            tree.setParameter(domain, random() % 2 ? "Motion" : "Title", std::to_string(random() % 3));
        }
      }
      tree.refreshState(state, root);
      ASSERT_EQ(state, tree.getState(root)) << "seed " << seed << ", batch " << batch;
    }
  }
}

TEST(DynamicTDFLaws, ARefreshedStateHoldsParametersOfTheRootUnderWhicheverPathTheyWereSet) {
  for (std::string const whole : {"", "/"}) {
    for (std::string const root : {"", "/"}) {
      DynamicTDF tree;
      tree.setParameter("/Case", "Motion", "Rotating");
      ModelState state = tree.getState(whole);
      tree.resetChanges();
      tree.setParameter(root, "Title", "pump");
      tree.refreshState(state, whole);
      ASSERT_EQ(state, tree.getState(whole)) << "set under \"" << root << "\", taken at \"" << whole << '"';
    }
  }
}

TEST(DynamicTDFLaws, AStateLoadsToATreeOfThatState) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomEdits edits(seed);
    DynamicTDF source;
    for (int i = 0; i < 40; ++i) source.setParameter(edits.path(), edits.name(), edits.value());
    ModelState const state = source.getState("");
    DynamicTDF fromState;
    fromState.initialise(state.begin(), state.end());
    ASSERT_EQ(fromState.getState(""), state);
    DynamicTDF fromModel;
    fromModel.initialise(&source, "");
    ASSERT_EQ(fromModel.getState(""), state);
  }
}

/// A tree of a class of its own may answer otherwise, so it is asked for each object and parameter by its path.
class AskedTree final : public DynamicTDF {};

TEST(DynamicTDFLaws, ATreeIsLoadedAsTheSameModelThatIsAskedForEverything) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    DynamicTDF source;
    AskedTree asked;
    for (DynamicTDF* const tree : {&source, static_cast<DynamicTDF*>(&asked)}) {
      RandomEdits edits(seed);
      for (int i = 0; i < 40; ++i) tree->setParameter(edits.path(), edits.name(), edits.value());
      tree->setParameter("/Case:Case/Domain:rotor", "Found under its type", "yes");
      tree->setParameter("/Case", "Empty", "");
      tree->setParameter("/Case", "Chosen", test::allowing({"SST", "LES"}), "SST");
    }
    for (bool const skipEmpty : {false, true}) {
      for (std::string const top : {"", "/", "/Case", "/Case:Case", "/Missing"}) {
        SCOPED_TRACE(top + (skipEmpty ? ", without empty values" : ""));
        DynamicTDF quick;
        DynamicTDF slow;
        for (DynamicTDF* const tree : {&quick, &slow}) {
          tree->setParameter("/Case", "Chosen", "LES");
          tree->startRecordingUpdates();
        }
        quick.update(&source, top, skipEmpty);
        slow.update(&asked, top, skipEmpty);
        ASSERT_EQ(quick.getState(""), slow.getState(""));
        ASSERT_EQ(quick.getAddedParameters(), slow.getAddedParameters());
        ASSERT_EQ(quick.getModifiedParameters(), slow.getModifiedParameters());
        quick.initialise(&source, top, skipEmpty);
        slow.initialise(&asked, top, skipEmpty);
        ASSERT_EQ(quick.getState(""), slow.getState(""));
      }
    }
  }
}

}  // namespace
}  // namespace tarn

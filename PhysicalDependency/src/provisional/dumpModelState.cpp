// A branch of any model as a state. The objects still to be read are on a stack here, since models are as deep as their
// users made them.

#include "provisional/dumpModelState.h"

#include <iterator>
#include <utility>
#include <vector>

#include <tarn/ModelTDF.h>

namespace tarn {

void dumpModelState(ModelTDF const& model, std::string const& path, ModelState& state) {
  std::vector<std::string> pending{path};
  std::vector<std::string> names;
  std::vector<std::string> children;
  while (!pending.empty()) {
    std::string const objPath = std::move(pending.back());
    pending.pop_back();

    names.clear();
    model.getParameterNames(objPath, names);
    ObjectState& values = state[objPath];
    for (std::string const& name : names) values[name] = model.getParameterValue(objPath, name);

    model.getChildObjectPaths(objPath, children);
    std::move(children.begin(), children.end(), std::back_inserter(pending));
  }
}

ModelState withLeadingPathReplaced(ModelState state, std::string const& from, std::string const& to) {
  ModelState moved;
  while (!state.empty()) {
    auto entry = state.extract(state.begin());
    entry.key().replace(0, from.size(), to);
    moved.insert(moved.end(), std::move(entry));
  }
  return moved;
}

}  // namespace tarn

// How two rule databases treat one model: its findings, and what an editor would show right after opening it.
#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/session/Review.h>
#include <tarn/session/Session.h>
#include <tarn/workbench/RuleComparison.h>

namespace tarn::workbench {

namespace {

using session::Finding;
using session::Session;

auto keyOf(Finding const& finding) {
  return std::tuple(finding.code, finding.path, finding.message);
}

/// The findings of `one` that `other` does not have, each as often as it has more of them.
std::vector<Finding> onlyIn(std::vector<Finding> const& one, std::vector<Finding> const& other) {
  std::map<decltype(keyOf(one.front())), std::size_t> known;
  for (Finding const& finding : other) ++known[keyOf(finding)];
  std::vector<Finding> result;
  for (Finding const& finding : one) {
    auto const found = known.find(keyOf(finding));
    if (found != known.end() && found->second > 0) {
      --found->second;
    } else {
      result.push_back(finding);
    }
  }
  return result;
}

/// Everything that an editor shows, by item and aspect.
using Shown = std::map<std::pair<std::string, std::string>, std::string>;

std::string joined(SharedStrings const& items) {
  std::string text;
  for (std::string const& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

std::string joined(std::vector<std::string> const& items) {
  std::string text;
  for (std::string const& item : items) text += (text.empty() ? "" : ", ") + item;
  return text;
}

void addParam(session::ParamRecord const& record, Shown& shown) {
  std::string const item = record.path + '/' + record.name;
  auto const add = [&](char const* what, std::string text) { shown.emplace(std::pair(item, what), std::move(text)); };
  if (record.present && record.value) add("value", *record.value);
  if (record.offered) add("offered", "yes");
  if (!record.available()) return;
  if (record.defaultValue) add("default", *record.defaultValue);
  if (record.allowed.hasAllowedValues) {
    add("allowed values",
        joined(record.allowed.hasSubset ? record.allowed.subsetValues : record.allowed.allowedValues));
  }
  if (record.lowerBound) add("lower bound", *record.lowerBound);
  if (record.upperBound) add("upper bound", *record.upperBound);
  if (!record.units.empty()) add("units", joined(record.units));
}

Shown shownBy(Session const& session) {
  Shown shown;
  std::vector<std::string> open = {session.root()};
  while (!open.empty()) {
    std::string const path = std::move(open.back());
    open.pop_back();
    for (std::string const& name : session.params(path)) {
      if (auto const record = session.lookParam(path, name)) addParam(*record, shown);
    }
    for (session::ChildTypeRecord const& children : session.childTypes(path)) {
      std::string const item = path + '/' + children.type;
      if (!children.present.empty()) shown.emplace(std::pair(item, "objects"), joined(children.present));
      if (!children.offered.empty()) shown.emplace(std::pair(item, "objects on offer"), joined(children.offered));
      for (std::string const& child : children.present) open.push_back(child);
    }
  }
  return shown;
}

Shown open(PhysicsData const& rules, ModelText const& model, std::string& notOpened) {
  auto const opened = Session::open(rules, model);
  if (opened.session) return shownBy(*opened.session);
  notOpened = opened.error->sentence;
  return {};
}

}  // namespace

ModelComparison compareModel(PhysicsData const& before, PhysicsData const& after, ModelText const& model) {
  ModelComparison result;
  std::vector<Finding> const old = session::Review(before).judge(model).list;
  std::vector<Finding> const now = session::Review(after).judge(model).list;
  result.findingsGone = onlyIn(old, now);
  result.findingsNew = onlyIn(now, old);

  Shown const oldShown = open(before, model, result.notOpenedBefore);
  Shown const nowShown = open(after, model, result.notOpenedAfter);
  if (!result.notOpenedBefore.empty() || !result.notOpenedAfter.empty()) return result;
  for (auto const& [key, text] : oldShown) {
    auto const found = nowShown.find(key);
    if (found == nowShown.end()) {
      result.edited.push_back({key.first, key.second, text, std::nullopt});
    } else if (found->second != text) {
      result.edited.push_back({key.first, key.second, text, found->second});
    }
  }
  for (auto const& [key, text] : nowShown) {
    if (!oldShown.contains(key)) result.edited.push_back({key.first, key.second, std::nullopt, text});
  }
  std::sort(result.edited.begin(), result.edited.end(), [](EditedDifference const& a, EditedDifference const& b) {
    return std::tie(a.item, a.what) < std::tie(b.item, b.what);
  });
  return result;
}

}  // namespace tarn::workbench

#pragma once

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/ModelTDF.h>

namespace tarn::test {

/// The plainest possible model, for tests that need one without code of the library. Adding an object also adds all
/// objects above it. Children are in the order in which they were added. Accepts well-formed paths only.
///
///     MapModel model{{"/Case", {{"Flow Regime", "Turbulent"}}},
///                    {"/Case/Domain:rotor", {{"Motion", "Rotating"}}},
///                    {"/Case/Domain:stator", {}}};
///     model.set("/Case/Domain:stator", "Motion", "Stationary");
class MapModel : public ModelTDF {
 public:
  MapModel() { objects_[""]; }
  MapModel(std::initializer_list<ModelState::value_type> objects) : MapModel() { add(objects.begin(), objects.end()); }
  explicit MapModel(ModelState const& state) : MapModel() { add(state.begin(), state.end()); }
  ~MapModel() override = default;

  void add(std::string const& objPath) {
    if (objects_.contains(objPath)) return;
    std::string const parent = objPath.substr(0, objPath.rfind('/'));
    add(parent);
    objects_[parent].children.push_back(objPath);
    std::string const last = objPath.substr(parent.size() + 1);
    auto const colon = last.find(':');
    objects_[objPath].type = last.substr(0, colon);
    objects_[objPath].name = colon == std::string::npos ? last : last.substr(colon + 1);
  }

  void set(std::string const& objPath, std::string const& name, std::string const& value) {
    add(objPath);
    objects_[objPath].parameters[name] = value;
  }

  void removeParameter(std::string const& objPath, std::string const& name) {
    if (auto const object = objects_.find(objPath); object != objects_.end()) object->second.parameters.erase(name);
  }

  /// Removes the object with everything below it.
  void remove(std::string const& objPath) {
    auto const object = objects_.find(objPath);
    if (object == objects_.end()) return;
    for (std::string const& child : std::vector<std::string>(object->second.children)) remove(child);
    std::erase(objects_[objPath.substr(0, objPath.rfind('/'))].children, objPath);
    objects_.erase(objPath);
  }

  [[nodiscard]] bool hasObject(std::string const& path) const override { return objects_.contains(path); }

  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override {
    return hasParameter(objectOf(paramPath), nameOf(paramPath));
  }
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override {
    auto const object = objects_.find(objPath);
    return object != objects_.end() && object->second.parameters.contains(name);
  }

  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override {
    auto const object = objects_.find(path);
    return object != objects_.end() ? object->second.name : none_;
  }
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override {
    auto const object = objects_.find(path);
    return object != objects_.end() ? object->second.type : none_;
  }

  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override {
    return getParameterValue(objectOf(paramPath), nameOf(paramPath));
  }
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override {
    auto const object = objects_.find(objPath);
    if (object == objects_.end()) return none_;
    auto const parameter = object->second.parameters.find(name);
    return parameter != object->second.parameters.end() ? parameter->second : none_;
  }

  bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const override {
    return getParamValueAsList(objectOf(paramPath), nameOf(paramPath), out);
  }
  bool getParamValueAsList(std::string const& objPath, std::string const& name,
                           std::vector<std::string>& out) const override {
    out.clear();
    std::string_view rest = getParameterValue(objPath, name);
    while (!rest.empty()) {
      auto const comma = std::min(rest.find(','), rest.size());
      out.emplace_back(rest.substr(0, comma));
      if (comma + 1 == rest.size()) out.emplace_back();
      rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return !out.empty();
  }

  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override {
    auto const object = objects_.find(path);
    if (object == objects_.end()) return false;
    out.clear();
    for (auto const& parameter : object->second.parameters) out.push_back(parameter.first);
    return true;
  }

  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override {
    out.clear();
    if (auto const object = objects_.find(path); object != objects_.end()) out = object->second.children;
    return !out.empty();
  }
  bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override {
    getChildObjectPathsByType(path, type, out);
    for (std::string& child : out) child = objects_.at(child).name;
    return !out.empty();
  }
  bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override {
    getChildObjectPaths(path, out);
    std::erase_if(out, [&](std::string const& child) { return objects_.at(child).type != type; });
    return !out.empty();
  }

 private:
  struct Object {
    std::string type;
    std::string name;
    ObjectState parameters;
    std::vector<std::string> children;
  };

  template <typename Iterator>
  void add(Iterator begin, Iterator end) {
    for (; begin != end; ++begin) {
      add(begin->first);
      objects_[begin->first].parameters = begin->second;
    }
  }

  static std::string objectOf(std::string const& paramPath) { return paramPath.substr(0, paramPath.rfind('/')); }
  static std::string nameOf(std::string const& paramPath) { return paramPath.substr(paramPath.rfind('/') + 1); }

  std::map<std::string, Object> objects_;
  std::string none_;
};

}  // namespace tarn::test

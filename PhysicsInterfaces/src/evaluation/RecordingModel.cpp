#include <tarn/RecordingModel.h>

#include <algorithm>
#include <utility>

#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

/// Equal for the kinds that `ModelRead::isSameFact` does not tell apart.
ModelRead::Kind factKind(ModelRead::Kind kind) noexcept {
  return kind == ModelRead::Kind::Presence ? ModelRead::Kind::Value : kind;
}

std::size_t hashOf(ModelRead::Kind kind, std::string_view object, std::string_view name) noexcept {
  std::hash<std::string_view> const hash;
  constexpr std::size_t multiplier = 31;
  return (hash(object) * multiplier + hash(name)) * multiplier + static_cast<std::size_t>(factKind(kind));
}

std::string cut(std::string const& value) {
  return value.substr(0, ModelRead::maxValue);
}

}  // namespace

std::size_t RecordingModel::find(ModelRead::Kind kind, std::string_view object, std::string_view name) const {
  auto const [begin, end] = byHash_.equal_range(hashOf(kind, object, name));
  for (auto entry = begin; entry != end; ++entry) {
    ModelRead const& read = reads_[entry->second];
    if (factKind(read.kind) == factKind(kind) && read.object == object && read.name == name) return entry->second;
  }
  return none;
}

bool RecordingModel::isFull() const noexcept {
  if (reads_.size() < maxReads_) return false;
  isOverfull_ = true;
  return true;
}

void RecordingModel::add(ModelRead read) const {
  if (isFull()) return;
  byHash_.emplace(hashOf(read.kind, read.object, read.name), reads_.size());
  reads_.push_back(std::move(read));
  note(reads_.size() - 1);
}

void RecordingModel::note(std::size_t index) const {
  if (sink_ != nullptr && std::find(sink_->begin(), sink_->end(), index) == sink_->end()) sink_->push_back(index);
}

void RecordingModel::recordParameter(ModelRead::Kind kind, std::string const& objPath, std::string const& name) const {
  if (!isRecording()) return;
  std::size_t const known = find(kind, objPath, name);
  if (known == none) {
    if (isFull()) return;
    ModelRead read;
    read.kind = kind;
    read.object = objPath;
    read.name = name;
    read.isPresent = model_.hasParameter(objPath, name);
    if (kind == ModelRead::Kind::Value) read.value = cut(model_.getParameterValue(objPath, name));
    add(std::move(read));
    return;
  }
  ModelRead& read = reads_[known];
  if (kind == ModelRead::Kind::Value && read.kind == ModelRead::Kind::Presence) {
    read.kind = kind;
    read.value = cut(model_.getParameterValue(objPath, name));
  }
  note(known);
}

void RecordingModel::recordObject(std::string const& path) const {
  if (!isRecording()) return;
  std::size_t const known = find(ModelRead::Kind::Object, path, {});
  if (known != none) {
    note(known);
    return;
  }
  if (isFull()) return;
  ModelRead read;
  read.kind = ModelRead::Kind::Object;
  read.object = path;
  read.isPresent = model_.hasObject(path);
  add(std::move(read));
}

void RecordingModel::recordList(ModelRead::Kind kind, std::string const& path, std::string const& name,
                                std::vector<std::string> const& items) const {
  if (!isRecording()) return;
  std::size_t const known = find(kind, path, name);
  if (known != none) {
    note(known);
    return;
  }
  if (isFull()) return;
  ModelRead read;
  read.kind = kind;
  read.object = path;
  read.name = name;
  read.isPresent = !items.empty();
  read.itemCount = items.size();
  auto const kept = static_cast<std::ptrdiff_t>(std::min(items.size(), ModelRead::maxItems));
  read.items.assign(items.begin(), items.begin() + kept);
  add(std::move(read));
}

bool RecordingModel::hasObject(std::string const& path) const {
  recordObject(path);
  return model_.hasObject(path);
}

bool RecordingModel::hasParameter(std::string const& paramPath) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return hasParameter(objPath, name);
}

bool RecordingModel::hasParameter(std::string const& objPath, std::string const& name) const {
  recordParameter(ModelRead::Kind::Presence, objPath, name);
  return model_.hasParameter(objPath, name);
}

std::string const& RecordingModel::getObjectName(std::string const& path) const {
  recordObject(path);
  return model_.getObjectName(path);
}

std::string const& RecordingModel::getObjectType(std::string const& path) const {
  recordObject(path);
  return model_.getObjectType(path);
}

std::string const& RecordingModel::getParameterValue(std::string const& paramPath) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return getParameterValue(objPath, name);
}

std::string const& RecordingModel::getParameterValue(std::string const& objPath, std::string const& name) const {
  recordParameter(ModelRead::Kind::Value, objPath, name);
  return model_.getParameterValue(objPath, name);
}

bool RecordingModel::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return getParamValueAsList(objPath, name, out);
}

bool RecordingModel::getParamValueAsList(std::string const& objPath, std::string const& name,
                                         std::vector<std::string>& out) const {
  recordParameter(ModelRead::Kind::Value, objPath, name);
  return model_.getParamValueAsList(objPath, name, out);
}

bool RecordingModel::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  bool const isObject = model_.getParameterNames(path, out);
  recordList(ModelRead::Kind::ParameterNames, path, {}, isObject ? out : std::vector<std::string>());
  return isObject;
}

bool RecordingModel::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  bool const isAny = model_.getChildObjectPaths(path, out);
  recordList(ModelRead::Kind::Children, path, {}, out);
  return isAny;
}

bool RecordingModel::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                               std::vector<std::string>& out) const {
  // Kept as paths, like the list of paths, which is the same fact.
  std::vector<std::string> paths;
  model_.getChildObjectPathsByType(path, type, paths);
  recordList(ModelRead::Kind::ChildrenOfType, path, type, paths);
  return model_.getChildObjectNamesByType(path, type, out);
}

bool RecordingModel::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                               std::vector<std::string>& out) const {
  bool const isAny = model_.getChildObjectPathsByType(path, type, out);
  recordList(ModelRead::Kind::ChildrenOfType, path, type, out);
  return isAny;
}

bool RecordingModel::anyChildOfType(std::string const& path, std::string const& type,
                                    std::function<bool(std::string const& child)> const& visit) const {
  if (isRecording()) {
    std::size_t const known = find(ModelRead::Kind::ChildrenOfType, path, type);
    if (known != none) {
      note(known);
    } else if (!isFull()) {
      // The fact is the whole list, also if `visit` ends early.
      ModelRead read;
      read.kind = ModelRead::Kind::ChildrenOfType;
      read.object = path;
      read.name = type;
      (void)model_.anyChildOfType(path, type, [&read](std::string const& child) {
        if (read.itemCount++ < ModelRead::maxItems) read.items.push_back(child);
        return false;
      });
      read.isPresent = read.itemCount != 0;
      add(std::move(read));
    }
  }
  return model_.anyChildOfType(path, type, visit);
}

}  // namespace tarn

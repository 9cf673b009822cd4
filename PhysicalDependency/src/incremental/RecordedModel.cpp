// Everything outside of the active root belongs to the base model, which is not followed: all of it is one fact. The
// list of the children of the active root's parent comes from both models, and counts as read from both.

#include "incremental/RecordedModel.h"

#include <tarn/ProvisionalTDFDB.h>
#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

Fact outside() noexcept {
  return factOf(FactKind::Outside, PathHash());
}

}  // namespace

bool RecordedModel::hasObject(std::string const& path) const {
  recordObject(path);
  return view_.hasObject(path);
}

bool RecordedModel::hasParameter(std::string const& paramPath) const {
  recordParam(paramPath);
  return view_.hasParameter(paramPath);
}

bool RecordedModel::hasParameter(std::string const& objPath, std::string const& name) const {
  recordParam(objPath, name, objPath);
  return view_.hasParameter(objPath, name);
}

std::string const& RecordedModel::getObjectName(std::string const& path) const {
  recordObject(path);
  return view_.getObjectName(path);
}

std::string const& RecordedModel::getObjectType(std::string const& path) const {
  recordObject(path);
  return view_.getObjectType(path);
}

std::string const& RecordedModel::getParameterValue(std::string const& paramPath) const {
  recordParam(paramPath);
  return view_.getParameterValue(paramPath);
}

std::string const& RecordedModel::getParameterValue(std::string const& objPath, std::string const& name) const {
  recordParam(objPath, name, objPath);
  return view_.getParameterValue(objPath, name);
}

bool RecordedModel::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  recordParam(paramPath);
  return view_.getParamValueAsList(paramPath, out);
}

bool RecordedModel::getParamValueAsList(std::string const& objPath, std::string const& name,
                                        std::vector<std::string>& out) const {
  recordParam(objPath, name, objPath);
  return view_.getParamValueAsList(objPath, name, out);
}

bool RecordedModel::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  recordObject(path);
  if (view_.isActivePath(path)) recorder_.record(factOf(FactKind::ParamNames, PathHash(path)));
  return view_.getParameterNames(path, out);
}

bool RecordedModel::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  recordListing(path, factOf(FactKind::AllChildren, PathHash(path)));
  return view_.getChildObjectPaths(path, out);
}

bool RecordedModel::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                              std::vector<std::string>& out) const {
  recordListing(path, factOf(FactKind::Children, PathHash(path), type));
  return view_.getChildObjectNamesByType(path, type, out);
}

bool RecordedModel::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                              std::vector<std::string>& out) const {
  recordListing(path, factOf(FactKind::Children, PathHash(path), type));
  return view_.getChildObjectPathsByType(path, type, out);
}

/// The whole list counts as read, also if `visit` ends early.
bool RecordedModel::anyChildOfType(std::string const& path, std::string const& type,
                                   std::function<bool(std::string const& child)> const& visit) const {
  recordListing(path, factOf(FactKind::Children, PathHash(path), type));
  return view_.anyChildOfType(path, type, visit);
}

void RecordedModel::recordObject(std::string const& path) const {
  recorder_.record(view_.isActivePath(path) ? factOf(FactKind::Object, PathHash(path)) : outside());
}

void RecordedModel::recordParam(std::string const& objPath, std::string const& name,
                                std::string const& routedBy) const {
  recorder_.record(view_.isActivePath(routedBy) ? factOf(FactKind::Param, PathHash(objPath), name) : outside());
}

void RecordedModel::recordParam(std::string const& paramPath) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  recordParam(objPath, name, paramPath);
}

void RecordedModel::recordListing(std::string const& path, Fact listing) const {
  recorder_.record(listing);
  if (view_.listsBaseChildren(path)) recorder_.record(outside());
}

}  // namespace tarn

#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ModelTDF.h>

namespace tarn::test {

/// The questions to a model. Overloads that differ only in the form of the path are the same question.
enum class Question {
  HasObject,
  HasParameter,
  ObjectName,
  ObjectType,
  ParameterValue,
  ParameterValueAsList,
  ParameterNames,
  ChildPaths,
  ChildNamesByType,
  ChildPathsByType
};

/// Another model, with a function that is called before each question. The function gets the object's path and the name
/// of the parameter or the type of the children, empty where the question has none. It may throw. The other model must
/// live as long as the view.
///
///     int reads = 0;
///     ModelView const view(model, [&](Question question, auto&, auto&) { reads += question ==
///     Question::ParameterValue; });
class ModelView : public ModelTDF {
 public:
  using Strings = std::vector<std::string>;
  using Listener = std::function<void(Question, std::string const& objPath, std::string const& name)>;

  ModelView(ModelTDF const& model, Listener listener) : model_(model), listener_(std::move(listener)) {}
  ~ModelView() override = default;

  [[nodiscard]] bool hasObject(std::string const& path) const override {
    return ask(Question::HasObject, path).hasObject(path);
  }
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override {
    return askOfParameter(Question::HasParameter, paramPath).hasParameter(paramPath);
  }
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override {
    return ask(Question::HasParameter, objPath, name).hasParameter(objPath, name);
  }
  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override {
    return ask(Question::ObjectName, path).getObjectName(path);
  }
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override {
    return ask(Question::ObjectType, path).getObjectType(path);
  }
  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override {
    return askOfParameter(Question::ParameterValue, paramPath).getParameterValue(paramPath);
  }
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override {
    return ask(Question::ParameterValue, objPath, name).getParameterValue(objPath, name);
  }
  bool getParamValueAsList(std::string const& paramPath, Strings& out) const override {
    return askOfParameter(Question::ParameterValueAsList, paramPath).getParamValueAsList(paramPath, out);
  }
  bool getParamValueAsList(std::string const& objPath, std::string const& name, Strings& out) const override {
    return ask(Question::ParameterValueAsList, objPath, name).getParamValueAsList(objPath, name, out);
  }
  bool getParameterNames(std::string const& path, Strings& out) const override {
    return ask(Question::ParameterNames, path).getParameterNames(path, out);
  }
  bool getChildObjectPaths(std::string const& path, Strings& out) const override {
    return ask(Question::ChildPaths, path).getChildObjectPaths(path, out);
  }
  bool getChildObjectNamesByType(std::string const& path, std::string const& type, Strings& out) const override {
    return ask(Question::ChildNamesByType, path, type).getChildObjectNamesByType(path, type, out);
  }
  bool getChildObjectPathsByType(std::string const& path, std::string const& type, Strings& out) const override {
    return ask(Question::ChildPathsByType, path, type).getChildObjectPathsByType(path, type, out);
  }

 private:
  [[nodiscard]] ModelTDF const& ask(Question question, std::string const& objPath, std::string const& name = {}) const {
    listener_(question, objPath, name);
    return model_;
  }
  [[nodiscard]] ModelTDF const& askOfParameter(Question question, std::string const& paramPath) const {
    auto const slash = paramPath.rfind('/');
    return ask(question, paramPath.substr(0, slash), paramPath.substr(slash + 1));
  }

  ModelTDF const& model_;
  Listener listener_;
};

}  // namespace tarn::test

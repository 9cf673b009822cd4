// Answers questions about rules and a model, one a line, so that a document can show the effect of a rule and a test
// can check it.
//
//     ask MODEL RULES... < questions
//
// A question is a word and its arguments. The answer is one line. See `answer` for the words. The program uses the
// library as any other program would. It is not a part of the library.
#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/DynamicTDF.h>
#include <tarn/EvalCheckList.h>
#include <tarn/EvalContext.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>

namespace {

std::string shown(std::vector<std::string> const& items) {
  std::string text;
  for (std::string const& item : items) text += (text.empty() ? "[" : ", ") + item;
  return (text.empty() ? "[" : text) + "]";
}

template <typename Range>
std::vector<std::string> items(Range const& range) {
  return std::vector<std::string>(range.begin(), range.end());
}

char const* shown(bool truth) {
  return truth ? "true" : "false";
}

using Answers = std::map<std::pair<std::string, std::string>, std::string>;

// The records of every parameter and child type that a walk visits.
class Survey final : public tarn::DependencyAnalyser {
 public:
  explicit Survey(tarn::PhysicsData const* rules) : DependencyAnalyser(rules) {}
  Answers answers;

 private:
  HandlerStatus onBeginObject(tarn::ObjBeginInfo const* /*info*/) override { return Continue; }
  HandlerStatus onBeginParam(std::string const& /*object*/, std::string const& /*name*/) override { return Continue; }
  HandlerStatus onEndObject(std::string const& /*object*/, bool /*required*/) override { return Continue; }

  HandlerStatus onParamCheck(tarn::ParamAvailInfo const* info) override {
    std::string const path = info->getObjPath() + "/" + info->getName();
    tarn::ParamAllowedValues const& allowed = info->getAllowedValues();
    auto const [overridden, value] = info->getValueOverride(allowed);
    answers[{"available", path}] = shown(info->isAvailable());
    answers[{"required", path}] = shown(info->isRequired());
    answers[{"relaxed", path}] = shown(info->hasValidationRelaxed());
    answers[{"complete list required", path}] = shown(info->isCompleteListRequired());
    answers[{"allowed", path}] = allowed.hasAllowedValues ? shown(items(allowed.allowedValues)) : "anything";
    answers[{"any value allowed", path}] = shown(allowed.allowsAnyValue || !allowed.hasAllowedValues);
    answers[{"on offer", path}] = shown(items(allowed.hasSubset ? allowed.subsetValues : allowed.allowedValues));
    answers[{"default", path}] = info->getDefault(allowed);
    answers[{"override", path}] = overridden ? value : "none";
    answers[{"lower bound", path}] = info->getBounds().first;
    answers[{"upper bound", path}] = info->getBounds().second;
    answers[{"bounds vary", path}] = shown(info->hasDynamicBounds());
    return Continue;
  }

  HandlerStatus onChildCheck(tarn::ChildAvailInfo const* info) override {
    std::string const path = info->getObjPath() + "/" + info->getType();
    auto const names = [](tarn::ChildAvailInfo::NameRange range) {
      return shown(std::vector<std::string>(range.first, range.second));
    };
    answers[{"available", path}] = shown(info->isAvailable());
    answers[{"required", path}] = shown(info->isRequired());
    answers[{"relaxed", path}] = shown(info->hasValidationRelaxed());
    answers[{"singleton", path}] = shown(info->isSingleton());
    answers[{"coupled", path}] = shown(info->isCoupled());
    answers[{"allowed names", path}] = info->hasAllowedNames() ? names(info->getAllowedNames()) : "anything";
    answers[{"default names", path}] = names(info->getDefaultNames());
    return Continue;
  }
};

class Asked {
 public:
  Asked(tarn::PhysicsData const* rules, tarn::ModelState const& state) : rules_(rules) {
    model_.initialise(state.begin(), state.end(), false);
    tarn::EvalContext context(&model_);
    Survey survey(rules);
    for (std::string const& type : rules->getPertinentGlobalCheckRoots()) survey.analyse("/" + type, &context);
    answers_ = std::move(survey.answers);
  }

  // "check NAME at PATH", "list NAME at PATH", "value NAME at PATH", "text NAME at PATH" with a parameter that exists
  // for its default alone, or a word of the survey before " of PATH".
  std::string answer(std::string const& question) const {
    if (auto const at = question.rfind(" at "); at != std::string::npos) {
      std::string const path = question.substr(at + 4);
      std::string const word = question.substr(0, question.find(' '));
      std::string const name = question.substr(word.size() + 1, at - word.size() - 1);
      if (word == "check") return shown(evaluator().evaluateCheck(name, path, &model_).first);
      if (word == "list") return shown(evaluator().evaluateList(name, path, &model_).first);
      if (word == "value") return value(name, path);
      if (word == "text") return text(name, path);
    }
    if (auto const of = question.find(" of "); of != std::string::npos) {
      auto const found = answers_.find({question.substr(0, of), question.substr(of + 4)});
      if (found != answers_.end()) return found->second;
    }
    return "(cannot be answered)";
  }

 private:
  tarn::EvalCheckList evaluator() const { return tarn::EvalCheckList(rules_); }

  std::string value(std::string const& name, std::string const& path) const {
    tarn::EvalContext context(&model_);
    return rules_->findValue(name)->evaluate(tarn::TDFContext(path), &context);
  }

  std::string text(std::string const& name, std::string const& path) const {
    tarn::ParamValueDef const* rule = rules_->getParamValueDef("/Texts", name, true);
    tarn::EvalContext context(&model_);
    return rule->evaluateDefault(rules_->getRules(), tarn::TDFContext(path), &context);
  }

  tarn::PhysicsData const* rules_;
  tarn::DynamicTDF model_{false};
  Answers answers_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: ask MODEL RULES... < questions\n";
    return 2;
  }
  try {
    auto const rules = tarn::rules::loadRules({argv + 2, argv + argc});
    tarn::TDFChangeFile const file({argv[1]}, {}, tarn::TDFChangeFile::Strict);
    Asked const asked(rules.get(), file.toModelState());
    for (std::string question; std::getline(std::cin, question);) std::cout << asked.answer(question) << '\n';
  } catch (std::exception const& error) {
    std::cerr << error.what() << '\n';
    return 2;
  }
}

// Opens the session of a test, makes its edits, and compares. Each failure says what was expected, what is, and why.
#include "tests/TestRun.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <set>
#include <utility>
#include <variant>

#include <tarn/DynamicTDF.h>
#include <tarn/EvalContext.h>
#include <tarn/ObjDependDef.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>
#include <tarn/rules/Query.h>
#include <tarn/session/Sentences.h>
#include <tarn/session/WrittenItem.h>
#include <tarn/workbench/RuleCoverage.h>

namespace tarn::workbench {

using session::Item;
using session::ObjectRecord;
using session::ParamRecord;
using session::Refused;
using session::sentenceOf;
using Kind = Expectation::Kind;

namespace {

/// The proof of a failure is short: it names the rule and what it has read.
constexpr std::size_t proofLines = 12;

std::string quoted(std::string const& text) {
  return '\'' + text + '\'';
}

std::string listText(std::vector<std::string> const& items) {
  std::string text;
  for (std::string const& item : items) text += (text.empty() ? "" : ", ") + quoted(item);
  return text.empty() ? "nothing" : text;
}

std::string namesText(std::vector<std::string> const& names) {
  std::string text;
  for (std::string const& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "none" : text;
}

template <typename Record>
std::string stateOf(Record const& record) {
  std::string state = record.present ? "present" : record.offered ? "on offer" : "not available";
  if (record.waiting) state += ", and waiting";
  return state;
}

std::string stateOf(ParamRecord const& param) {
  if (param.present) return "present, with the value " + quoted(param.value.value_or(""));
  return stateOf<ParamRecord>(param);
}

template <typename Record>
bool holds(Kind kind, Record const& record) {
  switch (kind) {
    case Kind::Present:
      return record.present;
    case Kind::Absent:
      return !record.present && !record.offered;
    case Kind::OnOffer:
      return record.offered;
    case Kind::Waiting:
      return record.waiting.has_value();
    default:
      return false;
  }
}

char const* presenceText(Kind kind) {
  switch (kind) {
    case Kind::Present:
      return "present";
    case Kind::Absent:
      return "absent, and not on offer";
    case Kind::OnOffer:
      return "on offer";
    default:
      return "waiting";
  }
}

/// Results of arithmetic are compared with this relative tolerance: 0.1 + 0.2 gives 0.3.
bool isNear(double a, double b) {
  return a == b || std::abs(a - b) <= 1e-9 * std::max(std::abs(a), std::abs(b));
}

std::optional<bool> truthOf(std::string const& text) {
  if (text == "true") return true;
  if (text == "false") return false;
  return StringUtilities::asYesNo(text);
}

bool gives(rules::Query::Result const& result, PlannedEvaluation const& expected) {
  using QueryKind = rules::Query::Kind;
  if (result.kind == QueryKind::List || result.kind == QueryKind::Objects) return result.items == expected.gives;
  if (expected.givesList || expected.gives.size() != 1) return false;
  std::string const& text = expected.gives.front();
  switch (result.kind) {
    case QueryKind::Truth:
      return truthOf(text) == result.truth;
    case QueryKind::Number: {
      if (std::isnan(result.number)) return text == "not a number";
      auto const number = TDFParam::asNumber(text);
      return number && isNear(*number, result.number);
    }
    default:
      return text == result.text;
  }
}

std::string textOf(rules::Query::Result const& result) {
  using QueryKind = rules::Query::Kind;
  switch (result.kind) {
    case QueryKind::Truth:
      return result.truth ? "true" : "false";
    case QueryKind::Number:
      return result.text.empty() ? "not a number" : result.text;
    case QueryKind::Text:
      return quoted(result.text);
    case QueryKind::List:
    case QueryKind::Objects:
      break;
  }
  return listText(result.items);
}

}  // namespace

TestRun::TestRun(TestPlan const& test, PhysicsData const& rules, RuleCoverage* coverage)
    : test_(test), rules_(rules), coverage_(coverage) {
  try {
    run();
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    fail(test.place, test.name, "all rules can be evaluated", std::string("a rule failed: ") + error.what());
  }
}

TestResult TestRun::result() && {
  return std::move(result_);
}

void TestRun::fail(TextPlace const& place, std::string subject, std::string expected, std::string actual, Cause cause) {
  result_.failures.push_back({place, std::move(subject), std::move(expected), std::move(actual), std::move(cause.text),
                              std::move(cause.rule)});
}

void TestRun::run() {
  if (!open()) return;
  if (coverage_ != nullptr) coverage_->add(session_->result());
  for (PlannedStep const& step : test_.steps) {
    if (!make(step)) return;
  }
  if (test_.evaluations.empty()) return;
  ModelState const model = session_->result();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  for (PlannedEvaluation const& evaluation : test_.evaluations) evaluate(evaluation, tree);
}

bool TestRun::open() {
  session::SessionOptions options;
  if (test_.root) options.root = test_.root->text;
  auto opened = test_.model ? session::Session::open(rules_, *test_.model, std::move(options))
                            : session::Session::open(rules_, ModelState{}, std::move(options));
  if (opened.session) {
    session_ = std::move(opened.session);
    return true;
  }
  std::string actual = opened.error->sentence;
  if (!opened.error->candidates.empty()) {
    actual += " Possible after 'Root': " + listText(opened.error->candidates) + '.';
  }
  fail(test_.root ? test_.root->place : test_.place, test_.root ? test_.root->text : test_.name,
       "a model that can be edited", std::move(actual));
  return false;
}

std::optional<Item> TestRun::knownItem(std::string const& path) const {
  std::size_t const slash = path.rfind('/');
  if (slash == std::string::npos) return std::nullopt;
  std::string const parent = path.substr(0, slash);
  std::string const last = path.substr(slash + 1);
  ObjDependDef const* const owner = rules_.getObjDependDef(PathUtils::typePathOf(parent), true);
  if (owner == nullptr) return std::nullopt;
  if (owner->findChild(last.substr(0, last.find(':'))) != nullptr) return Item{path, std::nullopt};
  if (owner->findParam(last) != nullptr) return Item{parent, last};
  return std::nullopt;
}

std::vector<Edit> TestRun::editsOf(PlannedStep const& step) const {
  std::vector<Edit> edits;
  for (PlannedEdit const& planned : step.edits) {
    std::string const path = session::absolutePath(*session_, planned.path.text);
    Item const param = session::paramAt(path);
    switch (planned.kind) {
      case PlannedEdit::Kind::Set:
        edits.push_back(Edit::setParam(param.path, *param.name, planned.text));
        break;
      case PlannedEdit::Kind::SwitchOn:
      case PlannedEdit::Kind::SwitchOff: {
        bool const isOn = planned.kind == PlannedEdit::Kind::SwitchOn;
        if (session::meansParam(*session_, path)) {
          edits.push_back(isOn ? Edit::activateParam(param.path, *param.name)
                               : Edit::deactivateParam(param.path, *param.name));
        } else {
          edits.push_back(isOn ? Edit::activateObject(path) : Edit::deactivateObject(path));
        }
        break;
      }
      case PlannedEdit::Kind::Add:
        edits.push_back(Edit::addObject(path));
        break;
      case PlannedEdit::Kind::Remove:
        edits.push_back(Edit::removeObject(path));
        break;
      case PlannedEdit::Kind::Copy:
        edits.push_back(Edit::duplicateObject(path, planned.text));
        break;
      case PlannedEdit::Kind::Rename:
        edits.push_back(Edit::renameObject(path, planned.text));
        break;
    }
  }
  return edits;
}

bool TestRun::make(PlannedStep const& step) {
  if (!step.edits.empty()) {
    ++result_.expectations;
    session::EditResult const made = session_->edit(editsOf(step));
    bool const expectsRefusal = step.refusal && step.refusal->isRefused;
    if (made.refused && !expectsRefusal) {
      Refused const& refused = *made.refused;
      fail(step.edits[refused.index].path.place, sentenceOf(refused.edit), "the edit is made",
           "refused (" + std::string(refusalName(refused.code)) + "): " + sentenceOf(refused), causeOf(refused));
      return false;
    }
    if (expectsRefusal) {
      std::string const code = made.refused ? std::string(refusalName(made.refused->code)) : std::string();
      std::string const expected = step.refusal->code.empty() ? "refused" : "refused (" + step.refusal->code + ')';
      std::string subject = sentenceOf(made.refused ? made.refused->edit : made.made.back());
      if (!made.refused) {
        fail(step.refusal->place, std::move(subject), expected, sentenceOf(made));
        return false;
      }
      if (!step.refusal->code.empty() && code != step.refusal->code) {
        fail(step.refusal->place, std::move(subject), expected, "refused (" + code + "): " + sentenceOf(*made.refused),
             causeOf(*made.refused));
      }
    }
  }
  if (coverage_ != nullptr && !step.edits.empty()) coverage_->add(session_->result());
  for (Expectation const& expectation : step.expectations) check(expectation);
  return true;
}

std::optional<Item> TestRun::itemOf(PlacedText const& path, bool mayBeGone) {
  auto resolved = session_->resolve(path.text);
  if (auto* item = std::get_if<Item>(&resolved)) return std::move(*item);
  auto const& refused = std::get<Refused>(resolved);
  if (mayBeGone && refused.code != session::RefusalCode::Unreadable) {
    std::string const absolutePath = session::absolutePath(*session_, path.text);
    if (auto item = knownItem(absolutePath); item && hasBeenNamed(absolutePath)) return item;
  }
  std::string actual = refused.sentence;
  if (refused.nearest) {
    Edit const& nearest = *refused.nearest;
    actual += " Did you mean " + (nearest.name.empty() ? nearest.path : nearest.path + '/' + nearest.name) + '?';
  }
  fail(path.place, path.text, "an object or a parameter that the rules know", std::move(actual));
  return std::nullopt;
}

bool TestRun::hasBeenNamed(std::string const& path) const {
  for (std::size_t colon = path.find(':'); colon != std::string::npos; colon = path.find(':', colon + 1)) {
    std::size_t const begin = path.rfind('/', colon);
    std::string const object = path.substr(0, path.find('/', colon));
    std::string const name = object.substr(colon + 1);
    auto const isMentioned = [&](PlannedEdit const& edit) {
      std::string const edited = session::absolutePath(*session_, edit.path.text);
      return edited == object || edited.starts_with(object + '/') || edit.text == name;
    };
    bool const isEdited = std::any_of(test_.steps.begin(), test_.steps.end(), [&](PlannedStep const& step) {
      return std::any_of(step.edits.begin(), step.edits.end(), isMentioned);
    });
    if (isEdited || session_->model().contains(object) || session_->provisional().hasObject(object)) continue;
    // The rules give some names themselves.
    ObjDependDef const* const parent = rules_.getObjDependDef(PathUtils::typePathOf(path.substr(0, begin)), true);
    ChildAvail const* const entry =
        parent == nullptr ? nullptr : parent->findChild(path.substr(begin + 1, colon - begin - 1));
    if (entry == nullptr || (!entry->allowedNamesSource && !entry->defaultNamesSource)) return false;
  }
  return true;
}

void TestRun::check(Expectation const& expectation) {
  ++result_.expectations;
  bool const isAboutFindings = expectation.kind == Kind::Findings || expectation.kind == Kind::FailedChecks;
  if (isAboutFindings && expectation.path.text.empty()) return checkFindings(expectation, nullptr);
  bool const mayBeGone = expectation.kind == Kind::Absent || expectation.kind == Kind::Reason;
  auto const item = itemOf(expectation.path, mayBeGone);
  if (!item) return;
  switch (expectation.kind) {
    case Kind::Present:
    case Kind::Absent:
    case Kind::OnOffer:
    case Kind::Waiting:
      return checkPresence(expectation, *item);
    case Kind::Required:
    case Kind::Optional:
      return checkNeed(expectation, *item);
    case Kind::Reason:
      return checkReason(expectation, *item);
    case Kind::Findings:
    case Kind::FailedChecks:
      return checkFindings(expectation, &*item);
    case Kind::Value:
    case Kind::Allowed:
    case Kind::Default:
    case Kind::LowerBound:
    case Kind::UpperBound:
      return checkParam(expectation, *item);
  }
}

void TestRun::checkPresence(Expectation const& expectation, Item const& item) {
  auto const judge = [&](auto const& record) {
    // An item that does not exist is absent.
    if (record ? holds(expectation.kind, *record) : expectation.kind == Kind::Absent) return;
    fail(expectation.path.place, item.text(), presenceText(expectation.kind),
         record ? stateOf(*record) : std::string("absent"), whyPresence(item));
  };
  if (item.isParam()) return judge(session_->lookParam(item.path, *item.name));
  judge(session_->lookObject(item.path));
}

void TestRun::checkNeed(Expectation const& expectation, Item const& item) {
  bool const expected = expectation.kind == Kind::Required;
  auto const judge = [&](auto const& record, bool isAvailable) {
    if (record && isAvailable && record->required == expected) return;
    std::string const actual = !record || !isAvailable ? "not available" : record->required ? "required" : "optional";
    fail(expectation.path.place, item.text(), expected ? "required" : "optional", actual, whyPresence(item));
  };
  if (item.isParam()) {
    auto const record = session_->lookParam(item.path, *item.name);
    return judge(record, record && record->available());
  }
  auto const record = session_->lookObject(item.path);
  judge(record, record && (record->present || record->available));
}

void TestRun::checkParam(Expectation const& expectation, Item const& item) {
  auto const param = item.isParam() ? session_->lookParam(item.path, *item.name) : std::nullopt;
  if (!param) {
    fail(expectation.path.place, item.text(), "a parameter", item.isParam() ? "absent" : "an object");
    return;
  }
  if (!param->available() && expectation.kind != Kind::Value) {
    fail(expectation.path.place, item.text(), "an available parameter", stateOf(*param), whyPresence(item));
    return;
  }
  switch (expectation.kind) {
    case Kind::Value:
      return checkValue(expectation, *param);
    case Kind::Allowed:
      return checkAllowed(expectation, *param);
    default:
      break;
  }
  auto const& actual = expectation.kind == Kind::Default      ? param->defaultValue
                       : expectation.kind == Kind::LowerBound ? param->lowerBound
                                                              : param->upperBound;
  std::string const what = expectation.kind == Kind::Default      ? "the default "
                           : expectation.kind == Kind::LowerBound ? "the lower bound "
                                                                  : "the upper bound ";
  std::string const& expected = expectation.values.front();
  if (actual.value_or("") == expected) return;
  fail(expectation.path.place, item.text(), what + quoted(expected), what + quoted(actual.value_or("")),
       {{}, param->rule});
}

void TestRun::checkValue(Expectation const& expectation, ParamRecord const& param) {
  if (param.value == expectation.values.front()) return;
  fail(expectation.path.place, Item{param.path, param.name}.text(), "the value " + quoted(expectation.values.front()),
       stateOf(param), whyValue({param.path, param.name}));
}

void TestRun::checkAllowed(Expectation const& expectation, ParamRecord const& param) {
  auto const& allowed = param.allowed;
  auto const actual = allowed.hasSubset ? allowed.subsetValues : allowed.allowedValues;
  bool const hasChoice = allowed.hasAllowedValues && !allowed.allowsAnyValue;
  if (expectation.isAny ? !hasChoice : hasChoice && actual == expectation.values) return;
  Item const item{param.path, param.name};
  std::set<std::string> const expectedSet(expectation.values.begin(), expectation.values.end());
  std::set<std::string> const actualSet(actual.begin(), actual.end());
  std::string text = hasChoice ? listText(actual) : "any value";
  if (expectation.isAny) {
    fail(expectation.path.place, item.text(), "any value", std::move(text), {{}, param.rule});
    return;
  }
  if (hasChoice && expectedSet == actualSet) text += ", in this order";
  // The first value about which the two differ.
  auto const differs = [](std::vector<std::string> const& from, std::set<std::string> const& in) {
    return std::find_if(from.begin(), from.end(), [&](std::string const& value) { return !in.contains(value); });
  };
  Cause cause{{}, param.rule};
  if (auto const missing = differs(expectation.values, actualSet); hasChoice && missing != expectation.values.end()) {
    cause = whyAllowed(item, *missing);
  } else if (auto const extra = differs(actual.vector(), expectedSet); hasChoice && extra != actual.end()) {
    cause = whyAllowed(item, *extra);
  }
  fail(expectation.path.place, item.text(), listText(expectation.values), std::move(text), std::move(cause));
}

void TestRun::checkReason(Expectation const& expectation, Item const& item) {
  std::string const& expected = expectation.values.front();
  auto const judge = [&](std::string const& reason, std::string const& state) {
    if (reason == expected) return;
    fail(expectation.path.place, item.text(), "the reason " + quoted(expected),
         reason.empty() ? state + ", without a reason" : "the reason " + quoted(reason), whyPresence(item));
  };
  if (item.isParam()) {
    auto const param = session_->lookParam(item.path, *item.name);
    return judge(param ? param->reason : "", param ? stateOf(*param) : "absent");
  }
  if (auto const object = session_->lookObject(item.path)) return judge(object->reason, stateOf(*object));
  // An object that nobody has asked for: the reason is that of its type.
  std::string const type = PathUtils::typePathOf(item.path);
  for (session::ChildTypeRecord const& child : session_->childTypes(item.path.substr(0, item.path.rfind('/')))) {
    if (type.substr(type.rfind('/') + 1) == child.type) return judge(child.reason, "absent");
  }
  judge("", "absent");
}

void TestRun::checkFindings(Expectation const& expectation, Item const* item) {
  std::set<std::string> codes;
  Cause cause;
  for (session::Finding const& finding : session_->review().list) {
    bool const isAbout =
        item == nullptr || (finding.path == item->path && (!item->isParam() || finding.name == item->name));
    if (!isAbout) continue;
    bool const isAboutCheck = expectation.kind == Kind::FailedChecks;
    if (isAboutCheck && !finding.check) continue;
    std::string const name = isAboutCheck ? *finding.check : std::string(describe(finding.code).name);
    codes.insert(name);
    bool const isExpected =
        std::find(expectation.values.begin(), expectation.values.end(), name) != expectation.values.end();
    if (isExpected) continue;
    if (!cause.rule.isKnown()) cause.rule = finding.rule;
    cause.text += (cause.text.empty() ? "" : "\n") + name + ": " + finding.message;
  }
  std::vector<std::string> const actual(codes.begin(), codes.end());
  if (actual == expectation.values) return;
  std::string const what = expectation.kind == Kind::FailedChecks ? "failed checks: " : "findings: ";
  fail(expectation.path.place, item == nullptr ? "the whole model" : item->text(), what + namesText(expectation.values),
       what + namesText(actual), std::move(cause));
}

void TestRun::evaluate(PlannedEvaluation const& evaluation, ModelTDF const& model) {
  ++result_.expectations;
  std::string const& text = evaluation.expression.text;
  std::string at = session_->root();
  if (!evaluation.at.text.empty()) {
    auto const item = itemOf(evaluation.at, false);
    if (!item) return;
    auto const object = item->isParam() ? std::nullopt : session_->lookObject(item->path);
    if (!object || !object->present) {
      fail(evaluation.at.place, item->text(), "an object", item->isParam() ? "a parameter" : "absent",
           whyPresence(*item));
      return;
    }
    at = item->path;
  }
  auto const parsed = rules::parseQuery(text, rules_);
  if (!parsed.query) {
    auto const& first = parsed.diagnostics.front();
    fail(evaluation.expression.place, text, "an expression",
         first.message + " (at character " + std::to_string(first.column) + ')');
    return;
  }
  EvalContext context(&model);
  rules::Query::Result const result = parsed.query->evaluate(TDFContext(at), &context);
  if (gives(result, evaluation)) return;
  std::string expected = listText(evaluation.gives);
  if (!evaluation.givesList && evaluation.gives.size() == 1 && result.kind != rules::Query::Kind::Text) {
    expected = evaluation.gives.front();  // as numbers and truths are written
  }
  fail(evaluation.givesPlace, text, std::move(expected), textOf(result));
}

TestRun::Cause TestRun::causeOf(Item const& item, session::WhyOptions const& options) const {
  session::Proof const proof = session_->why(item, options);
  session::ProofNode const& answer = proof.answer();
  std::string text = session::textOf(proof, proofLines);
  while (text.ends_with('\n')) text.pop_back();
  return {std::move(text), answer.rules.empty() ? answer.place : answer.rules.back().place};
}

TestRun::Cause TestRun::whyPresence(Item const& item) const {
  return causeOf(item, {session::Question::Presence, {}, 1});
}

TestRun::Cause TestRun::whyValue(Item const& item) const {
  return causeOf(item, {session::Question::Value, {}, 1});
}

TestRun::Cause TestRun::whyAllowed(Item const& item, std::string const& value) const {
  return causeOf(item, {session::Question::Allowed, value, 1});
}

TestRun::Cause TestRun::causeOf(Refused const& refused) const {
  Item item{refused.edit.path, std::nullopt};
  using EditKind = Edit::Kind;
  EditKind const kind = refused.edit.kind;
  if (kind == EditKind::SetParam || kind == EditKind::ActivateParam || kind == EditKind::DeactivateParam) {
    item.name = refused.edit.name;
  }
  switch (refused.code) {
    case session::RefusalCode::ValueNotAllowed:
      return whyAllowed(item, refused.edit.value);
    case session::RefusalCode::FixedByTheRules:
      return whyValue(item);
    case session::RefusalCode::StandsByTheRules:
    case session::RefusalCode::NotEditable:
      return whyPresence(item);
    default:
      return {};  // the refusal says it all
  }
}

}  // namespace tarn::workbench

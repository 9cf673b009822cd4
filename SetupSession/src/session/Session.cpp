// The session as its users see it: how it is opened, and the operations. The work is done in `SessionImpl`.
#include <tarn/session/Session.h>

#include <exception>
#include <new>
#include <utility>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/PertinentRoots.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

#include "review/ReviewJudge.h"
#include "session/EnteredValue.h"
#include "session/SessionImpl.h"

namespace tarn::session {

namespace {

/// Ends the opening of a session.
struct CannotOpen {
  OpenError error;
};

[[noreturn]] void fail(OpenFault fault, std::string sentence, std::vector<std::string> candidates = {}) {
  throw CannotOpen{{fault, std::move(sentence), std::move(candidates)}};
}

std::string readablePath(std::string const& path, OpenFault fault) {
  try {
    return TDFPath(path).getFullPath();
  } catch (Error const& error) {
    fail(fault, error.getMessage() + '.');
  }
}

void checkText(ModelText const& text) {
  if (text.faults().empty()) return;
  ModelText::Fault const& first = text.faults().front();
  std::string sentence = text.source() + ':' + std::to_string(first.line) + ':' + std::to_string(first.column) + ": " +
                         first.reason + ". A model with malformed lines cannot be edited.";
  if (text.faultCount() > 1) sentence += " There are " + std::to_string(text.faultCount()) + " of them.";
  fail(OpenFault::ModelUnreadable, std::move(sentence));
}

std::string chosenRoot(PhysicsData const& rules, ModelState const& model, SessionOptions const& options) {
  if (options.root) {
    std::string root = readablePath(*options.root, OpenFault::RootUnreadable);
    std::string const typePath = PathUtils::typePathOf(root);
    if (rules.getObjDependDef(typePath, false) != nullptr) return root;
    std::vector<std::string> known;
    for (ObjDependDef const* object : rules.objects()) known.push_back(object->typePath());
    std::string near = StringUtilities::nearMatch(typePath, known);
    fail(OpenFault::RootUnknown, "The rules know no object " + shown(root.empty() ? "/" : root) + '.',
         near.empty() ? std::vector<std::string>() : std::vector{std::move(near)});
  }
  PertinentRoots const roots(rules);
  std::vector<std::string> objects = roots.objectsIn(model);
  if (objects.size() == 1) return objects.front();
  if (objects.size() > 1) {
    std::string const count = std::to_string(objects.size());
    fail(OpenFault::SeveralRoots, "The model has " + count + " objects that can be edited. Say which one to edit.",
         std::move(objects));
  }
  std::vector<std::string> types;
  for (std::string const& type : roots.types()) types.push_back('/' + type);
  if (types.size() == 1) return types.front();
  bool const isAny = !types.empty();
  fail(OpenFault::NoRoot,
       isAny ? "The model has no object that the rules look at. Say which object to edit."
             : "The rules do not say which objects they look at. Say which object to edit.",
       std::move(types));
}

}  // namespace

Session::Session(std::unique_ptr<SessionImpl> impl) noexcept : impl_(std::move(impl)) {}

Session::~Session() = default;

namespace {

/// `make` gets the root, and returns the session.
template <class Make>
Session::Opened opened(Make const& make) {
  Session::Opened result;
  try {
    result.session = make();
  } catch (CannotOpen& cannot) {
    result.error = std::move(cannot.error);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    result.error = OpenError{OpenFault::RuleFailed, std::string("A rule failed: ") + error.what(), {}};
  }
  return result;
}

}  // namespace

Session::Opened Session::open(PhysicsData const& rules, ModelText model, SessionOptions options) {
  return opened([&] {
    checkText(model);
    std::string root = chosenRoot(rules, model.state(), options);
    ModelState state = model.state();
    return std::unique_ptr<Session>(new Session(
        std::make_unique<SessionImpl>(rules, std::move(model), std::move(state), std::move(root), options)));
  });
}

Session::Opened Session::open(PhysicsData const& rules, ModelState const& model, SessionOptions options) {
  return opened([&] {
    for (auto const& [path, params] : model) {
      if (readablePath(path, OpenFault::ModelUnreadable) != path) {
        fail(OpenFault::ModelUnreadable, shown(path) + " is not written as a model writes paths.");
      }
    }
    std::string root = chosenRoot(rules, model, options);
    return std::unique_ptr<Session>(
        new Session(std::make_unique<SessionImpl>(rules, std::nullopt, model, std::move(root), options)));
  });
}

EditResult Session::edit(std::span<Edit const> edits, References references) {
  return impl_->edit(edits, references);
}

EditResult Session::renameFollowed(std::string const& path, std::string const& newName) {
  Edit const rename = Edit::renameObject(path, newName);
  return impl_->edit(std::span(&rename, 1), References::Follow);
}

EditResult Session::tryEdits(std::span<Edit const> edits, References references) {
  return impl_->tryEdits(edits, references);
}

TryResult Session::tryWithFindings(std::span<Edit const> edits, References references) {
  return impl_->tryWithFindings(edits, references);
}

std::optional<EditResult> Session::undo() {
  return impl_->undo();
}

std::optional<EditResult> Session::redo() {
  return impl_->redo();
}

std::vector<Step> const& Session::steps() const noexcept {
  return impl_->steps();
}

std::size_t Session::undoneSteps() const noexcept {
  return impl_->undoneSteps();
}

EditResult const* Session::lastResult() const noexcept {
  return impl_->lastResult();
}

std::string const& Session::root() const noexcept {
  return impl_->root();
}

std::optional<ParamRecord> Session::lookParam(std::string const& path, std::string const& name) const {
  return impl_->lookParam(path, name);
}

std::optional<ObjectRecord> Session::lookObject(std::string const& path) const {
  return impl_->lookObject(path);
}

std::vector<std::string> Session::params(std::string const& path) const {
  return impl_->params(path);
}

std::vector<ChildTypeRecord> Session::childTypes(std::string const& path) const {
  return impl_->childTypes(path);
}

std::variant<Item, Refused> Session::resolve(std::string_view text) const {
  return impl_->resolve(text);
}

std::vector<Found> Session::find(std::string_view text, std::size_t most) const {
  return impl_->find(text, most);
}

std::optional<std::string> Session::convert(std::string_view quantity, std::string_view units) const {
  return convertedQuantity(rules(), quantity, units);
}

std::vector<OwnValue> Session::own() const {
  return impl_->own();
}

std::vector<Waiting> Session::waiting() const {
  return impl_->waiting();
}

std::vector<Difference> Session::differences() const {
  return impl_->differencesFrom(impl_->model());
}

std::vector<Difference> Session::differencesFrom(ModelState const& model) const {
  return impl_->differencesFrom(model);
}

Proof Session::why(Item const& item, WhyOptions const& options) const {
  return impl_->why(item, options);
}

HowResult Session::how(Goal const& goal, HowOptions const& options) {
  return impl_->how(goal, options);
}

ModelState Session::result() const {
  return impl_->result();
}

Findings const& Session::review() const {
  return impl_->review();
}

void Session::setReview(Findings findings) {
  impl_->setReview(std::move(findings));
}

PhysicsData const& Session::rules() const noexcept {
  return impl_->rules();
}

ProvisionalTDF const& Session::provisional() const noexcept {
  return impl_->provisional();
}

ModelState const& Session::model() const noexcept {
  return impl_->model();
}

ModelText const* Session::modelText() const noexcept {
  return impl_->modelText();
}

}  // namespace tarn::session

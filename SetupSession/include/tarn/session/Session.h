#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Findings.h>
#include <tarn/session/Found.h>
#include <tarn/session/How.h>
#include <tarn/session/Item.h>
#include <tarn/session/ObjectRecord.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Step.h>
#include <tarn/session/Waiting.h>

namespace tarn::session {

class SessionImpl;

struct TARN_EXPORT SessionOptions {
  /// The object to edit. Empty: the only object at the root of the model that the rules look at. When the model has
  /// none, and the rules look at objects of one type only, a new object of that type.
  std::optional<std::string> root;
  /// For so many steps, and for steps with so many changes together, the way back is kept in memory. See "Undo and
  /// redo" below.
  std::size_t quickSteps = 1000;
  std::size_t quickChanges = 1'000'000;
};

/// The fate of values that name an object which is renamed.
enum class References {
  /// They keep the old name.
  Stay,
  /// They are set to the new name as well, see `Session::renameFollowed`.
  Follow
};

/// Why a session could not be opened.
enum class OpenFault : int {
  /// The model text has malformed lines, or the state has paths that cannot be read.
  ModelUnreadable = 0,
  /// The path of the object to edit cannot be read.
  RootUnreadable = 1,
  /// The rules know no such object.
  RootUnknown = 2,
  /// There is no object to edit, and the options do not name one.
  NoRoot = 3,
  /// There are several objects that could be edited, and the options do not name one.
  SeveralRoots = 4,
  /// A rule failed with an exception.
  RuleFailed = 5
};

struct TARN_EXPORT OpenError {
  OpenFault fault = OpenFault::ModelUnreadable;
  /// One sentence, or more.
  std::string sentence;
  /// The objects that could be edited, for `NoRoot` and `SeveralRoots`; the nearest known one for `RootUnknown`.
  std::vector<std::string> candidates;
};

/// A set-up at work: a model, the rules for it, and the object of the model that is edited. User interfaces, scripts
/// and services are written against this class. Every question gets its answer as a plain record, and `Sentences.h` has
/// a sentence for each. Nothing is printed, and nothing throws for what a user can do wrong.
///
///     auto opened = Session::open(*rules, ModelText::read("pump.tdf"));
///     if (!opened.session) return complain(opened.error->sentence);
///     Session& session = *opened.session;
///
///     EditResult const result = session.edit(Edit::setParam("/Case/Domain:rotor", "Motion", "Rotating"));
///     if (result.refused) complain(sentenceOf(*result.refused));
///     for (ValueChange const& change : result.effect.values) refresh(change.path, change.name);
///
/// ## What an edit does
///
/// An edit is a value of one of nine kinds, see `Edit`. It is *applied* or *refused*. A refused edit changes nothing at
/// all, and `Refused` says why and what would have worked. An edit that was applied is a step of the history, even if
/// nothing shows.
///
/// A *slip* is refused; a *wish* is kept. A slip is something that can never have been meant: a name that the rules do
/// not know, an object that is not there, a text that is not a number, units that do not fit, a value that an available
/// parameter cannot have now, a name that is taken. A wish is clear but cannot be in force now: a value for a known
/// parameter that is not available now or that the user has switched off, or an object of a known type that is not
/// available now. The wish is kept, the result lists it as waiting with the reason, and it comes into force by itself
/// when the rules allow it. In detail:
///
/// - `setParam` is refused when the rules do not know the object or the parameter, or a named object above it was
///   never asked for; when the value is of the wrong type or in units that cannot be converted; when the parameter is
///   available and the value is not allowed, or the edit itself makes the rules refuse it; when an override fixes
///   another value; when the object is taken from the model as it is. It waits when the parameter, or a singleton above
///   it, is not available or is switched off.
/// - `activateParam` is refused when the rules do not know the parameter. It waits when the parameter is not available.
/// - `deactivateParam` is refused when the rules do not know the parameter, or when it is required and the user has
///   given it no value.
/// - `activateObject` is refused when the rules do not know the object or do not allow the name, or when the object has
///   a name of the user's choice and was never added. It waits when the object is not available.
/// - `deactivateObject` is refused for the same reasons, and when the object is required.
/// - `addObject` is refused when the type is unknown or has no names; when the name is taken or not allowed; when a
///   named object above it was never asked for. It waits when objects of the type are not available.
/// - `removeObject` is refused when the object does not exist, or stands only by the rules.
/// - `duplicateObject` and `renameObject` are refused when the object does not exist, has no name, or stands only by
///   the rules; when the new name is taken or not allowed.
///
/// A value that is out of its bounds is applied, because bounds may follow other parameters. `ParamRecord::outOfBounds`
/// and the review report it.
///
/// A value that the rules wanted replaced, such as a list to which they add required items, is applied; the effect
/// shows what it became. Switching off a required parameter that has a value of its own puts the default in force. The
/// value waits then.
///
/// *Units.* A Real value may come in any units that convert to those of its quantity type. If the quantity type does
/// not list them, the value is converted to its first unit, and `EditResult::conversions` says so: "25 [mm]" becomes
/// "0.025 [m]". "25 mm" is read as "25 [mm]". Units that are unknown or that measure something else are refused, never
/// replaced.
///
/// *Renaming.* `renameFollowed` also changes the values that name the object. The values that wait inside the object,
/// and what was switched off there, move with it in every case.
///
/// ## Trying
///
/// `tryEdits` returns what `edit` would return, and takes everything back. Afterwards every answer is as if nothing had
/// been tried. So it is with edits that were refused or undone.
///
/// ## Undo and redo
///
/// Undo takes back the last step, exactly; redo makes it again. An edit forgets the steps that were undone. The session
/// remembers every step, up to `mostSteps`, and for the last ones also the way back. When these are more than
/// `SessionOptions::quickSteps`, or their effects have more than `SessionOptions::quickChanges` entries, the ways back
/// are dropped, all at once. The next undo then opens the model anew and makes all other steps again, and from then on
/// the way back is known again for the last of them. So no step is ever lost, and one undo of very many is slow.
///
/// ## Failures
///
/// When a rule throws, the edit is refused with `RefusalCode::RuleFailed`, and nothing has changed. `std::bad_alloc`
/// passes to the caller, and nothing has changed then either. Questions that evaluate rules throw what a rule throws;
/// no rule of a rule file does.
///
/// ## Cost
///
/// n is the size of what is edited, in objects and parameters.
///
/// | Operation                               | Cost                                                                |
/// |-----------------------------------------|---------------------------------------------------------------------|
/// | `open`                                  | n                                                                   |
/// | `edit`, `tryEdits`, `redo`              | what the edits change. An edit is applied, taken back and applied   |
/// |                                         | again, because only a look at both states gives the net effect.     |
/// | `undo`                                  | what the step changed; see above for the exception                  |
/// | `lookParam`, `lookObject`, `resolve`    | the rules of the item, and its allowed values. A refusal of a name  |
/// |                                         | that the rules do not know costs n: it is looked for everywhere.    |
/// | `params`, `childTypes`                  | the rules of the object                                             |
/// | `find`, `own`, `waiting`, `differences`,| n                                                                   |
/// | `differencesFrom`, `result`,            |                                                                     |
/// | `renameFollowed`                        |                                                                     |
/// | `review`, `tryWithFindings`             | a walk of the whole model                                           |
///
/// Changes of defaults are found through what the rules of the defaults read. A default with reads that are not known,
/// or that are not in its own object, is evaluated for every object of its type when something of the names that it
/// reads has changed.
///
/// Memory: the model twice, and what is kept of the history.
///
/// One thread at a time may use a session. The rules must outlive it, and no `BetaLoggingController` may be attached to
/// them.
class TARN_EXPORT Session {
 public:
  struct Opened {
    /// Null when there is an error.
    std::unique_ptr<Session> session;
    std::optional<OpenError> error;
  };

  /// The history ends here: further edits are refused.
  static constexpr std::size_t mostSteps = 1'000'000;
  /// An edit with a longer path, name or value is refused, and so are more edits at once.
  static constexpr std::size_t mostCharacters = 10'000'000;

  /// @name Open
  /// The model is copied. A model text with malformed lines is an error, because half a model must not be edited.
  /// Throws nothing but `std::bad_alloc`.
  /// @{
  [[nodiscard]] static Opened open(PhysicsData const& rules, ModelText model, SessionOptions options = {});
  [[nodiscard]] static Opened open(PhysicsData const& rules, ModelState const& model, SessionOptions options = {});
  /// @}
  ~Session();
  Session(Session const&) = delete;
  Session& operator=(Session const&) = delete;

  /// @name Edit
  /// See "What an edit does". Several edits are one step: they are made in their order, each under the state that those
  /// before it leave, and if one is refused, none is made. No edits at all are applied and are no step.
  /// @{
  EditResult edit(Edit const& edit) { return this->edit(std::span(&edit, 1)); }
  EditResult edit(std::span<Edit const> edits, References references = References::Stay);
  /// Renames an object, and sets every value that names it to the new name, as one step: `edit` with
  /// `References::Follow`. A value names the object when the user or the model has given it, it is or lists the
  /// object's name or path, and its allowed values are computed and have lost the old and got the new name by the
  /// renaming.
  EditResult renameFollowed(std::string const& path, std::string const& newName);
  /// @}

  /// @name What if
  /// Changes nothing. `result` is what `edit` would return, except that `step` is 0.
  /// @{
  [[nodiscard]] EditResult tryEdits(std::span<Edit const> edits, References references = References::Stay);
  [[nodiscard]] EditResult tryEdit(Edit const& edit) { return tryEdits(std::span(&edit, 1)); }
  /// Also reviews the model before and after the edits.
  [[nodiscard]] TryResult tryWithFindings(std::span<Edit const> edits, References references = References::Stay);
  /// @}

  /// @name History
  /// @{

  /// Takes back the last step. `EditResult::made` are the edits taken back, and `effect` is what that changed. Empty
  /// when there is nothing to undo. When the ways back are dropped and a rule throws, the result is refused.
  std::optional<EditResult> undo();
  /// Makes the step again that was undone last. Empty when there is none.
  std::optional<EditResult> redo();
  /// The steps that are in force, the oldest first. Valid until the next edit, `undo` or `redo`.
  [[nodiscard]] std::vector<Step> const& steps() const noexcept;
  /// The number of steps that `redo` can make.
  [[nodiscard]] std::size_t undoneSteps() const noexcept;
  /// The result of the last step that is in force. Null without a step. Valid until the next edit, `undo` or `redo`.
  [[nodiscard]] EditResult const* lastResult() const noexcept;
  /// @}

  /// @name Look
  /// @{

  /// The path of the object that is edited, "" for the whole model.
  [[nodiscard]] std::string const& root() const noexcept;
  /// Everything about a parameter or an object. Empty when neither the rules nor the result know the item. An object
  /// with a name of the user's choice is known when it is present, waiting or on offer.
  [[nodiscard]] std::optional<ParamRecord> lookParam(std::string const& path, std::string const& name) const;
  [[nodiscard]] std::optional<ObjectRecord> lookObject(std::string const& path) const;
  /// The names of all parameters that the rules know in an object, in the order of the rules. Empty for an object
  /// without rules.
  [[nodiscard]] std::vector<std::string> params(std::string const& path) const;
  /// The types of children that the rules know in an object, in the order of the rules.
  [[nodiscard]] std::vector<ChildTypeRecord> childTypes(std::string const& path) const;
  /// Reads the path of an object or of a parameter, as users type it. White space at the ends is ignored, and a path
  /// that does not begin with "/" starts at `root`. Otherwise a refusal. If it has a nearest edit, the path and the
  /// name of that edit were probably meant, and can be resolved.
  [[nodiscard]] std::variant<Item, Refused> resolve(std::string_view text) const;
  /// The present objects and the known parameters of present objects whose name or type contains `text`, the best
  /// matches first, then by path and in the order of the rules. At most `most` of them. Empty for an empty text.
  [[nodiscard]] std::vector<Found> find(std::string_view text, std::size_t most = 100) const;
  /// A number in other units: "2.5 [m]" in "mm" is "2500 [mm]". Empty if `quantity` is not a number with units, or if
  /// the units are unknown or measure something else.
  [[nodiscard]] std::optional<std::string> convert(std::string_view quantity, std::string_view units) const;
  /// The values that the user has set, by path and name.
  [[nodiscard]] std::vector<OwnValue> own() const;
  /// Everything that was asked for and is not in force, by path and name.
  [[nodiscard]] std::vector<Waiting> waiting() const;
  /// How the result differs from the model that was opened, at and below `root`, by path and name.
  [[nodiscard]] std::vector<Difference> differences() const;
  /// How the result differs from another model, such as the one that was saved last.
  [[nodiscard]] std::vector<Difference> differencesFrom(ModelState const& model) const;
  /// @}

  /// @name Why and how
  /// @{

  /// Why an item is as it is, or why a value is not allowed: see `Proof`. `textOf` makes text of it. The rules are
  /// explained by the values that they used, also where these have changed since. After a step of several edits, old
  /// values are those before the whole step. Costs the rules of the item and of what they have read, as deep as asked.
  /// In a set of more than 500 objects, those after the deciding ones are not read. If all decide, all are read.
  [[nodiscard]] Proof why(Item const& item, WhyOptions const& options = {}) const;
  /// The shortest sequences of edits after which the goal is reached: see `HowResult`. Each was tried. Changes nothing.
  [[nodiscard]] HowResult how(Goal const& goal, HowOptions const& options = {});
  /// @}

  /// @name Result and review
  /// @{

  /// The whole model as it is now: the result at and below `root`, and everything else as it was opened. An object
  /// without parameters has an entry with an empty map if it has no children either.
  [[nodiscard]] ModelState result() const;
  /// Everything that is wrong with `result`. Throws what a rule throws. The findings have no places in a text. Valid
  /// until the next edit, `undo` or `redo`; a second question about the same state costs nothing.
  [[nodiscard]] Findings const& review() const;
  /// Takes the findings of the present state, so that `review` need not make them. They must be those of
  /// `Review(rules()).judge(result())`. Another thread can review a copy of `result` while this session is used. Do not
  /// pass them if the session has changed meanwhile.
  void setReview(Findings findings);
  /// @}

  /// @name What the session works with
  /// @{
  [[nodiscard]] PhysicsData const& rules() const noexcept;
  /// The state below. Valid until the next `edit`, `undo` or `redo`; read only.
  [[nodiscard]] ProvisionalTDF const& provisional() const noexcept;
  /// The model that was opened.
  [[nodiscard]] ModelState const& model() const noexcept;
  /// Its text. Null when the session was opened with a state.
  [[nodiscard]] ModelText const* modelText() const noexcept;
  /// @}

 private:
  friend class SessionImpl;
  explicit Session(std::unique_ptr<SessionImpl> impl) noexcept;
  std::unique_ptr<SessionImpl> impl_;
};

}  // namespace tarn::session

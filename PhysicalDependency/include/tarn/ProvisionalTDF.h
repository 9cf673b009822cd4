#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/DynamicTDF.h>
#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/Refusal.h>

namespace tarn {

class ModelTDF;
class PhysicsData;
class ProvTDFLogger;
class ProvTDFObserver;
class QuantityModifier;

/// One object of a model while a user edits it, with everything below it, held to the rules after every edit: what the
/// rules withdraw disappears, what they require comes with its default, what they offer waits until the user activates
/// it, and each edit tells exactly what it changed, so that a user interface refreshes only that. The model itself, the
/// base model, is only read. Made for the author of such a user interface; what follows is the manual.
///
/// A worked example. The rules give a domain the required parameter Motion, which is Stationary or Rotating and
/// Stationary by default; Angular Velocity, required while Motion is Rotating; and a Title, which is optional.
///
///     ProvisionalTDF domain(&rules, "/Case/Domain:rotor");
///     domain.initialise(&model, {});                 // the model has the rotor, without any parameters
///     domain.getNewlyAvailParams();                  // {("/Case/Domain:rotor", "Motion")}
///     domain.getAvailPotParams();                    // {("/Case/Domain:rotor", "Title")}
///
///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");
///     domain.getModParams();                         // {("/Case/Domain:rotor", "Motion")}
///     domain.getNewlyAvailParams();                  // {("/Case/Domain:rotor", "Angular Velocity")}
///     domain.getEmptyParameters(false);              // {"/Case/Domain:rotor/Angular Velocity"}
///
///     domain.activateOptParam("/Case/Domain:rotor", "Title");
///     domain.getNewlyAvailParams();                  // {("/Case/Domain:rotor", "Title")}
///     domain.getAvailPotParams();                    // {}
///
///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Stationary");
///     domain.getNewlyUnavailParams();                // {("/Case/Domain:rotor", "Angular Velocity")}
///     ModelState const result = domain.getActiveTDFState();
///
/// ## What to call, in what order
///
/// 1. Construct with the rules and the path of the object, the active root.
/// 2. `setLogger`, if what happens is to be printed.
/// 3. `initialise`, or `initialiseBasedOn` for a new object that starts as a copy. Until then there is nothing to edit:
///    edits and `baseUpdate` do nothing, and every getter answers empty.
/// 4. Edits, in any order and number, and `baseUpdate` whenever the base model has changed. Each is one update, after
///    which the getters are to be read.
/// 5. Take over `getActiveTDFState` where the result is wanted. Nothing is ever written to the base model. The state
///    can be handed to `initialise` of another object as its guide.
///
/// The rules, the modifier, the base model and the logger are not owned and must outlive this object or their
/// replacement. One thread at a time.
///
/// ## What is kept
///
/// The *active state* is the legal result, and all that is ever published. It is worked out anew in each update. The
/// *guide* is the record of what was asked for: the values that the base model held at the start, those handed to
/// `initialise`, and all that the user has set since. The guide steers and is not itself held to the rules. A value
/// that the rules refuse stays in it and comes back by itself when they allow it, so nothing that the user entered is
/// lost. An override of the rules is the one thing that replaces it. *Decisions* are what the user switched on or off.
/// They hold until they are changed, also while the item does not exist; removing a named object forgets those inside
/// it.
///
/// Required items are in the active state whatever the user says. An optional one, a parameter that is available and
/// not required or a coupled child object of that kind, is in the active state if it is wanted: a decision settles it,
/// and without one, whether the guide holds it. If not, it is *potential*: on offer, and listed as such. A child object
/// that is optional and not coupled is not up to the user here; it is mirrored from the base model.
///
/// ## One update
///
/// The rules are walked through once from the active root: each object's parameters in the order of the rules, then its
/// children. There is one pass; it is not repeated until nothing changes. So a rule sees the new values of what comes
/// before it and the old ones of what comes behind, and rules that look ahead settle with the next edit. Rules read the
/// active state for the active root and below, and the base model for all else.
///
/// Of every parameter that is available:
///
/// | wanted or required                               | its value in the active state                          |
/// |--------------------------------------------------|--------------------------------------------------------|
/// | an override is in force                          | the override; the guide takes it over                  |
/// | wanted, the guide has a value that is allowed    | that value                                             |
/// | wanted, the guide's value or override is refused | the default, if required or switched on; else it is    |
/// |                                                  | potential                                              |
/// | switched on, the guide has no value              | the default, or "" when there is none                  |
/// | required only                                    | the default, or "" when there is none                  |
///
/// Of a list, the items that are not allowed are left out; if all allowed values are required, the missing ones are put
/// behind the user's. Whether some are missing is judged by the number of items alone, so a list that names one value
/// twice for another may pass. A parameter that the rules withdraw is gone and not potential; its value in the guide
/// and the decision on it wait.
///
/// ## What each getter holds
///
/// Everything is about the last update and stays, by reference, valid and unchanged until the next edit or
/// `baseUpdate`; arguments of an edit may be taken from there. Objects that become present are told by their
/// parameters: there is no list of new objects.
///
/// | Getter                       | after an edit that applied                         | after a refused edit |
/// |------------------------------|----------------------------------------------------|----------------------|
/// | `getActiveTDFState`          | the result, without objects that hold no parameter | the same as before   |
/// | `getNewlyAvailParams`        | what came into the active state                    | empty                |
/// | `getModParams`               | what has another value or other allowed values     | empty                |
/// | `getNewlyUnavailParams`      | what left it and is not potential now              | empty                |
/// | `getDeletedObjects`          | the tops of what was deleted                       | empty                |
/// | `getModBoundsParams`         | computed bounds that moved                         | empty                |
/// | `getModQuantParams`          | quantity types that were adjusted anew             | empty                |
/// | `getEmptyParameters`         | all that have no value                             | empty                |
/// | `getAvailPotObjects`,        | all that is potential                              | empty                |
/// | `getAvailPotParams`          |                                                    |                      |
/// | `getNewlyAvailPotObjects`,   | what was not potential before                      | empty                |
/// | `getNewlyAvailPotParams`     |                                                    |                      |
/// | `getNewlyUnavailPotObjects`, | what was potential and is now neither that nor     | all that was         |
/// | `getNewlyUnavailPotParams`   | present                                            | potential            |
/// | `getModPotParams`            | what is potential with other allowed values        | empty                |
/// | `isUserNamedTypeAvailable`   | as found in the update                             | the same as before   |
///
/// The first four are a log of events and not of their net effect. What came and went within one update stands in both
/// lists, and what came and changed in two; a parameter that left and came back stands among the new ones, whether it
/// was lost or merely potential in between. To bring a copy of the active state up to date: erase what was deleted and
/// what left, also to become potential (`getNewlyUnavailParams`, `getDeletedObjects`, and those of
/// `getNewlyAvailPotParams` that `getActiveTDFState` lacks), then set all that is new or modified and present to its
/// `getParamValue`.
///
/// ## Edits that do not apply
///
/// An edit outside the active root, or of an object to which it does not apply, is refused: nothing changes, no walk is
/// made, and the lists tell of nothing, as above. That includes the lists of what is potential and of what is empty,
/// which only a walk fills: keep your own copy on screen until the next edit that applies, after which all that is
/// potential is listed as newly available again. A refusal is not reported otherwise.
///
/// `activeSetParam` and `addNewNamedObject` throw the `Error` of `TDFPath` for an object path at or below the active
/// root that it cannot read. Nothing has changed after that, not even the lists, and nothing is printed.
///
/// ## Failures
///
/// What a rule, the base model or the modifier throws passes to the caller, and so does `std::bad_alloc`. The object
/// remains usable, and so do guide and decisions: an edit has been made or it has not, and there is never half of one.
///
/// - If it has not been made, the active state is as before. Make the edit again.
/// - If it has been made, its update is incomplete: the active state reads as empty and the change lists are of no use.
///   The edit is not lost. The next one completes the update, whatever it is, and so does `baseUpdate`; the same edit
///   once more does no harm. A refused one tries, and says nothing if it fails: then the active state tells how far the
///   update came. `duplicateNamedObject` and `renameNamedObject` copy nothing from an incomplete update: they complete
///   it first, or throw. Refresh everything from the getters then; all bounds and quantity types are told anew.
///
/// `initialise`, `initialiseBasedOn` and `baseUpdate` have begun, like an edit, or have changed nothing. The one edit
/// that may be made in part is a duplicate under the name of an object that waits in the guide: of that some values may
/// be replaced, and the same edit again replaces the rest. What the logger throws passes as well; the edit is complete
/// then, and only its account is not.
///
/// ## Cost
///
/// One update evaluates all rules of the active root; nothing is kept back for a part of it. What it hands out is
/// brought up to date by what changed, and made anew only when much did. The getters compute nothing, except those that
/// return by value. No operation recurses; depth is limited by memory.
class TARN_EXPORT ProvisionalTDF : public DependencyAnalyser {
 public:
  /// Object path and name of a parameter.
  using ParamId = DynamicTDF::ParamId;
  /// Object path to name of a parameter, sorted by object path.
  using ParamsByObject = std::multimap<std::string, std::string>;

  /// A state for the object at `p_activeRoot`, "" for a whole model, under these rules. Write an object whose name
  /// equals its type without the name, as the model itself does.
  ProvisionalTDF(PhysicsData const* p_data, std::string const& p_activeRoot);
  /// With a modifier that names the quantity types of real parameters; null for none.
  ProvisionalTDF(PhysicsData const* p_data, QuantityModifier const* p_modifier, std::string const& p_activeRoot);
  ProvisionalTDF(ProvisionalTDF const&) = delete;
  ProvisionalTDF& operator=(ProvisionalTDF const&) = delete;
  virtual ~ProvisionalTDF();

  /// Has every later operation printed: the command, then what it changed. Null ends it.
  void setLogger(ProvTDFLogger* p_logger) noexcept;
  /// The same for an observer of the host's own. There is one observer at a time; the logger is one.
  void setObserver(ProvTDFObserver* p_observer) noexcept;

  /// @name The start, and a changed base model
  /// `p_base` is kept, and must live until the next `baseUpdate` or the end of this object.
  /// @{

  /// Starts from the object as the base model has it; it need not have it. `p_guideState` overlays its values and may
  /// name any object at or below the active root. What in it the rules refuse waits in the guide. Values of the base
  /// model that are blank count as not given; those of `p_guideState` count.
  ///
  /// Throws the `Error` of `TDFPath` when the active root, or a path in `p_guideState`, cannot be read. Then nothing
  /// has started, or what had started before goes on as it was, and it may be called again. A second call starts over
  /// with the guide but keeps decisions, remembered selections and which default names were dealt with.
  void initialise(ModelTDF const* p_base, ModelState const& p_guideState);

  /// Starts as a copy of the object at `p_basedOnPath` of the base model, which must be a named object of the same type
  /// and parent as the active root, and the base model must not hold the active root yet. Of an object that both have,
  /// the copied parameters stand and those of `p_guideState` are dropped as a whole. Such a new object has nothing in
  /// the base model to mirror, so its optional children that are not coupled are left out for good, even if the base
  /// model gets the object later.
  ///
  /// In every other case the same as `initialise`.
  void initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base, ModelState const& p_guideState);

  /// Follows a base model that has changed, or another one, and updates. The guide is not touched: it goes on with the
  /// values that the base model had at the start, and what the base model changes under the active root shows only in
  /// mirrored children. Not printed as a command.
  void baseUpdate(ModelTDF const* p_base);
  /// @}

  /// Makes an edit, in the same way as the operation of its kind below, and returns why it was refused, or nothing
  /// when it was made.
  [[nodiscard]] std::optional<Refusal> apply(Edit const& p_edit);

  /// @name Edits
  /// Each is one update; when it applies, it is one walk under the rules. Each prints itself when there is a logger,
  /// also when it is refused. See above for edits that do not apply.
  /// @{

  /// Writes a value to the guide. That makes the parameter wanted, and objects above it as well that are optional, but
  /// for those that the user switched off: then the value waits for `activateOptParam` or `activateOptObject`. "" is a
  /// value like any other. Whether the rules know the parameter is not asked.
  void activeSetParam(std::string const& p_objPath, std::string const& p_name, std::string const& p_value);

  /// Switches an optional parameter on. The guide's value comes back, if there is one; otherwise the default, or "".
  void activateOptParam(std::string const& p_objPath, std::string const& p_name);
  /// Switches an optional parameter off. Its value stays in the guide, unless it is empty: then it is dropped, so that
  /// switching on gives the default. A required parameter stays present, with its override or default.
  void deactivateOptParam(std::string const& p_objPath, std::string const& p_name);

  /// Switches an optional object on or off. What the guide holds inside it stays and comes back with it. A decision on
  /// an object that the rules do not know is kept, too.
  void activateOptObject(std::string const& p_path);
  void deactivateOptObject(std::string const& p_path);

  /// Asks for a named object. It appears where names are the user's choice, and where the type is optional and the
  /// rules allow that name; of a required type with a closed list of names the rules alone decide. Refused: a path
  /// whose last component has no name or one that equals its type, and an object that was asked for already.
  void addNewNamedObject(std::string const& p_path);

  /// Takes a named object out of the guide and forgets the decisions on all paths that begin with the text of `p_path`,
  /// those of a sibling whose name merely begins with this name included. Refused for an object that the guide does not
  /// hold: one that stands only by the rules cannot be removed.
  void removeNamedObject(std::string const& p_path);

  /// Asks for a copy of a present named object under a new name beside it, with all values that are in force, defaults
  /// and overrides included. Decisions are not copied. Refused: the active root itself, an absent object, a singleton,
  /// a name that is present already or cannot be one.
  void duplicateNamedObject(std::string const& p_path, std::string const& p_newName);

  /// Duplicates an object and removes the original: told as a deletion and new parameters, and decisions on the old
  /// name are forgotten. When the copy could be made but the original stands only by the rules, the edit counts as
  /// refused; the copy has been asked for all the same and shows up with the next walk.
  void renameNamedObject(std::string const& p_path, std::string const& p_newName);
  /// @}

  /// @name The state
  /// @{
  [[nodiscard]] std::string getActiveRoot() const;
  /// The active state; objects that hold no parameters are not in it.
  [[nodiscard]] ModelState const& getActiveTDFState() const noexcept;
  /// Whether the object, or the parameter, is in the active state. An object that holds no parameters is not in
  /// `getActiveTDFState`, but it is found here.
  [[nodiscard]] bool hasObject(std::string const& p_path) const;
  [[nodiscard]] bool hasParameter(std::string const& p_objPath, std::string const& p_name) const;
  /// The value in the active state, "" when the parameter is not there.
  [[nodiscard]] std::string const& getParamValue(std::string const& p_objPath, std::string const& p_name) const;
  /// All allowed values of a parameter that is present or potential; empty when it may take any text and when there is
  /// no such parameter.
  [[nodiscard]] std::vector<std::string> getAllowedParamValues(std::string const& p_objPath,
                                                               std::string const& p_name) const;
  /// The subset of them that is on offer, with what the user once selected outside of it; empty when there is no
  /// subset. Of a parameter that is only potential always empty: what it will offer is settled when it is activated.
  [[nodiscard]] std::vector<std::string> getSubsetAllowedParamValues(std::string const& p_objPath,
                                                                     std::string const& p_name) const;
  /// The present objects that a path pattern matches, seen from the object at `p_contextPath`; see `PathPattern`.
  /// Throws an `Error` for a text that is no pattern.
  [[nodiscard]] std::vector<std::string> getPathExpansion(std::string const& p_path,
                                                          std::string const& p_contextPath) const;
  /// The paths of the present parameters that have no value, in the order of the walk, but for those of which the rules
  /// say that they need none. With `p_typedOnly` only those of type Integer, Real, their lists, and String.
  [[nodiscard]] std::vector<std::string> const& getEmptyParameters(bool p_typedOnly) const noexcept;
  /// Whether a first object of a required named type may be added: there is none below `p_parentPath`, and a new one
  /// would hold or offer something. Logarithmic.
  [[nodiscard]] bool isUserNamedTypeAvailable(std::string const& p_parentPath, std::string const& p_type) const;
  /// @}

  /// @name What the last update changed
  /// See the table above. Parameters stand in the order of events, objects in that of their deletion; of a deleted
  /// subtree only the top is listed. An object that is required but holds nothing goes without an entry. One of a type
  /// that its parent asks for, but for which there are no rules, comes and goes with every walk and is listed each
  /// time.
  /// @{
  [[nodiscard]] std::vector<ParamId> const& getModParams() const noexcept;
  /// Not freed of what became potential or unavailable later in the same update: ask whether it is present.
  [[nodiscard]] std::vector<ParamId> const& getNewlyAvailParams() const noexcept;
  /// Without what became potential, which `getNewlyAvailPotParams` tells.
  [[nodiscard]] std::vector<ParamId> const& getNewlyUnavailParams() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  /// Path of the parameter to its lower and upper bound. May tell of a parameter in an object named "__%%dummy%%__",
  /// which is how the library finds out about types that have no object yet; pass over it.
  [[nodiscard]] std::map<std::string, std::pair<std::string, std::string>> const& getModBoundsParams() const noexcept;
  /// Path of the parameter to its quantity type.
  [[nodiscard]] std::map<std::string, std::string> const& getModQuantParams() const noexcept;

  [[nodiscard]] std::vector<std::string> const& getAvailPotObjects() const noexcept;
  [[nodiscard]] ParamsByObject const& getAvailPotParams() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getNewlyAvailPotObjects() const noexcept;
  [[nodiscard]] ParamsByObject const& getNewlyAvailPotParams() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getNewlyUnavailPotObjects() const noexcept;
  [[nodiscard]] ParamsByObject const& getNewlyUnavailPotParams() const noexcept;
  [[nodiscard]] ParamsByObject const& getModPotParams() const noexcept;
  /// @}

 private:
  using DependencyAnalyser::analyse;  // a walk outside of an update would leave the lists in disorder
  class Impl;

  // The walk. All but the first always continue.
  HandlerStatus onBeginObject(ObjBeginInfo const* p_info) override;
  HandlerStatus onBeginParam(std::string const& p_objPath, std::string const& p_name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* p_info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* p_info) override;
  HandlerStatus onEndObject(std::string const& p_path, bool p_required) override;

  std::unique_ptr<Impl> m_impl;
};

}  // namespace tarn

#pragma once

#include <cstddef>
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
class ParamAllowedValues;
class PhysicsData;
class ProvTDFLogger;
class ProvTDFObserver;
class QuantityModifier;

/// One object of a model, with everything below it, while a user edits it. The rules are applied after every edit:
/// items that they withdraw disappear, items that they require appear with their default, and items that they offer
/// wait until the user activates them. An item is a parameter or a child object. Each edit reports exactly what it
/// changed, so that a user interface refreshes only that. The model itself, the base model, is only read. This class is
/// made for authors of such user interfaces. Its manual follows.
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
/// 2. `setLogger` or `setObserver`, if edits are to be printed or followed.
/// 3. `initialise`, or `initialiseBasedOn` for a new object that starts as a copy. Before the start, edits and
///    `baseUpdate` do nothing, and every getter returns something empty.
/// 4. Edits, in any order and number, and `baseUpdate` whenever the base model has changed. Each is one update. Read
///    the getters after it.
/// 5. Read the result from `getActiveTDFState`. Nothing is ever written to the base model. The state can be passed to
///    `initialise` of another object as its guide.
///
/// The rules, the modifier, the base model and the observer are not owned. They must outlive this object; a base model
/// and an observer can instead be replaced before they end. A base model that a `ProvTDFDriver` has loaded belongs to
/// the driver: read `ProvTDFDriver::getLoadedBaseModel` if you use the state after the driver has ended. Only one
/// thread at a time may use this object.
///
/// ## What is kept
///
/// The *active state* is the legal result, and the only thing that is published. Each update computes it again.
///
/// The *guide* is the record of all requests: the values that the base model held at the start, the values passed to
/// `initialise`, and everything that the user has set since. The rules are not applied to the guide. A value that they
/// refuse stays in the guide, and comes back by itself when they allow it again. So nothing that the user entered is
/// lost. Besides the user, only an override of the rules replaces a value in the guide.
///
/// *Decisions* record which items the user switched on or off. A decision holds until the opposite decision, even while
/// the item does not exist. It cannot be withdrawn: no edit makes an item undecided again. The only exception is
/// `removeNamedObject`, which forgets the decisions inside the removed object.
///
/// Required items are always in the active state. An optional item is a parameter, or a coupled child object, that is
/// available and not required. It is in the active state if it is wanted. The decision on it says whether it is wanted.
/// Without a decision, it is wanted if the guide holds it. An optional item that is not wanted is *potential*: it is on
/// offer, and is listed as potential. A child object that is optional and not coupled is not the user's choice here; it
/// is mirrored from the base model.
///
/// ## One update
///
/// One update walks through the rules, from the active root: each object's parameters in the order of the rules, then
/// its children. The walk is made once, even if values change during it. So a rule sees the new values of everything
/// before it and the old values of everything after it. A rule that reads ahead sees the new values at the next edit.
/// Rules read the active state at and below the active root, and the base model everywhere else.
///
/// The value of an available parameter:
///
/// | wanted or required                               | its value in the active state                          |
/// |--------------------------------------------------|--------------------------------------------------------|
/// | an override is in force                          | the override; the guide takes it over                  |
/// | wanted, the guide has a value that is allowed    | that value                                             |
/// | wanted, the guide's value or override is refused | the default, if required or switched on; otherwise it  |
/// |                                                  | is potential                                           |
/// | switched on, the guide has no value              | the default, or "" when there is none                  |
/// | required only                                    | the default, or "" when there is none                  |
///
/// The first row needs care when a parameter has allowed values. If the parameter is wanted, an override outside the
/// allowed values is refused, as the third row says. If the default then replaces the override, the guide still takes
/// over the refused override. If the parameter is required only, the override is used as it is, even outside the
/// allowed values.
///
/// In a list value, entries that are not allowed are left out. If all allowed values are required, the missing ones are
/// added after the user's entries. Only the number of entries decides whether some are missing. So a list that repeats
/// one value instead of another counts as complete.
///
/// A parameter that the rules withdraw is gone and is not potential. Its value in the guide and the decision on it are
/// kept, and apply again when the rules make it available.
///
/// When the rules offer a subset of the allowed values, a value outside the subset that the user once selected stays on
/// offer as long as it is allowed. This widening applies to parameters that are wanted. A required parameter that the
/// user switched off stays present, but is offered the rule's own subset only, as if nothing had been selected.
///
/// ## What each getter holds
///
/// Every getter describes the last update. A reference that it returns stays valid, and its content unchanged, until
/// the next edit or `baseUpdate`. Arguments of an edit may be such references.
///
/// | Getter                       | after an edit that applied                         | after a refused edit |
/// |------------------------------|----------------------------------------------------|----------------------|
/// | `getActiveTDFState`          | the result, without objects that hold no parameter | the same as before   |
/// | `getNewlyAvailParams`        | parameters that came into the active state         | empty                |
/// | `getModParams`               | parameters whose value or allowed values changed   | empty                |
/// | `getNewlyUnavailParams`      | parameters that left it and are not potential now  | empty                |
/// | `getDeletedObjects`          | deleted objects, only the top of each subtree      | empty                |
/// | `getCreatedObjects`          | created objects                                    | empty                |
/// | `getOverriddenRequests`      | values of the guide that an override replaced      | empty                |
/// | `getModBoundsParams`         | computed bounds that changed                       | empty                |
/// | `getModQuantParams`          | quantity types that were adjusted anew             | empty                |
/// | `getEmptyParameters`         | all parameters that lack a value                   | empty                |
/// | `getAvailPotObjects`,        | all potential items                                | empty                |
/// | `getAvailPotParams`          |                                                    |                      |
/// | `getNewlyAvailPotObjects`,   | items that were not potential before               | empty                |
/// | `getNewlyAvailPotParams`     |                                                    |                      |
/// | `getNewlyUnavailPotObjects`, | items that were potential and are now neither      | all items that were  |
/// | `getNewlyUnavailPotParams`   | potential nor present                              | potential            |
/// | `getModPotParams`            | potential parameters with other allowed values     | empty                |
/// | `isUserNamedTypeAvailable`   | as found in the update                             | the same as before   |
///
/// The change lists `getNewlyAvailParams`, `getModParams`, `getNewlyUnavailParams`, `getCreatedObjects` and
/// `getDeletedObjects` are a log of events, not their net effect. A parameter that came and left within one update is
/// in the lists of both events. A parameter that came and then changed is listed as new and as modified. A parameter
/// that left and came back is listed as new, whether it was lost or only potential in between.
///
/// To bring a copy of the active state up to date, first erase the objects of `getDeletedObjects`, the parameters of
/// `getNewlyUnavailParams`, and the parameters of `getNewlyAvailPotParams` that `getActiveTDFState` lacks. Then set
/// every new or modified parameter that is present to its `getParamValue`.
///
/// ## Edits that do not apply
///
/// An edit outside the active root, or of an object to which it does not apply, is refused. Nothing changes, no walk is
/// made, and the lists are as in the last column above. This includes the lists of potential items and of empty
/// parameters, because only a walk fills them. Keep your own copy on screen until the next edit that applies. After
/// that edit, everything potential is listed as newly available again. `apply` returns the reason of a refusal, and an
/// observer receives it. The nine operations do not report it.
///
/// Unreadable paths are handled differently. `activeSetParam` and `addNewNamedObject` throw the `Error` of `TDFPath`
/// for an object path at or below the active root that it cannot read. After that nothing has changed, not even the
/// lists, and no observer is called. The other edits only compare paths: a decision on an unreadable path is stored and
/// has no effect, and an object with an unreadable path does not exist, so it cannot be removed, duplicated or renamed.
///
/// ## Failures
///
/// An exception of a rule, the base model or the modifier passes to the caller, and so does `std::bad_alloc`. The
/// object, its guide and its decisions remain usable. The edit either has been made or has not been made; it is never
/// made in part.
///
/// - If it has not been made, the active state is as before. Make the edit again.
/// - If it has been made, its update is incomplete: the active state reads as empty and the change lists are of no use.
///   The edit is not lost. Any next edit completes the update, and so does `baseUpdate`. Making the same edit again
///   does no harm. A refused edit tries to complete the update and does not report a failure; the active state then
///   shows whether it succeeded. `duplicateNamedObject` and `renameNamedObject` copy nothing from an incomplete update:
///   they complete it first, or throw. Refresh everything from the getters after the update is complete. All bounds and
///   quantity types are reported again.
///
/// `initialise`, `initialiseBasedOn` and `baseUpdate` follow the same rule: either they have taken effect and only the
/// update is incomplete, or they have changed nothing. An exception of the observer passes to the caller as well. The
/// edit is complete then; only the observer's own work may be incomplete.
///
/// ## Cost
///
/// An edit costs what it changes. The rules of an entry are evaluated again only if something has changed that they
/// have read, or that they determine; the update visits these entries, in the order of the walk, and nothing else. The
/// results are those of a walk of everything. Objects with such entries cost a little each, and so do the objects above
/// them.
///
/// An update walks everything in these cases: `initialise`, `initialiseBasedOn` and `baseUpdate`; after an update that
/// broke off; while a `BetaLoggingController` is attached to the rules; for an object of a derived class; and while a
/// tree holds an object whose name is written and equals its type.
///
/// Conditions, value rules and modifiers of a program are followed through what they read from the model that they get.
/// Reads elsewhere cannot be followed. So rules that report unknown reads (`RuleReads::unknown`), and
/// modifiers that do not say `readsOnlyModel`, are asked in every update. Reads of rules outside of the active root are
/// followed if the base model is a `DynamicTDF`: its revision shows a change. With any other base model, rules that
/// read outside are evaluated in every update. An entry that has read more than about a thousand facts is visited
/// whenever anything changes.
///
/// A result that does not depend on the object at hand is kept until something that it has read changes: a list of all
/// objects that every object asks for is made once. If the environment variable `TARN_PHYSVAL_DONTUSECACHE` is on (see
/// `BoolFromEnvironment`), each entry evaluates its rules afresh; the results are the same. The changes of an update
/// are applied to the active state, which is built again only when there are many. The getters compute nothing, except
/// those that return by value. No operation recurses; depth is limited by memory. Memory: some 150 bytes a parameter
/// are taken to know what was read.
class TARN_EXPORT ProvisionalTDF : public DependencyAnalyser {
 public:
  /// Object path and name of a parameter.
  using ParamId = DynamicTDF::ParamId;
  /// Object path to name of a parameter, sorted by object path.
  using ParamsByObject = std::multimap<std::string, std::string>;

  /// A state for the object at `p_activeRoot` under these rules. With "" the active root is the root of the tree, so
  /// the whole model is edited; "/" is read as "". Rules then read the active state only and never the base model, with
  /// one exception: the list of all objects at the root is the base model's. Write an object whose name equals its type
  /// without the name, as the model itself does.
  ProvisionalTDF(PhysicsData const* p_data, std::string const& p_activeRoot);
  /// With a modifier that names the quantity types of real parameters; null for none.
  ProvisionalTDF(PhysicsData const* p_data, QuantityModifier const* p_modifier, std::string const& p_activeRoot);
  ProvisionalTDF(ProvisionalTDF const&) = delete;
  ProvisionalTDF& operator=(ProvisionalTDF const&) = delete;
  virtual ~ProvisionalTDF();

  /// Prints the start and every later edit, each with its changes. Null ends the printing.
  void setLogger(ProvTDFLogger* p_logger) noexcept;
  /// Calls `p_observer` after the start and after every later edit. Null ends the calls. There is one observer at a
  /// time. A logger is an observer, so this replaces the logger, and `setLogger` replaces the observer.
  void setObserver(ProvTDFObserver* p_observer) noexcept;

  /// @name The start, and a changed base model
  /// `p_base` is kept, and must live until the next `baseUpdate` or the end of this object.
  /// @{

  /// Starts from the active root as it is in the base model, where it need not exist. `p_guideState` overlays the
  /// values of the base model and may name any object. Values of `p_guideState` that the rules refuse wait in the
  /// guide. Objects outside the active root have no effect. A blank value of the base model counts as not given. A
  /// blank value of `p_guideState` counts as a value.
  ///
  /// With a logger, the whole base model is printed after the first update, not only the branch under the active root.
  /// The command "initialise" follows, with the changes of that update.
  ///
  /// Throws the `Error` of `TDFPath` when it cannot read the active root or a path in `p_guideState`. Then nothing has
  /// started, or a state that had started before continues unchanged. `initialise` may be called again.
  ///
  /// A second call starts over with the guide but keeps the decisions, the remembered selections, and the record of
  /// which default names were handled.
  void initialise(ModelTDF const* p_base, ModelState const& p_guideState);

  /// Starts as a copy of the object at `p_basedOnPath` of the base model. The path qualifies if all three conditions
  /// hold:
  ///
  /// - it and the active root are equal up to their last ":", so both are named objects of one type and parent. The
  ///   test compares text only: a singleton inside a named object, `/Case/Domain:a/Heat`, has such a ":" too;
  /// - the base model has the object at `p_basedOnPath`;
  /// - the base model does not have the active root.
  ///
  /// In every other case this does the same as `initialise`, and does not report that.
  ///
  /// The values of the copied object count even if they are blank, unlike those that `initialise` takes from the base
  /// model. If the copy and `p_guideState` both have an object, its copied parameters are used, and all its parameters
  /// of `p_guideState` are dropped. Such a new object has nothing in the base model to mirror. So its optional children
  /// that are not coupled are left out permanently, even if the base model gets the object later.
  void initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base, ModelState const& p_guideState);

  /// Updates after the base model has changed, or replaces it by another one. The guide is not touched: it keeps the
  /// values that the base model had at the start. A change of the base model under the active root shows only in
  /// mirrored children. No observer is called, and a logger prints nothing.
  void baseUpdate(ModelTDF const* p_base);
  /// @}

  /// Makes an edit. Does exactly what the operation of its kind does. Returns why the edit was refused, or nothing when
  /// it was made. See `Refusal` for all reasons.
  [[nodiscard]] std::optional<Refusal> apply(Edit const& p_edit);

  /// @name Edits
  /// Each is one update. When the edit applies, the update is one walk under the rules. An observer is called after
  /// each of them, also when it is refused. See above for edits that do not apply and for unreadable paths.
  /// @{

  /// Writes a value to the guide. This makes the parameter wanted, and the optional objects above it as well. A
  /// parameter or object that the user switched off stays off; the value then waits for `activateOptParam` or
  /// `activateOptObject`. "" is a value like any other. The rules need not know the parameter.
  void activeSetParam(std::string const& p_objPath, std::string const& p_name, std::string const& p_value);

  /// Switches an optional parameter on. The guide's value comes back, if there is one; otherwise the default, or "".
  void activateOptParam(std::string const& p_objPath, std::string const& p_name);
  /// Switches an optional parameter off. Its value stays in the guide, unless it is empty: an empty value is dropped,
  /// so that switching on gives the default. A required parameter stays present, with its override or default, and is
  /// offered the rule's own subset.
  void deactivateOptParam(std::string const& p_objPath, std::string const& p_name);

  /// Switch an optional object on or off. Its content stays in the guide and comes back with it. A decision on an
  /// object that the rules do not know is kept, too.
  void activateOptObject(std::string const& p_path);
  void deactivateOptObject(std::string const& p_path);

  /// Asks for a named object. It appears if the user chooses the names of its type, or if the type is optional and the
  /// rules allow that name. For a required type with a closed list of names, the rules alone decide. Refused for a path
  /// whose last component has no name or a name that equals its type, and for an object that was asked for already.
  void addNewNamedObject(std::string const& p_path);

  /// Takes a named object out of the guide and forgets the decisions on all paths whose text begins with `p_path`. That
  /// includes a sibling whose name begins with this name. Refused for an object that the guide does not hold: an object
  /// that only the rules ask for cannot be removed.
  void removeNamedObject(std::string const& p_path);

  /// Asks for a copy of a present named object under a new name and the same parent, with all values that are in force,
  /// including defaults and overrides. Decisions are not copied. Refused for the active root itself, an absent object,
  /// a singleton, and a new name that is present already or cannot be a name.
  void duplicateNamedObject(std::string const& p_path, std::string const& p_newName);

  /// Duplicates an object and removes the original. The change is reported as a deletion and new parameters. Decisions
  /// on the old name are forgotten. When only the rules ask for the original, it cannot be removed and the edit counts
  /// as refused. The copy is still asked for, and appears with the next walk.
  void renameNamedObject(std::string const& p_path, std::string const& p_newName);
  /// @}

  /// @name Trying
  /// A mark remembers the whole state: the guide, the decisions, the active state, and everything that the getters
  /// return. `rollback` takes all of it back, exactly:
  ///
  ///     ProvisionalTDF::Mark const before = domain.mark();
  ///     domain.activeSetParam("/Case/Domain:rotor", "Motion", "Rotating");
  ///     look(domain.getNewlyAvailParams());
  ///     domain.rollback(before);                       // as if the edit had not been made
  ///
  /// Marks nest. Each must be ended once, by `rollback` or by `release`, which keeps what was done since. That also
  /// ends all marks that were set after it. Ending a mark that has ended already has no effect while no other one is
  /// open. While a mark is open, every change takes memory until the outermost mark ends. A rollback costs about as
  /// much as the edits that it takes back. It cannot fail, and no observer is called. One thing may
  /// be lost: if memory runs out in an update that walks everything while marks are nested, the lists of potential
  /// items and of empty parameters are empty after a rollback to an inner mark. References that getters returned are
  /// valid until the next edit, `baseUpdate` or `rollback`. A base model that `baseUpdate` has replaced must live until
  /// the marks before that have ended.
  /// @{
  class Mark {
   private:
    friend class ProvisionalTDF;
    explicit Mark(std::size_t p_number) noexcept : m_number(p_number) {}
    std::size_t m_number;
  };
  /// Throws `std::bad_alloc`, and sets no mark, when memory runs out.
  [[nodiscard]] Mark mark();
  void rollback(Mark p_mark) noexcept;
  void release(Mark p_mark) noexcept;
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
  /// All allowed values of a parameter that is present or potential. Empty when it may have any value, and when there
  /// is no such parameter.
  [[nodiscard]] std::vector<std::string> getAllowedParamValues(std::string const& p_objPath,
                                                               std::string const& p_name) const;
  /// The subset of the allowed values that is on offer, with the values that the user once selected outside it. Empty
  /// when there is no subset, and for a parameter that is only potential: its subset is known when it is activated. For
  /// a required parameter that the user switched off, this is the rule's own subset.
  [[nodiscard]] std::vector<std::string> getSubsetAllowedParamValues(std::string const& p_objPath,
                                                                     std::string const& p_name) const;
  /// The present objects that match a path pattern, relative to the object at `p_contextPath`; see `PathPattern`.
  /// Throws an `Error` for a string that is not a pattern.
  [[nodiscard]] std::vector<std::string> getPathExpansion(std::string const& p_path,
                                                          std::string const& p_contextPath) const;
  /// The paths of the present parameters that have no value, in the order of the walk. Parameters that need no value
  /// according to the rules are left out. With `p_typedOnly`, only those of type Integer, Real, their lists, and
  /// String.
  [[nodiscard]] std::vector<std::string> const& getEmptyParameters(bool p_typedOnly) const noexcept;
  /// Whether a first object of a required named type may be added: no object of this type exists below `p_parentPath`,
  /// and a new one would hold or offer something. Logarithmic.
  [[nodiscard]] bool isUserNamedTypeAvailable(std::string const& p_parentPath, std::string const& p_type) const;
  /// @}

  /// @name What the state is made of
  /// For those who explain the state. References stay valid, and show later edits, as long as this object.
  /// @{

  /// The tree of the active state: its objects, also those without parameters, and its parameters with their allowed
  /// values. It also has the objects above the active root, which are no part of the state.
  [[nodiscard]] DynamicTDF const& getActiveTree() const noexcept;
  /// The guide.
  [[nodiscard]] DynamicTDF const& getGuideTree() const noexcept;
  /// The model that the rules read: the active state at and below the active root, the base model everywhere else. Null
  /// before the start. Valid until the next `initialise` or `baseUpdate`.
  [[nodiscard]] ModelTDF const* getModelOfRules() const noexcept;
  /// The allowed values of a parameter that is present or potential, with the subset that is on offer. An empty record
  /// when it may have any value, and when there is no such parameter. Valid until the next edit, `baseUpdate` or
  /// `rollback`.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& p_objPath,
                                                              std::string const& p_name) const;
  /// The user's decision: whether the item was switched on. Empty without a decision. Logarithmic.
  [[nodiscard]] std::optional<bool> getParamDecision(std::string const& p_objPath, std::string const& p_name) const;
  [[nodiscard]] std::optional<bool> getObjectDecision(std::string const& p_path) const;
  /// @}

  /// @name What the last update changed
  /// See the table above. Parameters are listed in the order of events, objects in the order of their deletion. For a
  /// deleted subtree, only the top is listed. A required object that holds nothing is deleted without an entry. If a
  /// parent asks for a type that has no rules, the object of that type comes and goes with every walk and is listed
  /// each time.
  /// @{
  [[nodiscard]] std::vector<ParamId> const& getModParams() const noexcept;
  /// Includes parameters that became potential or unavailable later in the same update: ask `hasParameter` whether a
  /// parameter is present.
  [[nodiscard]] std::vector<ParamId> const& getNewlyAvailParams() const noexcept;
  /// Parameters that became potential are not listed here, but in `getNewlyAvailPotParams`.
  [[nodiscard]] std::vector<ParamId> const& getNewlyUnavailParams() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  /// In the order of their creation. A branch that is mirrored from the base model counts as its top. An object that
  /// was deleted later in the same update is listed too: ask `hasObject`.
  [[nodiscard]] std::vector<std::string> const& getCreatedObjects() const noexcept;
  /// Parameters whose value in the guide the update replaced by an override, in the order of events.
  [[nodiscard]] std::vector<ParamId> const& getOverriddenRequests() const noexcept;
  /// Path of the parameter to its lower and upper bound. May list a parameter in an object named "__%%dummy%%__". The
  /// library uses that object to find out about types that have no object yet. Ignore such entries.
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
  friend struct ProvisionalTDFAccess;  // for the library's own sources and tests
  using DependencyAnalyser::analyse;   // a walk outside of an update would leave the lists in disorder
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

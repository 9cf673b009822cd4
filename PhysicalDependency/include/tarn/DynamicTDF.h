#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ModelTDF.h>
#include <tarn/ParamAllowedValues.h>

namespace tarn {

/// A model that can be edited, with a log of the changes.
///
///     DynamicTDF model;
///     model.setParameter("/Case/Domain:rotor", "Motion", "Rotating");   // makes /Case and the rotor as well
///     model.createObject("/Case", "Domain", "stator");                  // an object without parameters
///     model.resetChanges();                                             // a batch begins
///     model.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
///     model.getModifiedParameters();                                    // {("/Case/Domain:rotor", "Motion")}
///
/// Objects. Every object is known by its full path. A look-up by path computes one hash of the path and compares it
/// once, however wide the tree is. Listing the children of one type is linear in their number. Children are in the
/// order in which they were created. The root always exists, cannot be deleted, and has the empty path only: "/" is no
/// object. Depth is limited by memory alone. An object takes memory for its own component, not for its path. No
/// operation recurses.
///
/// Paths. An operation that creates an object also creates all missing objects above it, with the types and names in
/// the path. `TDFPath` must accept a path of which something has to be created. Otherwise its `Error` is thrown and
/// nothing is created. `createObject` writes a name that equals the type as a singleton: `/Case/Domain`, not
/// `/Case/Domain:Domain`. Use the short form everywhere: an object that was created under the long form is found under
/// the long form only, while listings give the short form.
///
/// Values. White space at the ends is removed before a value is compared or stored. Values are not checked against the
/// allowed values of a parameter, which are only kept for readers. A parameter is of allowed value type or ordinary for
/// as long as it exists; the overload of `setParameter` that creates it decides.
///
/// The change log. While recording is on, each event is appended to one of four lists, in the order of events:
///
/// | Operation                             | added    | modified           | deleted parameters | deleted objects  |
/// |---------------------------------------|----------|--------------------|--------------------|------------------|
/// | `setParameter`, `initialise`, `update`| each new | each that differed |                    |                  |
/// | `deleteParameter`                     |          |                    | the parameter      |                  |
/// | `deleteObject`, `deleteObjects`       |          |                    | all of the subtree | the given path   |
/// | `deleteObjectUnrecorded`              |          |                    | all of the subtree |                  |
/// | `copyBranch`, object is in the source | each new | each that differed | all not in source  | each removed top |
/// | `copyBranch`, object is not           |          |                    | all of the subtree |                  |
/// | `createObject`, implied objects       |          |                    |                    |                  |
///
/// It is a log of events, and nothing in it is merged. A parameter that was added and then deleted is in both lists;
/// one that was modified three times is listed three times. Setting the present value and deleting a missing item are
/// no events. There is no list of new objects; those with parameters show through them. Entries hold the object path as
/// the caller wrote it, or in a mirrored branch the path in the source. Only the top of a deleted subtree is among the
/// deleted objects. Its parameters come leaves first: the subtree of the last child, and so on to that of the first
/// child, then the object's own parameters in name order. A reader that needs the net effect of a batch must compute
/// it.
///
/// While recording is off the lists do not change at all: nothing is added, and neither `resetChanges` nor `initialise`
/// empties them. So entries that a reader finds after switching recording off belong to the batch before.
///
/// References. A reference to a value or to allowed values is valid until that parameter is set, a parameter of its
/// object is added or deleted, or `initialise` loads the tree. A reference to an object's name or type is valid until
/// that object is deleted. Edits elsewhere in the tree do not affect them. A reference to a list of the log is valid as
/// long as the tree and shows later events. An argument may itself be such a reference, except to the value that the
/// call overwrites.
///
/// Without memory. An operation on one object or parameter either is done and logged, or throws `std::bad_alloc` and
/// changes and logs nothing. Deleting a subtree, loading and mirroring may be done in part; the log then holds exactly
/// that part, and the same operation again does the rest. Reading fails only where it fills a list, makes a state or
/// splits a parameter path. Deleting does not fail while recording is off.
///
/// Several threads may read a tree at once as long as none changes it.
class TARN_EXPORT DynamicTDF : public ModelTDF {
 public:
  /// A range of a state.
  struct StateRange {
    ModelState::const_iterator begin;
    ModelState::const_iterator end;
  };
  /// The object path and the name of a parameter.
  using ParamId = std::pair<std::string, std::string>;

  /// Makes a tree that holds only the root.
  explicit DynamicTDF(bool recordUpdates = true);
  ~DynamicTDF() override;
  /// Exchanges all objects, the logs, and whether they record. References stay valid and refer to the other tree then.
  void swap(DynamicTDF& other) noexcept;
  DynamicTDF(DynamicTDF const&) = delete;
  DynamicTDF& operator=(DynamicTDF const&) = delete;

  /// @name Reading, see `ModelTDF`
  /// A form that takes a parameter path splits it and calls the form that takes object path and name. So a derived
  /// class needs to override only the latter.
  /// @{
  [[nodiscard]] bool hasObject(std::string const& path) const override;
  [[nodiscard]] bool hasParameter(std::string const& paramPath) const override;
  [[nodiscard]] bool hasParameter(std::string const& objPath, std::string const& name) const override;
  [[nodiscard]] std::string const& getObjectName(std::string const& path) const override;
  [[nodiscard]] std::string const& getObjectType(std::string const& path) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& paramPath) const override;
  [[nodiscard]] std::string const& getParameterValue(std::string const& objPath,
                                                     std::string const& name) const override;
  bool getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const override;
  bool getParamValueAsList(std::string const& objPath, std::string const& name,
                           std::vector<std::string>& out) const override;
  bool getParameterNames(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const override;
  bool getChildObjectNamesByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool getChildObjectPathsByType(std::string const& path, std::string const& type,
                                 std::vector<std::string>& out) const override;
  bool anyChildOfType(std::string const& path, std::string const& type,
                      std::function<bool(std::string const& child)> const& visit) const override;
  /// @}

  /// Offered by this class itself. A derived class may answer otherwise than the tree, so it offers none unless it
  /// overrides this.
  [[nodiscard]] ObjectReader const* objectReader() const noexcept override;

  /// Returns the value, or null when there is no such parameter: `hasParameter` and `getParameterValue` in one look-up.
  [[nodiscard]] std::string const* findParameterValue(std::string const& objPath, std::string const& name) const;

  /// Returns the allowed values with which the parameter was last set. For a parameter that is missing or not of
  /// allowed value type, returns an empty record.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;

  /// Returns true when neither the object nor anything below it holds a parameter. So true for a missing object.
  [[nodiscard]] bool isObjectEmpty(std::string const& path) const;

  /// Returns the content at and below `rootPath`. Objects without parameters are left out, whatever is below them. So a
  /// tree that is rebuilt from a state has only the objects that its paths imply.
  ///
  /// "" and "/" both mean the whole tree. In the state the parameters of the root are under "" in both cases. No other
  /// path may end in "/": there is no such object, so its state is empty.
  [[nodiscard]] ModelState getState(std::string const& rootPath) const;

  /// Makes `state` equal to what `getState` returns for the same root now. `state` must be what `getState` returned
  /// when the log was last empty, and recording must have been on since then for all changes that are not undone.
  /// Linear in the length of the log, and not slower than `getState`.
  void refreshState(ModelState& state, std::string const& rootPath) const;

  /// A number that differs after every call that changed an object, a parameter, a value or allowed values. The same
  /// number at two times means the same content. So a caller that keeps a result computed from the tree can detect when
  /// it is out of date. The number may also change when the content did not. Numbers of two trees have no relation;
  /// `swap` exchanges them with the content. Constant time.
  [[nodiscard]] std::uint64_t getRevision() const noexcept;

  /// Creates an object. With an empty `name`, or one that equals `type`, it is a singleton. Returns false, with nothing
  /// changed, when it exists already. Never logged.
  bool createObject(std::string const& parentPath, std::string const& type, std::string const& name);

  /// Deletes an object with everything below it. An unknown path, and the root, are ignored.
  void deleteObject(std::string const& path);
  /// `deleteObject` for each path in turn.
  void deleteObjects(std::vector<std::string> const& paths);
  /// Like `deleteObject`, but the object does not enter the list of deleted objects. "Unrecorded" refers to the object
  /// only: its parameters and those below it are logged as deleted. To log nothing at all, stop recording.
  void deleteObjectUnrecorded(std::string const& path);

  /// An absent object or parameter is ignored.
  void deleteParameter(std::string const& objPath, std::string const& name);

  /// Sets a parameter and creates missing objects. A new parameter is an ordinary one. A parameter of allowed value
  /// type takes the value and keeps its allowed values.
  void setParameter(std::string const& objPath, std::string const& name, std::string const& value);
  /// Sets a parameter of allowed value type. Throws `physics_dep::invalidParamVal` when it exists as an ordinary one.
  /// It then keeps its value, and nothing is logged.
  void setParameter(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues,
                    std::string const& value);

  /// @name Bulk loading
  /// `initialise` first empties the tree, and the log too if recording is on. `update` adds and overwrites, and removes
  /// nothing. Both take a model from `path` downwards, including its objects without parameters, or a range of a state,
  /// in which an entry with an empty map makes an object. With `skipEmpty`, values that are empty or white space are
  /// ignored in this call: they neither add nor overwrite. Everything that is loaded is logged like single edits. To
  /// keep a load out of the log, stop recording during it.
  ///
  /// `path` is passed to `model` unchanged. When `model` has no object at `path`, the object is still created here,
  /// without parameters and children, together with the missing objects above it. Write the root as "". A model that
  /// does not answer to "/" loads nothing for it. When a model answers to "/", its parameters go to the root and are
  /// logged under "/".
  ///
  /// When a path in the source cannot be read, the `Error` of `TDFPath` is thrown, and what was loaded before stays.
  /// @{
  void initialise(ModelTDF const* model, std::string const& path, bool skipEmpty = false);
  void initialise(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty = false);
  /// The same from several ranges, one after the other. When an object is in two ranges, it gets the parameters of
  /// both, and for a parameter in both the later value. A tree that does not record and still has the objects of its
  /// last such load is not rebuilt for the same objects: only differences in their parameters change. This holds while
  /// the paths ascend from the first range to the last.
  void initialise(std::vector<StateRange> const& parts, bool skipEmpty = false);
  void update(ModelTDF const* model, std::string const& path, bool skipEmpty = false);
  void update(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty = false);
  /// @}

  /// Makes the branch at `path` equal to that of `source`: objects, parameters, values, and allowed values where the
  /// source has them. Children that exist here keep their position and new ones follow them, so the order may differ
  /// from the order in the source. Does nothing when `source` is this tree.
  ///
  /// When the source lacks the object at `path`, it is deleted here but does not enter the list of deleted objects. A
  /// child that the source lacks is deleted and does enter it. The candidates are the children that the virtual
  /// `getChildObjectPaths` of this tree lists before they are copied. So a derived class can keep children by not
  /// listing them.
  ///
  /// Allowed values. A parameter that has allowed values in the source gets them here. When it exists here as an
  /// ordinary one, `physics_dep::invalidParamVal` is thrown, and what was copied before stays. A parameter without
  /// allowed values in the source passes on only its value: a parameter of allowed value type keeps its own allowed
  /// values here, and a new one is ordinary, even if it is of allowed value type with an empty record in the source.
  void copyBranch(DynamicTDF const* source, std::string const& path);

  /// @name The change log
  /// @{
  void startRecordingUpdates();
  void stopRecordingUpdates();
  /// Empties the four lists if recording is on. If it is off, does nothing.
  void resetChanges();
  [[nodiscard]] std::vector<ParamId> const& getAddedParameters() const noexcept;
  [[nodiscard]] std::vector<ParamId> const& getDeletedParameters() const noexcept;
  [[nodiscard]] std::vector<ParamId> const& getModifiedParameters() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  /// @}

 private:
  friend struct DynamicTDFAccess;  // for the library's own sources
  struct Node;
  class NodeStore;
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn

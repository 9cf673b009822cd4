#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/ModelTDF.h>
#include <tarn/ParamAllowedValues.h>

namespace tarn {

class ChangeRecord;

/// A model that can be edited, with a log of what the edits did.
///
///     DynamicTDF model;
///     model.setParameter("/Case/Domain:rotor", "Motion", "Rotating");   // makes /Case and the rotor as well
///     model.createObject("/Case", "Domain", "stator");                  // an object without parameters
///     model.resetChanges();                                             // a batch begins
///     model.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
///     model.getModifiedParameters();                                    // {("/Case/Domain:rotor", "Motion")}
///
/// Objects. Every object is known by its full path. A look-up by path costs one hash of it and one comparison with it,
/// however wide the tree is; asking an object for its children of one type costs as much as there are of them. Children
/// stand in the order in which they were created. The root always exists, cannot be deleted, and answers to the empty
/// path only: "/" is no object. Depth is limited by memory alone, of which an object takes as much as its own component
/// needs and not its path; no operation recurses.
///
/// Paths. Whatever creates an object also creates all objects above it that are missing, with the types and names that
/// the path gives them. A path of which something has to be created must be one that `TDFPath` accepts; else its
/// `Error` is thrown and nothing is created. `createObject` writes a name that equals the type as a singleton,
/// `/Case/Domain` and not `/Case/Domain:Domain`. Write it so everywhere: an object that came into being under the long
/// form is found under the long form only, while listings give the short one.
///
/// Values. White space at the ends is dropped before a value is compared or stored. Nothing is checked against the
/// allowed values of a parameter; they are kept for readers. Whether a parameter is of allowed value type is settled
/// when it is created, by the overload of `setParameter` that creates it, for as long as it exists.
///
/// The change log. While recording is on, each event is appended to one of four lists, in the order of events:
///
/// | Operation                             | added    | modified           | deleted parameters | deleted objects  |
/// |---------------------------------------|----------|--------------------|--------------------|------------------|
/// | `setParameter`, `initialise`, `update`| each new | each that differed |                    |                  |
/// | `deleteParameter`                     |          |                    | it                 |                  |
/// | `deleteObject`, `deleteObjects`       |          |                    | all of the subtree | the given path   |
/// | `deleteObjectUnrecorded`              |          |                    | all of the subtree |                  |
/// | `copyBranch`, object is in the source | each new | each that differed | all not in source  | each removed top |
/// | `copyBranch`, object is not           |          |                    | all of the subtree |                  |
/// | `createObject`, implied objects       |          |                    |                    |                  |
///
/// It is a log of events, and nothing in it is folded: what was added and then deleted stands in both lists, what was
/// modified three times stands three times. Setting what is already there and deleting what is not there are no events.
/// There is no list of new objects; those with parameters show by them. Entries carry the object path as the caller
/// wrote it, or in a mirrored branch the path in the source. Of a deleted subtree only the top stands among the deleted
/// objects, and its parameters come leaves first: the subtree of the last child, and so on to that of the first, then
/// the object's own parameters in name order. A reader that wants the net effect of a batch has to work it out.
///
/// While recording is off the lists do not change at all: nothing is added, and neither `resetChanges` nor `initialise`
/// empties them. So a reader that finds entries after switching recording off reads those of the batch before.
///
/// References. One to a value or to allowed values stays valid until that parameter is set, a parameter of its object
/// comes or goes, or `initialise` sweeps the tree; one to an object's name or type until that object goes. Edits
/// elsewhere in the tree leave them alone. One to a list of the log is valid as long as the tree, and shows later
/// events. An argument may itself be such a reference, unless it is to the value that the call overwrites.
///
/// Without memory. An operation on one object or parameter has been done and logged, or `std::bad_alloc` is thrown and
/// nothing is changed or logged. Of a subtree to be deleted and of what is loaded or mirrored a part may then be done,
/// and the log tells exactly that part; the same operation again does the rest. Reading fails only where it fills a
/// list or makes a state, or divides a parameter path; deleting does not fail while recording is off.
///
/// One thread at a time, also for reading: a look-up remembers what it found.
class TARN_EXPORT DynamicTDF : public ModelTDF {
 public:
  /// A part of a state.
  struct StateRange {
    ModelState::const_iterator begin;
    ModelState::const_iterator end;
  };
  /// The object path and the name of a parameter.
  using ParamId = std::pair<std::string, std::string>;

  /// A tree that holds the root and nothing else.
  explicit DynamicTDF(bool recordUpdates = true);
  ~DynamicTDF() override;
  /// Exchanges all objects and the log, and whether it records. References go along.
  void swap(DynamicTDF& other) noexcept;
  DynamicTDF(DynamicTDF const&) = delete;
  DynamicTDF& operator=(DynamicTDF const&) = delete;

  /// @name Reading, as `ModelTDF` has it
  /// A form that takes a parameter path divides it and asks its sibling, so that a derived class has to override only
  /// the latter.
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
  /// @}

  /// The value, or null when there is no such parameter: `hasParameter` and `getParameterValue` in one look-up.
  [[nodiscard]] std::string const* findParameterValue(std::string const& objPath, std::string const& name) const;

  /// The allowed values that the parameter was last set with. Of a parameter that is missing or not of allowed value
  /// type, an empty record.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;

  /// True when neither the object nor anything below it holds a parameter; so also when there is no such object.
  [[nodiscard]] bool isObjectEmpty(std::string const& path) const;

  /// The content at and below `rootPath`; of the whole tree for "" and "/". Objects without parameters are left out,
  /// whatever stands below them, so a tree that is rebuilt from a state has only the objects that its paths imply.
  [[nodiscard]] ModelState getState(std::string const& rootPath) const;

  /// Makes `state` what `getState` would give for the same root now. It must be what that gave when the log was last
  /// empty, and recording must have been on ever since for all changes that are not undone. Costs as much as the log is
  /// long, and no more than `getState`.
  void refreshState(ModelState& state, std::string const& rootPath) const;

  /// A number that is another one after every call that changed an object, a parameter, a value or allowed values. The
  /// same number at two times means the same content, so a caller who keeps what it worked out from the tree can tell
  /// when that is out of date. It may also change when nothing did. Numbers of two trees have no relation; `swap`
  /// exchanges them with the content. Constant time.
  [[nodiscard]] std::uint64_t getRevision() const noexcept;

  /// Creates an object. With an empty `name`, or one that equals `type`, it is a singleton. Returns false, with nothing
  /// changed, when it exists already. Never logged.
  bool createObject(std::string const& parentPath, std::string const& type, std::string const& name);

  /// Deletes an object with everything below it. An unknown path, and the root, are ignored.
  void deleteObject(std::string const& path);
  /// `deleteObject` for each path in turn.
  void deleteObjects(std::vector<std::string> const& paths);
  /// As `deleteObject`, but the object does not enter the list of deleted objects. Its parameters and those below it
  /// are logged as deleted all the same: "unrecorded" is said of the object. To log nothing at all, stop recording.
  void deleteObjectUnrecorded(std::string const& path);

  /// An absent object or parameter is ignored.
  void deleteParameter(std::string const& objPath, std::string const& name);

  /// Sets a parameter and creates whatever is missing. A new parameter is an ordinary one; a parameter of allowed value
  /// type takes the value and keeps its allowed values.
  void setParameter(std::string const& objPath, std::string const& name, std::string const& value);
  /// Sets a parameter of allowed value type. Throws `physics_dep::invalidParamVal` when it exists as an ordinary one;
  /// it then keeps its value, and nothing is logged.
  void setParameter(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues,
                    std::string const& value);

  /// @name Bulk loading
  /// `initialise` empties the tree first, `update` adds and overwrites and removes nothing. Both take a model from
  /// `path` downwards, with its objects that hold no parameters, or a range of a state, where an entry with an empty
  /// map makes an object. With `skipEmpty`, values that are empty but for white space are passed over: they neither add
  /// nor overwrite. It holds for this call only. Everything loaded is logged like single edits, so a caller who does
  /// not want a whole load in the log stops recording for the time of it.
  ///
  /// `path` is handed to `model` as it stands. Write the root as "": a model that does not answer to "/" gives nothing
  /// for it, and what one that does gives goes to the root and is logged under "/".
  ///
  /// When a path in the source cannot be read, the `Error` of `TDFPath` is thrown and what was loaded before stays.
  /// @{
  void initialise(ModelTDF const* model, std::string const& path, bool skipEmpty = false);
  void initialise(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty = false);
  /// The same from several parts of states, one behind the other. A tree that does not record, and still has the
  /// objects of its last such load, is not built anew for the same objects: only what differs in their parameters
  /// changes.
  void initialise(std::vector<StateRange> const& parts, bool skipEmpty = false);
  void update(ModelTDF const* model, std::string const& path, bool skipEmpty = false);
  void update(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty = false);
  /// @}

  /// Makes the branch at `path` equal to that of `source`: objects, parameters and allowed values. Children that are
  /// here already keep their place in the order and new ones go behind them, so the order may differ from the source's.
  /// A source without that object removes it here, and unlike a child that the source lacks it does not enter the list
  /// of deleted objects. Does nothing when `source` is this tree.
  ///
  /// Throws `physics_dep::invalidParamVal` when a parameter has allowed values in the source and is an ordinary one
  /// here; what was copied before stays. The other way round is no error: the parameter takes the plain value.
  void copyBranch(DynamicTDF const* source, std::string const& path);

  /// @name The change log
  /// @{
  void startRecordingUpdates();
  void stopRecordingUpdates();
  /// Empties the four lists, if recording is on; if it is off, does nothing.
  void resetChanges();
  [[nodiscard]] std::vector<ParamId> const& getAddedParameters() const noexcept;
  [[nodiscard]] std::vector<ParamId> const& getDeletedParameters() const noexcept;
  [[nodiscard]] std::vector<ParamId> const& getModifiedParameters() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  /// @}

  // For the library's own sources, and not to be had from it.
  class ObjectAt;
  class StateLoad;

 private:
  struct Node;
  class NodeStore;
  class SkipEmptyScope;
  class StateWalk;

  [[nodiscard]] static std::string childPath(std::string const& parentPath, Node const& child);
  Node& findCreateNode(std::string const& path);
  bool deleteNodeAndChildren(std::string const& path);
  void doSetParameter(std::string const& objPath, std::string const& name, std::string const& value, Node& node);
  void doSetParameter(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues,
                      std::string const& value, Node& node);
  template <class Change>
  void changeObject(std::string const& path, Change const& change);
  template <class Change>
  void recordingModified(std::string const& objPath, std::string const& name, Change const& change);
  template <class... Initial>
  void addParameter(std::string const& objPath, std::string const& name, Node& node, Initial const&... initial);
  void setParameters(std::string topPath, ModelTDF const& model);
  Node& setParameters(std::string const& objPath, ObjectState const& values);
  void refreshParameter(ModelState& state, std::string const& rootPath, std::string const& objPath,
                        std::string const& name) const;
  bool refill(std::vector<StateRange> const& parts, bool skipEmpty);
  void copyNodeAndChildren(Node const& sourceTop);
  void copyNodeParameters(Node const& sourceNode, Node& targetNode, std::string const& objPath);
  [[nodiscard]] std::vector<std::string> listedChildrenNotIn(Node const& sourceNode, std::string const& path) const;
  void deleteObsoleteChildren(Node const& sourceNode, Node const& targetNode, std::string const& path);
  void clear();

  /// Set for the time of a bulk load that asks for it: `doSetParameter` passes over empty values.
  bool skipEmptyValues_ = false;
  std::unique_ptr<NodeStore> nodes_;
  std::unique_ptr<ChangeRecord> changes_;
};

}  // namespace tarn

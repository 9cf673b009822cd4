#pragma once

#include <deque>
#include <string>
#include <vector>

#include <tarn/ChildAvailInfo.h>
#include <tarn/Export.h>
#include <tarn/ObjBeginInfo.h>
#include <tarn/ParamAvailInfo.h>

namespace tarn {

class EvalContext;
class ModelTDF;
class ObjDependency;
class PhysicsData;

/// Walks a model under the rules and tells a derived class, through five hooks, what the rules say about every object,
/// parameter and type of children. It judges nothing itself.
///
/// A worked example. With rules that give a `/Case` the required parameter Flow Regime and domains, each with the
/// required parameter Motion, this lists what is missing:
///
///     class MissingParameters final : public DependencyAnalyser {
///      public:
///       MissingParameters(PhysicsData const* rules, ModelTDF const* model)
///           : DependencyAnalyser(rules), model_(model) {}
///
///       std::vector<std::string> in(std::string const& root) {
///         missing_.clear();
///         EvalContext context(model_);
///         analyse(root, &context);
///         return missing_;
///       }
///
///      private:
///       HandlerStatus onBeginObject(ObjBeginInfo const*) override { return Continue; }
///       HandlerStatus onBeginParam(std::string const&, std::string const&) override { return Continue; }
///       HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
///         bool const wanted = info->isAvailable() && info->isRequired();
///         if (wanted && !model_->hasParameter(info->getObjPath(), info->getName())) {
///           missing_.push_back(info->getObjPath() + "/" + info->getName());
///         }
///         return Continue;
///       }
///       HandlerStatus onChildCheck(ChildAvailInfo const*) override { return Continue; }
///       HandlerStatus onEndObject(std::string const&, bool) override { return Continue; }
///
///       ModelTDF const* model_;
///       std::vector<std::string> missing_;
///     };
///
/// For a model with `/Case/Domain:rotor` and no parameters, `in("/Case")` gives `/Case/Flow Regime` and
/// `/Case/Domain:rotor/Motion`.
///
/// The walk of one object, and what is read when:
///
/// 1. Its rules are looked up by its type path. The model is not read. An object need not exist to be walked.
/// 2. `onBeginObject`. For an object without rules, or after `SkipObject`, 5. is next.
/// 3. For each parameter entry of the rules, in their order: `onBeginParam`; the condition and then the allowed values
///    are evaluated; `onParamCheck`; if the parameter is available and the entry is a context rule, the model is asked
///    whether it has it; if it has, its value is read and selects the entries behind it, and in the end the child
///    entries. An empty value counts. A context rule parameter that is unavailable or absent leaves the value before it
///    in force.
/// 4. For each child entry, in their order: the condition and then the names are evaluated; `onChildCheck`; if the type
///    is available, the model is asked which children it has: of a singleton, whether there is the child without a
///    name; of any other type, for the names of all children of the type, which are copied. Then each child found is
///    walked whole, in the order of the model, before the next entry is looked at.
/// 5. `onEndObject`.
///
/// So, unless `limitParams` narrows it, the hook for an entry comes once for every entry of the rules, whether or not
/// the entry is available and the model holds such an item, and never for an item of the model that the rules have no
/// entry for. The entry alone decides how children are addressed: one of a singleton never finds named children, and
/// any other addresses a child that has no name by its type, `/Case/Domain:Domain`.
///
/// Hooks may change the model that is being walked. The order above is what makes it work: what a hook creates or
/// deletes for its entry is seen when the model is asked right after it, and what is evaluated later reads the model as
/// it then stands. `onParamCheck` may create its parameter and have it count as present for a context rule;
/// `onChildCheck` may create children and have them walked. Only the copied names are not looked at again: a child of
/// the type that is created during the walk of its siblings is not visited, and one that is deleted is still walked
/// under its old path. Objects above the current one may change, too; their entries that were passed are not revisited.
///
/// What a hook is handed - records, paths, names - is valid until it returns. Do not start a walk on the same analyser
/// from a hook; one on another analyser is fine.
///
/// What the hooks return:
///
/// | Hook            | `Continue`          | `SkipObject`                       | `Abort`                        |
/// |-----------------|---------------------|------------------------------------|--------------------------------|
/// | `onBeginObject` | the object is       | its parameters and children are    | as `Continue`                  |
/// |                 | walked              | passed over; `onEndObject` comes   |                                |
/// | `onBeginParam`  | the parameter is    | as `Continue`                      | the walk ends; no evaluation,  |
/// |                 | evaluated           |                                    | no `onParamCheck`              |
/// | `onParamCheck`  | the walk goes on    | as `Continue`                      | the walk ends                  |
/// | `onChildCheck`  | the walk goes on    | as `Continue`                      | the walk ends                  |
/// | `onEndObject`   | ignored             | ignored                            | ignored                        |
///
/// When a walk is aborted, `analyse` returns as usual; a caller who has to know must have the derived class note it.
/// What a hook or a rule throws ends the walk and reaches the caller of `analyse`. In both cases no further hook is
/// called, `onEndObject` for the objects still open included: prepare for that if you keep a stack of them. The
/// analyser keeps nothing of such a walk, nor of one without memory, and is ready for the next all the same.
///
/// Depth is limited by memory alone: the walk keeps its open objects on the heap and does not recurse. Each takes about
/// 500 bytes and three copies of its path, and beside that the paths of the siblings that are still to be walked. So a
/// model of 1,000 levels takes some megabytes of heap, most of them paths, and no more stack than one of a single
/// level. Its time grows with the square of the depth, since each path is as long as it is deep.
///
/// One thread at a time for one analyser. Destroy a derived class as what it is: the destructor here is not virtual.
class TARN_EXPORT DependencyAnalyser {
 public:
  /// What a hook wants to happen next; see the table above. The numbers are part of the interface.
  enum HandlerStatus : int { Continue = 0, SkipObject = 1, Abort = 2 };

  /// An analyser under these rules, which are not owned, must not be null, and must outlive it.
  explicit DependencyAnalyser(PhysicsData const* physicsData) noexcept;
  DependencyAnalyser(DependencyAnalyser const&) = default;
  DependencyAnalyser& operator=(DependencyAnalyser const&) = default;

  /// Walks from the object at `path` downwards, which is "" for a whole model, reading the model of `evalContext`. The
  /// object is walked as required and not coupled, whatever its parent's rules say, and whether or not it exists. The
  /// context is not owned, must not be null, and is remembered for `isParamValueEqual`.
  ///
  /// Throws the `Error` of `TDFPath` when `path`, or a path made with a name in the model, is none; passes on what
  /// hooks and rules throw. An abort is no error.
  void analyse(std::string const& path, EvalContext* evalContext);

 protected:
  ~DependencyAnalyser() = default;

  /// @name The hooks, in the order in which they come for one object
  /// @{
  /// The object is entered. Nothing has been evaluated, and its model content has not been read.
  virtual HandlerStatus onBeginObject(ObjBeginInfo const* info) = 0;
  /// A parameter entry of the object comes next; it has not been evaluated. What is done to the model here is seen by
  /// the evaluation.
  virtual HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) = 0;
  /// The parameter has been evaluated; the model has not been asked for it.
  virtual HandlerStatus onParamCheck(ParamAvailInfo const* info) = 0;
  /// The type of children has been evaluated; the model has not been asked for them.
  virtual HandlerStatus onChildCheck(ChildAvailInfo const* info) = 0;
  /// The object and everything below it have been walked. `required` is what `ObjBeginInfo::isRequired` said.
  virtual HandlerStatus onEndObject(std::string const& objPath, bool required) = 0;
  /// @}

  /// Of which parameter entries of an object the hooks come.
  enum class ParamScope {
    All,
    /// Those of parameters that the model holds or that are required.
    PresentOrRequired,
    /// Those of parameters that the model holds.
    Present
  };

  /// Called from `onBeginObject`: narrows the parameter walk of the object that begins, for an analyser to which other
  /// entries make no difference. Where the rules have more than a few dozen entries, those others are passed over
  /// without being evaluated, so that an object with thousands of entries costs no more than the parameters it holds;
  /// a few are walked whole, which is as quick. What the model holds is asked right behind the hook; hooks that create
  /// parameters have no use for this. Without a call, and for each further object, the scope is `All`.
  void limitParams(ParamScope scope) noexcept { paramScope_ = scope; }

  /// Whether the parameter has this value in the model of the last walk, compared as values of its type: "1.0" equals
  /// "1" for a Real. A parameter that the model lacks has the value "". False when the rules have no such parameter for
  /// the object, also if the model has. Calls no hook and evaluates nothing. For use during and after a walk, while the
  /// context of that walk and its model are alive.
  [[nodiscard]] bool isParamValueEqual(std::string const& objPath, std::string const& name,
                                       std::string const& value) const;

 private:
  struct OpenObject;

  void checkTree(std::string const& root);
  void enterChild(std::deque<OpenObject>& open);
  void beginObject(OpenObject& object, bool coupled);
  void checkParams(std::string const& path, ObjDependency& dep);
  void checkChild(OpenObject& object);
  bool isParamAvailable(std::string const& path, ObjDependency const& dep);
  bool isChildAvailable(std::string const& path, ObjDependency const& dep);

  PhysicsData const* physicsData_;
  // Those of the last walk; null before the first.
  ModelTDF const* model_ = nullptr;
  EvalContext* evalContext_ = nullptr;

  // Of the object that begins.
  ParamScope paramScope_ = ParamScope::All;
  std::vector<std::string> presentParams_;
};

}  // namespace tarn

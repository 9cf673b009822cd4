#pragma once

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

/// Walks a model under the rules. It passes to a derived class, through five hooks, what the rules say about every
/// object, parameter and type of children. It judges nothing itself.
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
/// The walk of one object, and the times at which it reads:
///
/// 1. Its rules are looked up by its type path. The model is not read. An object need not exist to be walked.
/// 2. `onBeginObject`. For an object without rules, or after `SkipObject`, 5. is next.
/// 3. For each parameter entry of the rules, in their order: `onBeginParam`; the condition and then the allowed values
///    are evaluated; `onParamCheck`. If the parameter is available and the entry is a context rule, the model is asked
///    whether it has the parameter. If so, its value is read and selects the entries after it, and in the end the child
///    entries. An empty value counts. A context rule parameter that is unavailable or absent leaves the previous value
///    in force.
/// 4. For each child entry, in their order: the condition and then the names are evaluated; `onChildCheck`; if the type
///    is available, the model is asked which children it has. For a singleton, this is whether the child without a name
///    exists. For any other type, these are the names of all children of the type, which are copied. Then each child
///    found is walked whole, in the order of the model, before the next entry is evaluated.
/// 5. `onEndObject`.
///
/// So, unless `limitParams` narrows the walk, each entry of the rules has one hook call, whether or not the entry is
/// available and the model holds such an item. Items of the model without an entry in the rules have no hook call. The
/// entry alone decides how children are addressed: an entry of a singleton never finds named children, and any other
/// entry addresses a child that has no name by its type, `/Case/Domain:Domain`.
///
/// Hooks may change the model that is being walked. The order above makes that safe: the model is asked directly after
/// the hook, so the walk sees what the hook created or deleted for its entry, and later evaluations read the model as
/// it is then. `onParamCheck` may create its parameter, which then counts as present for a context rule. `onChildCheck`
/// may create children, which are then walked. Only the copied names are not read again: a child of the type that is
/// created during the walk of its siblings is not visited, and one that is deleted is still walked under its old path.
/// Objects above the current one may change too, but their earlier entries are not visited again.
///
/// The arguments of a hook (records, paths, names) are valid until it returns. Do not start a walk on the same analyser
/// from a hook. A walk on another analyser is allowed.
///
/// Return values of the hooks:
///
/// | Hook            | `Continue`          | `SkipObject`                       | `Abort`                        |
/// |-----------------|---------------------|------------------------------------|--------------------------------|
/// | `onBeginObject` | the object is       | its parameters and children are    | as `Continue`                  |
/// |                 | walked              | skipped; `onEndObject` is called   |                                |
/// | `onBeginParam`  | the parameter is    | as `Continue`                      | the walk ends; no evaluation,  |
/// |                 | evaluated           |                                    | no `onParamCheck`              |
/// | `onParamCheck`  | the walk goes on    | as `Continue`                      | the walk ends                  |
/// | `onChildCheck`  | the walk goes on    | as `Continue`                      | the walk ends                  |
/// | `onEndObject`   | ignored             | ignored                            | ignored                        |
///
/// When a walk is aborted, `analyse` returns as usual. A caller who needs to know must let the derived class record it.
/// An exception of a hook or a rule ends the walk and reaches the caller of `analyse`. In both cases no further hook is
/// called, also not `onEndObject` for the objects that are still open. Prepare for that if you keep a stack of them.
/// The analyser keeps nothing of such a walk, also not when memory runs out, and is ready for the next one.
///
/// Depth is limited by memory alone: the walk keeps its open objects on the heap and does not recurse. Each takes about
/// 700 bytes, its path, and the names of its children of one type. This memory serves the next object of the same depth
/// until the walk ends. A model of 1,000 levels takes some megabytes of heap, mostly for paths, and no more stack than
/// a model of one level. The time grows with the square of the depth, because each path is as long as it is deep.
///
/// Use an analyser from one thread at a time. Destroy a derived object through its own type: the destructor here is not
/// virtual.
class TARN_EXPORT DependencyAnalyser {
 public:
  /// The next step; see the table above. The numbers are part of the interface.
  enum HandlerStatus : int { Continue = 0, SkipObject = 1, Abort = 2 };

  /// The rules are not owned, must not be null, and must outlive the analyser.
  explicit DependencyAnalyser(PhysicsData const* physicsData) noexcept;
  DependencyAnalyser(DependencyAnalyser const&) = default;
  DependencyAnalyser& operator=(DependencyAnalyser const&) = default;

  /// Walks the model of `evalContext` from the object at `path` downwards. For a whole model `path` is "". The object
  /// is walked as required and not coupled, whatever its parent's rules say, and whether or not it exists. The context
  /// is not owned, must not be null, and is remembered for `isParamValueEqual`.
  ///
  /// Throws the `Error` of `TDFPath` when `path`, or a path made with a name in the model, cannot be read. Exceptions
  /// of hooks and rules reach the caller. An abort is no error.
  void analyse(std::string const& path, EvalContext* evalContext);

 protected:
  ~DependencyAnalyser() = default;

  /// @name The hooks, in the order in which they are called for one object
  /// @{
  /// The object is entered. Nothing has been evaluated, and its model content has not been read.
  virtual HandlerStatus onBeginObject(ObjBeginInfo const* info) = 0;
  /// A parameter entry of the object comes next and has not been evaluated. The evaluation sees changes made to the
  /// model here.
  virtual HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) = 0;
  /// The parameter has been evaluated. The model has not been asked for it.
  virtual HandlerStatus onParamCheck(ParamAvailInfo const* info) = 0;
  /// The type of children has been evaluated. The model has not been asked for them.
  virtual HandlerStatus onChildCheck(ChildAvailInfo const* info) = 0;
  /// The object and everything below it have been walked. `required` is the value of `ObjBeginInfo::isRequired`.
  virtual HandlerStatus onEndObject(std::string const& objPath, bool required) = 0;
  /// @}

  /// For which parameter entries of an object the hooks are called.
  enum class ParamScope {
    All,
    /// Entries of parameters that the model holds or that are required.
    PresentOrRequired,
    /// Entries of parameters that the model holds.
    Present
  };

  /// Call this from `onBeginObject` to narrow the parameter walk of the object that begins, if other entries make no
  /// difference to the analyser. When the rules have more than a few dozen entries, the others are skipped and not
  /// evaluated. So an object with thousands of entries costs no more than the parameters that it holds. A few entries
  /// are all walked, which is as fast. The model is asked directly after the hook which parameters it holds, so do not
  /// use this in an analyser whose hooks create parameters. Without a call, and for each further object, the scope is
  /// `All`.
  void limitParams(ParamScope scope) noexcept { paramScope_ = scope; }

  /// Returns whether the parameter has this value in the model of the last walk. Values are compared as values of the
  /// parameter's type: "1.0" equals "1" for a Real. A parameter that the model lacks has the value "". False when the
  /// rules have no such parameter for the object, even if the model has. Calls no hook and evaluates nothing. Use it
  /// during and after a walk, while the context of that walk and its model exist.
  [[nodiscard]] bool isParamValueEqual(std::string const& objPath, std::string const& name,
                                       std::string const& value) const;

 private:
  struct OpenObject;
  class OpenObjects;

  void checkTree(std::string root);
  void enterChild(OpenObjects& open);
  void beginObject(OpenObject& object, bool coupled);
  void checkParams(std::string const& path, ObjDependency& dep);
  void checkChild(OpenObject& object);
  void findChildren(OpenObject& object);
  bool isParamAvailable(std::string const& path, ObjDependency const& dep, ParamAllowedValues& allowed);
  bool isChildAvailable(std::string const& path, ObjDependency const& dep);

  PhysicsData const* physicsData_;
  // From the last walk. Null before the first.
  ModelTDF const* model_ = nullptr;
  EvalContext* evalContext_ = nullptr;

  // For the object that begins.
  ParamScope paramScope_ = ParamScope::All;
  std::vector<std::string> presentParams_;
  // The path that is made next.
  std::string path_;
};

}  // namespace tarn

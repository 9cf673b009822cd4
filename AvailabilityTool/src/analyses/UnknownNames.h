#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>

namespace tarn::tool {

/// An object or a parameter of a model that the rules have no entry for.
struct UnknownName {
  /// The unknown object, or the object that holds the unknown parameter.
  std::string path;
  /// The parameter; nothing when the object itself is unknown.
  std::optional<std::string> name;
  /// One sentence, with the name that was probably meant where there is one.
  std::string message;
};

/// Finds what a model holds and the rules know nothing of: above all mistyped names, which a validator that follows the
/// rules never comes to.
///
/// Unknown is a parameter that its object's rules have no entry for, and an object whose type its parent's rules have
/// no child entry for, or whose form does not fit the entry: a name where the type is a singleton, none where it is
/// not. Availability does not matter; nor does a value, which may be empty. Objects that are only implied by deeper
/// paths count. Nothing below an unknown object is told. An object whose type has an entry in its parent but no rules
/// of its own is known, and all that it holds is not.
///
/// Objects at the root whose type is not pertinent are none of the rules' business and only counted, unless the type is
/// nearly a pertinent one. A parameter at the root itself is unknown.
class UnknownNames final : private DependencyAnalyser {
 public:
  struct Result {
    /// In the order of the model.
    std::vector<UnknownName> names;
    /// Objects at the root that were only counted.
    std::size_t objectsPassedOver = 0;
  };

  /// `rules` must outlive the analysis.
  explicit UnknownNames(PhysicsData const& rules);
  ~UnknownNames() = default;
  UnknownNames(UnknownNames const&) = delete;
  UnknownNames& operator=(UnknownNames const&) = delete;

  /// Looks at all of `model`, or with `roots` at what stands at and below these objects; they, and what is above them,
  /// are then taken as known. Linear in the length of the model's paths and the number of its parameters.
  [[nodiscard]] Result find(ModelState const& model, std::vector<std::string> const& roots);

 private:
  // An open component of the path under way: where it ends in the path, and what the rules say of the object there.
  struct Level {
    std::size_t pathEnd;
    std::size_t typePathEnd;
    ObjDependDef const* rules;  // null when there are none
    bool known;
  };

  // The names that an object's rules hold, gathered when a near match is asked for, and the answers given. So many
  // names are looked at and no more: a model of ten thousand unknown names under a type of ten thousand parameters
  // would be searched for ever. The later ones do without a suggestion.
  class NearNames {
   public:
    std::string find(ObjDependDef const* rules, std::string const& name, bool ofParameter);

   private:
    std::size_t left_ = 500'000;
    using Key = std::pair<ObjDependDef const*, bool>;
    std::map<Key, std::vector<std::string>> names_;
    std::map<std::pair<Key, std::string>, std::string> answers_;
  };

  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  bool openPath(std::string const& path, std::size_t takenAsKnown);
  bool judgeObject(std::string const& path, std::string_view type, bool named);
  bool judgeRootObject(std::string const& path, std::string const& type);
  void tell(std::string path, std::optional<std::string> name, std::string message);

  PhysicsData const& rules_;
  NearNames near_;

  // Of the search under way.
  std::string path_;      // the entry before, as far as it was opened
  std::string typePath_;  // the types of its components
  std::vector<Level> levels_;
  ObjectState const* parameters_ = nullptr;         // of the object that is judged
  std::unordered_set<std::string> unknownObjects_;  // told or counted already
  Result result_;
};

}  // namespace tarn::tool

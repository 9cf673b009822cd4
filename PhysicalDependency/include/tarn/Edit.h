#pragma once

#include <string>
#include <utility>

namespace tarn {

/// An edit of a `ProvisionalTDF` as a value: it can be stored, compared, sent and applied later.
///
///     Edit const edit = Edit::setParam("/Case/Domain:rotor", "Motion", "Rotating");
///     if (auto const refusal = domain.apply(edit)) showWhy(*refusal);
///
/// There is one kind for each of the nine edit operations of `ProvisionalTDF`, which say what each of them does.
struct Edit {
  /// The numbers are part of the interface.
  enum class Kind : int {
    SetParam = 0,          ///< `activeSetParam(path, name, value)`
    ActivateParam = 1,     ///< `activateOptParam(path, name)`
    DeactivateParam = 2,   ///< `deactivateOptParam(path, name)`
    ActivateObject = 3,    ///< `activateOptObject(path)`
    DeactivateObject = 4,  ///< `deactivateOptObject(path)`
    AddObject = 5,         ///< `addNewNamedObject(path)`
    RemoveObject = 6,      ///< `removeNamedObject(path)`
    DuplicateObject = 7,   ///< `duplicateNamedObject(path, name)`
    RenameObject = 8       ///< `renameNamedObject(path, name)`
  };

  Kind kind = Kind::SetParam;
  /// The path of the object that is edited, or that holds the parameter.
  std::string path;
  /// The name of the parameter, or the new name of the object. Not used by the other kinds.
  std::string name;
  /// Used by `SetParam` only.
  std::string value;

  /// @name Each kind with what it uses
  /// @{
  [[nodiscard]] static Edit setParam(std::string path, std::string name, std::string value) {
    return {Kind::SetParam, std::move(path), std::move(name), std::move(value)};
  }
  [[nodiscard]] static Edit activateParam(std::string path, std::string name) {
    return {Kind::ActivateParam, std::move(path), std::move(name), {}};
  }
  [[nodiscard]] static Edit deactivateParam(std::string path, std::string name) {
    return {Kind::DeactivateParam, std::move(path), std::move(name), {}};
  }
  [[nodiscard]] static Edit activateObject(std::string path) { return {Kind::ActivateObject, std::move(path), {}, {}}; }
  [[nodiscard]] static Edit deactivateObject(std::string path) {
    return {Kind::DeactivateObject, std::move(path), {}, {}};
  }
  [[nodiscard]] static Edit addObject(std::string path) { return {Kind::AddObject, std::move(path), {}, {}}; }
  [[nodiscard]] static Edit removeObject(std::string path) { return {Kind::RemoveObject, std::move(path), {}, {}}; }
  [[nodiscard]] static Edit duplicateObject(std::string path, std::string newName) {
    return {Kind::DuplicateObject, std::move(path), std::move(newName), {}};
  }
  [[nodiscard]] static Edit renameObject(std::string path, std::string newName) {
    return {Kind::RenameObject, std::move(path), std::move(newName), {}};
  }
  /// @}

  friend bool operator==(Edit const&, Edit const&) = default;
};

}  // namespace tarn

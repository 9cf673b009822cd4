#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

class ModelTDF;
class ObjectReader;

/// An object that a reader has found. It saves the look-up by path in many reads of one object. It is a value, and does
/// not keep the object alive.
///
/// A handle is made for the path under which the object was found. It is in force until its reader says otherwise,
/// which is at the latest when the object is removed. After that, and with an empty handle, read by path. Use no handle
/// after the model was destroyed.
class TARN_EXPORT ObjectHandle {
 public:
  /// Empty: no object.
  ObjectHandle() noexcept = default;
  [[nodiscard]] bool isEmpty() const noexcept { return reader_ == nullptr; }

  /// The reader to use, if `model` reads through the reader of this handle now and the handle is in force. Null
  /// otherwise. Ask again after the model may have changed.
  [[nodiscard]] ObjectReader const* readerIn(ModelTDF const& model) const noexcept;

 private:
  friend class ObjectReader;
  ObjectHandle(ObjectReader const* reader, void const* object, std::uint64_t generation) noexcept
      : reader_(reader), object_(object), generation_(generation) {}

  ObjectReader const* reader_ = nullptr;
  void const* object_ = nullptr;
  std::uint64_t generation_ = 0;
};

/// Reads a model by handles. A model can offer this beside the reads by path (`ModelTDF::objectReader`) to be read
/// faster. Conditions and walks use it where it is offered. Both ways of reading must give the same results.
///
///     ObjectReader const* const reader = model.objectReader();
///     ObjectHandle const rotor = reader->findObject("/Case/Domain:rotor");
///     if (auto const* const found = rotor.readerIn(model)) {
///       std::string const* const motion = found->findParameterValue(rotor, "Motion");
///     }
///
/// Every operation that takes a handle needs one that is in force. A returned reference is valid as long as one that
/// `ModelTDF` returns. Several threads may read at once as long as none changes the model.
class TARN_EXPORT ObjectReader {
 public:
  /// A child of an object, and the name with which listings give it.
  struct Child {
    std::string name;
    /// Empty when the child is not found under its type and this name.
    ObjectHandle object;
  };

  ObjectReader(ObjectReader const&) = delete;
  ObjectReader& operator=(ObjectReader const&) = delete;

  /// Empty when there is no such object.
  [[nodiscard]] virtual ObjectHandle findObject(std::string_view path) const = 0;
  /// The child of this type that has no name in its path, as `/Case/Setup` in `/Case`. Empty when there is none.
  [[nodiscard]] virtual ObjectHandle findSingleton(ObjectHandle const& parent, std::string_view type) const = 0;
  /// Replaces `out` by the children of the type, in the order of the model, as `getChildObjectNamesByType` does.
  virtual void getChildren(ObjectHandle const& parent, std::string_view type, std::vector<Child>& out) const = 0;
  /// The value, or null when the object has no such parameter.
  [[nodiscard]] virtual std::string const* findParameterValue(ObjectHandle const& object,
                                                              std::string_view name) const = 0;

 protected:
  ObjectReader() noexcept = default;
  virtual ~ObjectReader();

  /// `object` must not be null. It comes back from `objectOf`.
  [[nodiscard]] ObjectHandle makeHandle(void const* object) const noexcept { return {this, object, generation_}; }
  [[nodiscard]] static void const* objectOf(ObjectHandle const& handle) noexcept { return handle.object_; }
  /// Call this before an object is removed. All handles go out of force.
  void withdrawHandles() noexcept { ++generation_; }

 private:
  friend class ObjectHandle;
  std::uint64_t generation_ = 0;
};

}  // namespace tarn

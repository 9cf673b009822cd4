#pragma once

#include <string>

#include <tarn/Error.h>
#include <tarn/Export.h>

/// The exceptions that this library throws for a programming fault of its caller. Physical faults of a model are never
/// thrown; they go to a `PhysicsErrorLogger`.
///
/// All of them can be caught as `Error`:
///
///     try {
///       model.setParameter("/Case/Domain:rotor", "Material", allowed, "Water");
///     } catch (tarn::Error const& error) {
///       error.write(std::cerr);
///       std::cerr << '\n';
///     }
namespace tarn::physics_dep {

/// The base of the library's exceptions.
class TARN_EXPORT error : public Error {
 public:
  /// Makes an error with empty texts.
  error();
  error(error const&) = default;
  error& operator=(error const&) = default;
  /// Makes an error named "physical_dependency::error", with the class and the method that failed.
  error(std::string const& className, std::string const& method, std::string const& message, errorType type);
  ~error() override;

 protected:
  /// For derived classes, which pass their own name.
  error(std::string const& exceptionName, std::string const& className, std::string const& method,
        std::string const& message, errorType type);
};

/// Allowed values were set on a parameter that exists as an ordinary one. Thrown by `DynamicTDF`.
/// Named "physical_dependency::invalidParamVal".
class TARN_EXPORT invalidParamVal : public error {
 public:
  invalidParamVal();
  invalidParamVal(invalidParamVal const&) = default;
  invalidParamVal& operator=(invalidParamVal const&) = default;
  invalidParamVal(std::string const& className, std::string const& method, std::string const& message, errorType type);
  ~invalidParamVal() override;
};

/// A required child is missing. The library itself never throws it. Callers who enforce required children can use it in
/// the same family of exceptions. Named "physical_dependency::emptyRequiredChild".
class TARN_EXPORT emptyRequiredChild : public error {
 public:
  emptyRequiredChild();
  emptyRequiredChild(emptyRequiredChild const&) = default;
  emptyRequiredChild& operator=(emptyRequiredChild const&) = default;
  emptyRequiredChild(std::string const& className, std::string const& method, std::string const& message,
                     errorType type);
  ~emptyRequiredChild() override;
};

}  // namespace tarn::physics_dep

#pragma once

#include <string>

#include <tarn/Error.h>
#include <tarn/Export.h>

/// The exceptions by which this library tells its callers of a programming fault. What is physically wrong with a model
/// is never thrown: it goes to a `PhysicsErrorLogger`.
///
/// All of them are caught as `Error`:
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
  /// An error that tells nothing: all its texts are empty.
  error();
  error(error const&) = default;
  error& operator=(error const&) = default;
  /// An error named "physical_dependency::error", with the class and the method that failed.
  error(std::string const& className, std::string const& method, std::string const& message, errorType type);
  ~error() override;

 protected:
  /// For derived classes, which say how they are named.
  error(std::string const& exceptionName, std::string const& className, std::string const& method,
        std::string const& message, errorType type);
};

/// A parameter that exists as an ordinary one was to be given allowed values. Thrown by `DynamicTDF`.
/// Named "physical_dependency::invalidParamVal".
class TARN_EXPORT invalidParamVal : public error {
 public:
  invalidParamVal();
  invalidParamVal(invalidParamVal const&) = default;
  invalidParamVal& operator=(invalidParamVal const&) = default;
  invalidParamVal(std::string const& className, std::string const& method, std::string const& message, errorType type);
  ~invalidParamVal() override;
};

/// A required child that is not there. The library itself never throws it; it is for callers who enforce required
/// children in the same family of exceptions. Named "physical_dependency::emptyRequiredChild".
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

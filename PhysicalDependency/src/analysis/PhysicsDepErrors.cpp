// The names of the library's exceptions. They hold nothing more than `Error` does. The destructors are defined here so
// that a program and the library share one type when one catches what the other throws.
#include <tarn/PhysicsDepErrors.h>

namespace tarn::physics_dep {

error::error() = default;
error::~error() = default;

error::error(std::string const& className, std::string const& method, std::string const& message, errorType type)
    : error("physical_dependency::error", className, method, message, type) {}

error::error(std::string const& exceptionName, std::string const& className, std::string const& method,
             std::string const& message, errorType type)
    : Error(exceptionName, className, method, message, type, 0) {}

invalidParamVal::invalidParamVal() = default;
invalidParamVal::~invalidParamVal() = default;

invalidParamVal::invalidParamVal(std::string const& className, std::string const& method, std::string const& message,
                                 errorType type)
    : error("physical_dependency::invalidParamVal", className, method, message, type) {}

emptyRequiredChild::emptyRequiredChild() = default;
emptyRequiredChild::~emptyRequiredChild() = default;

emptyRequiredChild::emptyRequiredChild(std::string const& className, std::string const& method,
                                       std::string const& message, errorType type)
    : error("physical_dependency::emptyRequiredChild", className, method, message, type) {}

}  // namespace tarn::physics_dep

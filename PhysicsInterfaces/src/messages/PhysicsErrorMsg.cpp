// A finding is a fault by default; only beta messages have another level. The sentences are made elsewhere.
#include <tarn/PhysicsErrorMsg.h>

namespace tarn {

PhysicsErrorMsg::PhysicsErrorMsg(std::string const& text) : message(text) {}

PhysicsErrorMsg::PhysicsErrorMsg(std::string const& text, Level levelOfText) : message(text), level(levelOfText) {}

}  // namespace tarn

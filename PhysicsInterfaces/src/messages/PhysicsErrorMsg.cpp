// A finding is a fault unless it is told otherwise; only beta messages name a level.
// Texts are made elsewhere: this is the record that carries them to a logger.
#include <tarn/PhysicsErrorMsg.h>

namespace tarn {

PhysicsErrorMsg::PhysicsErrorMsg(std::string const& text) : message(text) {}

PhysicsErrorMsg::PhysicsErrorMsg(std::string const& text, Level levelOfText) : message(text), level(levelOfText) {}

}  // namespace tarn

// The small operations of the records.
#include <array>
#include <utility>

#include <tarn/session/Effect.h>
#include <tarn/session/Item.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Refused.h>

namespace tarn::session {

std::string Item::text() const {
  return name ? path + '/' + *name : path;
}

std::size_t Effect::size() const noexcept {
  return values.size() + choices.size() + bounds.size() + defaults.size() + quantities.size() + offersGained.size() +
         offersLost.size() + objectsCreated.size() + objectsDeleted.size() + waiting.size();
}

Effect Effect::reversed() const {
  Effect back = *this;
  auto const exchange = [](auto& changes) {
    for (auto& change : changes) std::swap(change.before, change.after);
  };
  exchange(back.values);
  exchange(back.choices);
  exchange(back.bounds);
  exchange(back.defaults);
  exchange(back.quantities);
  exchange(back.waiting);
  back.offersGained.swap(back.offersLost);
  back.objectsCreated.swap(back.objectsDeleted);
  return back;
}

namespace {

constexpr std::array<std::string_view, 17> codeNames = {
    "unreadable",       "outside-root",  "is-root",           "unknown-object",      "unknown-parameter",
    "wrong-type",       "unknown-units", "value-not-allowed", "fixed-by-the-rules",  "name-taken",
    "name-not-allowed", "not-named",     "name-missing",      "stands-by-the-rules", "not-editable",
    "rule-failed",      "too-many-steps"};

}  // namespace

std::string_view refusalName(RefusalCode code) noexcept {
  return codeNames[static_cast<std::size_t>(code)];
}

std::span<std::string_view const> refusalNames() noexcept {
  return codeNames;
}

std::string_view originName(Origin origin) noexcept {
  constexpr std::array<std::string_view, 7> names = {
      "none", "user", "model", "default", "override", "former override", "completed list"};
  return names[static_cast<std::size_t>(origin)];
}

}  // namespace tarn::session

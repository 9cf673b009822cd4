#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/session/Effect.h>
#include <tarn/session/Item.h>
#include <tarn/session/Waiting.h>

#include "session/OfferIndex.h"
#include "session/Requests.h"
#include "session/RuleReaders.h"
#include "session/RuledState.h"

namespace tarn::session {

/// Finds the net effect of updates from two looks at the items that they may have touched: one in the state after them,
/// one in the state before. The lists of a provisional state are events; they say where to look.
///
///     EffectFinder finder(state, offers, readers, requests);
///     apply(edit); finder.noteUpdate(edit);         // once for each edit
///     finder.lookAfter();
///     rollback();
///     finder.lookBefore();
///     Effect effect = finder.effect();
///
/// The cost is that of the touched items.
class EffectFinder {
 public:
  /// `offers` are those before the updates, and `requests` are at least those. All must outlive this object.
  EffectFinder(RuledState const& state, OfferIndex const& offers, RuleReaders const& readers, Requests const& requests)
      : state_(state), offers_(offers), readers_(readers), requests_(requests) {}

  /// Notes what the last update touched.
  void noteUpdate(Edit const& edit);
  void lookAfter();
  void lookBefore();
  [[nodiscard]] Effect effect() const;

  /// Whether the item is on offer now, after the updates that were noted.
  [[nodiscard]] bool isOffered(Item const& item) const;

  /// The items that can differ from before, each with what was seen of it.
  [[nodiscard]] auto const& touchedItems() const noexcept { return items_; }

 private:
  struct Facts {
    bool isPresent = false;
    bool isOffered = false;
    std::optional<Waiting> waiting;
    // For parameters only.
    std::string value;
    ParamAllowedValues allowed;
    std::optional<std::string> defaultValue;
    std::optional<std::pair<std::string, std::string>> bounds;
    std::optional<std::string> quantity;
  };
  struct Touched {
    bool bounds = false;
    bool quantity = false;
    bool defaultValue = false;
    Facts before;
    Facts after;
  };

  Touched& touch(Item item) { return items_[std::move(item)]; }
  void touchAskedBelow(std::string const& path);
  void touchObjectsBelow(std::string const& path);
  [[nodiscard]] Facts look(Item const& item, Touched const& touched, bool isOffered) const;
  static void compareParam(Item const& item, Touched const& touched, Effect& effect);

  RuledState const& state_;
  OfferIndex const& offers_;
  RuleReaders const& readers_;
  Requests const& requests_;
  std::map<Item, Touched> items_;
  /// Whether an item is on offer after the updates, where they have changed that.
  std::map<Item, bool> offersNow_;
  std::vector<std::string> deleted_;
  std::vector<std::string> mirrored_;
  /// Objects below which the user's requests may have come into force or wait.
  std::vector<std::string> branches_;
};

}  // namespace tarn::session

#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/ObjDependDef.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/Item.h>

namespace tarn::session {

/// Finds the parameters whose defaults may have changed, because the rule of the default reads something that changed.
/// The provisional state does not report this: it does not look at the default of a parameter that has a value.
class DefaultReaders {
 public:
  explicit DefaultReaders(PhysicsData const& rules);

  /// The defaults that an update may have changed.
  class Search {
   public:
    Search(DefaultReaders const& readers, ProvisionalTDF const& state) noexcept : readers_(readers), state_(state) {}
    /// Values and parameters that changed, and objects that came or went. `found` gets the parameters of present
    /// objects.
    void paramChanged(std::string const& path, std::string const& name, std::vector<Item>& found);
    void objectsChanged(std::vector<Item>& found);
    void anythingChanged(std::vector<Item>& found);

   private:
    void addAll(std::vector<std::size_t> const& readers, std::vector<Item>& found);

    DefaultReaders const& readers_;
    ProvisionalTDF const& state_;
    std::set<std::size_t> done_;
  };

 private:
  struct Reader {
    ObjDependDef const* object;
    std::string const* name;
  };
  struct ByName {
    /// Read the parameter of their own object, or of others.
    std::vector<std::size_t> own;
    std::vector<std::size_t> any;
  };

  std::vector<Reader> readers_;
  std::unordered_map<std::string, ByName> byName_;
  std::vector<std::size_t> ofObjects_;
  std::vector<std::size_t> unknown_;
};

}  // namespace tarn::session

#pragma once

#include <memory>
#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A parsed object path. A value: copies are independent of each other. A copy costs no more than a pointer, since
/// copies share what was parsed until one of them is given another name.
///
///     TDFPath path("/Case/Domain:rotor");
///     path.getType(1);        // "Domain"
///     path.getName(0);        // "Case": a singleton is named by its type
///     path.getParentPath();   // "/Case"
///
/// Indices run from 0; an index that is not below `numComponent` throws an `Error`, as do `getLastType` and
/// `getLastName` of the root.
class TARN_EXPORT TDFPath {
 public:
  /// The root: no components.
  TDFPath() = default;

  /// Parses `path`. The empty text and "/" are the root. Throws an `Error` for any other text that does not begin with
  /// "/", for an empty component, for an empty type or name beside a ":", and for a second ":" in a component. A name
  /// that equals its type is kept as it is written. Linear in the length of the text.
  explicit TDFPath(std::string const& path);

  /// The whole path in canonical form; "" for the root.
  [[nodiscard]] std::string const& getFullPath() const noexcept;

  [[nodiscard]] unsigned long long numComponent() const noexcept;
  [[nodiscard]] unsigned long long size() const noexcept { return numComponent(); }

  [[nodiscard]] std::string const& getType(unsigned long long i) const;
  /// The name of component `i`; of a component without a name, its type.
  [[nodiscard]] std::string const& getName(unsigned long long i) const;
  [[nodiscard]] std::string const& getLastType() const;
  [[nodiscard]] std::string const& getLastName() const;

  /// True when the last component has no name of its own. The root has no last component and counts as a singleton.
  [[nodiscard]] bool isSingleton() const noexcept;

  /// The path without its last component; "" for a first-level object and for the root.
  [[nodiscard]] std::string getParentPath() const;

  /// The text of `count` components from `first`, each with a leading "/". What lies beyond the end is left out.
  [[nodiscard]] std::string getSubPath(unsigned long long first, unsigned long long count) const;

  /// Gives component `i` another name; `getFullPath` shows it afterwards. An empty name makes it a singleton. A name
  /// that holds "/" or ":" throws an `Error` and changes nothing.
  void setName(unsigned long long i, std::string const& name);

 private:
  struct Component;
  struct Body;

  [[nodiscard]] Component const& component(unsigned long long i, char const* method) const;

  std::shared_ptr<Body const> body_;  // null for the root
};

}  // namespace tarn

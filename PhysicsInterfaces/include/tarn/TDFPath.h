#pragma once

#include <memory>
#include <string>

#include <tarn/Export.h>

namespace tarn {

/// A parsed object path. It is a value: copies are independent of each other. Copying takes constant time, because
/// copies share the parsed components until `setName` changes one of them.
///
///     TDFPath path("/Case/Domain:rotor");
///     path.getType(1);        // "Domain"
///     path.getName(0);        // "Case": a singleton is named by its type
///     path.getParentPath();   // "/Case"
///
/// Indices count from 0. An index that is not below `numComponent` throws an `Error`; so do `getLastType` and
/// `getLastName` of the root. `PathUtils::typePathOf` gives the path of the types alone, under which the rule database
/// holds the rules of an object.
class TARN_EXPORT TDFPath {
 public:
  /// The root. It has no components.
  TDFPath() = default;

  /// Parses `path`. The empty text and "/" are the root. Throws an `Error` for any other text that does not begin with
  /// "/", for an empty component, for an empty type or name next to a ":", and for a second ":" in a component. A name
  /// that equals its type is kept as written. Linear in the length of the text.
  explicit TDFPath(std::string const& path);

  /// The whole path in canonical form; "" for the root.
  [[nodiscard]] std::string const& getFullPath() const noexcept;

  [[nodiscard]] unsigned long long numComponent() const noexcept;
  [[nodiscard]] unsigned long long size() const noexcept { return numComponent(); }

  [[nodiscard]] std::string const& getType(unsigned long long i) const;
  /// The name of component `i`. The name of a component without a name is its type.
  [[nodiscard]] std::string const& getName(unsigned long long i) const;
  [[nodiscard]] std::string const& getLastType() const;
  [[nodiscard]] std::string const& getLastName() const;

  /// Returns whether the last component has no name of its own. The root counts as a singleton.
  [[nodiscard]] bool isSingleton() const noexcept;

  /// The path without its last component; "" for a first-level object and for the root.
  [[nodiscard]] std::string getParentPath() const;

  /// The text of `count` components from `first`, each with a leading "/". Components beyond the end are left out.
  [[nodiscard]] std::string getSubPath(unsigned long long first, unsigned long long count) const;

  /// Changes the name of component `i`, and so `getFullPath`. An empty name makes it a singleton. Throws an `Error`,
  /// and changes nothing, for a name that contains "/" or ":".
  void setName(unsigned long long i, std::string const& name);

 private:
  struct Component;
  struct Body;

  [[nodiscard]] Component const& component(unsigned long long i, char const* method) const;

  std::shared_ptr<Body const> body_;  // null for the root
};

}  // namespace tarn

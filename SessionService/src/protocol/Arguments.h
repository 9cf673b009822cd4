#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include <tarn/Edit.h>
#include <tarn/session/Item.h>

namespace tarn::service {

/// The part of a list that a client asks for.
struct Page {
  std::size_t offset = 0;
  std::size_t limit = 0;
};

/// The parameters of a request. Every operation throws a `ProtocolError` that names the parameter if it is missing or
/// has the wrong type. Members that nobody asks for are ignored.
class Arguments {
 public:
  /// `params` must outlive this; it is an object.
  explicit Arguments(nlohmann::json const& params) noexcept : params_(&params) {}

  [[nodiscard]] bool has(char const* key) const { return params_->contains(key); }
  [[nodiscard]] std::string text(char const* key) const;
  [[nodiscard]] std::optional<std::string> optionalText(char const* key) const;
  [[nodiscard]] bool flag(char const* key) const;
  /// A whole number from 0.
  [[nodiscard]] std::size_t number(char const* key) const;
  [[nodiscard]] std::size_t number(char const* key, std::size_t otherwise) const;
  /// "offset" and "limit". A limit above `most` is `most`.
  [[nodiscard]] Page page(std::size_t most) const;
  /// "path", and "name" for a parameter.
  [[nodiscard]] session::Item item() const;
  /// "edits", in the form of `editAsJson`.
  [[nodiscard]] std::vector<Edit> edits(std::size_t most) const;
  /// One of these words, by its index. The first when the key is not there.
  [[nodiscard]] std::size_t word(char const* key, std::vector<std::string_view> const& words) const;
  /// A list of objects.
  [[nodiscard]] nlohmann::json const& objects(char const* key, std::size_t most) const;

 private:
  [[nodiscard]] nlohmann::json const& at(char const* key) const;

  nlohmann::json const* params_;
};

/// Reads an edit in the form of `editAsJson`. Throws a `ProtocolError`.
[[nodiscard]] Edit editFromJson(nlohmann::json const& json);

}  // namespace tarn::service

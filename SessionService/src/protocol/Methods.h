#pragma once

#include <span>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "protocol/Arguments.h"
#include "protocol/Host.h"

namespace tarn::service {

/// A method of the protocol: its name, and the function that makes its result or throws a `ProtocolError`.
struct Method {
  std::string_view name;
  nlohmann::ordered_json (*run)(Host& host, Arguments const& arguments);
};

/// The methods about documents and files, about edits, and about what a document shows.
[[nodiscard]] std::span<Method const> documentMethods() noexcept;
[[nodiscard]] std::span<Method const> editMethods() noexcept;
[[nodiscard]] std::span<Method const> lookMethods() noexcept;

/// The names of all methods, sorted.
[[nodiscard]] std::vector<std::string_view> methodNames();
/// Null for a name that no method has.
[[nodiscard]] Method const* findMethod(std::string_view name) noexcept;

/// @name What several methods do
/// @{
[[nodiscard]] LockedDocument lockDocument(Host& host, Arguments const& arguments);
/// As `lockDocument`, with the findings of the document made. Others use the document while a review is made.
[[nodiscard]] LockedDocument lockReviewed(Host& host, Arguments const& arguments);
/// Throws unless the request names the present revision.
void requireRevision(Document const& document, Arguments const& arguments);
/// Tells all clients that a document has changed. `cause` is "edit", "undo" and so on.
void publishChange(Host& host, Document& document, Arguments const& arguments, std::string_view cause,
                   session::EditResult const* result = nullptr);
/// @}

/// A page of a list: "total", "offset" and "list".
template <typename List, typename AsJson>
[[nodiscard]] nlohmann::ordered_json pageAsJson(List const& all, Page page, AsJson const& asJson) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  std::size_t const begin = std::min(page.offset, all.size());
  std::size_t const end = begin + std::min(page.limit, all.size() - begin);
  for (std::size_t i = begin; i < end; ++i) list.push_back(asJson(all[i]));
  return {{"total", all.size()}, {"offset", page.offset}, {"list", std::move(list)}};
}

}  // namespace tarn::service

// A parsed path is an immutable body that copies share. Changing a name makes a new body. A component stores a name
// only if it has one of its own, so a long path takes little more memory than its text.
#include <tarn/TDFPath.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/Error.h>

#include "paths/PathSyntax.h"

namespace tarn {

struct TDFPath::Component {
  std::string type;
  std::string name;     // empty when the component has no name of its own
  std::size_t end = 0;  // where the component ends in the full path
};

struct TDFPath::Body {
  std::string fullPath;
  std::vector<Component> components;
};

TDFPath::TDFPath(std::string const& path) {
  if (path.empty() || path == "/") return;
  if (path_syntax::Fault const fault = path_syntax::findFault(path)) {
    throw ParseError("TDFPath", "TDFPath", path_syntax::shown(path) + " is not a path: " + fault.reason);
  }
  auto body = std::make_shared<Body>();
  body->fullPath = path;
  body->components.reserve(static_cast<std::size_t>(std::count(path.begin(), path.end(), '/')));
  std::string_view const text = path;
  for (std::size_t begin = 1; begin <= text.size();) {
    std::size_t const end = std::min(text.find('/', begin), text.size());
    std::string_view const component = text.substr(begin, end - begin);
    std::size_t const colon = component.find(':');
    Component& made = body->components.emplace_back();
    made.type = component.substr(0, colon);
    if (colon != std::string_view::npos) made.name = component.substr(colon + 1);
    made.end = end;
    begin = end + 1;
  }
  body_ = std::move(body);
}

std::string const& TDFPath::getFullPath() const noexcept {
  static std::string const root;
  return body_ ? body_->fullPath : root;
}

unsigned long long TDFPath::numComponent() const noexcept {
  return body_ ? body_->components.size() : 0;
}

TDFPath::Component const& TDFPath::component(unsigned long long i, char const* method) const {
  if (i >= numComponent()) {
    throw RangeError("TDFPath", method,
                     path_syntax::shown(getFullPath()) + " has " + std::to_string(numComponent()) +
                         " components, but number " + std::to_string(i) + ", counted from 0, was asked for");
  }
  return body_->components[static_cast<std::size_t>(i)];
}

std::string const& TDFPath::getType(unsigned long long i) const {
  return component(i, "getType").type;
}

std::string const& TDFPath::getName(unsigned long long i) const {
  Component const& asked = component(i, "getName");
  return asked.name.empty() ? asked.type : asked.name;
}

std::string const& TDFPath::getLastType() const {
  if (!body_) throw RangeError("TDFPath", "getLastType", "the root has no components");
  return body_->components.back().type;
}

std::string const& TDFPath::getLastName() const {
  if (!body_) throw RangeError("TDFPath", "getLastName", "the root has no components");
  return getName(numComponent() - 1);
}

bool TDFPath::isSingleton() const noexcept {
  return !body_ || body_->components.back().name.empty();
}

std::string TDFPath::getParentPath() const {
  return body_ ? getSubPath(0, numComponent() - 1) : std::string();
}

std::string TDFPath::getSubPath(unsigned long long first, unsigned long long count) const {
  unsigned long long const size = numComponent();
  if (first >= size || count == 0) return {};
  unsigned long long const last = first + std::min(count, size - first) - 1;
  std::size_t const begin = first == 0 ? 0 : body_->components[static_cast<std::size_t>(first) - 1].end;
  return body_->fullPath.substr(begin, body_->components[static_cast<std::size_t>(last)].end - begin);
}

void TDFPath::setName(unsigned long long i, std::string const& name) {
  Component const& old = component(i, "setName");
  if (name.find_first_of("/:") != std::string::npos) {
    throw ParseError("TDFPath", "setName",
                     path_syntax::shown(name) + " cannot be the name of an object: it holds a \"/\" or a \":\"");
  }
  std::size_t const begin = (i == 0 ? 0 : body_->components[static_cast<std::size_t>(i) - 1].end) + 1;
  std::size_t const oldSize = old.end - begin;
  std::string const text = name.empty() ? old.type : old.type + ':' + name;

  auto body = std::make_shared<Body>(*body_);
  body->fullPath.replace(begin, oldSize, text);
  body->components[static_cast<std::size_t>(i)].name = name;
  for (std::size_t k = static_cast<std::size_t>(i); k < body->components.size(); ++k) {
    body->components[k].end = body->components[k].end - oldSize + text.size();
  }
  body_ = std::move(body);
}

}  // namespace tarn

// Reads model text once and notes for each line what it says. Raw lines keep the bytes that the reader does not see:
// line ends and a byte order mark. Both have the same numbers.
#include "model/ModelTextOutline.h"

#include <algorithm>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>

#include "model/ModelTextFile.h"

namespace tarn {

ModelTextOutline::ModelTextOutline(std::string_view text) : cleaned_(ModelTextFile::cleaned(std::string(text))) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) {
    mark_ = text.substr(0, byteOrderMark.size());
    text.remove_prefix(byteOrderMark.size());
  }
  splitLines(text);
  (void)mention({});
  readModelText(cleaned_, *this);
  for (std::size_t line = 0, block = none; line < lines_.size(); ++line) {
    if (lines_[line].kind == Kind::Opening) {
      block = lines_[line].block;
    } else if (lines_[line].kind == Kind::Closing) {
      block = blocks_[block].outer;
    } else {
      lines_[line].block = block;
    }
  }
  for (std::size_t i = objects_.size(); i-- > 1;) {
    Object const& object = objects_[i];
    Object& parent = objects_[object.parent];
    if (object.firstInLine == none) continue;
    parent.firstInLine = std::min(parent.firstInLine, object.firstInLine);  // `none` is the largest number
    if (parent.lastInLine == none || parent.lastInLine < object.lastInLine) parent.lastInLine = object.lastInLine;
  }
}

std::size_t ModelTextOutline::find(std::string_view path) const {
  auto const found = byPath_.find(path);
  return found == byPath_.end() ? none : found->second;
}

std::string ModelTextOutline::canonicalPath(std::string_view path) {
  std::string canonical;
  canonical.reserve(path.size());
  for (std::size_t begin = 0; begin < path.size();) {
    std::size_t const end = std::min(path.find('/', begin + 1), path.size());
    std::string_view component = path.substr(begin, end - begin);
    std::size_t const colon = component.find(':');
    if (colon != std::string_view::npos && component.substr(1, colon - 1) == component.substr(colon + 1)) {
      component = component.substr(0, colon);
    }
    canonical += component;
    begin = end;
  }
  return canonical;
}

void ModelTextOutline::splitLines(std::string_view text) {
  lines_.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
  while (!text.empty()) {
    std::size_t const length = std::min(text.find('\n'), text.size() - 1) + 1;
    lines_.emplace_back().raw = text.substr(0, length);
    text.remove_prefix(length);
  }
}

/// The object at a path, which is canonical. It and all above it are now known.
std::size_t ModelTextOutline::mention(std::string_view path) {
  std::vector<std::string_view> unknown;
  std::size_t known = find(path);
  while (known == none) {
    unknown.push_back(path);
    if (path.empty()) break;
    path = PathUtils::parentOf(path);
    known = find(path);
  }
  for (; !unknown.empty(); unknown.pop_back()) {
    std::size_t const made = objects_.size();
    Object& object = objects_.emplace_back();
    object.path = unknown.back();
    object.parent = known;
    byPath_.emplace(object.path, made);
    known = made;
  }
  return known;
}

void ModelTextOutline::onItem(std::string_view path, std::string_view name, std::string_view value,
                              ModelTextPlace const& place, bool isPathInLine) {
  if (lastObject_ == none || path != lastPath_) {
    lastObject_ = mention(canonicalPath(path));
    lastPath_ = path;
  }
  if (name.empty() && !isPathInLine) return;  // an empty block
  std::size_t const number = place.number - 1;
  Line& line = lines_[number];
  Object& object = objects_[lastObject_];
  line.object = lastObject_;
  line.isPathInLine = isPathInLine;
  line.name = name;
  line.value = value;
  if (isPathInLine) {
    if (object.firstInLine == none) object.firstInLine = number;
    object.lastInLine = number;
  }
  if (name.empty()) {
    line.kind = Kind::EmptyObject;
    object.hasOwnLine = true;
  } else {
    line.kind = Kind::Parameter;
    line.isSpeltOtherwise = path != object.path;
    auto const [first, isNew] = object.params.try_emplace(name, number);
    bool const isInOneSpelling = !line.isSpeltOtherwise && (isNew || !lines_[first->second].isSpeltOtherwise);
    line.isFirst = isInOneSpelling ? isNew : otherwiseSpelt_.emplace(path, name).second;
  }
}

void ModelTextOutline::onOpening(std::string_view path, std::string_view /*label*/, ModelTextPlace const& place) {
  std::size_t const object = mention(canonicalPath(path));
  std::size_t const number = place.number - 1;
  objects_[object].blocks.push_back(blocks_.size());
  lines_[number].kind = Kind::Opening;
  lines_[number].block = blocks_.size();
  blocks_.push_back({object, number, none, openBlock_});
  openBlock_ = lines_[number].block;
}

void ModelTextOutline::onClosing(ModelTextPlace const& place) {
  std::size_t const number = place.number - 1;
  lines_[number].kind = Kind::Closing;
  lines_[number].block = openBlock_;
  blocks_[openBlock_].closing = number;
  openBlock_ = blocks_[openBlock_].outer;
}

void ModelTextOutline::onFault(std::string const& reason, std::size_t column, std::size_t line) {
  throw ParseError("ModelTextOutline", "ModelTextOutline",
                   std::to_string(line) + ':' + std::to_string(column) + ": " + reason);
}

}  // namespace tarn

// The grammar of a single line of model text. The open blocks are not known here. A path is not checked here either,
// because most lines have the same path as the line before.
#include "model/ModelTextLine.h"

#include <tarn/StringUtilities.h>

namespace tarn {

namespace {

using StringUtilities::trimmed;

std::string_view ownName(BlockLabel const& label) noexcept {
  return label.name == label.type ? std::string_view() : label.name;
}

BlockLabel labelOf(std::string_view text) noexcept {
  std::size_t const colon = text.find(':');
  if (colon == std::string_view::npos) return {trimmed(text), {}};
  return {trimmed(text.substr(0, colon)), trimmed(text.substr(colon + 1))};
}

// The text after "END #", or a view without data if the line is not an END.
std::string_view behindEnd(std::string_view text) noexcept {
  if (!text.starts_with("END")) return {};
  std::string_view const rest = trimmed(text.substr(3));
  return rest.starts_with('#') ? rest.substr(1) : std::string_view();
}

class LineParser {
 public:
  explicit LineParser(std::string_view line) noexcept : line_(line), text_(trimmed(line)) {
    result_.indent = offsetOf(text_);
  }

  [[nodiscard]] ModelTextLine run() noexcept {
    if (text_.empty() || text_.front() == '#') return result_;
    if (text_.front() == '/') {
      parseItem();
    } else if (std::string_view const rest = behindEnd(text_); rest.data()) {
      result_.kind = ModelTextLine::Kind::End;
      result_.label = labelOf(rest);
    } else if (std::size_t const equals = text_.find('='); equals != std::string_view::npos) {
      parseParameter(equals);
    } else if (text_.find(':') != std::string_view::npos) {
      parseOpening();
    } else {
      result_.kind = ModelTextLine::Kind::Other;
      setFault("neither \"=\" nor \":\" in the line; write name = value, Type: name or END # Type:name", text_);
    }
    return result_;
  }

 private:
  [[nodiscard]] std::size_t offsetOf(std::string_view part) const noexcept {
    return part.data() ? static_cast<std::size_t>(part.data() - line_.data()) : 0;
  }

  void setFault(char const* reason, std::string_view at, std::size_t offset = 0) noexcept {
    if (!result_.fault) result_.fault = {reason, offsetOf(at) + offset};
  }

  void parseItem() noexcept {
    result_.kind = ModelTextLine::Kind::Item;
    std::size_t const equals = text_.find('=');
    if (equals == std::string_view::npos) {
      if (text_.back() == '/') {
        result_.path = text_.substr(0, text_.size() - 1);
      } else {
        setFault("neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an object",
                 text_);
      }
      return;
    }
    std::string_view const left = trimmed(text_.substr(0, equals));
    std::size_t const slash = left.rfind('/');
    result_.path = left.substr(0, slash);
    result_.name = left.substr(slash + 1);
    result_.value = trimmed(text_.substr(equals + 1));
    if (result_.name.empty()) {
      setFault("the name before \"=\" is missing", text_, equals);
    } else if (std::size_t const colon = result_.name.find(':'); colon != std::string_view::npos) {
      setFault("a parameter name cannot hold \":\"; an object is divided from its parameter by \"/\"", result_.name,
               colon);
    }
  }

  void parseParameter(std::size_t equals) noexcept {
    result_.kind = ModelTextLine::Kind::Parameter;
    result_.name = trimmed(text_.substr(0, equals));
    result_.value = trimmed(text_.substr(equals + 1));
    if (result_.name.empty()) {
      setFault("the name before \"=\" is missing", text_, equals);
    } else if (std::size_t const colon = result_.name.find(':'); colon != std::string_view::npos) {
      setFault("a parameter name cannot hold \":\", and the name of an object that a block opens cannot hold \"=\"",
               result_.name, colon);
      result_.label = labelOf(text_);
    } else if (std::size_t const slash = result_.name.find('/'); slash != std::string_view::npos) {
      setFault("a parameter name cannot hold \"/\"; begin the line with \"/\" to give a whole path", result_.name,
               slash);
    }
  }

  void parseOpening() noexcept {
    result_.kind = ModelTextLine::Kind::Opening;
    result_.label = labelOf(text_);
    auto const& [type, name] = result_.label;
    if (type.empty()) {
      setFault("the type before \":\" is missing", text_);
    } else if (std::size_t const slash = type.find('/'); slash != std::string_view::npos) {
      setFault("the type of an object cannot hold \"/\"; begin the line with \"/\" to give a whole path", type, slash);
    } else if (std::size_t const bad = name.find_first_of("/:"); bad != std::string_view::npos) {
      setFault(name[bad] == '/' ? "the name of an object cannot hold \"/\"" : "the name of an object cannot hold \":\"",
               name, bad);
    }
  }

  std::string_view line_;
  std::string_view text_;
  ModelTextLine result_;
};

}  // namespace

std::string BlockLabel::text() const {
  std::string label(type);
  label += ':';
  label += ownName(*this);
  return label;
}

bool operator==(BlockLabel const& a, BlockLabel const& b) noexcept {
  return a.type == b.type && ownName(a) == ownName(b);
}

ModelTextLine ModelTextLine::parse(std::string_view line) noexcept {
  return LineParser(line).run();
}

}  // namespace tarn

// The conversions between the forms in which an expression can be asked for its result.

#include "expression/Expression.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

namespace tarn::rules {

std::string_view kindName(Kind kind) noexcept {
  switch (kind) {
    case Kind::Truth:
      return "a truth value";
    case Kind::Number:
      return "a number";
    case Kind::Text:
      return "a text";
    case Kind::List:
      return "a list";
    case Kind::Value:
      return "a value";
    case Kind::Objects:
      return "a set of objects";
  }
  return "";
}

std::string const& Frame::valueOfContext(std::string const& name) const {
  static std::string const none;
  if (ObjectReader const* const reader = context.object().readerIn(model)) {
    std::string const* const value = reader->findParameterValue(context.object(), name);
    return value != nullptr ? *value : none;
  }
  return model.getParameterValue(context.objPath(), name);
}

std::string numberText(double number) {
  if (std::isnan(number)) return {};
  char buffer[64];
  if (std::abs(number) < 1e15 && number == std::trunc(number)) {
    auto const end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(number)).ptr;
    return {buffer, end};
  }
  auto const end = std::to_chars(buffer, buffer + sizeof buffer, number).ptr;
  return {buffer, end};
}

double textNumber(std::string_view text) noexcept {
  auto const quantity = TDFParam::asQuantity(text);
  return quantity ? quantity->number : std::numeric_limits<double>::quiet_NaN();
}

bool Expression::truth(Frame const& frame) const {
  return logical(frame).value_or(false);
}

std::optional<bool> Expression::logical(Frame const& frame) const {
  if (kind_ == Kind::Truth) return truth(frame);
  std::string buffer;
  return TDFParam::asLogical(textIn(frame, buffer));
}

double Expression::number(Frame const& frame) const {
  if (kind_ == Kind::Truth) return std::numeric_limits<double>::quiet_NaN();
  std::string buffer;
  return numberOf(textIn(frame, buffer));
}

double Expression::numberOf(std::string_view text) const noexcept {
  auto const quantity = TDFParam::asQuantity(text);
  if (!quantity) return std::numeric_limits<double>::quiet_NaN();
  return quantity_ != nullptr ? quantity_->numberOf(*quantity) : quantity->number;
}

std::vector<double> Expression::numbers(Frame const& frame) const {
  auto const items = list(frame);
  std::vector<double> result;
  result.reserve(items.size());
  for (auto const& item : items) result.push_back(numberOf(item));
  return result;
}

void Expression::bind(QuantityBinding& /*binding*/) {}

std::string Expression::text(Frame const& frame) const {
  if (kind_ == Kind::Truth) return truth(frame) ? "true" : "false";
  if (kind_ == Kind::Number) return numberText(number(frame));
  return {};
}

SharedStrings Expression::list(Frame const& frame) const {
  std::string buffer;
  return StringUtilities::stringToVector(textIn(frame, buffer), ',');
}

std::vector<std::string> Expression::objects(Frame const& /*frame*/) const {
  return {};
}

bool Expression::anyObject(Frame const& frame, ObjectQuestion const& holds) const {
  auto const paths = objects(frame);
  return std::any_of(paths.begin(), paths.end(), holds);
}

std::string const& Expression::textIn(Frame const& frame, std::string& buffer) const {
  return buffer = text(frame);
}

void Expression::collectPaths(std::vector<PathUse>& paths, Base const& base) const {
  auto const parts = operands();
  for (std::size_t i = 0; i < parts.size(); ++i) parts[i]->collectPaths(paths, operandBase(i, base));
}

}  // namespace tarn::rules

// The judgement of values by type and bounds, which the validator leaves alone: it compares texts with allowed values
// and parses nothing. The walk brings up each parameter rule; of the rule only as much is evaluated as the value asks
// for: bounds for a number, allowed values for a text that is none.
#include "analyses/ValueFaults.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <tarn/ModelTDF.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

namespace tarn::tool {

namespace {

// A value in a sentence is there to be recognised; in full it stands in the finding.
std::string shown(std::string_view text) {
  constexpr std::size_t longest = 100;
  if (text.size() <= longest) return '"' + std::string(text) + '"';
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) --end;  // no half characters
  return '"' + std::string(text.substr(0, end)) + "...\"";
}

// "12 m": a number whose units lack their brackets. Empty when the text is something else.
std::string withBrackets(std::string_view text) {
  std::size_t const blank = text.find(' ');
  if (blank == std::string_view::npos || text.find_first_of("[],") != std::string_view::npos) return {};
  if (!TDFParam::asNumber(text.substr(0, blank))) return {};
  std::string_view const units = StringUtilities::trimmed(text.substr(blank));
  return std::string(text.substr(0, blank)) + " [" + std::string(units) + ']';
}

std::string notANumber(std::string_view text) {
  std::string const corrected = withBrackets(text);
  return corrected.empty() ? "is not a number" : "is not a number; units are written in brackets: " + shown(corrected);
}

// What is wrong with the quantity under these bounds.
std::string outOfBounds(TDFParam::Quantity const& quantity, std::pair<std::string, std::string> const& bounds) {
  auto const comparable = [&quantity](std::string const& bound) -> std::optional<double> {
    if (bound.empty()) return std::nullopt;
    auto const parsed = TDFParam::asQuantity(bound);
    if (!parsed || parsed->units != quantity.units) return std::nullopt;
    return parsed->number;
  };
  if (auto const lower = comparable(bounds.first); lower && quantity.number < *lower) {
    return "is below its lower bound " + bounds.first;
  }
  if (auto const upper = comparable(bounds.second); upper && quantity.number > *upper) {
    return "is above its upper bound " + bounds.second;
  }
  return {};
}

}  // namespace

ValueFaults::ValueFaults(PhysicsData const& rules) : DependencyAnalyser(&rules), rules_(rules) {}

std::vector<ValueFault> ValueFaults::find(std::vector<std::string> const& roots, EvalContext& context) {
  faults_.clear();
  context_ = &context;
  for (std::string const& root : roots) analyse(root, &context);
  return std::move(faults_);
}

ValueFaults::HandlerStatus ValueFaults::onBeginObject(ObjBeginInfo const*) {
  limitParams(ParamScope::Present);
  return Continue;
}
ValueFaults::HandlerStatus ValueFaults::onBeginParam(std::string const&, std::string const&) {
  return Continue;
}
ValueFaults::HandlerStatus ValueFaults::onChildCheck(ChildAvailInfo const*) {
  return Continue;
}
ValueFaults::HandlerStatus ValueFaults::onEndObject(std::string const&, bool) {
  return Continue;
}

ValueFaults::HandlerStatus ValueFaults::onParamCheck(ParamAvailInfo const* info) {
  TDFParam::Type const type = TDFParam::elementType(info->getType());
  if (type == TDFParam::String) return Continue;
  std::string const& path = info->getObjPath();
  std::string const& name = info->getName();
  ModelTDF const& model = *context_->getDB();
  if (!model.hasParameter(path, name)) return Continue;
  std::string const& value = model.getParameterValue(path, name);

  if (!info->isListType()) {
    std::string const fault = faultOf(*info, StringUtilities::trimmed(value), type);
    if (!fault.empty()) {
      faults_.push_back({path, name, value,
                         "The parameter \"" + name + "\" in the object \"" + path + "\" has the value " + shown(value) +
                             ", which " + fault + '.'});
    }
    return Continue;
  }
  std::size_t number = 0;
  for (std::string const& item : StringUtilities::stringToVector(value, ',')) {
    ++number;
    std::string const fault = faultOf(*info, item, type);
    if (fault.empty()) continue;
    faults_.push_back({path, name, value,
                       "The list parameter \"" + name + "\" in the object \"" + path + "\" has as item " +
                           std::to_string(number) + " the value " + shown(item) + ", which " + fault + '.'});
    break;
  }
  return Continue;
}

// What is wrong with a value, or with an item of a list, of element type `type`; empty when nothing is.
std::string ValueFaults::faultOf(ParamAvailInfo const& info, std::string_view text, TDFParam::Type type) const {
  if (type == TDFParam::Logical) {
    if (TDFParam::asLogical(text) || isAllowed(info, text)) return {};
    return "is not a logical value such as true or false";
  }
  auto const quantity = TDFParam::asQuantity(text);
  if (!quantity) return isAllowed(info, text) ? std::string() : notANumber(text);
  if (type == TDFParam::Integer && std::trunc(quantity->number) != quantity->number) {
    return isAllowed(info, text) ? std::string() : "is not a whole number";
  }
  return outOfBounds(*quantity, info.getBounds());
}

bool ValueFaults::isAllowed(ParamAvailInfo const& info, std::string_view text) const {
  ParamAllowedValues const& known = info.getAllowedValues();
  if (known.hasAllowedValues) return known.allowedValues.contains(text);
  // Of a parameter that is not available the walk has not evaluated them.
  if (info.isAvailable()) return false;
  ParamValueDef const* values =
      rules_.getParamValueDef(PathUtils::typePathOf(info.getObjPath()), info.getName(), false);
  return values && values->evaluateAllowedValues(rules_.getRules(), TDFContext(info.getObjPath()), context_)
                       .allowedValues.contains(text);
}

}  // namespace tarn::tool

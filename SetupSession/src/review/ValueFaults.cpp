// Judges values by type and bounds. The walk visits the rule of each present parameter. A rule is evaluated only as far
// as its value requires: the bounds for a number, the allowed values for a text that is not a number.
#include <tarn/session/ValueFaults.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <tarn/DependencyAnalyser.h>
#include <tarn/ModelTDF.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

namespace tarn::session {

namespace {

// The value as a sentence shows it, shortened. The finding holds the whole value.
std::string shown(std::string_view text) {
  constexpr std::size_t longest = 100;
  if (text.size() <= longest) return '"' + std::string(text) + '"';
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) --end;  // do not split a character
  return '"' + std::string(text.substr(0, end)) + "...\"";
}

// The corrected text of a number whose units lack their brackets: "12 [m]" for "12 m". Otherwise empty.
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

// The fault of the quantity under these bounds. Empty when it is within them.
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

class Walk final : private DependencyAnalyser {
 public:
  Walk(PhysicsData const& rules, EvalContext& context)
      : DependencyAnalyser(&rules), rules_(rules), context_(context), model_(*context.getDB()) {}

  void from(std::string const& root) { analyse(root, &context_); }
  std::vector<ValueFault> takeFaults() { return std::move(faults_); }

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const*) override {
    limitParams(ParamScope::Present);
    return Continue;
  }
  HandlerStatus onBeginParam(std::string const&, std::string const&) override { return Continue; }
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const*) override { return Continue; }
  HandlerStatus onEndObject(std::string const&, bool) override { return Continue; }

  [[nodiscard]] std::string faultOf(ParamAvailInfo const& info, std::string_view text, TDFParam::Type type) const;
  [[nodiscard]] bool isAllowed(ParamAvailInfo const& info, std::string_view text) const;

  PhysicsData const& rules_;
  EvalContext& context_;
  ModelTDF const& model_;
  std::vector<ValueFault> faults_;
};

Walk::HandlerStatus Walk::onParamCheck(ParamAvailInfo const* info) {
  TDFParam::Type const type = TDFParam::elementType(info->getType());
  if (type == TDFParam::String) return Continue;
  std::string const& path = info->getObjPath();
  std::string const& name = info->getName();
  if (!model_.hasParameter(path, name)) return Continue;
  std::string const& value = model_.getParameterValue(path, name);

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

// The fault of a value, or of an item of a list, of element type `type`. Empty when there is no fault.
std::string Walk::faultOf(ParamAvailInfo const& info, std::string_view text, TDFParam::Type type) const {
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

bool Walk::isAllowed(ParamAvailInfo const& info, std::string_view text) const {
  ParamAllowedValues const& known = info.getAllowedValues();
  if (known.hasAllowedValues) return known.allowedValues.contains(text);
  // The walk does not evaluate the allowed values of a parameter that is not available.
  if (info.isAvailable()) return false;
  ParamValueDef const* values =
      rules_.getParamValueDef(PathUtils::typePathOf(info.getObjPath()), info.getName(), false);
  return values && values->evaluateAllowedValues(rules_.getRules(), TDFContext(info.getObjPath()), &context_)
                       .allowedValues.contains(text);
}

}  // namespace

std::vector<ValueFault> ValueFaults::find(std::vector<std::string> const& roots, EvalContext& context) const {
  Walk walk(*rules_, context);
  for (std::string const& root : roots) walk.from(root);
  return walk.takeFaults();
}

}  // namespace tarn::session

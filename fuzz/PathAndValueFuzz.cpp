// Lines of bytes as paths, patterns, items of model text and values: each line is read as all of them, or refused with
// an error. A result that was read prints as a text that reads as the same result. The promises of the headers about
// one, two or three of them hold.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Error.h>
#include <tarn/PathPattern.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFParam.h>
#include <tarn/TDFPath.h>

#include "fuzz/support/Laws.h"
#include "support/MapModel.h"

namespace {

using tarn::fuzz::require;
using tarn::test::MapModel;

std::optional<tarn::TDFPath> parsed(std::string const& text) {
  try {
    return tarn::TDFPath(text);
  } catch (tarn::Error const&) {
    return std::nullopt;
  }
}

bool isBetween(std::string_view part, std::string_view whole) {
  return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

void checkPath(tarn::TDFPath const& path) {
  std::string const& full = path.getFullPath();
  auto const count = path.numComponent();
  require(tarn::TDFPath(full).getFullPath() == full, "a path prints back to itself", full);
  require(tarn::TDFPath(full).size() == count, "a path keeps its components", full);
  require(path.getSubPath(0, count) == full, "all components are the path", full);

  std::string whole;
  std::string types;
  for (unsigned long long i = 0; i < count; ++i) {
    whole += path.getSubPath(i, 1);
    types += '/' + path.getType(i);
    require(!path.getType(i).empty() && !path.getName(i).empty(), "no type and no name is empty", full);
  }
  require(whole == full, "the components one by one are the path", full);
  require(tarn::PathUtils::typePathOf(full) == types, "the type path is that of the components", full);

  std::string const parent = path.getParentPath();
  require(tarn::PathUtils::parentOf(full) == parent, "both say the same of the parent", full);
  require(tarn::PathUtils::isChildPath(full, full), "a path is at itself", full);
  if (count == 0) return;
  require(tarn::TDFPath(parent).size() == count - 1, "a parent has one component less", full);
  require(tarn::PathUtils::lastType(full) == path.getLastType(), "both say the same of the last type", full);
  require(tarn::PathUtils::lastName(full) == path.getLastName(), "both say the same of the last name", full);
  require(path.isSingleton() == (path.getSubPath(count - 1, 1).find(':') == std::string::npos),
          "a singleton has no name of its own", full);
  if (count > 1) {
    require(tarn::PathUtils::isChildPath(parent, full), "a path lies below its parent", full);
    require(tarn::StringUtilities::isPathRootedAt(parent, full), "a path is rooted at its parent", full);
    require(tarn::PathUtils::comparePaths(parent, full) < 0, "a parent comes before what is below it", full);
  }

  tarn::TDFPath renamed = path;
  renamed.setName(count - 1, "rotor");
  require(path.getFullPath() == full, "a copy that is renamed leaves its original alone", full);
  require(tarn::TDFPath(renamed.getFullPath()).getLastName() == "rotor", "a path shows its new name", full);
  renamed.setName(count - 1, "");
  require(renamed.isSingleton() && renamed.getParentPath() == parent, "no name makes a singleton", full);
}

int sign(int number) {
  return (number > 0) - (number < 0);
}

void checkOrder(std::vector<std::string> const& paths) {
  using tarn::PathUtils::comparePaths;
  using tarn::PathUtils::isChildPath;
  for (std::string const& a : paths) {
    for (std::string const& b : paths) {
      std::string const both = a + " and " + b;
      require(sign(comparePaths(a, b)) == -sign(comparePaths(b, a)), "the order does not depend on the side", both);
      require((comparePaths(a, b) == 0) == (a == b), "equal in the order is equal", both);
      require(isChildPath(a, b) == tarn::StringUtilities::isPathRootedAt(a, b) || a.empty(),
              "both say the same of what is below", both);
      for (std::string const& c : paths) {
        if (comparePaths(a, b) > 0 || comparePaths(b, c) > 0) continue;
        std::string const all = both + " and " + c;
        require(comparePaths(a, c) <= 0, "the order is transitive", all);
        require(a.empty() || !isChildPath(a, c) || isChildPath(a, b), "nothing lies between a path and what is below",
                all);
      }
    }
  }
}

void checkChange(std::string const& text) {
  try {
    tarn::TDFChange const change(text);
    std::string const printed =
        change.getFullPath() + '/' + change.name + (change.name.empty() ? "" : "=") + change.value;
    tarn::TDFChange const again(printed);
    require(again.getFullPath() == change.getFullPath() && again.name == change.name && again.value == change.value,
            "an item prints back to itself", text);
    require(!change.name.empty() || change.value.empty(), "what has no name has no value", text);
    checkPath(change);
  } catch (tarn::Error const& error) {
    require(!error.getMessage().empty(), "a refusal says why", text);
  }
}

/// Objects whose types and names are those of the paths, so that patterns made of the same bytes find some.
MapModel modelOf(std::vector<std::string> const& paths) {
  MapModel model{{"/Case/Domain:rotor/Boundary:inlet", {}},
                 {"/Case/Domain:rotor/Boundary:outlet", {}},
                 {"/Case/Domain:rotor/Turbulence", {}},
                 {"/Case/Domain:stator/Boundary:inlet", {}},
                 {"/Case/Domain:stator/Domain:core", {}}};
  for (std::string const& path : paths) model.add(path);
  return model;
}

std::vector<std::string> const& places() {
  static std::vector<std::string> const all = {"", "/Case", "/Case/Domain:rotor", "/Case/Domain:stator/Domain:core",
                                               "/Case/Domain:none/Boundary:none"};
  return all;
}

void checkSteps(tarn::PathPattern const& pattern, std::string const& text) {
  if (pattern.start() == tarn::PathPattern::Start::Context && pattern.steps().empty()) {
    require(pattern.text().empty(), "only the context object itself has no text", text);
    return;
  }
  tarn::PathPattern const again(pattern.text());
  bool alike = again.start() == pattern.start() && again.startType() == pattern.startType() &&
               again.steps().size() == pattern.steps().size() && again.isSingle() == pattern.isSingle();
  for (std::size_t i = 0; alike && i < again.steps().size(); ++i) {
    auto const& a = again.steps()[i];
    auto const& b = pattern.steps()[i];
    alike = a.kind == b.kind && a.type == b.type && a.name == b.name;
  }
  require(alike, "a pattern prints back to itself", text);
  require(again.text() == pattern.text(), "a pattern has one text", text);
}

void checkExpansion(tarn::PathPattern const& pattern, MapModel const& model, std::string const& text) {
  for (std::string const& place : places()) {
    tarn::TDFContext const context(place, "/Case/Domain:rotor");
    auto const found = pattern.expand(context, model);
    std::set<std::string> const each(found.begin(), found.end());
    require(each.size() == found.size(), "an object is named once", text);
    for (std::string const& path : found) require(model.hasObject(path), "what is named is there", text);

    std::set<std::string> asked;
    bool const any = pattern.findIf(context, model, [&](std::string const& path) {
      asked.insert(path);
      return false;
    });
    require(!any && asked == each, "all that is named is asked about", text);
    bool const first = pattern.findIf(context, model, [&](std::string const& path) { return path == found.front(); });
    require(first == !found.empty(), "the first that is named is found", text);

    if (pattern.isSingle()) {
      std::string one;
      bool const isOne = pattern.resolve(context, one);
      require(found.size() <= 1, "a single pattern names one object", text);
      require((isOne && model.hasObject(one)) == !found.empty(), "a single pattern names what it comes to", text);
      require(found.empty() || found.front() == one, "a single pattern names what it comes to", text);
    }
    if (pattern.isAbsolute()) {
      require(pattern.expand(tarn::TDFContext(std::string("/Case")), model) == found,
              "an absolute pattern names the same everywhere", text);
    }
  }
}

std::optional<tarn::PathPattern> checkPattern(std::string const& text, MapModel const& model) {
  tarn::PathPattern::Fault fault{};
  std::string name;
  if (auto const pattern = tarn::PathPattern::parseParameter(text, name, fault)) {
    require(!name.empty(), "a parameter has a name", text);
    checkSteps(*pattern, text);
  } else {
    require(!fault.message.empty() && fault.offset <= text.size(), "a fault lies in the text", text);
  }
  auto const pattern = tarn::PathPattern::parse(text, fault);
  if (!pattern) {
    require(!fault.message.empty(), "a fault has a message", text);
    require(fault.offset <= text.size() && fault.offset + fault.length <= text.size() + 1, "a fault lies in the text",
            text);
    return std::nullopt;
  }
  checkSteps(*pattern, text);
  checkExpansion(*pattern, model, text);
  return pattern;
}

void checkSeenFrom(tarn::PathPattern const& pattern, tarn::PathPattern const& base, MapModel const& model) {
  std::string const both = pattern.text() + " seen from " + base.text();
  tarn::PathPattern const seen = pattern.seenFrom(base);
  if (seen.steps().size() > tarn::PathPattern::maxSteps) return;
  checkSteps(seen, both);
  for (std::string const& place : places()) {
    tarn::TDFContext const context(place);
    auto const all = seen.expand(context, model);
    std::set<std::string> const named(all.begin(), all.end());
    for (std::string const& object : base.expand(context, model)) {
      for (std::string const& path : pattern.expand(tarn::TDFContext(object, place), model)) {
        require(named.contains(path), "a pattern that is seen from elsewhere names no less", both);
      }
    }
  }
}

void checkValue(std::string const& text) {
  using tarn::TDFParam;
  auto const number = TDFParam::asNumber(text);
  require(!number || std::isfinite(*number), "a number is finite", text);
  require(TDFParam::asNumber(" " + text + "\t") == number, "white space around a number is no part of it", text);

  auto const quantity = TDFParam::asQuantity(text);
  require(!number || (quantity && quantity->number == *number && quantity->units.empty()),
          "a number is a quantity without units", text);
  std::string numberText;
  std::string units;
  auto const [value, isQuantity] = TDFParam::valueAsFloat(text, numberText, units);
  require(isQuantity == quantity.has_value(), "both say the same of what is a quantity", text);
  if (quantity) {
    require(isBetween(quantity->numberText, text) && isBetween(quantity->units, text), "views point into the text",
            text);
    require(numberText == quantity->numberText && units == quantity->units, "both divide a quantity alike", text);
    require(TDFParam::asNumber(quantity->numberText) == quantity->number, "the number's text is that number", text);
    require(std::isinf(value) || std::abs(value - static_cast<float>(quantity->number)) == 0.0F,
            "both read the same number", text);
  } else {
    require(numberText.empty() && units.empty() && value == 0.0F, "what is no quantity leaves nothing", text);
  }

  auto const logical = TDFParam::asLogical(text);
  require(TDFParam::asLogical('\n' + text) == logical, "white space around a truth value is no part of it", text);
  if (auto const type = TDFParam::typeFromName(text)) {
    require(TDFParam::typeName(*type) == text, "a type is called by its name", text);
  }
}

void checkTexts(std::string const& text) {
  namespace utilities = tarn::StringUtilities;
  std::string const trimmed = utilities::removeWhitespace(text);
  require(trimmed == utilities::trimmed(text) && utilities::trimmed(trimmed) == trimmed,
          "what is trimmed stays as it is", text);
  auto items = utilities::splitValue(text, ',');
  require(utilities::vectorToString(items, ',') == text, "a divided text joins to itself", text);
  for (std::string& item : items) item = utilities::removeWhitespace(item);
  require(utilities::stringToVector(text, ',') == items, "both divide a text alike", text);

  std::string path;
  std::string name;
  utilities::splitPathName(text, &path, &name);
  require(name.find('/') == std::string::npos, "a name holds no separator", text);
  require(path + '/' + name == text || (path.empty() && name == text), "a divided parameter path joins to itself",
          text);
}

void checkPairOfValues(std::string const& a, std::string const& b) {
  using tarn::TDFParam;
  for (int i = TDFParam::Integer; i <= TDFParam::StringList; ++i) {
    auto const type = static_cast<TDFParam::Type>(i);
    std::string const both = a + " and " + b + " as " + std::string(TDFParam::typeName(type));
    require(TDFParam::valuesEqual(type, a, a), "a value equals itself", both);
    require(TDFParam::valuesEqual(type, a, b) == TDFParam::valuesEqual(type, b, a),
            "equality does not depend on the side", both);
  }
  std::vector<std::string> const candidates = {a, b, "Turbulent", "Laminar"};
  for (std::string const& text : {a, b, a + "e", std::string("turbulent")}) {
    std::string const near = tarn::StringUtilities::nearMatch(text, candidates);
    require(near.empty() || std::find(candidates.begin(), candidates.end(), near) != candidates.end(),
            "a near match is one of those asked for", text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  auto lines = tarn::fuzz::linesOf(tarn::fuzz::textOf(data, size));
  lines.resize(std::min<std::size_t>(lines.size(), 6));

  std::vector<std::string> paths;
  for (std::string const& line : lines) {
    checkChange(line);
    checkValue(line);
    checkTexts(line);
    if (auto const path = parsed(line)) {
      checkPath(*path);
      if (path->size() <= 8) paths.push_back(path->getFullPath());
    }
  }
  checkOrder(paths);
  for (std::size_t i = 0; i < lines.size(); ++i) checkPairOfValues(lines[i], lines[(i + 1) % lines.size()]);

  MapModel const model = modelOf(paths);
  std::vector<tarn::PathPattern> patterns;
  for (std::string const& line : lines) {
    // Every "**" visits a branch anew for each object that is reached, so many of them are only slow.
    if (std::count(line.begin(), line.end(), '*') > 8) continue;
    if (auto pattern = checkPattern(line, model)) patterns.push_back(*pattern);
  }
  for (auto const& pattern : patterns) {
    for (auto const& base : patterns) checkSeenFrom(pattern, base, model);
  }
  return 0;
}

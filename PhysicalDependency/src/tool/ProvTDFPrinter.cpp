// The text of the provisional state. It is read by people and by scripts, so every text here is part of the tool's
// interface, to the blank.
//
// Lines are written without flushing; each operation flushes once at its end. Blocks of a whole state are the business
// of printModelState.

#include <tarn/ProvTDFPrinter.h>

#include <ostream>
#include <set>
#include <string_view>
#include <vector>

#include <tarn/ProvisionalTDF.h>
#include <tarn/printModelState.h>

namespace tarn {

namespace {

/// A section of the update summary: a heading over the items, or `emptyText` if there are no items.
template <typename Items, typename PrintItem>
void writeSection(std::ostream& out, std::string_view heading, std::string_view emptyText, Items const& items,
                  PrintItem const& printItem) {
  out << '\n';
  if (items.empty()) {
    out << emptyText << '\n';
    return;
  }
  out << heading << '\n' << std::string(heading.size(), '-') << '\n';
  for (auto const& item : items) {
    printItem(item);
    out << '\n';
  }
}

bool holds(ProvisionalTDF::ParamsByObject const& params, std::string const& objPath, std::string const& name) {
  auto const [begin, end] = params.equal_range(objPath);
  for (auto param = begin; param != end; ++param) {
    if (param->second == name) return true;
  }
  return false;
}

/// The allowed values in brackets, or nothing when there are none.
std::string allowedValuesSuffix(ProvisionalTDF const& provisional, std::string const& objPath, std::string const& name,
                                bool subset) {
  std::vector<std::string> const values = subset ? provisional.getSubsetAllowedParamValues(objPath, name)
                                                 : provisional.getAllowedParamValues(objPath, name);
  if (values.empty()) return {};
  std::string text = " [";
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) text += '|';
    text += values[i];
  }
  return text += ']';
}

void writeParamState(ProvisionalTDF const& provisional, std::ostream& out, std::string const& objPath,
                     std::string const& name, bool subset) {
  ModelState const& state = provisional.getActiveTDFState();
  auto const object = state.find(objPath);
  if (object == state.end()) {
    out << "Object \"" << objPath << "\" does not exist\n";
    return;
  }
  auto const param = object->second.find(name);
  if (param != object->second.end()) {
    out << objPath << '/' << name << " = " << param->second << allowedValuesSuffix(provisional, objPath, name, subset)
        << '\n';
  } else if (holds(provisional.getAvailPotParams(), objPath, name)) {
    out << objPath << '/' << name << " (optional - unset)" << allowedValuesSuffix(provisional, objPath, name, subset)
        << '\n';
  } else {
    out << "Parameter \"" << name << "\" not present or available in object " << objPath << '\n';
  }
}

}  // namespace

void ProvTDFPrinter::printString(std::string const& text) const {
  *out_ << text << '\n' << std::flush;
}

void ProvTDFPrinter::printState() const {
  printState(provisional_->getActiveTDFState());
}

void ProvTDFPrinter::printState(ModelState const& state) const {
  printModelState(state, *out_);
}

void ProvTDFPrinter::printObjectState(std::string const& path) const {
  std::ostream& out = *out_;
  bool hasHeader = false;
  auto const beginSection = [&](char const* title) {
    if (!hasHeader) out << path << " : \n";
    hasHeader = true;
    out << title << '\n';
  };

  ModelState const& state = provisional_->getActiveTDFState();
  if (auto const object = state.find(path); object != state.end()) {
    beginSection("Parameters:");
    for (auto const& [name, value] : object->second) out << "  " << name << " = " << value << '\n';
  }

  auto const [begin, end] = provisional_->getAvailPotParams().equal_range(path);
  if (begin != end) beginSection("Inactive available parameters:");
  for (auto param = begin; param != end; ++param) {
    std::string const suffix = allowedValuesSuffix(*provisional_, path, param->second, false);
    out << "  " << param->second;
    if (!suffix.empty()) out << "( allowed values: " << suffix << " )";
    out << '\n';
  }

  // The objects directly below, each once and in byte order: the last "/" of their paths is the one after this path.
  std::set<std::string_view> children;
  for (std::string const& object : provisional_->getAvailPotObjects()) {
    if (object.size() > path.size() && object.starts_with(path) && object.rfind('/') == path.size()) {
      children.insert(object);
    }
  }
  if (!children.empty()) beginSection("Inactive available child objects:");
  for (std::string_view const child : children) out << "  " << child << '\n';

  if (!hasHeader) {
    out << "No data found for object " << path << '\n'
        << "It possibly exists only as a container for sub-objects - check full TDF state\n";
  }
  out << std::flush;
}

void ProvTDFPrinter::printParamState(std::string const& objPath, std::string const& name, bool subset) const {
  writeParamState(*provisional_, *out_, objPath, name, subset);
  *out_ << std::flush;
}

void ProvTDFPrinter::printParamStateWithDecoration(std::string const& command, std::string const& argument,
                                                   std::string const& objPath, std::string const& name) const {
  std::ostream& out = *out_;
  out << "COMMAND: " << command << ' ' << argument << "\n\n";
  out << "Allowed Values\n--------------\n";
  writeParamState(*provisional_, *out_, objPath, name, false);
  out << "\nSubset Allowed Values\n---------------------\n";
  writeParamState(*provisional_, *out_, objPath, name, true);
  out << '\n' << std::flush;
}

void ProvTDFPrinter::printUpdates() const {
  std::ostream& out = *out_;
  ProvisionalTDF const& state = *provisional_;
  auto const path = [&out](std::string const& object) { out << object; };
  auto const param = [&out](auto const& item) { out << item.first << '/' << item.second; };
  auto const paramWithValue = [&](ProvisionalTDF::ParamId const& item) {
    param(item);
    out << " = " << state.getParamValue(item.first, item.second);
  };
  auto const paramWithAllowedValues = [&](auto const& item) {
    param(item);
    out << allowedValuesSuffix(*provisional_, item.first, item.second, false);
  };
  auto const quantity = [&out](auto const& item) { out << item.first << " (Quantity Type = " << item.second << ')'; };

  out << "\n>>>> == BEGIN UPDATE SUMMARY ==\n";
  writeSection(out, "New Parameters in TDF", "*No new parameters*", state.getNewlyAvailParams(), paramWithValue);
  writeSection(out, "Modified Parameters in TDF", "*No modified parameters*", state.getModParams(), paramWithValue);
  writeSection(out, "Parameters deleted from TDF", "*No deleted parameters*", state.getNewlyUnavailParams(), param);
  writeSection(out, "New Optional parameters available (not set)", "*No new (unset) optional parameters available*",
               state.getNewlyAvailPotParams(), param);
  writeSection(out, "Unset Optional Parameters with modified allowed value lists",
               "*No unset optional parameters with modified allowed value lists*", state.getModPotParams(),
               paramWithAllowedValues);
  writeSection(out, "Formerly unset optional parameters now unavailable",
               "*No (unset) optional parameters made unavailable*", state.getNewlyUnavailPotParams(), param);
  // This one text ends without the asterisk; scripts look for it as it is.
  writeSection(out, "New optional objects now available (inactive)",
               "*No new (inactive) optional objects made available", state.getNewlyAvailPotObjects(), path);
  writeSection(out, "Formerly inactive optional objects now unavailable",
               "*No (inactive) optional objects made unavailable*", state.getNewlyUnavailPotObjects(), path);
  writeSection(out, "Parameters for which Quantity Types have been adjusted",
               "*No quantities have been adjusted for real parameters*", state.getModQuantParams(), quantity);
  writeSection(out, "Object Deletions", "*No object deletions*", state.getDeletedObjects(), path);
  out << "\n<<<< == END UPDATE SUMMARY ==\n\n" << std::flush;
}

}  // namespace tarn

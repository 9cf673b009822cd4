// Edits, what became of them, and what they changed.
#include <algorithm>
#include <array>
#include <cstddef>

#include <tarn/service/SessionJson.h>
#include <tarn/session/Sentences.h>

#include "Converter.h"
#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

using Sentence = std::string (*)(session::TextChange const&);

py::object textChanges(Converter& convert, std::vector<session::TextChange> const& changes, Sentence sentence) {
  static RecordType const type("TextChange", {"path", "name", "before", "after", "_text"});
  py::tuple list(changes.size());
  for (std::size_t i = 0; i < changes.size(); ++i) {
    session::TextChange const& change = changes[i];
    list[i] = type.make(convert(change.path), convert(change.name), convert(change.before), convert(change.after),
                        convert(sentence(change)));
  }
  return list;
}

}  // namespace

py::object Converter::operator()(session::Item const& item) {
  static RecordType const type("Item", {"path", "name"});
  Converter& convert = *this;
  return type.make(convert(item.path), convert(item.name));
}

py::object Converter::operator()(Edit const& edit) {
  static RecordType const type("Edit", {"kind", "path", "name", "value"});
  Converter& convert = *this;
  return type.make(convert(service::editKindName(edit.kind)), convert(edit.path), convert(edit.name),
                   convert(edit.value));
}

py::object Converter::operator()(ParamAllowedValues const& allowed) {
  static RecordType const type("ParamAllowedValues", {"has_allowed_values", "has_subset", "allows_any_value",
                                                      "allowed_values", "subset_values"});
  Converter& convert = *this;
  return type.make(convert(allowed.hasAllowedValues), convert(allowed.hasSubset), convert(allowed.allowsAnyValue),
                   convert(allowed.allowedValues), convert(allowed.subsetValues));
}

py::object Converter::operator()(session::Waiting const& waiting) {
  static RecordType const type("Waiting", {"item", "value", "reason", "rule_reason", "missing_object", "_text"});
  Converter& convert = *this;
  return type.make(convert(waiting.item), convert(waiting.value), convert(service::waitingReasonName(waiting.reason)),
                   convert(waiting.ruleReason), convert(waiting.missingObject), convert(sentenceOf(waiting)));
}

py::object Converter::operator()(session::ValueChange const& change) {
  static RecordType const type("ValueChange", {"path", "name", "before", "after", "_text"});
  Converter& convert = *this;
  return type.make(convert(change.path), convert(change.name), convert(change.before), convert(change.after),
                   convert(sentenceOf(change)));
}

py::object Converter::operator()(session::ChoicesChange const& change) {
  static RecordType const type("ChoicesChange", {"path", "name", "before", "after", "_text"});
  Converter& convert = *this;
  return type.make(convert(change.path), convert(change.name), convert(change.before), convert(change.after),
                   convert(sentenceOf(change)));
}

py::object Converter::operator()(session::BoundsChange const& change) {
  static RecordType const type("BoundsChange", {"path", "name", "before", "after", "_text"});
  Converter& convert = *this;
  return type.make(convert(change.path), convert(change.name),
                   py::make_tuple(convert(change.before.first), convert(change.before.second)),
                   py::make_tuple(convert(change.after.first), convert(change.after.second)),
                   convert(sentenceOf(change)));
}

py::object Converter::operator()(session::WaitingChange const& change) {
  static RecordType const type("WaitingChange", {"item", "before", "after", "_text"});
  Converter& convert = *this;
  return type.make(convert(change.item), convert(change.before), convert(change.after), convert(sentenceOf(change)));
}

py::object Converter::operator()(session::Effect const& effect) {
  static RecordType const type("Effect",
                               {"values", "choices", "bounds", "defaults", "quantities", "offers_gained", "offers_lost",
                                "objects_created", "objects_deleted", "waiting", "_sentences"});
  Converter& convert = *this;
  return type.make(convert(effect.values), convert(effect.choices), convert(effect.bounds),
                   textChanges(convert, effect.defaults, session::sentenceOfDefault),
                   textChanges(convert, effect.quantities, session::sentenceOfQuantity), convert(effect.offersGained),
                   convert(effect.offersLost), convert(effect.objectsCreated), convert(effect.objectsDeleted),
                   convert(effect.waiting), convert(sentencesOf(effect)));
}

py::object Converter::operator()(session::Conversion const& conversion) {
  static RecordType const type("Conversion", {"index", "item", "from_", "to", "_text"});
  Converter& convert = *this;
  return type.make(convert(conversion.index), convert(conversion.item), convert(conversion.from),
                   convert(conversion.to), convert(sentenceOf(conversion)));
}

py::object Converter::operator()(session::FollowedReference const& reference) {
  static RecordType const type("FollowedReference", {"item", "before", "after", "_text"});
  Converter& convert = *this;
  return type.make(convert(reference.item), convert(reference.before), convert(reference.after),
                   convert(sentenceOf(reference)));
}

py::object Converter::operator()(session::Refused const& refused) {
  static RecordType const type("Refused",
                               {"code", "index", "edit", "sentence", "nearest", "possible", "possible_count", "_text"});
  Converter& convert = *this;
  return type.make(convert(refusalName(refused.code)), convert(refused.index), convert(refused.edit),
                   convert(refused.sentence), convert(refused.nearest), convert(refused.possible),
                   convert(refused.possibleCount), convert(sentenceOf(refused)));
}

py::object Converter::operator()(session::EditResult const& result) {
  static RecordType const type("EditResult", {"refused", "step", "made", "conversions", "followed", "effect", "_text"});
  Converter& convert = *this;
  return type.make(convert(result.refused), convert(result.step), convert(result.made), convert(result.conversions),
                   convert(result.followed), convert(result.effect), convert(sentenceOf(result)));
}

py::object Converter::operator()(session::TryResult const& result) {
  static RecordType const type("TryResult", {"result", "findings_gained", "findings_lost"});
  Converter& convert = *this;
  return type.make(convert(result.result), convert(result.findingsGained), convert(result.findingsLost));
}

py::object Converter::operator()(session::Step const& step) {
  static RecordType const type("Step", {"number", "edits", "made", "conversions", "followed", "_text"});
  Converter& convert = *this;
  return type.make(convert(step.number), convert(step.edits), convert(step.made), convert(step.conversions),
                   convert(step.followed), convert(sentenceOf(step)));
}

Edit editFrom(py::handle edit) {
  static constexpr std::array kinds{
      Edit::Kind::SetParam,       Edit::Kind::ActivateParam,    Edit::Kind::DeactivateParam,
      Edit::Kind::ActivateObject, Edit::Kind::DeactivateObject, Edit::Kind::AddObject,
      Edit::Kind::RemoveObject,   Edit::Kind::DuplicateObject,  Edit::Kind::RenameObject};
  std::string const name = bytesOf(edit.attr("kind"));
  auto const kind = std::find_if(kinds.begin(), kinds.end(),
                                 [&](Edit::Kind candidate) { return service::editKindName(candidate) == name; });
  if (kind == kinds.end()) throw py::value_error("there is no kind of edit \"" + name + "\"");
  return {*kind, bytesOf(edit.attr("path")), bytesOf(edit.attr("name")), bytesOf(edit.attr("value"))};
}

std::vector<Edit> editsFrom(py::handle edits) {
  std::vector<Edit> list;
  for (py::handle const edit : edits) list.push_back(editFrom(edit));
  return list;
}

}  // namespace tarn::python

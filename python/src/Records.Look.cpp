// The records of items: parameters, objects, types of children, and lists of them.
#include <tarn/TDFParam.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/Sentences.h>

#include "Converter.h"
#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

py::object Converter::operator()(session::ParamRecord const& param) {
  static RecordType const type("ParamRecord", {"path",
                                               "name",
                                               "description",
                                               "group",
                                               "label",
                                               "advanced",
                                               "type",
                                               "required",
                                               "present",
                                               "offered",
                                               "reason",
                                               "decision",
                                               "value",
                                               "origin",
                                               "step",
                                               "waiting",
                                               "value_in_model",
                                               "default_value",
                                               "lower_bound",
                                               "upper_bound",
                                               "lower_bound_excluded",
                                               "upper_bound_excluded",
                                               "out_of_bounds",
                                               "quantity_type",
                                               "units",
                                               "allowed",
                                               "complete_list_required",
                                               "rule",
                                               "_text"});
  Converter& convert = *this;
  return type.make(convert(param.path), convert(param.name), convert(param.description), convert(param.group),
                   convert(param.label), convert(param.advanced), convert(TDFParam::typeName(param.type)),
                   convert(param.required), convert(param.present), convert(param.offered), convert(param.reason),
                   convert(param.decision), convert(param.value), convert(originName(param.origin)),
                   convert(param.step), convert(param.waiting), convert(param.valueInModel),
                   convert(param.defaultValue), convert(param.lowerBound), convert(param.upperBound),
                   convert(param.lowerBoundExcluded), convert(param.upperBoundExcluded), convert(param.outOfBounds),
                   convert(param.quantityType), convert(param.units), convert(param.allowed),
                   convert(param.completeListRequired), convert(param.rule), convert(sentenceOf(param)));
}

py::object Converter::operator()(session::ObjectRecord const& object) {
  static RecordType const type(
      "ObjectRecord",
      {"path",      "type",     "name",     "description", "group",     "label",  "advanced", "required",
       "singleton", "editable", "present",  "offered",     "available", "reason", "decision", "waiting",
       "in_model",  "params",   "children", "rule",        "content",   "_text"});
  Converter& convert = *this;
  return type.make(convert(object.path), convert(object.type), convert(object.name), convert(object.description),
                   convert(object.group), convert(object.label), convert(object.advanced), convert(object.required),
                   convert(object.singleton), convert(object.editable), convert(object.present),
                   convert(object.offered), convert(object.available), convert(object.reason), convert(object.decision),
                   convert(object.waiting), convert(object.inModel), convert(object.params), convert(object.children),
                   convert(object.rule), convert(object.content), convert(sentenceOf(object)));
}

py::object Converter::operator()(session::ChildTypeRecord const& type) {
  static RecordType const recordType(
      "ChildTypeRecord", {"type", "description", "group", "label", "advanced", "required", "singleton", "editable",
                          "available", "reason", "can_add", "allowed_names", "present", "offered", "rule", "_text"});
  Converter& convert = *this;
  return recordType.make(convert(type.type), convert(type.description), convert(type.group), convert(type.label),
                         convert(type.advanced), convert(type.required), convert(type.singleton),
                         convert(type.editable), convert(type.available), convert(type.reason), convert(type.canAdd),
                         convert(type.allowedNames), convert(type.present), convert(type.offered), convert(type.rule),
                         convert(sentenceOf(type)));
}

py::object Converter::operator()(session::Found const& found) {
  static RecordType const type("Found", {"item", "match", "present", "_text"});
  Converter& convert = *this;
  return type.make(convert(found.item), convert(service::matchKindName(found.match)), convert(found.present),
                   convert(sentenceOf(found)));
}

py::object Converter::operator()(session::OwnValue const& value) {
  static RecordType const type("OwnValue", {"item", "value", "step", "in_force", "_text"});
  Converter& convert = *this;
  return type.make(convert(value.item), convert(value.value), convert(value.step), convert(value.inForce),
                   convert(sentenceOf(value)));
}

py::object Converter::operator()(session::Difference const& difference) {
  static RecordType const type("Difference", {"item", "in_model", "now", "is_new_object", "_text"});
  Converter& convert = *this;
  return type.make(convert(difference.item), convert(difference.inModel), convert(difference.now),
                   convert(difference.isNewObject), convert(sentenceOf(difference)));
}

}  // namespace tarn::python

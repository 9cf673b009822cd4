#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <pybind11/pybind11.h>

#include <tarn/Edit.h>
#include <tarn/Explanation.h>
#include <tarn/ModelRead.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/SharedStrings.h>
#include <tarn/TextPlace.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/Query.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Findings.h>
#include <tarn/session/Found.h>
#include <tarn/session/How.h>
#include <tarn/session/ObjectRecord.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Step.h>
#include <tarn/session/Waiting.h>

#include "Text.h"

namespace tarn::python {

/// Makes the records of `tarn.records` from those of the libraries. Lists become tuples, codes become their names, and
/// optional values that are empty become None. Needs the interpreter lock.
///
/// One converter serves one answer: lists that the records share, such as allowed values of thousands of parameters,
/// become one tuple. The C++ records must live as long as the converter.
class Converter {
 public:
  // Texts and plain values
  [[nodiscard]] pybind11::object operator()(std::string const& text) { return textOf(text); }
  [[nodiscard]] pybind11::object operator()(std::string_view text) { return textOf(text); }
  [[nodiscard]] pybind11::object operator()(char const* text) { return pybind11::str(text); }
  [[nodiscard]] pybind11::object operator()(bool flag) { return pybind11::bool_(flag); }
  [[nodiscard]] pybind11::object operator()(std::size_t number) { return pybind11::int_(number); }
  [[nodiscard]] pybind11::object operator()(int number) { return pybind11::int_(number); }
  /// None for what is not a number.
  [[nodiscard]] pybind11::object operator()(double number);
  [[nodiscard]] pybind11::object operator()(SharedStrings const& strings);
  [[nodiscard]] pybind11::object operator()(TextPlace const& place);

  template <typename Value>
  [[nodiscard]] pybind11::object operator()(std::optional<Value> const& value) {
    return value ? (*this)(*value) : pybind11::none();
  }

  template <typename Value>
  [[nodiscard]] pybind11::object operator()(std::vector<Value> const& values) {
    pybind11::tuple list(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) list[i] = (*this)(values[i]);
    return list;
  }

  // Models and rules
  [[nodiscard]] pybind11::object operator()(ModelState const& state);
  [[nodiscard]] pybind11::object operator()(ModelText::Fault const& fault);
  [[nodiscard]] pybind11::object operator()(rules::Diagnostic const& diagnostic);
  [[nodiscard]] pybind11::object operator()(rules::Diagnostic::Note const& note);
  [[nodiscard]] pybind11::object operator()(rules::DiagnosticFix const& fix);
  [[nodiscard]] pybind11::object operator()(rules::Query::Result const& result);

  // Edits and what they did
  [[nodiscard]] pybind11::object operator()(session::Item const& item);
  [[nodiscard]] pybind11::object operator()(Edit const& edit);
  [[nodiscard]] pybind11::object operator()(ParamAllowedValues const& allowed);
  [[nodiscard]] pybind11::object operator()(session::Waiting const& waiting);
  [[nodiscard]] pybind11::object operator()(session::ValueChange const& change);
  [[nodiscard]] pybind11::object operator()(session::ChoicesChange const& change);
  [[nodiscard]] pybind11::object operator()(session::BoundsChange const& change);
  [[nodiscard]] pybind11::object operator()(session::WaitingChange const& change);
  [[nodiscard]] pybind11::object operator()(session::Effect const& effect);
  [[nodiscard]] pybind11::object operator()(session::Conversion const& conversion);
  [[nodiscard]] pybind11::object operator()(session::FollowedReference const& reference);
  [[nodiscard]] pybind11::object operator()(session::Refused const& refused);
  [[nodiscard]] pybind11::object operator()(session::EditResult const& result);
  [[nodiscard]] pybind11::object operator()(session::TryResult const& result);
  [[nodiscard]] pybind11::object operator()(session::Step const& step);

  // Looks
  [[nodiscard]] pybind11::object operator()(session::ParamRecord const& param);
  [[nodiscard]] pybind11::object operator()(session::ObjectRecord const& object);
  [[nodiscard]] pybind11::object operator()(session::ChildTypeRecord const& type);
  [[nodiscard]] pybind11::object operator()(session::Found const& found);
  [[nodiscard]] pybind11::object operator()(session::OwnValue const& value);
  [[nodiscard]] pybind11::object operator()(session::Difference const& difference);

  // Findings
  [[nodiscard]] pybind11::object operator()(session::Expected const& expected);
  [[nodiscard]] pybind11::object operator()(session::Finding const& finding);
  [[nodiscard]] pybind11::object operator()(session::Findings const& findings);

  // Why and how
  [[nodiscard]] pybind11::object operator()(ModelRead const& read);
  [[nodiscard]] pybind11::object operator()(Explanation::Result const& result);
  [[nodiscard]] pybind11::object operator()(Explanation const& explanation);
  [[nodiscard]] pybind11::object operator()(session::ProofRead const& read);
  [[nodiscard]] pybind11::object operator()(session::ProofRule const& rule);
  [[nodiscard]] pybind11::object operator()(session::ProofNode const& node);
  [[nodiscard]] pybind11::object operator()(session::Proof const& proof);
  [[nodiscard]] pybind11::object operator()(session::Goal const& goal);
  [[nodiscard]] pybind11::object operator()(session::Way const& way);
  [[nodiscard]] pybind11::object operator()(session::HowResult const& result);

 private:
  std::unordered_map<void const*, pybind11::object> shared_;
};

/// From `tarn.records.Edit`. Each throws a `TypeError` or `ValueError` of Python for what it cannot read.
[[nodiscard]] Edit editFrom(pybind11::handle edit);
[[nodiscard]] std::vector<Edit> editsFrom(pybind11::handle edits);

}  // namespace tarn::python

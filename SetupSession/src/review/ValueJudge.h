#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Finds values that are not of their declared type, or that are outside their bounds. A validator compares values with
/// allowed values only; it never reads them as numbers.
///
/// An Integer must be a whole number and a Real a number, each with or without units. A Logical must read as true or
/// false. A String may be anything. A list is judged item by item, without the white space at the ends of an item. A
/// text that is now among the allowed values of the parameter is of the right type: "automatic" for a Real, say.
///
/// A number must be within the evaluated bounds; a value equal to a bound is within, unless the rules exclude the
/// bound. Numbers of a quantity type are compared in its first unit, in which a number or bound without units counts.
/// A number that cannot be converted is compared only with a bound in the same units.
///
/// Every present parameter that the walk visits is judged, even when it is not available or its validation is relaxed.
/// At most one fault is reported per parameter, the first.
class ValueJudge final : public ReviewJudge {
 public:
  void judgeParam(JudgedParam const& param, ReviewContext& context) override;
};

}  // namespace tarn::session

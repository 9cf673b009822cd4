#pragma once

#include "review/ReviewJudge.h"

namespace tarn::session {

/// Finds items that are present although the rules call them deprecated.
class HistoryJudge final : public ReviewJudge {
 public:
  void judgeParam(JudgedParam const& param, ReviewContext& context) override;
  void judgeObject(JudgedObject const& object, ReviewContext& context) override;
  void judgeChildren(JudgedChildren const& children, ReviewContext& context) override;
};

}  // namespace tarn::session

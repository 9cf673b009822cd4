#include "review/PatternJudge.h"

#include <tarn/TDFParam.h>
#include <tarn/TextPattern.h>

#include "review/JudgedItems.h"

namespace tarn::session {

void PatternJudge::judgeParam(JudgedParam const& param, ReviewContext& context) {
  TextPattern const* const pattern = param.declaration.pattern.get();
  if (pattern == nullptr || TDFParam::elementType(param.info.getType()) != TDFParam::String) return;
  forEachItem(param, [&](JudgedItem const& item) {
    if (pattern->matches(item.text) || isAllowed(param, item.text, context)) return true;
    std::string const& message = param.declaration.patternMessage;
    std::string const rest =
        message.empty() ? ", which does not match the pattern " + pattern->text() + '.' : ". " + message;
    reportItem(FindingCode::PatternNotMatched, param, item, rest, context).expected.pattern = pattern->text();
    return false;
  });
}

}  // namespace tarn::session

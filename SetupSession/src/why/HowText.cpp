#include <tarn/session/How.h>

#include <algorithm>

#include <tarn/session/Sentences.h>

#include "session/Printable.h"

namespace tarn::session {

namespace {

std::string counted(std::size_t count, std::string const& one) {
  return std::to_string(count) + ' ' + one + (count == 1 ? "" : "s");
}

std::string goalText(Goal const& goal) {
  std::string const text = printable(goal.item.text());
  return goal.value ? text + " = '" + printable(*goal.value, 60) + '\'' : text;
}

std::string wayText(Way const& way) {
  std::string text;
  for (Edit const& edit : way.edits) text += (text.empty() ? "" : "; then ") + sentenceOf(edit);
  if (way.atNextEdit) text += "; comes with the next edit";
  std::string losses;
  constexpr std::size_t mostNamed = 3;
  for (std::size_t i = 0; i < way.lost.size() && i < mostNamed; ++i) {
    ValueChange const& lost = way.lost[i];
    losses += (losses.empty() ? "" : ", ") + printable(lost.path + '/' + lost.name) + " = '" +
              printable(*lost.before, 60) + '\'';
  }
  if (way.lost.size() > mostNamed) losses += " and " + counted(way.lost.size() - mostNamed, "more value");
  if (!way.result.effect.objectsDeleted.empty()) {
    losses += (losses.empty() ? "" : ", ") + counted(way.result.effect.objectsDeleted.size(), "object");
  }
  std::size_t const errors = static_cast<std::size_t>(
      std::count_if(way.findingsGained.begin(), way.findingsGained.end(),
                    [](Finding const& finding) { return finding.severity == Severity::Error; }));
  std::string remarks;
  if (!losses.empty()) remarks = "loses " + losses;
  if (errors > 0) remarks += (remarks.empty() ? "" : "; ") + counted(errors, "new error") + " of the review";
  return remarks.empty() ? text : text + "  (" + remarks + ')';
}

}  // namespace

std::string textOf(HowResult const& result) {
  std::string const goal = goalText(result.goal);
  std::string text;
  switch (result.answer) {
    case HowAnswer::AlreadySo:
      return goal + " is so already\n";
    case HowAnswer::Found:
      text = goal + " comes with " + (result.ways.size() == 1 ? "this" : "any of these") + ":\n";
      for (Way const& way : result.ways) text += "  " + wayText(way) + '\n';
      return text;
    case HowAnswer::Impossible:
      text = goal + " is impossible under these rules\n";
      if (result.refused) text += "  " + result.refused->sentence + '\n';
      break;
    case HowAnswer::NotFound:
      text = "No way to " + goal + " was found: " + counted(result.trials, "trial") + ", all of up to " +
             counted(result.completedEdits, "edit");
      if (result.stoppedByTime) text += ", stopped by the clock";
      if (result.cancelled) text += ", cancelled";
      text += '\n';
      break;
  }
  if (!result.freeParams.empty()) {
    constexpr std::size_t mostNamed = 3;
    text += "  Not every value was tried of ";
    for (std::size_t i = 0; i < result.freeParams.size() && i < mostNamed; ++i) {
      text += (i == 0 ? "" : ", ") + printable(result.freeParams[i].text());
    }
    if (result.freeParams.size() > mostNamed) {
      text += " and " + std::to_string(result.freeParams.size() - mostNamed) + " more";
    }
    text += '\n';
  }
  if (result.blocking) text += textOf(*result.blocking);
  return text;
}

}  // namespace tarn::session

#pragma once

#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Found.h>
#include <tarn/session/ObjectRecord.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Step.h>
#include <tarn/session/Waiting.h>

/// The sentence form of every record of a session. All sentences are made here, so that they are the same everywhere.
/// Programs should compare codes and fields: sentences get better from release to release. Long values are shortened,
/// and control characters in them are escaped.
namespace tarn::session {

/// The request of an edit: `set /Case/Domain:rotor/Motion to "Rotating"`.
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Edit const& edit);
/// Why an edit was refused, and what would have worked.
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Refused const& refused);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Waiting const& waiting);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(WaitingChange const& change);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(ValueChange const& change);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(ChoicesChange const& change);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(BoundsChange const& change);
/// For a default that changed, and for a quantity type that changed.
[[nodiscard]] TARN_EXPORT std::string sentenceOfDefault(TextChange const& change);
[[nodiscard]] TARN_EXPORT std::string sentenceOfQuantity(TextChange const& change);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Conversion const& conversion);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(FollowedReference const& reference);
/// One line for the verdict: refused and why, or applied and how many changes of which kind.
[[nodiscard]] TARN_EXPORT std::string sentenceOf(EditResult const& result);
/// A sentence for each entry, in the order of the members.
[[nodiscard]] TARN_EXPORT std::vector<std::string> sentencesOf(Effect const& effect);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(ParamRecord const& param);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(ObjectRecord const& object);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(ChildTypeRecord const& type);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Found const& found);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Step const& step);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(OwnValue const& value);
[[nodiscard]] TARN_EXPORT std::string sentenceOf(Difference const& difference);

}  // namespace tarn::session

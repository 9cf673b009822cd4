#pragma once

#include <tarn/ProvisionalTDF.h>

namespace tarn::test {

/// Makes every later update of `state` a walk of everything, or lets it visit only what an edit concerns. The results
/// are the same. For tests of this, and for benchmarks that compare the two.
void forceFullWalks(ProvisionalTDF& state, bool on);

}  // namespace tarn::test

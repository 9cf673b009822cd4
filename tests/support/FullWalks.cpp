#include "support/FullWalks.h"

#include "provisional/ProvisionalTDFAccess.h"

namespace tarn::test {

void forceFullWalks(ProvisionalTDF& state, bool on) {
  ProvisionalTDFAccess::walkEverything(state, on);
}

}  // namespace tarn::test

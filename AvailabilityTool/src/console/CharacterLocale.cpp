#include "console/CharacterLocale.h"

#include <langinfo.h>

#include <cstring>

namespace tarn::tool {

namespace {

constexpr char const* asciiOnly = "ANSI_X3.4-1968";

}  // namespace

CharacterLocale::CharacterLocale() noexcept : locale_(::newlocale(LC_CTYPE_MASK, "", locale_t{})) {
  if (locale_ == locale_t{} || std::strcmp(::nl_langinfo_l(CODESET, locale_), asciiOnly) == 0) {
    // If the system has no such locale, the locale stays as it is.
    if (locale_t const general = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t{}); general != locale_t{}) {
      if (locale_ != locale_t{}) ::freelocale(locale_);
      locale_ = general;
    }
  }
  if (locale_ != locale_t{}) before_ = ::uselocale(locale_);
}

CharacterLocale::~CharacterLocale() {
  if (locale_ == locale_t{}) return;
  ::uselocale(before_);
  ::freelocale(locale_);
}

}  // namespace tarn::tool

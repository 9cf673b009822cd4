#pragma once

#include <clocale>

namespace tarn::tool {

/// While an object exists, this thread reads and shows the characters of the environment's locale, or UTF-8 if that
/// locale has ASCII only. The rest of the program uses the "C" locale, in which rules and models are read.
class CharacterLocale {
 public:
  CharacterLocale() noexcept;
  ~CharacterLocale();
  CharacterLocale(CharacterLocale const&) = delete;
  CharacterLocale& operator=(CharacterLocale const&) = delete;

 private:
  locale_t locale_;
  locale_t before_{};
};

}  // namespace tarn::tool

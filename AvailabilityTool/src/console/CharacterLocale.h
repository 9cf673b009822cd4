#pragma once

#include <clocale>

namespace tarn::tool {

/// The characters that are typed and shown, while it lives and for this thread: those of the locale of the environment,
/// and UTF-8 where that knows ASCII only. The rest of the program goes on in the "C" locale, in which rules and models
/// are read.
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

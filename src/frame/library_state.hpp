// Library-wide start-up state (internal). Tests reset it between cases; the
// shared library does not export the reset.
#pragma once

#include <string>

#include "frame/translation_store.hpp"

namespace kerfline::frame {

// The record InitKerflineDll2 hands to the translation store for the suite
// directory `base` (ending in the separator): the translation file named by
// "lang.ini" of the suite directory when it exists, and "lang/dll".
TranslationStartRecord translation_start_record(const std::string& base);

}  // namespace kerfline::frame

namespace kerfline::frame::testing {

// Back to the state of a freshly loaded library that has not started yet:
// no string tables, translation not tried, all translation flags set, the
// language context forgotten.
void reset_library_state();

}  // namespace kerfline::frame::testing

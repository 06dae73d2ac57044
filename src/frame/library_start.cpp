#include "frame/library_start.hpp"

namespace kerfline::frame {

// PENDING: these become InitKerflineDll() and InitKerflineDll2() once the
// start-up exports are in the frame. Until then the text dictionary answers
// from its built-in table and nothing is translated.
void ensure_resources_loaded() {}
void ensure_translation_started() {}

}  // namespace kerfline::frame

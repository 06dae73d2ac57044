#include "frame/library_start.hpp"

#include "kerfline/kerfline.h"

namespace kerfline::frame {

void ensure_resources_loaded() { (void)InitKerflineDll(); }

void ensure_translation_started() { (void)InitKerflineDll2(); }

}  // namespace kerfline::frame

// The start-up steps that driver-handle calls need before they run: the
// resource libraries (for the text dictionary) and the translation service.
#pragma once

namespace kerfline::frame {

// Loads the resource libraries when that has not happened yet.
void ensure_resources_loaded();
// Starts the translation service once per process.
void ensure_translation_started();

}  // namespace kerfline::frame

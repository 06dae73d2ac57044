// The text form of a driver document: JSON that a driver author can read,
// edit and keep in version control, converted to and from the binary driver
// file without losing a byte (see docs/driver-text-form.md).
#pragma once

#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "driver/vm6drv.hpp"

namespace kerfline::cli {

// The document as JSON; texts are converted from Windows-1252 to UTF-8.
nlohmann::ordered_json driver_to_json(driver::CVm6Drv& doc);

// A new document from its JSON form; null with `error` set (the JSON path of
// the offending field and what is wrong with it) when the form is invalid.
std::unique_ptr<driver::CVm6Drv> driver_from_json(const nlohmann::ordered_json& form, std::string& error);

}  // namespace kerfline::cli

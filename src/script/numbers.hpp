// Number conversions of the script language, independent of the process
// locale: texts are read as plain decimals (the longest leading number, 0
// when there is none) and written with the point.
#pragma once

#include <string>
#include <string_view>

namespace kerfline::script {

// Leading white space is skipped; then [sign] digits [. digits]
// [e [sign] digits]. "12abc" reads as 12, "abc" as 0.
double text_to_number(std::string_view text);

// The value as the C format "%.<decimals>f" writes it (decimals 0 to 100).
std::string format_fixed(double value, int decimals);

}  // namespace kerfline::script

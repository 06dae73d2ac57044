// Reading a device's answer by a format text, as the dialogue functions and
// the device readers take it from the driver ("%[0-9]%",
// "%[!%s!]%,%[!%IMatWidth%!]%").
//
// A format is literal text and slots "%[...]%":
//  - "%[!NAME!]%" a field: the characters up to the next ',', ';', CR, LF or
//    the first character of the literal that follows the slot; stored in the
//    variable NAME ("%s" reads the field and drops it);
//  - "%[SET]%" a character set as scanf has it ("0-9", "^;", "-0-9."): the
//    longest run (at least one character) of characters in the set.
// Literal text must come next in the answer. Blanks, CR and LF at the start
// of the answer are skipped; what follows the last slot is ignored.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kerfline::script {

struct AnswerMatch {
  bool matched = false;
  // The first set slot's run; without one the first named field; with no
  // slot at all the answer without its line end.
  std::string value;
  std::vector<std::pair<std::string, std::string>> fields;  // named fields, in order
};

AnswerMatch match_answer(std::string_view format, std::string_view answer);

// The answer without trailing CR and LF.
std::string_view strip_line_end(std::string_view answer);

}  // namespace kerfline::script

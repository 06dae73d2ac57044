// What the simulated cutter answers, instruction by instruction. Each row
// starts from IN, so the rows hold in any order and in one session.
#pragma once

#include <string>
#include <vector>

namespace kerfline::test {

struct AnswerRow {
  std::string sent;
  std::string answer;
};

inline const std::vector<AnswerRow>& answer_table() {
  static const std::vector<AnswerRow> rows = {
      {"IN;OI;", "KERFLINE-SIM\r"},
      {"IN;OH;", "0,0,24000,16000\r"},
      {"IN;OP;", "0,0,24000,16000\r"},
      {"IN;OF;", "40,40\r"},
      {"IN;OA;", "0,0,0\r"},
      {"IN;PA250,-40;PD;OA;", "250,-40,1\r"},
      {"IN;PU100,100;PR10,5,10,5;OA;", "120,110,0\r"},
      {"IN;PA100,100;PR10,5;PA7,8;OA;", "7,8,0\r"},
      {"IN;PD10.6,20.4;OA;", "11,20,1\r"},
      {"in;pa3 4;oa;", "3,4,0\r"},
      {"IN;OS;OS;", "24\r16\r"},
      {"IN;PD;OS;", "25\r"},
      {"IN;ZZ;OS;OE;OE;", "56\r1\r0\r"},
      {"IN;PA1,2,3;OE;", "2\r"},
      {"IN;PA#;OE;", "3\r"},
      {"IN;SP99;OE;", "3\r"},
      {"IN;LBOA;OI;\x03OA;", "0,0,0\r"},
      {"IN;X1b;@:\r\nEND.\r\nOE;", "0\r"},
      {"IN;\x1b.B", "1024\r"},
      {"IN;\x1b.L", "1024\r"},
      {"IN;\x1b.O", "8\r"},
      {"IN;\x1b.E", "0\r"},
      {"IN;\x1b.X\x1b.E\x1b.E", "11\r0\r"},
      {"IN;\x1b.@;0:\x1b.E", "0\r"},
      {"IN;OA OI", "0,0,0\rKERFLINE-SIM\r"},
  };
  return rows;
}

}  // namespace kerfline::test

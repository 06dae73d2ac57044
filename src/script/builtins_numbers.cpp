// Whole-number arithmetic, Rand and DC4. Arguments are read as decimals,
// the work is done in double precision and the result truncated toward 0.
#include <algorithm>
#include <cmath>

#include "script/builtins.hpp"
#include "script/numbers.hpp"

namespace kerfline::script {
namespace {

// The generator of the Microsoft C run-time, which drivers were tuned with.
class MsvcRandom {
 public:
  explicit MsvcRandom(std::uint32_t seed) : state_(seed) {}
  int next() {
    state_ = state_ * 214013U + 2531011U;
    return static_cast<int>((state_ >> 16) & 0x7FFFU);
  }

 private:
  std::uint32_t state_;
};

}  // namespace

std::int64_t random_in_range(std::uint32_t seed, std::int32_t a, std::int32_t b) {
  const std::int32_t low = std::min(a, b);
  const std::int32_t high = std::max(a, b);
  MsvcRandom random(seed);
  const int r1 = random.next();
  const int r2 = random.next();
  const int r3 = random.next();
  const int r = (r1 + r2 + r3) / 3;
  const double span = static_cast<double>(high) - static_cast<double>(low) + 1.0;
  return static_cast<std::int64_t>(std::trunc(r * span / 32768.0 + low));
}

namespace builtin {

std::string add(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return whole_number_text(text_to_number(x) + text_to_number(y));
}

std::string sub(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return whole_number_text(text_to_number(x) - text_to_number(y));
}

std::string mul(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  return whole_number_text(text_to_number(x) * text_to_number(y));
}

std::string div(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  const double divisor = text_to_number(y);
  if (!is_number_text(y) || divisor == 0.0) return "???";
  return whole_number_text(text_to_number(x) / divisor);
}

// Reseeded at every call from the high-resolution counter, so two calls in
// one template differ and nothing depends on earlier calls.
std::string rand(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [x, y] = pop_args<2>(args);
  const std::uint64_t counter = time_source().high_resolution_counter();
  const auto seed = static_cast<std::uint32_t>(counter ^ (counter >> 32));
  return std::to_string(random_in_range(seed, text_to_int(x), text_to_int(y)));
}

// DC4(val, off, start, length): `length` characters of val from position
// `start` (0-based), each carrying 4 bits as its code minus off, the first
// the most significant. off is a number, or a character standing for its
// code ("0" is the number 0; write 48 for the digit zero).
std::string dc4(ArgStack& args, const FunctionRecord&, Evaluator&) {
  const auto [value, off, start, length] = pop_args<4>(args);
  int offset = 0;
  if (is_number_text(off)) {
    offset = text_to_int(off);
  } else {
    offset = static_cast<unsigned char>(off.front());
  }
  const auto from = static_cast<std::size_t>(std::max(text_to_int(start), 0));
  const auto count = static_cast<std::size_t>(std::clamp(text_to_int(length), 0, 8));
  std::uint32_t result = 0;
  if (from < value.size()) {
    for (const char c : std::string_view(value).substr(from, count)) {
      // Unsigned: any offset wraps instead of overflowing.
      const std::uint32_t nibble =
          (static_cast<std::uint32_t>(static_cast<unsigned char>(c)) - static_cast<std::uint32_t>(offset)) &
          0x0FU;
      result = (result << 4) | nibble;
    }
  }
  return std::to_string(result);
}

}  // namespace builtin
}  // namespace kerfline::script

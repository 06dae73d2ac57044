#include "plotter.hpp"

#include <charconv>
#include <cmath>
#include <string>

namespace kerfline::sim {

namespace {

constexpr char kEsc = '\x1b';
constexpr char kEtx = '\x03';  // ends a label (LB)
constexpr double kMaxCoordinate = 1e9;

bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
char upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

// HP-GL errors as OE reports them.
constexpr int kErrUnknown = 1;
constexpr int kErrParamCount = 2;
constexpr int kErrBadParam = 3;
constexpr int kErrOverflow = 7;
// Device-control errors as ESC.E reports them.
constexpr int kIoErrBadEscape = 11;
constexpr int kIoErrTooLong = 14;

// Instructions a cutter accepts that change nothing the simulation shows.
bool is_ignored_instruction(char a, char b) {
  static constexpr std::string_view kIgnored[] = {"DF", "IP", "SC", "IW", "LT", "PT", "CT", "CS", "CA", "SI",
                                                  "SL", "DI", "DR", "PG", "RO", "AS", "EC", "NR", "AF", "AH",
                                                  "BP", "TB", "CV", "WU", "PS", "QL", "SS", "SA", "DT"};
  for (auto m : kIgnored) {
    if (m[0] == a && m[1] == b) return true;
  }
  return false;
}

std::string number_text(double v) {
  char buf[32];
  auto [end, ec] = std::to_chars(buf, buf + sizeof(buf), v);
  if (ec != std::errc()) return "0";
  return std::string(buf, end);
}

std::string int_text(double v) { return std::to_string(static_cast<long long>(std::llround(v))); }

}  // namespace

Plotter::Plotter(PlotterConfig config)
    : config_(std::move(config)), velocity_(kMaxPen + 1, 0.0), force_(kMaxPen + 1, 0.0) {}

double Plotter::velocity(int pen) const { return pen >= 0 && pen <= kMaxPen ? velocity_[pen] : 0.0; }
double Plotter::force(int pen) const { return pen >= 0 && pen <= kMaxPen ? force_[pen] : 0.0; }

void Plotter::feed(std::string_view bytes, std::vector<std::string>& answers) {
  for (char c : bytes) {
    if (held_.empty() && c != kFlushSequence.front()) {
      take(c, answers);
      continue;
    }
    held_.push_back(c);
    while (!held_.empty()) {
      if (kFlushSequence.starts_with(held_)) {
        if (held_.size() == kFlushSequence.size()) {
          held_.clear();
          ++flushes_;
        }
        break;
      }
      take(held_.front(), answers);
      held_.erase(0, 1);
    }
  }
}

void Plotter::take(char c, std::vector<std::string>& answers) {
  switch (state_) {
    case State::idle:
      if (c == kEsc) {
        state_ = State::esc;
      } else if (is_letter(c)) {
        first_ = upper(c);
        state_ = State::mnemonic;
      }
      // Separators, terminators and stray bytes between instructions are skipped.
      return;
    case State::mnemonic:
      if (is_letter(c)) {
        state_ = State::idle;
        start_command(first_, upper(c), answers);
        return;
      }
      state_ = State::idle;
      take(c, answers);
      return;
    case State::params:
      if (c == ';') {
        finish_command(answers);
      } else if (c == kEsc || (is_letter(c) && c != 'e' && c != 'E')) {
        finish_command(answers);
        take(c, answers);
      } else if (params_.size() < kMaxParameterBytes) {
        params_.push_back(c);
      } else {
        params_overflow_ = true;
      }
      return;
    case State::label:
      if (c == kEtx) state_ = State::idle;
      return;
    case State::esc:
      state_ = c == '.' ? State::esc_dot : State::idle;
      if (c != '.') io_error_ = kIoErrBadEscape;
      return;
    case State::esc_dot:
      state_ = State::idle;
      run_escape(upper(c), answers);
      return;
    case State::esc_params:
      if (c == ':') {
        state_ = State::idle;
      } else if (params_.size() < 64) {
        params_.push_back(c);
      } else {
        io_error_ = kIoErrTooLong;
        state_ = State::idle;
      }
      return;
  }
}

void Plotter::start_command(char first, char second, std::vector<std::string>& answers) {
  if (first == 'O') {
    run_query(second, answers);  // output instructions take no parameters
    return;
  }
  if (first == 'L' && second == 'B') {
    state_ = State::label;
    return;
  }
  mnemonic_[0] = first;
  mnemonic_[1] = second;
  params_.clear();
  params_overflow_ = false;
  state_ = State::params;
}

void Plotter::run_query(char second, std::vector<std::string>& answers) {
  const auto x = pos_.x;
  const auto y = pos_.y;
  switch (second) {
    case 'I':
      answers.push_back(config_.identification + "\r");
      return;
    case 'H':
    case 'P':
      answers.push_back("0,0," + int_text(config_.clip_width) + "," + int_text(config_.clip_height) + "\r");
      return;
    case 'A':
    case 'C':
      answers.push_back(int_text(x) + "," + int_text(y) + "," + (pen_down_ ? "1" : "0") + "\r");
      return;
    case 'S': {
      const int status = (pen_down_ ? 1 : 0) | (initialized_ ? 8 : 0) | 16 | (error_ != 0 ? 32 : 0);
      initialized_ = false;
      answers.push_back(std::to_string(status) + "\r");
      return;
    }
    case 'E':
      answers.push_back(std::to_string(error_) + "\r");
      error_ = 0;
      return;
    case 'F':
      answers.push_back("40,40\r");
      return;
    default:
      set_error(kErrUnknown);
      return;
  }
}

void Plotter::run_escape(char letter, std::vector<std::string>& answers) {
  switch (letter) {
    case 'B':
    case 'L':
      answers.push_back(std::to_string(kBufferSize) + "\r");
      return;
    case 'O':
      answers.push_back("8\r");  // buffer empty, ready
      return;
    case 'E':
      answers.push_back(std::to_string(io_error_) + "\r");
      io_error_ = 0;
      return;
    case '@':
    case 'H':
    case 'I':
    case 'M':
    case 'N':
    case 'P':
    case 'Q':
    case 'S':
    case 'T':
      params_.clear();
      state_ = State::esc_params;
      return;
    case 'J':
    case 'K':
    case 'R':
    case 'Y':
    case 'Z':
    case '(':
    case ')':
      return;
    default:
      io_error_ = kIoErrBadEscape;
      return;
  }
}

bool Plotter::parse_numbers(std::vector<double>& out) {
  out.clear();
  const char* p = params_.data();
  const char* end = p + params_.size();
  while (p < end) {
    if (*p == ',' || *p == ' ' || *p == '\t' || *p == '\r' || *p == '\n') {
      ++p;
      continue;
    }
    if (*p == '+') ++p;  // from_chars does not take a plus sign
    double v = 0;
    auto [next, ec] = std::from_chars(p, end, v);
    if (ec != std::errc() || !std::isfinite(v) || std::fabs(v) > kMaxCoordinate) return false;
    out.push_back(v);
    p = next;
  }
  return true;
}

void Plotter::lift_pen() {
  pen_down_ = false;
  stroke_open_ = false;
}

void Plotter::move_to(Point p) {
  if (pen_down_) {
    if (points_ >= kMaxPoints) {
      truncated_ = true;
    } else {
      if (!stroke_open_) {
        strokes_.push_back(Stroke{pen_, {pos_}});
        stroke_open_ = true;
        ++points_;
      }
      strokes_.back().points.push_back(p);
      ++points_;
    }
  }
  pos_ = p;
}

void Plotter::move_through(const std::vector<double>& coords, bool relative) {
  if (coords.size() % 2 != 0) set_error(kErrParamCount);
  for (std::size_t i = 0; i + 1 < coords.size(); i += 2) {
    Point p{coords[i], coords[i + 1]};
    if (relative) p = Point{pos_.x + p.x, pos_.y + p.y};
    if (std::fabs(p.x) > kMaxCoordinate || std::fabs(p.y) > kMaxCoordinate) {
      set_error(kErrBadParam);
      return;
    }
    move_to(p);
  }
}

void Plotter::finish_command(std::vector<std::string>& answers) {
  (void)answers;
  state_ = State::idle;
  const char a = mnemonic_[0];
  const char b = mnemonic_[1];
  if (params_overflow_) {
    set_error(kErrOverflow);
    return;
  }
  std::vector<double> n;
  const bool numeric = parse_numbers(n);
  auto cmd = [&](const char* m) { return a == m[0] && b == m[1]; };
  if (cmd("IN")) {
    lift_pen();
    pos_ = Point{};
    relative_ = false;
    error_ = 0;
    io_error_ = 0;
    initialized_ = true;
    return;
  }
  if (is_ignored_instruction(a, b)) return;
  const bool known = cmd("PU") || cmd("PD") || cmd("PA") || cmd("PR") || cmd("SP") || cmd("VS") || cmd("FS");
  if (!known) {
    set_error(kErrUnknown);
    return;
  }
  if (!numeric) {
    set_error(kErrBadParam);
    return;
  }
  if (cmd("PU")) {
    lift_pen();
    move_through(n, relative_);
  } else if (cmd("PD")) {
    if (!pen_down_) {
      pen_down_ = true;
      stroke_open_ = false;
    }
    move_through(n, relative_);
  } else if (cmd("PA") || cmd("PR")) {
    relative_ = cmd("PR");
    move_through(n, relative_);
  } else if (cmd("SP")) {
    const int pen = n.empty() ? 0 : static_cast<int>(n[0]);
    if (pen < 0 || pen > kMaxPen) {
      set_error(kErrBadParam);
      return;
    }
    if (pen != pen_) stroke_open_ = false;
    pen_ = pen;
  } else {  // VS or FS: value[,pen]; without a pen it applies to all
    if (n.empty() || n.size() > 2) {
      set_error(kErrParamCount);
      return;
    }
    auto& table = cmd("VS") ? velocity_ : force_;
    if (n.size() == 2) {
      const int pen = static_cast<int>(n[1]);
      if (pen < 0 || pen > kMaxPen) {
        set_error(kErrBadParam);
        return;
      }
      table[pen] = n[0];
    } else {
      for (auto& v : table) v = n[0];
    }
  }
}

std::string render_svg(const Plotter& plotter) {
  const auto& cfg = plotter.config();
  const std::string w = number_text(cfg.clip_width);
  const std::string h = number_text(cfg.clip_height);
  std::string out;
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  out += "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + number_text(cfg.clip_width / 40) +
         "mm\" height=\"" + number_text(cfg.clip_height / 40) + "mm\" viewBox=\"0 0 " + w + " " + h + "\">\n";
  if (plotter.strokes_truncated()) out += "<!-- more was cut than recorded -->\n";
  static constexpr const char* kColours[] = {"black",   "red",    "blue", "green",
                                             "magenta", "orange", "teal", "brown"};
  // One group per pen, in the order pens were first used.
  std::vector<int> pens;
  for (const auto& s : plotter.strokes()) {
    bool seen = false;
    for (int p : pens) seen = seen || p == s.pen;
    if (!seen) pens.push_back(s.pen);
  }
  for (int pen : pens) {
    out += "<g id=\"pen-" + std::to_string(pen) + "\" fill=\"none\" stroke=\"" + kColours[pen % 8] +
           "\" stroke-width=\"4\" transform=\"translate(0," + h + ") scale(1,-1)\">\n";
    for (const auto& s : plotter.strokes()) {
      if (s.pen != pen) continue;
      out += "<polyline points=\"";
      for (std::size_t i = 0; i < s.points.size(); ++i) {
        if (i > 0) out += ' ';
        out += number_text(s.points[i].x) + "," + number_text(s.points[i].y);
      }
      out += "\"/>\n";
    }
    out += "</g>\n";
  }
  out += "</svg>\n";
  return out;
}

}  // namespace kerfline::sim

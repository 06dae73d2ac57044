// The simulated cutter's command reader: HP-GL instructions and the RS-232
// device-control escapes, fed in arbitrary pieces as they arrive. It follows
// the tool (IN, PU, PD, PA, PR, SP, VS, FS), keeps what was cut as strokes,
// and produces the answers to output instructions. Everything it keeps is
// bounded: a parameter list longer than the limit is an error, strokes stop
// being recorded past a fixed number of points.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kerfline::sim {

struct Point {
  double x = 0;
  double y = 0;
};

// One pen-down run of the tool: the pen it was cut with and its points.
struct Stroke {
  int pen = 0;
  std::vector<Point> points;
};

struct PlotterConfig {
  std::string identification = "KERFLINE-SIM";  // answer to OI
  double clip_width = 24000;                    // hard-clip limits in plotter units (OH, OP)
  double clip_height = 16000;
};

class Plotter {
 public:
  static constexpr std::size_t kMaxParameterBytes = 1024;
  static constexpr std::size_t kMaxPoints = 2'000'000;
  static constexpr int kMaxPen = 64;
  static constexpr int kBufferSize = 1024;  // reported free buffer space
  // What the host sends to empty a USB pipe before a question; ignored.
  static constexpr std::string_view kFlushSequence = "X1b;@:\r\nEND.\r\n";

  explicit Plotter(PlotterConfig config = {});

  // Reads bytes; each answer produced (complete, ending in "\r") is appended.
  void feed(std::string_view bytes, std::vector<std::string>& answers);

  [[nodiscard]] const std::vector<Stroke>& strokes() const { return strokes_; }
  [[nodiscard]] bool strokes_truncated() const { return truncated_; }
  [[nodiscard]] Point position() const { return pos_; }
  [[nodiscard]] bool pen_down() const { return pen_down_; }
  [[nodiscard]] int pen() const { return pen_; }
  [[nodiscard]] double velocity(int pen) const;  // 0 when never set
  [[nodiscard]] double force(int pen) const;
  [[nodiscard]] int error() const { return error_; }
  [[nodiscard]] std::size_t flushes_ignored() const { return flushes_; }
  [[nodiscard]] const PlotterConfig& config() const { return config_; }

 private:
  enum class State { idle, mnemonic, params, label, esc, esc_dot, esc_params };

  void take(char c, std::vector<std::string>& answers);
  void start_command(char first, char second, std::vector<std::string>& answers);
  void finish_command(std::vector<std::string>& answers);
  void run_query(char second, std::vector<std::string>& answers);
  void run_escape(char letter, std::vector<std::string>& answers);
  bool parse_numbers(std::vector<double>& out);
  void move_through(const std::vector<double>& coords, bool relative);
  void move_to(Point p);
  void lift_pen();
  void set_error(int code) { error_ = code; }

  PlotterConfig config_;
  State state_ = State::idle;
  char first_ = 0;
  char mnemonic_[2] = {0, 0};
  std::string params_;
  bool params_overflow_ = false;
  std::string held_;  // bytes that may be the start of the flush sequence

  Point pos_;
  bool pen_down_ = false;
  bool relative_ = false;
  int pen_ = 0;
  bool initialized_ = true;  // status bit 3 until the first OS
  int error_ = 0;            // HP-GL error (OE)
  int io_error_ = 0;         // device-control error (ESC.E)
  std::vector<double> velocity_;
  std::vector<double> force_;
  std::vector<Stroke> strokes_;
  bool stroke_open_ = false;
  std::size_t points_ = 0;
  bool truncated_ = false;
  std::size_t flushes_ = 0;
};

// The strokes as an SVG picture: plotter units (40 per millimetre) with the
// origin at the bottom left as on the cutter, one group per pen.
std::string render_svg(const Plotter& plotter);

}  // namespace kerfline::sim

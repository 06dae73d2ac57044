#include "options.hpp"

#include <charconv>

namespace kerfline::sim {

const char* const kUsage =
    "usage: kerfline-sim (--pty | --fifo DIR | --tcp PORT) [options]\n"
    "A simulated cutting plotter that answers HP-GL and RS-232 device-control queries.\n"
    "\n"
    "Where it serves (one of):\n"
    "  --pty              a pseudo-terminal (a named pipe on Windows); prints the device path,\n"
    "                     then serves\n"
    "  --fifo DIR         a FIFO pair in DIR: reads DIR/PIPE01, answers on DIR/PIPE00; prints DIR\n"
    "  --tcp PORT         a TCP port (0: the system picks one); prints the port\n"
    "  --bind ADDRESS     address to listen on with --tcp (default 127.0.0.1)\n"
    "  --remote PORT      instead of a cutter, a reference remote plot manager on a TCP port\n"
    "                     (its own options: kerfline-sim --remote 0 --usage)\n"
    "\n"
    "Faults:\n"
    "  --delay-ms N       wait N ms before each answer\n"
    "  --silent           never answer\n"
    "  --drop-after N     hang up after receiving N bytes of a connection\n"
    "  --refuse N         refuse the first N opens (--tcp: accept and close at once;\n"
    "                     --fifo: the pipes appear only after N x 2 s)\n"
    "  --flood[=BYTES]    answer every query with BYTES bytes (default 10485760)\n"
    "\n"
    "Output and behaviour:\n"
    "  --svg FILE         write what was cut as an SVG picture at exit\n"
    "  --log FILE         write every byte received to FILE\n"
    "  --path-file FILE   also write the printed line to FILE once ready\n"
    "  --once             exit after the first peer closed its connection\n"
    "  --id TEXT          identification answered to OI (default KERFLINE-SIM)\n"
    "  --clip W,H         hard-clip limits in plotter units (default 24000,16000)\n"
    "  --help             this text\n";

namespace {

template <typename T>
bool parse_number(const std::string& text, T& out) {
  const char* end = text.data() + text.size();
  auto [p, ec] = std::from_chars(text.data(), end, out);
  return ec == std::errc() && p == end;
}

bool parse_clip(const std::string& text, PlotterConfig& cfg) {
  const auto comma = text.find(',');
  if (comma == std::string::npos) return false;
  double w = 0;
  double h = 0;
  if (!parse_number(text.substr(0, comma), w) || !parse_number(text.substr(comma + 1), h)) return false;
  if (!(w > 0 && h > 0 && w < 1e9 && h < 1e9)) return false;
  cfg.clip_width = w;
  cfg.clip_height = h;
  return true;
}

}  // namespace

std::optional<Options> parse_options(const std::vector<std::string>& args, std::string& error) {
  Options o;
  for (std::size_t i = 0; i < args.size(); ++i) {
    std::string name = args[i];
    std::optional<std::string> inline_value;
    if (const auto eq = name.find('='); name.starts_with("--") && eq != std::string::npos) {
      inline_value = name.substr(eq + 1);
      name.resize(eq);
    }
    auto value = [&](std::string& out) {
      if (inline_value) {
        out = *inline_value;
        return true;
      }
      if (i + 1 >= args.size()) {
        error = name + " needs a value";
        return false;
      }
      out = args[++i];
      return true;
    };
    auto bad = [&](const std::string& v) {
      error = std::string("bad value for ").append(name).append(": '").append(v).append("'");
      return std::nullopt;
    };
    auto set_transport = [&](Transport t) {
      if (o.transport != Transport::none) {
        error = "choose one of --pty, --fifo, --tcp";
        return false;
      }
      o.transport = t;
      return true;
    };
    std::string v;
    if (name == "--help" || name == "-h") {
      o.help = true;
    } else if (name == "--pty") {
      if (!set_transport(Transport::pty)) return std::nullopt;
    } else if (name == "--fifo") {
      if (!set_transport(Transport::fifo) || !value(o.fifo_dir)) return std::nullopt;
    } else if (name == "--tcp") {
      if (!set_transport(Transport::tcp) || !value(v)) return std::nullopt;
      if (!parse_number(v, o.tcp_port)) return bad(v);
    } else if (name == "--bind") {
      if (!value(o.bind_address)) return std::nullopt;
    } else if (name == "--delay-ms") {
      if (!value(v)) return std::nullopt;
      if (!parse_number(v, o.delay_ms) || o.delay_ms < 0) return bad(v);
    } else if (name == "--silent") {
      o.silent = true;
    } else if (name == "--drop-after") {
      std::size_t n = 0;
      if (!value(v)) return std::nullopt;
      if (!parse_number(v, n)) return bad(v);
      o.drop_after = n;
    } else if (name == "--refuse") {
      if (!value(v)) return std::nullopt;
      if (!parse_number(v, o.refuse) || o.refuse < 0) return bad(v);
    } else if (name == "--flood") {
      o.flood_bytes = std::size_t{10} * 1024 * 1024;
      if (inline_value && (!parse_number(*inline_value, o.flood_bytes) || o.flood_bytes == 0)) {
        return bad(*inline_value);
      }
    } else if (name == "--svg") {
      if (!value(o.svg_file)) return std::nullopt;
    } else if (name == "--log") {
      if (!value(o.log_file)) return std::nullopt;
    } else if (name == "--path-file") {
      if (!value(o.path_file)) return std::nullopt;
    } else if (name == "--once") {
      o.once = true;
    } else if (name == "--id") {
      if (!value(o.plotter.identification)) return std::nullopt;
    } else if (name == "--clip") {
      if (!value(v)) return std::nullopt;
      if (!parse_clip(v, o.plotter)) return bad(v);
    } else {
      error = "unknown option " + name;
      return std::nullopt;
    }
  }
  if (!o.help && o.transport == Transport::none) {
    error = "choose one of --pty, --fifo, --tcp";
    return std::nullopt;
  }
  if (o.refuse > 0 && o.transport == Transport::pty) {
    error = "--refuse is not available with --pty (a pseudo-terminal cannot turn an open away)";
    return std::nullopt;
  }
  return o;
}

}  // namespace kerfline::sim

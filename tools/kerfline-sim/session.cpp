#include "session.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/stop_signal.hpp"

namespace kerfline::sim {

namespace {

constexpr int kPollMs = 250;           // how often a quiet line checks for a stop signal
constexpr int kWriteTimeoutMs = 2000;  // a peer that takes nothing this long loses the answer

bool write_answer(Simulator& sim, platform::ByteStream& out, const std::string& answer) {
  if (sim.options.flood_bytes == 0) {
    auto w = out.write(answer.data(), answer.size(), kWriteTimeoutMs);
    return w.ok();
  }
  // A flood: digits in lines of 64, until the size or a peer that stops reading.
  std::string chunk;
  for (int i = 0; i < 1024; ++i)
    chunk += "0123456789012345678901234567890123456789012345678901234567890123\r";
  std::size_t left = sim.options.flood_bytes;
  while (left > 0) {
    const std::size_t n = std::min(left, chunk.size());
    auto w = out.write(chunk.data(), n, kWriteTimeoutMs);
    if (!w) return false;
    if (*w < n) return true;  // the peer stopped reading: the rest is dropped
    left -= n;
  }
  return true;
}

}  // namespace

bool announce(const std::string& line, const std::string& path_file) {
  std::cout << line << std::endl;
  if (path_file.empty()) return true;
  const std::string part = path_file + ".part";
  {
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    out << line << "\n";
    if (!out.flush()) {
      std::cerr << "kerfline-sim: cannot write " << path_file << "\n";
      return false;
    }
  }
  std::error_code ec;
  std::filesystem::rename(part, path_file, ec);
  if (ec) std::cerr << "kerfline-sim: cannot write " << path_file << "\n";
  return !ec;
}

bool pause_unless_stopped(int ms) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  while (std::chrono::steady_clock::now() < end) {
    if (platform::stop_requested()) return false;
    const auto left = end - std::chrono::steady_clock::now();
    std::this_thread::sleep_for(
        std::min<std::chrono::steady_clock::duration>(left, std::chrono::milliseconds(50)));
  }
  return !platform::stop_requested();
}

SessionEnd serve_session(Simulator& sim, platform::ByteStream& in, platform::ByteStream& out,
                         const std::function<void()>& on_first_bytes) {
  char buffer[4096];
  std::size_t received = 0;
  bool first = true;
  std::vector<std::string> answers;
  for (;;) {
    if (platform::stop_requested()) return SessionEnd::stopped;
    auto r = in.read(buffer, sizeof(buffer), kPollMs);
    if (!r) {
      std::cerr << "kerfline-sim: " << r.error().message << "\n";
      return SessionEnd::failed;
    }
    if (r->closed) return SessionEnd::peer_closed;
    if (r->count == 0) continue;
    if (first && on_first_bytes) on_first_bytes();
    first = false;
    std::size_t n = r->count;
    bool drop = false;
    if (sim.options.drop_after && received + n >= *sim.options.drop_after) {
      n = *sim.options.drop_after - received;
      drop = true;
    }
    received += n;
    if (sim.log.is_open()) {
      sim.log.write(buffer, static_cast<std::streamsize>(n));
      sim.log.flush();
    }
    answers.clear();
    sim.plotter.feed(std::string_view(buffer, n), answers);
    if (drop) return SessionEnd::dropped;
    if (sim.options.silent) continue;
    for (const auto& answer : answers) {
      if (sim.options.delay_ms > 0 && !pause_unless_stopped(sim.options.delay_ms)) return SessionEnd::stopped;
      if (!write_answer(sim, out, answer)) break;  // the peer is gone; its close ends the session
    }
  }
}

}  // namespace kerfline::sim

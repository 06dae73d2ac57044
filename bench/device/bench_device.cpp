// Queries against a pseudo-terminal peer: the wall time is the fixed waits
// plus transfer, the CPU time of the querying thread stays near zero while
// it waits; and a 10 MB send through WriteToDevice.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>

#include "device/port_access.hpp"

namespace {

namespace port = kerfline::platform::port;

double thread_cpu_ms() {
  rusage u{};
  ::getrusage(RUSAGE_THREAD, &u);
  return (u.ru_utime.tv_sec + u.ru_stime.tv_sec) * 1e3 + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e3;
}

// A device on the master side: answers every ';' with `answer` (or stays
// silent when it is empty) and swallows everything else.
class Peer {
 public:
  explicit Peer(std::string answer) : answer_(std::move(answer)) {
    int slave = -1;
    ::openpty(&master_, &slave, nullptr, nullptr, nullptr);
    termios t{};
    ::tcgetattr(slave, &t);
    ::cfmakeraw(&t);
    ::tcsetattr(slave, TCSANOW, &t);
    path_ = ::ttyname(slave);
    slave_ = slave;
    thread_ = std::thread([this] {
      char buf[65536];
      while (!stop_) {
        pollfd p{master_, POLLIN, 0};
        if (::poll(&p, 1, 20) <= 0) continue;
        const ssize_t n = ::read(master_, buf, sizeof buf);
        if (n <= 0) continue;
        received_ += static_cast<std::size_t>(n);
        if (!answer_.empty() &&
            std::string_view(buf, static_cast<std::size_t>(n)).find(';') != std::string_view::npos) {
          (void)!::write(master_, answer_.data(), answer_.size());
        }
      }
    });
  }
  ~Peer() {
    stop_ = true;
    thread_.join();
    ::close(slave_);
    ::close(master_);
  }
  const std::string& path() const { return path_; }
  std::size_t received() const { return received_; }

 private:
  std::string answer_;
  int master_ = -1;
  int slave_ = -1;
  std::string path_;
  std::thread thread_;
  std::atomic<bool> stop_{false};
  std::atomic<std::size_t> received_{0};
};

void query(benchmark::State& state, const std::string& answer) {
  Peer peer(answer);
  double cpu = 0;
  for (auto _ : state) {
    const port::Handle h = port::open_existing(peer.path(), port::Access::kReadWrite).value();
    const double before = thread_cpu_ms();
    auto result = kerfline::device::QueryDevice(h, h, "OA;", nullptr);
    cpu += thread_cpu_ms() - before;
    benchmark::DoNotOptimize(result);
  }
  state.counters["cpu_ms_per_query"] = cpu / static_cast<double>(state.iterations());
}

void BM_QueryAnswered(benchmark::State& state) { query(state, "0,0\r"); }
void BM_QuerySilent(benchmark::State& state) { query(state, ""); }

void BM_Send10MB(benchmark::State& state) {
  Peer peer("");
  const std::string data(10u << 20, 'P');
  double cpu = 0;
  for (auto _ : state) {
    void* h = reinterpret_cast<void*>(port::open_existing(peer.path(), port::Access::kReadWrite).value());
    const double before = thread_cpu_ms();
    for (std::size_t at = 0; at < data.size(); at += 4096) WriteToDevice(&h, data.data() + at, 4096);
    cpu += thread_cpu_ms() - before;
    CloseDevice(&h, &h);
  }
  state.counters["cpu_ms"] = cpu / static_cast<double>(state.iterations());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * data.size()));
}

}  // namespace

BENCHMARK(BM_QueryAnswered)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);
BENCHMARK(BM_QuerySilent)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);
BENCHMARK(BM_Send10MB)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

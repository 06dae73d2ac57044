// How fast the simulated cutter reads a plot, and what one question and answer
// costs over loopback TCP: the simulator must keep up with any link it serves.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "platform/tcp_socket.hpp"
#include "plotter.hpp"

namespace {

std::string plot_of(std::size_t moves) {
  std::string plot = "IN;SP1;";
  for (std::size_t i = 0; i < moves; ++i) {
    plot +=
        (i % 8 == 0 ? "PU" : "PD") + std::to_string(i % 24000) + "," + std::to_string((i * 7) % 16000) + ";";
  }
  return plot;
}

void BM_ReadPlot(benchmark::State& state) {
  const std::string plot = plot_of(static_cast<std::size_t>(state.range(0)));
  std::vector<std::string> answers;
  for (auto _ : state) {
    kerfline::sim::Plotter p;
    p.feed(plot, answers);
    benchmark::DoNotOptimize(p.strokes().size());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * plot.size()));
}
BENCHMARK(BM_ReadPlot)->Arg(1000)->Arg(100000);

void BM_LoopbackQuestionAndAnswer(benchmark::State& state) {
  using namespace kerfline::platform;
  auto listener = TcpListener::listen("127.0.0.1", 0);
  auto client = tcp_connect("127.0.0.1", listener->port(), 1000);
  auto server = listener->accept(1000);
  ByteStream& peer = **server;
  char buf[64];
  for (auto _ : state) {
    (void)client->write("OA;", 3, 1000);
    (void)peer.read(buf, sizeof(buf), 1000);
    (void)peer.write("0,0,0\r", 6, 1000);
    (void)client->read(buf, sizeof(buf), 1000);
  }
}
BENCHMARK(BM_LoopbackQuestionAndAnswer);

}  // namespace

// Feeds every file named on the command line (a directory: every file in it)
// to the target's LLVMFuzzerTestOneInput, as libFuzzer replays a corpus, so
// that builds without libFuzzer keep every saved input passing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  std::set<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (std::filesystem::is_directory(argv[i])) {
      for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
        if (entry.is_regular_file()) files.insert(entry.path());
    } else {
      files.insert(argv[i]);
    }
  }
  if (files.empty()) {
    std::fprintf(stderr, "no inputs\n");
    return 1;
  }
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
      return 1;
    }
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    // A copy of exactly the input's size, so that ASan sees reads past its end.
    auto* copy = new std::uint8_t[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), copy);
    LLVMFuzzerTestOneInput(copy, bytes.size());
    delete[] copy;
  }
  std::printf("%zu inputs replayed\n", files.size());
  return 0;
}

// The shared library exports exactly what the public headers declare: no
// internal function, no stray template instantiation, nothing missing.
#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

struct Declared {
  std::set<std::string> functions;
  std::set<std::string> classes;
};

std::string strip_comments(const std::string& text) {
  static const std::regex block(R"(/\*[\s\S]*?\*/)");
  static const std::regex line(R"(//[^\n]*)");
  static const std::regex directive(R"((^|\n)[ \t]*#[^\n]*)");
  const std::string no_comments = std::regex_replace(std::regex_replace(text, block, ""), line, "");
  return std::regex_replace(no_comments, directive, "\n");
}

Declared read_headers() {
  Declared d;
  const std::regex fn(R"(KERFLINE_API[^;{}()#]*?[\s*&](\w+)\s*\()");
  const std::regex cls(R"((?:class|struct)\s+KERFLINE_API\s+(\w+))");
  for (const auto& entry : std::filesystem::directory_iterator(KERFLINE_HEADER_DIR)) {
    std::ifstream in(entry.path());
    std::stringstream all;
    all << in.rdbuf();
    const std::string text = strip_comments(all.str());
    for (std::sregex_iterator it(text.begin(), text.end(), fn), end; it != end; ++it) {
      d.functions.insert((*it)[1]);
    }
    for (std::sregex_iterator it(text.begin(), text.end(), cls), end; it != end; ++it) {
      d.classes.insert((*it)[1]);
    }
  }
  return d;
}

std::set<std::string> exported_symbols() {
  const std::string cmd = std::string("nm -D --defined-only '") + KERFLINE_LIBRARY_FILE + "'";
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(cmd.c_str(), "r"), pclose);
  std::set<std::string> names;
  if (!pipe) return names;
  char line[4096];
  while (std::fgets(line, sizeof(line), pipe.get()) != nullptr) {
    std::istringstream fields(line);
    std::string address, type, name;
    fields >> address >> type >> name;
    if (name.empty()) name = type;  // absolute symbols have no address column
    const auto at = name.find('@');
    if (at != std::string::npos) name.resize(at);
    if (!name.empty()) names.insert(name);
  }
  return names;
}

std::string demangle(const std::string& name) {
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> out(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status),
                                             std::free);
  return status == 0 && out ? std::string(out.get()) : name;
}

bool belongs_to_class(const std::string& demangled, const std::set<std::string>& classes) {
  for (const auto& c : classes) {
    for (const std::string& prefix :
         {c + "::", "typeinfo for " + c, "typeinfo name for " + c, "vtable for " + c}) {
      if (demangled.rfind(prefix, 0) == 0) return true;
    }
  }
  return false;
}

}  // namespace

TEST(ExportedSymbols, AreExactlyTheDocumentedApi) {
  const Declared declared = read_headers();
  ASSERT_FALSE(declared.functions.empty()) << "no KERFLINE_API declaration found";
  ASSERT_TRUE(declared.functions.count("KerflineGetVersion"));

  const std::set<std::string> exported = exported_symbols();
  ASSERT_FALSE(exported.empty()) << "nm listed nothing for " << KERFLINE_LIBRARY_FILE;

  // Version-script nodes the linker adds itself.
  const std::set<std::string> linker_made = {"_init", "_fini", "_edata", "_end", "__bss_start"};
  for (const auto& name : exported) {
    if (declared.functions.count(name) || linker_made.count(name)) continue;
    EXPECT_TRUE(belongs_to_class(demangle(name), declared.classes))
        << "exported but not documented in the public headers: " << demangle(name);
  }
  for (const auto& name : declared.functions) {
    EXPECT_TRUE(exported.count(name)) << "declared but not exported: " << name;
  }
}

// Every export that documents "-3 out of memory", run with each of its
// allocations failing in turn (the library's allocator and operator new):
// each gives -3 at least once, and no failure crashes, leaks (LeakSanitizer)
// or leaves a record half filled.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>

#include "fixtures/temp_dir.hpp"
#include "frame/library_state.hpp"
#include "frame/resources.hpp"
#include "platform/library_memory.hpp"
#include "platform/paths.hpp"
#include "sample_driver.hpp"

void* operator new(std::size_t n) {
  if (kerfline::platform::allocation_fails()) throw std::bad_alloc();
  if (void* block = std::malloc(n == 0 ? 1 : n)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

using kerfline::test::all_zero;
using kerfline::test::SampleDriver;

// What a call works on, made fresh (with no failure armed) for every attempt.
struct Scene {
  SampleDriver d;
  kerfline::test::TempDir dir;
  VMV6DRV file{};
  DRVTOOL tool{};
  DRVMATERIAL material{};
  DLGVARLIST list{};
  VARDESC desc{};
  CUTDATA cut{};
  EVALFUNC func{};
  char text[300]{};
  Scene() {
    file = kerfline::test::record_for(kerfline::test::write_driver(dir, "oom.drv", [](auto&) {}));
    InitCutData(&cut);
    InitEval(0, 0, nullptr);                            // builds the function registry
    AddEvalUserFunc("OomListedUserFunction", "", "x");  // long enough to need memory for its upper case
  }
  ~Scene() {
    FreeDrv(&file);
    FreeTool(&tool);
    FreeMaterial(&material);
    FreeDlgVars(&list);
    FreeVarDesc(&desc);
    FreeCutData(&cut);
    FreeDelaunay();
    kerfline::frame::testing::reset_library_state();
    kerfline::platform::set_home_dir("");
  }
};

struct Row {
  const char* name;
  std::function<int32_t(Scene&)> call;
  // What a -3 must leave behind; empty: nothing to check.
  std::function<bool(Scene&)> intact;
  // Run before the failure is armed; empty: nothing to prepare.
  std::function<void(Scene&)> prepare = nullptr;
};

const CUTVAR kVar{const_cast<char*>("%Speed%"), const_cast<char*>("40")};
const CUTLAYER kLayer{};
const MESHPOINT kMarks[4] = {{0, 0}, {100, 0}, {0, 100}, {100, 100}};

// A suite whose string tables are there and not loaded yet.
void fresh_start(Scene& s) {
  s.dir.write("Res/cutterx.dlx", "9001, \"Reserved\"\n");
  s.dir.write("Res/kerfline.dlx", "35589, \"Input error: %s\"\n");
  kerfline::frame::testing::reset_library_state();
  kerfline::platform::set_home_dir(s.dir.str());
}

const Row kRows[] = {
    {"KerflineGetHelpFile", [](Scene& s) { return KerflineGetHelpFile(s.text, sizeof s.text); },
     [](Scene& s) { return s.text[0] == '\0'; }},
    {"InitDrv", [](Scene& s) { return InitDrv(&s.file); },
     [](Scene& s) { return all_zero(&s.file, sizeof s.file); }},
    {"InitDrvQuick", [](Scene& s) { return InitDrvQuick(&s.file); },
     [](Scene& s) { return s.file.pDrv == nullptr; }},
    {"GetVarDesc", [](Scene& s) { return GetVarDesc(9352, 0, &s.desc); },
     [](Scene& s) { return s.desc.pszName == nullptr && s.desc.pszDescription == nullptr; }},
    {"GetFirstTool", [](Scene& s) { return GetFirstTool(&s.d.handle, &s.tool); },
     [](Scene& s) { return all_zero(&s.tool, sizeof s.tool); }},
    {"AddMaterial", [](Scene& s) { return AddMaterial(&s.d.handle, "Foil", &s.material); },
     [](Scene& s) { return all_zero(&s.material, sizeof s.material) && CountMaterial(&s.d.handle) == 1; }},
    {"GetDlgVars",
     [](Scene& s) { return GetDlgVars(&s.d.handle, KERFLINE_VARKIND_DRIVER, nullptr, &s.list); },
     [](Scene& s) { return all_zero(&s.list, sizeof s.list); }},
    {"AddVariable", [](Scene& s) { return AddVariable(&s.cut, &kVar); },
     [](Scene& s) { return s.cut.nVarCount == 0 && s.cut.pVars == nullptr; }},
    {"AddLayer", [](Scene& s) { return AddLayer(&s.cut, &kLayer); },
     [](Scene& s) { return s.cut.nLayerCount == 0 && s.cut.pLayers == nullptr; }},
    {"SetEvalVar", [](Scene&) { return SetEvalVar("%OomVar%", "value", 0); }, nullptr},
    {"AddEvalUserFunc", [](Scene&) { return AddEvalUserFunc("OomAddedUserFunction", "a", "&a&"); }, nullptr},
    {"LoadEvalVars", [](Scene& s) { return LoadEvalVars(&s.d.handle, 0xFFFFFFFFu); }, nullptr},
    {"GetEvalFunc", [](Scene& s) { return GetEvalFunc(GetEvalFuncCount() - 1, &s.func); },
     [](Scene& s) { return all_zero(&s.func, sizeof s.func); }},
    // The first call sets up the block; one that failed is tried again.
    {"SharedDataMan", [](Scene&) { return SharedDataMan(3, 0); }, nullptr},
    // Start-up that ran out of memory is not done: the next call starts again.
    {"InitKerflineDll", [](Scene&) { return InitKerflineDll(); },
     [](Scene&) {
       return InitKerflineDll() == 1 && kerfline::frame::resource_text(kerfline::frame::kCutterxTable, 9001);
     },
     fresh_start},
#ifdef KERFLINE_TEST_OCV_DIR
    // No mesh half made: nothing is located, and the next mesh is built whole.
    {"CreateDelaunay", [](Scene&) { return CreateDelaunay(4, kMarks); },
     [](Scene&) {
       const MESHPOINT q{10, 10};
       int32_t out[3] = {-1, -1, -1};
       return LocatePt(&q, out) >= 0 && out[0] == -1 && CreateDelaunay(4, kMarks) == 1;
     },
     [](Scene&) { kerfline::platform::set_home_dir(KERFLINE_TEST_OCV_DIR); }},
#endif
};

class OutOfMemory : public ::testing::TestWithParam<Row> {};

TEST_P(OutOfMemory, EveryFailingAllocationIsReportedAndLeavesNothingHalfDone) {
  const Row& row = GetParam();
  bool reported = false;
  for (long n = 1;; ++n) {
    ASSERT_LT(n, 100000) << "no end to the allocations";
    Scene scene;
    if (row.prepare) row.prepare(scene);
    kerfline::platform::fail_nth_allocation(n);
    const int32_t result = row.call(scene);
    const bool failed = kerfline::platform::fail_nth_allocation(0) == 0;
    if (!failed) {
      EXPECT_GE(result, 1) << "with every allocation granted";
      break;
    }
    if (result != KERFLINE_OUT_OF_MEMORY) continue;  // a failure the export absorbed
    reported = true;
    EXPECT_TRUE(!row.intact || row.intact(scene)) << "allocation " << n;
  }
  EXPECT_TRUE(reported) << "no allocation failure gave -3";
}

INSTANTIATE_TEST_SUITE_P(Exports, OutOfMemory, ::testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace

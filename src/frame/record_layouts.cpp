// Layout checks of the host records: a host compiled against the header must
// find every field where the library writes it, on 32-bit and 64-bit builds.
#include <cstddef>

#include "kerfline/kerfline.h"

namespace {
constexpr std::size_t kPtr = sizeof(void*);

static_assert(offsetof(KERFLINE_HOST_HOOKS, cbSize) == 0);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pContext) == kPtr);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnMessageBox) == 2 * kPtr);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnIsKeyDown) == 3 * kPtr);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnPumpMessages) == 4 * kPtr);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnBroadcast) == 5 * kPtr);
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnSetWaitCursor) == 6 * kPtr);
static_assert(sizeof(KERFLINE_HOST_HOOKS) == 7 * kPtr);
}  // namespace

namespace {
static_assert(sizeof(CUTVAR) == 2 * kPtr);
static_assert(sizeof(CUTLAYER) == 28);
static_assert(offsetof(CUTDATA, abJob) == 0);
static_assert(offsetof(CUTDATA, nVarCount) == 40);
static_assert(offsetof(CUTDATA, pVars) == (kPtr == 8 ? 48 : 44));
static_assert(offsetof(CUTDATA, nLayerCount) == (kPtr == 8 ? 56 : 48));
static_assert(offsetof(CUTDATA, pLayers) == (kPtr == 8 ? 64 : 52));
static_assert(sizeof(CUTDATA) == (kPtr == 8 ? 72 : 56));
}  // namespace

namespace {
static_assert(offsetof(VMV6DRV, szFileName) == 0);
static_assert(offsetof(VMV6DRV, pDrv) == (kPtr == 8 ? 264 : 260));
static_assert(offsetof(VMV6DRV, nAppMode) == (kPtr == 8 ? 272 : 264));
static_assert(sizeof(VMV6DRV) == (kPtr == 8 ? 280 : 268));
}  // namespace

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
static_assert(offsetof(KERFLINE_HOST_HOOKS, pfnPrompt) == 7 * kPtr);
static_assert(sizeof(KERFLINE_HOST_HOOKS) == 8 * kPtr);
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

namespace {
// The value union holds a pointer, a double or three words; the number
// follows it. A double inside a record is aligned to 8 on 64-bit builds and
// on 32-bit Windows, to 4 on 32-bit System V (Linux i386).
struct ValueLayout {
  std::size_t value_size, value_at, number_at, size, dialog_number_at, dialog_size;
};
#if defined(_WIN32)
constexpr bool kWideDouble = true;
#else
constexpr bool kWideDouble = kPtr == 8;
#endif
constexpr ValueLayout kValue = kPtr == 8     ? ValueLayout{16, 88, 104, 112, 120, 128}
                               : kWideDouble ? ValueLayout{16, 80, 96, 104, 104, 112}
                                             : ValueLayout{12, 80, 92, 100, 100, 108};
static_assert(sizeof(VMV6VALUE) == kValue.value_size);
static_assert(offsetof(VMV6VAR, szName) == 0);
static_assert(offsetof(VMV6VAR, pDrv) == 64);
static_assert(offsetof(VMV6VAR, nValueType) == 64 + kPtr);
static_assert(offsetof(VMV6VAR, nKind) == 68 + kPtr);
static_assert(offsetof(VMV6VAR, pOwner) == 72 + kPtr);
static_assert(offsetof(VMV6VAR, uValue) == kValue.value_at);
static_assert(offsetof(VMV6VAR, dNumber) == kValue.number_at);
static_assert(sizeof(VMV6VAR) == kValue.size);

// The dialog record shares every field up to the value.
static_assert(offsetof(VMV6DLGVAR, pDrv) == offsetof(VMV6VAR, pDrv));
static_assert(offsetof(VMV6DLGVAR, nValueType) == offsetof(VMV6VAR, nValueType));
static_assert(offsetof(VMV6DLGVAR, nKind) == offsetof(VMV6VAR, nKind));
static_assert(offsetof(VMV6DLGVAR, pOwner) == offsetof(VMV6VAR, pOwner));
static_assert(offsetof(VMV6DLGVAR, uValue) == offsetof(VMV6VAR, uValue));
static_assert(offsetof(VMV6DLGVAR, pszDlgText) == offsetof(VMV6VAR, uValue) + sizeof(VMV6VALUE));
static_assert(offsetof(VMV6DLGVAR, pszDlgFormat) == offsetof(VMV6DLGVAR, pszDlgText) + kPtr);
static_assert(offsetof(VMV6DLGVAR, dNumber) == kValue.dialog_number_at);
static_assert(sizeof(VMV6DLGVAR) == kValue.dialog_size);

// Tool and material records begin with the reference the owner lookups read.
static_assert(offsetof(DRVTOOL, pItem) == 0);
static_assert(offsetof(DRVTOOL, pszName) == kPtr);
static_assert(offsetof(DRVTOOL, pszType) == 2 * kPtr);
static_assert(offsetof(DRVTOOL, nIndex) == 3 * kPtr);
static_assert(offsetof(DRVTOOL, nVarCount) == 3 * kPtr + 4);
static_assert(sizeof(DRVTOOL) == 3 * kPtr + 8);
static_assert(offsetof(DRVMATERIAL, pItem) == 0);
static_assert(offsetof(DRVMATERIAL, pszName) == kPtr);
static_assert(offsetof(DRVMATERIAL, nIndex) == 2 * kPtr);
static_assert(offsetof(DRVMATERIAL, nVarCount) == 2 * kPtr + 4);
static_assert(sizeof(DRVMATERIAL) == 2 * kPtr + 8);
}  // namespace

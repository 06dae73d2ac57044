// Layout checks of the dialog-variable records, on 32-bit and 64-bit builds.
#include <cstddef>

#include "kerfline/kerfline.h"

namespace {
constexpr std::size_t kPtr = sizeof(void*);

static_assert(offsetof(DLGVAREXT, nFlags) == 0);
static_assert(offsetof(DLGVAREXT, nState) == 4);
static_assert(offsetof(DLGVAREXT, dMax) == 8);
static_assert(offsetof(DLGVAREXT, dMin) == 16);
static_assert(offsetof(DLGVAREXT, dIncrements) == 24);
static_assert(sizeof(DLGVAREXT) == 32);

static_assert(offsetof(DLGVARDATA, szFormat) == 128);
static_assert(offsetof(DLGVARDATA, szValue) == 192);
static_assert(offsetof(DLGVARDATA, szShown) == 448);
static_assert(offsetof(DLGVARDATA, nType) == 704);
static_assert(offsetof(DLGVARDATA, nState) == 708);
static_assert(offsetof(DLGVARDATA, nConditionCount) == 712);
static_assert(offsetof(DLGVARDATA, nHasExt) == 716);
static_assert(sizeof(DLGVARDATA) == 720);

static_assert(offsetof(EXTDLGVARDATA, ext) == 720);
static_assert(offsetof(EXTDLGVARDATA, szDefault) == 752);
static_assert(offsetof(EXTDLGVARDATA, nHasDefault) == 1008);
static_assert(sizeof(EXTDLGVARDATA) == 1016);

static_assert(offsetof(DLGVARDEFAULT, pszShown) == kPtr);
static_assert(offsetof(DLGVARDEFAULT, nSource) == 2 * kPtr);
static_assert(offsetof(DLGVARDEFAULT, nDiffers) == 2 * kPtr + 4);
static_assert(sizeof(DLGVARDEFAULT) == 2 * kPtr + 8);

static_assert(offsetof(DLGVARENTRY, ext) == 64);
static_assert(offsetof(DLGVARENTRY, pszCaption) == 96);
static_assert(offsetof(DLGVARENTRY, ppszConditions) == 96 + 4 * kPtr);
static_assert(offsetof(DLGVARENTRY, nConditionCount) == 96 + 5 * kPtr);
static_assert(offsetof(DLGVARENTRY, nHasExt) == 96 + 5 * kPtr + 12);
static_assert(kPtr != 8 || sizeof(DLGVARENTRY) == 152);

static_assert(offsetof(DLGVARLIST, nCount) == 0);
static_assert(offsetof(DLGVARLIST, pEntries) == 8);
static_assert(sizeof(DLGVARLIST) == 8 + kPtr);

static_assert(offsetof(VARVAL, dValue) == 0);
static_assert(offsetof(VARVAL, szText) == 8);
static_assert(sizeof(VARVAL) == 64);
}  // namespace

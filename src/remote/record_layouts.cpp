// SOCKBINDATA is shared with hosts: its layout must not drift.
#include <cstddef>

#include "kerfline/remote_messages.hpp"

static_assert(offsetof(SOCKBINDATA, nSize) == 0);
static_assert(offsetof(SOCKBINDATA, nData1) == 4);
static_assert(offsetof(SOCKBINDATA, nData2) == 8);
static_assert(offsetof(SOCKBINDATA, pData) == (sizeof(void*) == 8 ? 16 : 12));
static_assert(offsetof(SOCKBINDATA, szText1) == offsetof(SOCKBINDATA, pData) + sizeof(void*));
static_assert(offsetof(SOCKBINDATA, szText2) == offsetof(SOCKBINDATA, szText1) + sizeof(void*));
static_assert(sizeof(SOCKBINDATA) == (sizeof(void*) == 8 ? 40 : 24));

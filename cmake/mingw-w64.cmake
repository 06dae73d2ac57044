# Cross build for Windows with mingw-w64. KERFLINE_MINGW_TRIPLE picks the
# target (x86_64-w64-mingw32 by default, i686-w64-mingw32 for 32-bit).
# Test programs run under Wine in a prefix of their own inside the build
# directory, headless and quiet.
set(CMAKE_SYSTEM_NAME Windows)
if(NOT KERFLINE_MINGW_TRIPLE)
  set(KERFLINE_MINGW_TRIPLE x86_64-w64-mingw32)
endif()
set(KERFLINE_MINGW_TRIPLE ${KERFLINE_MINGW_TRIPLE} CACHE STRING "mingw-w64 target triple")
if(KERFLINE_MINGW_TRIPLE MATCHES "^i686")
  set(CMAKE_SYSTEM_PROCESSOR x86)
else()
  set(CMAKE_SYSTEM_PROCESSOR AMD64)
endif()

# The posix thread model: std::thread and std::mutex need it with GCC 12.
set(CMAKE_C_COMPILER ${KERFLINE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KERFLINE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KERFLINE_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KERFLINE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Static run-time libraries: the DLL and the programs need only system DLLs.
set(kerfline_static_runtime "-static -static-libgcc -static-libstdc++")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${kerfline_static_runtime}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${kerfline_static_runtime}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${kerfline_static_runtime}")

find_program(KERFLINE_WINE NAMES wine64 PATHS /usr/lib/wine /usr/lib64/wine NO_DEFAULT_PATH)
if(NOT KERFLINE_WINE)
  find_program(KERFLINE_WINE NAMES wine64 wine)
endif()
if(KERFLINE_WINE)
  if(KERFLINE_MINGW_TRIPLE MATCHES "^i686")
    find_program(KERFLINE_WINE32 NAMES wine)
    set(kerfline_wine ${KERFLINE_WINE32})
  else()
    set(kerfline_wine ${KERFLINE_WINE})
  endif()
  set(CMAKE_CROSSCOMPILING_EMULATOR
      env WINEPREFIX=${CMAKE_BINARY_DIR}/wineprefix WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
          DISPLAY= ${kerfline_wine})
endif()

/*
 * kerfline.h - the C interface of the Kerfline device-driver library.
 *
 * Every export is a plain C function with fixed-width arguments. Unless a
 * function says otherwise, results follow one convention:
 *    1   success
 *    0   nothing found / false
 *   -2   bad argument
 *   -3   out of memory
 *   -4   driver file unreadable
 *   -5   variable not found or kind not supported
 * Records passed in belong to the caller. Texts and arrays that the library
 * allocates inside them are released only by the matching Free... export,
 * except where a function says a block comes from the C run-time allocator
 * (then the caller releases it with free()).
 *
 * Texts are 8-bit strings in the Windows-1252 code page; numbers in texts use
 * the point as decimal separator whatever the host's locale.
 */
#ifndef KERFLINE_KERFLINE_H
#define KERFLINE_KERFLINE_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#  if defined(KERFLINE_BUILDING)
#    define KERFLINE_API __declspec(dllexport)
#  else
#    define KERFLINE_API __declspec(dllimport)
#  endif
#else
#  define KERFLINE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================
 * Library, suite directory and host hooks
 * ====================================================================== */

/* The library's version as "major.minor.patch"; a static text. */
KERFLINE_API const char* KerflineGetVersion(void);

/*
 * Sets the suite directory: the directory that holds "plotman.ini", "Res",
 * "Lang" and the spool directories (on Windows, the directory of the host
 * executable). A null or empty text restores the default: the environment
 * variable KERFLINE_HOME when it is set, else the directory of the running
 * executable. May be called at any time; what the library derived from the
 * old directory is rebuilt on next use. Returns 1.
 */
KERFLINE_API int32_t KerflineSetHomeDir(const char* dir);

/*
 * Copies the suite directory, ending in the path separator, into buf.
 * Returns its length; when size is too small (length + 1 needed) nothing is
 * written and the result is the negative of the size needed. -2 for a null
 * buffer.
 */
KERFLINE_API int32_t KerflineGetHomeDir(char* buf, uint32_t size);

/* Message-box types (the Win32 MB_* values) and answers (the Win32 ID*). */
#define KERFLINE_MB_OK 0x00000000u
#define KERFLINE_MB_OKCANCEL 0x00000001u
#define KERFLINE_MB_YESNOCANCEL 0x00000003u
#define KERFLINE_MB_YESNO 0x00000004u
#define KERFLINE_MB_ICONERROR 0x00000010u
#define KERFLINE_MB_ICONQUESTION 0x00000020u
#define KERFLINE_MB_ICONWARNING 0x00000030u
#define KERFLINE_MB_ICONINFORMATION 0x00000040u
#define KERFLINE_IDOK 1
#define KERFLINE_IDCANCEL 2
#define KERFLINE_IDYES 6
#define KERFLINE_IDNO 7
/* Virtual keys that the library asks about (the Win32 VK_* values). */
#define KERFLINE_VK_SHIFT 0x10
#define KERFLINE_VK_CONTROL 0x11

/*
 * The host's user interface. The library has no windows of its own: every
 * message box, key-state query, message pump during a wait, broadcast to the
 * other programs of the suite and wait cursor goes through these hooks.
 * cbSize is sizeof(KERFLINE_HOST_HOOKS) (members beyond cbSize are ignored);
 * pContext is handed back to every hook. A null member keeps the default:
 *   message box  - writes "caption: text" to stderr and answers at once with
 *                  the safe answer (IDOK for OK and OK/Cancel boxes, IDNO for
 *                  Yes/No and Yes/No/Cancel boxes); on Windows the real box;
 *   key down     - 0, except that KERFLINE_DIAG=1 in the environment reports
 *                  Ctrl and Shift held (which switches diagnostic logs on);
 *   pump, cursor - nothing;
 *   broadcast    - nobody answers (-1).
 */
typedef struct KERFLINE_HOST_HOOKS {
  uint32_t cbSize;
  void* pContext;
  /* type: MB_* bits; returns an ID* answer. */
  int (*pfnMessageBox)(void* ctx, const char* text, const char* caption, uint32_t type);
  /* virtualKey: VK_* code; nonzero while the key is held. */
  int (*pfnIsKeyDown)(void* ctx, int virtualKey);
  /* Called repeatedly while the library waits, so the host stays responsive. */
  void (*pfnPumpMessages)(void* ctx);
  /* Sends a registered message to the suite's programs; returns the answer,
     or -1 when nobody answered. waitForAnswer nonzero: send, else post. */
  intptr_t (*pfnBroadcast)(void* ctx, const char* message, uintptr_t wParam, intptr_t lParam,
                           int waitForAnswer);
  /* on nonzero: show the wait cursor; 0: restore it. */
  void (*pfnSetWaitCursor)(void* ctx, int on);
} KERFLINE_HOST_HOOKS;

/*
 * Installs the host's hooks (copied; the record may be released afterwards).
 * A null pointer restores every default. Returns 1, or -2 when cbSize is
 * smaller than the record up to and including pContext.
 */
KERFLINE_API int32_t KerflineSetHostHooks(const KERFLINE_HOST_HOOKS* hooks);

/* ======================================================================
 * Start-up, language and translation
 * ====================================================================== */

/* ======================================================================
 * Driver handle
 * ====================================================================== */

/* ======================================================================
 * Variables, tools and materials
 * ====================================================================== */

/* ======================================================================
 * Cut data
 * ====================================================================== */

/* ======================================================================
 * Evaluation
 * ====================================================================== */

/* ======================================================================
 * Shared data block
 * ====================================================================== */

/* ======================================================================
 * Mark data sets and mesh correction
 * ====================================================================== */

/* ======================================================================
 * Device access, device list and plot-manager coupling
 * ====================================================================== */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KERFLINE_KERFLINE_H */

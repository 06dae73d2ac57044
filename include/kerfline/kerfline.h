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
 * The codes are named below (KERFLINE_SUCCESS ...); no exception ever
 * leaves an export.
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

/* On Windows the C functions are plain __cdecl exports of kerfline.dll under
 * their undecorated names, usable from any compiler. The exported C++
 * classes (the .hpp headers beside this one) are C++ ABI, as with any C++ DLL: only hosts built
 * with the same compiler as the DLL (mingw-w64 GCC) can use them. */
#if defined(_WIN32)
#  if defined(KERFLINE_BUILDING)
#    define KERFLINE_API __declspec(dllexport)
#  elif defined(KERFLINE_STATIC_BUILD) && KERFLINE_STATIC_BUILD
/* Linked from the library's static modules (its own tools and tests). */
#    define KERFLINE_API
#  else
#    define KERFLINE_API __declspec(dllimport)
#  endif
#else
#  define KERFLINE_API __attribute__((visibility("default")))
#endif

/* Exports never throw; C++ callers see that in their declarations. */
#ifdef __cplusplus
#  define KERFLINE_NOEXCEPT noexcept
#else
#  define KERFLINE_NOEXCEPT
#endif

/* The result codes of the host API (the port layer has its own, -7 to -3). */
#define KERFLINE_SUCCESS 1
#define KERFLINE_NOTHING_FOUND 0
#define KERFLINE_BAD_ARGUMENT (-2)
#define KERFLINE_OUT_OF_MEMORY (-3)
#define KERFLINE_FILE_UNREADABLE (-4)
#define KERFLINE_NOT_FOUND (-5)

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================
 * Library, suite directory and host hooks
 * ====================================================================== */

/* The library's version as "major.minor.patch"; a static text. */
KERFLINE_API const char* KerflineGetVersion(void) KERFLINE_NOEXCEPT;

/*
 * Sets the suite directory: the directory that holds "plotman.ini", "Res",
 * "Lang" and the spool directories (on Windows, the directory of the host
 * executable). A null or empty text restores the default: the environment
 * variable KERFLINE_HOME when it is set, else the directory of the running
 * executable. May be called at any time; what the library derived from the
 * old directory is rebuilt on next use. Returns 1.
 */
KERFLINE_API int32_t KerflineSetHomeDir(const char* dir) KERFLINE_NOEXCEPT;

/*
 * Copies the suite directory, ending in the path separator, into buf.
 * Returns its length; when size is too small (length + 1 needed) nothing is
 * written and the result is the negative of the size needed. -2 for a null
 * buffer.
 */
KERFLINE_API int32_t KerflineGetHomeDir(char* buf, uint32_t size) KERFLINE_NOEXCEPT;

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
  /* Asks the user for one line of text (the manual answer of a device
     query). Writes a zero-terminated text of at most size - 1 bytes to
     buffer and returns nonzero when confirmed; 0 when cancelled. Default:
     no answer. Hosts built before this member keep working. */
  int (*pfnPrompt)(void* ctx, const char* caption, char* buffer, uint32_t size);
} KERFLINE_HOST_HOOKS;

/*
 * Installs the host's hooks (copied; the record may be released afterwards).
 * A null pointer restores every default. Returns 1, or -2 when cbSize is
 * smaller than the record up to and including pContext.
 */
KERFLINE_API int32_t KerflineSetHostHooks(const KERFLINE_HOST_HOOKS* hooks) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Start-up, language and translation
 * ====================================================================== */

/*
 * Starts the library: reads the language context of the suite directory and
 * loads the string tables "cutterx.dlx" and then "kerfline.dlx" from its
 * "Res" directory. Runs once by itself when the library is loaded.
 * Returns 1 when done (at once when already done); -1 when "cutterx.dlx"
 * cannot be loaded ("kerfline.dlx" is then not tried); -2 when "kerfline.dlx"
 * cannot be loaded; -3 out of memory. After a failure the next call loads
 * whichever table is still missing.
 */
KERFLINE_API int32_t InitKerflineDll(void) KERFLINE_NOEXCEPT;

/*
 * Starts the translation service with the translation file
 * "lang/<CODE>/kerfline<CODE>.TRA" of the suite directory, CODE being
 * [Default] Actual of "lang.ini" in the suite directory ("GER" when absent).
 * The start is tried once per process, and a second call returns the first
 * call's result without doing anything; only a start that failed is tried
 * again, after the suite directory has been changed. Returns a positive
 * number when the service started (and the calling thread was registered
 * with it), else 0.
 */
KERFLINE_API int32_t InitKerflineDll2(void) KERFLINE_NOEXCEPT;

/*
 * Translates a driver text in place. text: zero-terminated, in a buffer of
 * size bytes. Returns 1 when a translation was found and it fits the buffer
 * (with its zero); else 0 and the text is unchanged (also for a null text or
 * a text not terminated within size).
 */
KERFLINE_API int32_t TranslateString(char* text, uint32_t size) KERFLINE_NOEXCEPT;

/* Allocator of the caller: returns a block of the given size, or null. */
typedef void* (*KERFLINE_ALLOC_FN)(size_t size);

/*
 * Translates a driver text into a block obtained from alloc (translated
 * length + 1 bytes, zero-terminated); the caller owns it and releases it with
 * its own allocator's release (malloc may be passed as alloc, then free()).
 * Returns null when there is no translation, for a null argument, or when
 * alloc returns null; the host then shows its own text.
 */
KERFLINE_API char* TranslateDrvString(const char* text, KERFLINE_ALLOC_FN alloc) KERFLINE_NOEXCEPT;

/* Translation flags: a kind of text is translated only while its bit is set
   (initially all bits are set). */
#define KERFLINE_TRANSLATE_TOOLS 0x1u      /* GetFirstTool / GetNextTool */
#define KERFLINE_TRANSLATE_MATERIALS 0x2u  /* GetFirstMaterial / GetNextMaterial */
#define KERFLINE_TRANSLATE_DLGVAR 0x4u     /* GetDlgVar */
#define KERFLINE_TRANSLATE_EXT_DLGVAR 0x8u /* GetExtDlgVarData, GetDlgDefaultEx */

/* Sets the bits in the translation flags; returns bits. */
KERFLINE_API uint32_t AddTranslationFlag(uint32_t bits) KERFLINE_NOEXCEPT;

/* Clears the bits in the translation flags; returns ~bits. */
KERFLINE_API uint32_t RemoveTranslationFlag(uint32_t bits) KERFLINE_NOEXCEPT;

/* Replaces the translation flags by mask; returns the previous flags. */
KERFLINE_API uint32_t SetTranslationFlag(uint32_t mask) KERFLINE_NOEXCEPT;

/* The current translation flags. */
KERFLINE_API uint32_t GetTranslationFlag(void) KERFLINE_NOEXCEPT;

/*
 * Replaces every occurrence of find in buffer by replacement, left to right
 * (replaced text is not searched again), writing the result back into buffer
 * without a length check: the caller provides room for the longer result.
 * Returns the number of replacements; 0 when an argument is null or find is
 * empty (buffer untouched).
 */
KERFLINE_API int32_t ReplaceString(char* buffer, const char* find, const char* replacement) KERFLINE_NOEXCEPT;

/*
 * Copies the suite's help file path (the language directory + "plotman.hlp")
 * into buf. Returns its length; when size is too small (length + 1 needed)
 * nothing is written and the result is the negative of the size needed; -2
 * for a null buffer; -3 out of memory.
 */
KERFLINE_API int32_t KerflineGetHelpFile(char* buf, uint32_t size) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Driver handle
 * ====================================================================== */

/*
 * The host's handle of one open driver. The host fills szFileName and
 * nAppMode, passes the record to InitDrv and to every later call, and ends
 * with FreeDrv. pDrv is the library's driver document (never look inside);
 * null while the record is closed. nAppMode 0 opens the driver in library
 * mode (as SetDllMode does); nonzero leaves it in application mode.
 */
typedef struct VMV6DRV {
  char szFileName[260];
  void* pDrv;
  int32_t nAppMode;
} VMV6DRV;

/*
 * Opens the driver named by drv->szFileName into drv->pDrv (library mode when
 * drv->nAppMode is 0). 1 opened; -2 null record or empty file name; -3 out of
 * memory; -4 the file could not be opened or is no readable driver (a file
 * that cannot be opened is also shown in a message box "Kerfline error:").
 * On -3 and -4 every field of the record is set to 0. Call FreeDrv before
 * opening a record again: a second open loses the first document.
 */
KERFLINE_API int32_t InitDrv(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * As InitDrv, for calls made from inside the library. On failure the record
 * is left exactly as it was before the call.
 */
KERFLINE_API int32_t InitDrvS(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * Gives the record a new, empty document without reading the file (the file
 * name is not looked at). 1; -2 null record; -3 out of memory.
 */
KERFLINE_API int32_t InitDrvQuick(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * Releases the record's document and sets pDrv to null; the file name stays.
 * 1; -2 null record, empty file name or no document (the document, if any,
 * then stays open).
 */
KERFLINE_API int32_t FreeDrv(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * Writes the document to drv->szFileName (through a temporary file, so a
 * failed write leaves the old file whole). 1, also when the write failed:
 * that is shown in a message box "Kerfline error:". -2 null record, empty
 * file name or no document.
 */
KERFLINE_API int32_t StoreDrv(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/* Puts the open document into library mode (there is no way back).
   1; -2 null record or no document. */
KERFLINE_API int32_t SetDllMode(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * The name of the driver file at path: for a file whose path holds ".vdv" or
 * ".VDV" (the older fixed-layout format) the text at the start of the file,
 * else the driver name stored after the file header; either ends at its
 * first zero byte. A file that cannot be read has the empty name. When size
 * is greater than length + 1 the name is copied with its terminator and the
 * result is its length; otherwise nothing is copied and the result is
 * -(length + 1) (a buffer of exactly length + 1 bytes is too small). 0 for a
 * null path or when memory is short.
 */
KERFLINE_API int32_t GetDrvName(const char* path, char* buffer, int32_t size) KERFLINE_NOEXCEPT;

/* Name of the driver item that holds the driver's class (GetDrvClass2): a
   plain item, anywhere in the driver's groups, whose value is the class. */
#define KERFLINE_DRIVER_CLASS_ITEM "%DriverClass%"

/*
 * Sets *flags to 0 and then to the flags of the driver file at path (opened
 * for the call, in library mode), or of one of its tools when toolName is not
 * null or empty:
 *  - driver: 0x1-0x80 "%Flags_1%"-"%Flags_8%", 0x100-0x1000 "%OutFlag_1%"-
 *    "%OutFlag_5%", 0x2000 "%LayerVarFlag%", each set when the variable
 *    exists and its value is a nonzero number (or "true"/"yes");
 *  - tool: its own flag bits, plus 0x4 when its type is NOT "Transfer" and
 *    0x8 when it is NOT "Contour" (types compared without regard to case).
 * Files whose path holds ".vdv"/".VDV" (fixed layout) are read directly:
 *  - driver: the byte at 350 gives 0x1-0x80, the low five bits of byte 352
 *    give 0x100-0x1000;
 *  - tool (six slots of 1532 bytes from offset 358, names case-sensitive):
 *    its 16-bit flags, plus 0x4 when its type IS "Transfer" and 0x8 when it
 *    IS "Contour" - the opposite sense of the driver file, as hosts expect.
 * A tool that is not found gives the mask 0.
 * 1 read; 0 the file could not be opened or read; -2 null or empty path, or
 * null flags.
 */
KERFLINE_API int32_t GetFlags(const char* path, const char* toolName, uint32_t* flags) KERFLINE_NOEXCEPT;

/*
 * As GetFlags on the record's open document, except that *flags is NOT set
 * to 0 first: the bits found are added to what it holds. 1; 0 the record has
 * no document; -2 null record or null flags.
 */
KERFLINE_API int32_t GetDrvFlags(VMV6DRV* drv, const char* toolName, uint32_t* flags) KERFLINE_NOEXCEPT;

/*
 * The driver's class: the value of the item KERFLINE_DRIVER_CLASS_ITEM.
 * Returns its length and copies it with its terminator only when the length
 * is below size. 0 when the driver has no such item; -2 null record or no
 * document.
 */
KERFLINE_API int32_t GetDrvClass2(VMV6DRV* drv, char* buffer, uint32_t size) KERFLINE_NOEXCEPT;

/*
 * As GetDrvClass2 on the driver file at path, opened for the call. When the
 * driver cannot be opened the result is 1 and nothing is copied: a host
 * cannot tell that from a one-character class, so it must check the buffer.
 */
KERFLINE_API int32_t GetDrvClass(const char* path, char* buffer, uint32_t size) KERFLINE_NOEXCEPT;

/*
 * Copies the standard text with number id (a variable name such as
 * "%Flags_1%" for 9352) into buffer, which must have room for it (no length
 * is passed). Mode 1 writes every "%I" of the name as "%". Unknown numbers
 * give the empty text. 1; a null buffer copies nothing and gives 1.
 */
KERFLINE_API int32_t GetVarName(uint32_t id, int32_t mode, char* buffer) KERFLINE_NOEXCEPT;

/* The name and description of a standard variable. Both texts come from the
   C run-time allocator: release them with FreeVarDesc (or free()). */
typedef struct VARDESC {
  char* pszName;
  char* pszDescription;
} VARDESC;

/*
 * Fills desc with new copies of the text id (the name, "%I" written as "%"
 * in mode 1) and of text id + 1 (the description, never changed). Whatever
 * desc held before is not released. 1; 0 null record; -3 out of memory (both
 * fields then null).
 */
KERFLINE_API int32_t GetVarDesc(uint32_t id, int32_t mode, VARDESC* desc) KERFLINE_NOEXCEPT;

/* Releases both texts with free() and sets the fields to null.
   1; 0 null record. */
KERFLINE_API int32_t FreeVarDesc(VARDESC* desc) KERFLINE_NOEXCEPT;

/*
 * The text with driver texts replaced, as a new block from the C run-time
 * allocator (release it with free()). The items of the root group are
 * applied in order; when the first child of a group is itself a group, that
 * group's items are applied first (only the first child is descended into).
 * A group whose ListParam0 has bit 0x1 set replaces each item's value by its
 * name; otherwise each item's name is replaced by its value. Occurrences are
 * replaced left to right without rescanning the inserted text; an empty
 * search text replaces nothing. *count (when count is not null) receives the
 * number of replacements. Null for a null record, no document, a null text
 * or short memory (*count is then 0).
 */
KERFLINE_API char* ReplaceStringsFromDriver(VMV6DRV* drv, const char* text, int32_t* count) KERFLINE_NOEXCEPT;

/*
 * Releases a block that the library allocated and handed out for release
 * with QuickFree. A null block is accepted. Always 1.
 */
KERFLINE_API int32_t QuickFree(void* block) KERFLINE_NOEXCEPT;

/*
 * Fixed entries: hosts call these, and this library has nothing to do for
 * them. They ignore whatever arguments a caller passes (C calling
 * convention) and always return the value given.
 */
KERFLINE_API int32_t AddObjects(void) KERFLINE_NOEXCEPT;           /* 1 */
KERFLINE_API int32_t Log(void) KERFLINE_NOEXCEPT;                  /* 1 */
KERFLINE_API int32_t ReadFromDevice(void) KERFLINE_NOEXCEPT;       /* 1 */
KERFLINE_API int32_t SerializeCutData(void) KERFLINE_NOEXCEPT;     /* 1 */
KERFLINE_API int32_t DoDeviceSetupDlgTest(void) KERFLINE_NOEXCEPT; /* 1 */
KERFLINE_API int32_t WriteDeviceFlags(void) KERFLINE_NOEXCEPT;     /* 1 */
KERFLINE_API int32_t IsRemoteAvailable(void) KERFLINE_NOEXCEPT;    /* 1 */
KERFLINE_API int32_t QuickRead(void) KERFLINE_NOEXCEPT;            /* 0 */
KERFLINE_API int32_t ReadDeviceValsEx(void) KERFLINE_NOEXCEPT;     /* 0 */

/* ======================================================================
 * Variables, tools and materials
 * ====================================================================== */

/*
 * Where a driver keeps its tools and materials (see docs/drivers-tools-materials.md):
 * the group "Werkzeugvariablen" holds one group per tool, the group
 * "Materialvariablen" one group per material. A tool or material group's own
 * items are its variable list; a tool group may also hold the sub-lists
 * "Werkzeugparameter" (item type 0x8121) and "Layervariablen" (0x8120).
 */

/* The value of a variable, by value type: 1 nInt; 2 fFloat; 3 dDouble (the
   two-word value); 4 pszText (a library text, released by FreeVar or
   FreeDlgVar); 5 anDate (day, month, year). */
typedef union VMV6VALUE {
  int32_t nInt;
  float fFloat;
  double dDouble;
  char* pszText;
  int32_t anDate[3];
} VMV6VALUE;

/* Value types (VMV6VAR.nValueType). */
#define KERFLINE_VT_INTEGER 1
#define KERFLINE_VT_FLOAT 2
#define KERFLINE_VT_DOUBLE 3
#define KERFLINE_VT_TEXT 4
#define KERFLINE_VT_DATE 5
#define KERFLINE_VT_AUTO 10 /* chosen from the item's type and written back */

/* Kinds (VMV6VAR.nKind): where the name is looked up. */
#define KERFLINE_VARKIND_DRIVER 1    /* the driver's tree, by exact name */
#define KERFLINE_VARKIND_OWNER 2     /* the owner's variable list */
#define KERFLINE_VARKIND_OWNER_INT 3 /* the same under the "%I" form of the name */
#define KERFLINE_VARKIND_LAYER 5     /* the owner's "Layervariablen" (GetDlgVar, SetVar) */
#define KERFLINE_VARKIND_TOOLPARM 6  /* the owner's "Werkzeugparameter" (GetDlgVar, SetVar) */
#define KERFLINE_VARKIND_JOYSTICK 7  /* the driver's "%JoyStickSettings%" */
#define KERFLINE_VARKIND_VIDEO 8     /* the driver's "%VideoSettings%" */

/*
 * The host's request for one variable. szName is the name as stored, with
 * its "%" delimiters ("%Flags_1%"), zero-terminated within the 64 bytes.
 * pOwner is a DRVTOOL or DRVMATERIAL record from the list functions below,
 * for the kinds that search a tool or material. dNumber: for a dialog
 * variable found by kind 2, the number its text holds.
 */
typedef struct VMV6VAR {
  char szName[64];
  VMV6DRV* pDrv;
  int32_t nValueType;
  int32_t nKind;
  void* pOwner;
  VMV6VALUE uValue;
  double dNumber;
} VMV6VAR;

/* The same request for a dialog variable, with its two dialog texts (library
   texts, released by FreeDlgVar; null when the item is no dialog variable). */
typedef struct VMV6DLGVAR {
  char szName[64];
  VMV6DRV* pDrv;
  int32_t nValueType;
  int32_t nKind;
  void* pOwner;
  VMV6VALUE uValue;
  char* pszDlgText;
  char* pszDlgFormat;
  double dNumber;
} VMV6DLGVAR;

/*
 * One tool of a driver, filled by GetFirstTool/GetNextTool and released by
 * FreeTool. pItem is the library's reference to the tool (pass the record
 * itself as VMV6VAR.pOwner); pszName (translated while translation flag 0x1
 * is set) and pszType ("Contour", "Transfer", ...) are library texts.
 * nIndex is the tool's place in the list, from 0; nVarCount the number of
 * its own variables.
 */
typedef struct DRVTOOL {
  void* pItem;
  char* pszName;
  char* pszType;
  int32_t nIndex;
  int32_t nVarCount;
} DRVTOOL;

/* One material of a driver, as DRVTOOL (pszName translated while flag 0x2
   is set); released by FreeMaterial. */
typedef struct DRVMATERIAL {
  void* pItem;
  char* pszName;
  int32_t nIndex;
  int32_t nVarCount;
} DRVMATERIAL;

/*
 * Reads one variable into var->uValue as var->nValueType says:
 *  - kinds 1, 2, 3, 7, 8 (above); kinds 2 and 3 need var->pOwner;
 *  - when the driver's variant is not "0" and the name has no ".", the name
 *    "%Name.<variant>%" is tried first; the name as given follows if that
 *    fails;
 *  - value type 10 chooses 3 (Double item), 1 (Integer), 2 (Bool), 5 (Date)
 *    or 4 (anything else) and writes the choice back; any other code below 1
 *    or above 10 fills nothing and the call returns 1 for code 0, else 0.
 * Text values (type 4) are library texts: call FreeVar after each success.
 * Texts convert as docs/drivers-tools-materials.md says (integer and
 * floating values read a decimal number with the point as separator; a Date
 * item gives its packed day | month << 8 | year << 16 as a number).
 * 1 found and converted; -5 not found, no owner for kinds 2 and 3, or kind
 * not supported; -2 null record, no driver, empty name or a name with no
 * terminating zero in its 64 bytes.
 */
KERFLINE_API int32_t GetVar(VMV6VAR* var) KERFLINE_NOEXCEPT;

/* Releases the text value (value type 4) and nulls the pointer. 1; -2 for a
   null record or a null value pointer. */
KERFLINE_API int32_t FreeVar(VMV6VAR* var) KERFLINE_NOEXCEPT;

/*
 * Reads a dialog variable: as GetVar without the variant name, for kinds 2
 * and 3 (owner's variable list), 5 (owner's "Layervariablen", retried as
 * "%I" + name) and 6 (owner's "Werkzeugparameter"); kind 1 and every other
 * kind give -5. pszDlgText and pszDlgFormat receive the item's dialog texts,
 * translated while translation flag 0x4 is set. -2 as GetVar and for kinds 5
 * and 6 without owner. Call FreeDlgVar after each success.
 */
KERFLINE_API int32_t GetDlgVar(VMV6DLGVAR* var) KERFLINE_NOEXCEPT;

/* Releases the text value (value type 4) and both dialog texts, nulling each
   pointer. 1; -2 for a null record. */
KERFLINE_API int32_t FreeDlgVar(VMV6DLGVAR* var) KERFLINE_NOEXCEPT;

/*
 * Sets a variable's value from var->uValue, found by the lookup rules of
 * GetVar (variant name first) for kinds 1, 2, 3, 5, 6, 7 and 8. Value type
 * 1, 2 and 3 write the number as decimal text, 4 the text in pszText, 5 the
 * date "day.month.year"; 10 takes the field the item's own type chooses and
 * writes the choice back. A linked item becomes local. A dialog variable of
 * type Integer refuses a text holding any of ".,;eE" with a message box.
 * 1 set; 0 refused or value type not settable; -5 not found; -2 as GetVar
 * or a null text for type 4.
 */
KERFLINE_API int32_t SetVar(VMV6VAR* var) KERFLINE_NOEXCEPT;

/*
 * Walk the items of a group: "Werkzeugparameter" and "Layervariablen" are
 * the sub-lists of the tool in var->pOwner; any other group ("Sonderbefehle:",
 * "%Modi%", ...) is found in the driver by name (or, with an owner, among
 * the owner's groups first). The found item's name is written to szName and
 * its value converted as GetVar does (dNumber too, for a dialog variable). GetNextVar continues after the
 * item named in szName (and releases a text value left in the record first, so a walk ends with a single
 * FreeVar). Groups inside the group, items whose name does not fit the 64 bytes and repeated names are
 * skipped. 1 found; 0 no more items; -5 group not found; -2 null record, no driver or null group name.
 */
KERFLINE_API int32_t GetFirstVar(VMV6VAR* var, const char* group) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t GetNextVar(VMV6VAR* var, const char* group) KERFLINE_NOEXCEPT;

/*
 * As GetVar, and on success *description receives the item's description
 * as a library text, released with QuickFree (null when description is
 * null: then only the value is read).
 */
KERFLINE_API int32_t GetVarAndDesc(VMV6VAR* var, char** description) KERFLINE_NOEXCEPT;

/* Whether the driver's "%VideoSettings%" (or "%JoyStickSettings%") list
   holds an item of that name: 1 yes, 0 no, -2 no driver or null name. */
KERFLINE_API int32_t HasVideoVar(VMV6DRV* drv, const char* name) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t HasJoystickVar(VMV6DRV* drv, const char* name) KERFLINE_NOEXCEPT;

/* Sets the item of that name in "%VideoSettings%" (or "%JoyStickSettings%")
   to the text, adding the item (type String) and the list when missing.
   1; 0 refused by a dialog variable's input check; -2 no driver, null or
   empty name, or null value. */
KERFLINE_API int32_t SetVideoVar(VMV6DRV* drv, const char* name, const char* value) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t SetJoyStickVar(VMV6DRV* drv, const char* name, const char* value) KERFLINE_NOEXCEPT;

/* Number of tools of the driver (0 without "Werkzeugvariablen"); -2 no
   driver. */
KERFLINE_API int32_t CountTools(VMV6DRV* drv) KERFLINE_NOEXCEPT;

/*
 * Fill the record with the first tool, or with the tool after the one the
 * record holds (GetNextTool releases what the record held first). 1 filled;
 * 0 no (more) tools: the record is released and zeroed; -2 no driver or
 * null record; -3 out of memory. The record passed to GetFirstTool is taken
 * as empty (not released). Call FreeTool when done.
 */
KERFLINE_API int32_t GetFirstTool(VMV6DRV* drv, DRVTOOL* tool) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t GetNextTool(VMV6DRV* drv, DRVTOOL* tool) KERFLINE_NOEXCEPT;

/* Releases the record's texts and reference and zeroes it. 1; -2 for null. */
KERFLINE_API int32_t FreeTool(DRVTOOL* tool) KERFLINE_NOEXCEPT;

/* As CountTools, GetFirstTool, GetNextTool and FreeTool for materials. */
KERFLINE_API int32_t CountMaterial(VMV6DRV* drv) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t GetFirstMaterial(VMV6DRV* drv, DRVMATERIAL* material) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t GetNextMaterial(VMV6DRV* drv, DRVMATERIAL* material) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t FreeMaterial(DRVMATERIAL* material) KERFLINE_NOEXCEPT;

/*
 * Adds a material of that name with the standard material variables at
 * their defaults ("Materialvariablen" is created when missing) and resets
 * the document's pending state. When material is not null it is filled as
 * GetFirstMaterial would (release it with FreeMaterial).
 * 1 added; 0 a material of that name exists; -2 no driver, null or empty
 * name; -3 out of memory.
 */
KERFLINE_API int32_t AddMaterial(VMV6DRV* drv, const char* name, DRVMATERIAL* material) KERFLINE_NOEXCEPT;

/* Removes the material of that name (its stored name, not a translation)
   and resets the document's pending state. Records still referring to it
   find nothing afterwards. 1 removed; 0 not found; -2 no driver or null
   name. */
KERFLINE_API int32_t DeleteMaterial(VMV6DRV* drv, const char* name) KERFLINE_NOEXCEPT;

/*
 * Dialog variables for a host's settings dialog (see docs/dialog-variables.md).
 *
 * The calls below that take a VMV6DLGVAR find the variable by the rules of
 * GetDlgVar (kinds 2, 3, 5, 6, with var->pOwner a DRVTOOL or DRVMATERIAL
 * record) and also by kind 1, the driver's own tree, where a driver keeps
 * the dialog variables of its settings dialog. Only szName, pDrv, nKind and
 * pOwner are read; the value fields are left alone. Results: 1 done; 0
 * nothing of that sort (said per call); -2 null record, no driver, empty or
 * unterminated name, null result record, kinds 5 and 6 without owner;
 * -3 out of memory; -5 not found, kind not supported, or an owner record
 * that was released or belongs to another driver.
 */

/* Extended parameter flags (DLGVAREXT.nFlags); other bits are carried as stored. */
#define KERFLINE_DLGVAR_LIMITS 0x1u   /* dMin and dMax bound the value (CheckMatVarVal) */
#define KERFLINE_DLGVAR_RELATIVE 0x2u /* the value is relative to the material's (IsRelativeFlag) */

/* What is wrong with a dialog variable (nState fields). */
#define KERFLINE_DLGSTATE_BAD_FORMAT 0x1u /* stray "%" or two conversions: format not used */
#define KERFLINE_DLGSTATE_BAD_RANGE 0x2u  /* min > max, bound not finite, step < 0 or not finite */
#define KERFLINE_DLGSTATE_CUT 0x4u        /* a text was cut to fit its field */
#define KERFLINE_DLGSTATE_PLAIN 0x8u      /* the item is a plain variable, not a dialog variable */

/* A dialog variable's extended parameters, as stored. */
typedef struct DLGVAREXT {
  uint32_t nFlags;
  uint32_t nState; /* 0 or KERFLINE_DLGSTATE_BAD_RANGE */
  double dMax;
  double dMin;
  double dIncrements;
} DLGVAREXT;

/*
 * Fills *ext with the variable's extended parameters. 1 present and sound;
 * 0 the variable has none (the record is zeroed); -2 also when they are
 * broken: the record then holds them as stored with nState
 * KERFLINE_DLGSTATE_BAD_RANGE, so a host can show them but must not build a
 * range from them.
 */
KERFLINE_API int32_t GetDlgVarExtParms(VMV6DLGVAR* var, DLGVAREXT* ext) KERFLINE_NOEXCEPT;

/* One dialog variable as a settings dialog shows it; fixed fields, nothing to release. */
typedef struct DLGVARDATA {
  char szCaption[128]; /* dialog text (its description when the dialog text is empty), translated under 0x4 */
  char szFormat[64];   /* dialog format, translated under 0x4 */
  char szValue[256];   /* current value (links followed) */
  char szShown[256];   /* the value put through the format; the value itself when the format is broken */
  int32_t nType;       /* item type: 0 Double, 1 Integer, 2 Bool, 3 Date, 4 String */
  uint32_t nState;     /* KERFLINE_DLGSTATE_* bits */
  int32_t nConditionCount;
  int32_t nHasExt; /* 1 when the variable has extended parameters */
} DLGVARDATA;

/* Fills *data (texts cut to their fields, always terminated, with
   KERFLINE_DLGSTATE_CUT set). 1; codes as above. */
KERFLINE_API int32_t GetDlgVarData(VMV6DLGVAR* var, DLGVARDATA* data) KERFLINE_NOEXCEPT;

/* GetDlgVarData with the extended parameters and the default. */
typedef struct EXTDLGVARDATA {
  DLGVARDATA data;
  DLGVAREXT ext;       /* zero when data.nHasExt is 0 */
  char szDefault[256]; /* as GetDlgDefaultEx; "" when there is none */
  int32_t nHasDefault;
  int32_t nReserved;
} EXTDLGVARDATA;

/* Fills *data. 1; codes as above (broken extended parameters are reported in
   nState, not by the result). */
KERFLINE_API int32_t GetExtDlgVarData(VMV6DLGVAR* var, EXTDLGVARDATA* data) KERFLINE_NOEXCEPT;

/* Where a default comes from (DLGVARDEFAULT.nSource). */
#define KERFLINE_DEFAULT_STANDARD 1 /* the standard texts, by the item's text number */
#define KERFLINE_DEFAULT_BASE 2     /* the value of the same-named item of the base driver */

/* A variable's default: library texts released by FreeDlgDefaultEx. */
typedef struct DLGVARDEFAULT {
  char* pszDefault; /* the default text */
  char* pszShown;   /* the default put through the dialog format */
  int32_t nSource;  /* KERFLINE_DEFAULT_* */
  int32_t nDiffers; /* 1 when the current value differs from the default */
} DLGVARDEFAULT;

/* Fills *def with the default of the variable: the standard default of its
   text number, else the base driver's value. 1 found; 0 the variable has no
   default (record zeroed, nothing to release). Call FreeDlgDefaultEx after
   a success. */
KERFLINE_API int32_t GetDlgDefaultEx(VMV6DLGVAR* var, DLGVARDEFAULT* def) KERFLINE_NOEXCEPT;

/* Releases both texts and zeroes the record; a second call finds nothing to
   release. 1; -2 for a null record. */
KERFLINE_API int32_t FreeDlgDefaultEx(DLGVARDEFAULT* def) KERFLINE_NOEXCEPT;

/* 1 when the dialog variable carries KERFLINE_DLGVAR_RELATIVE, 0 when not or
   when it has no extended parameters; -2/-5 as above. */
KERFLINE_API int32_t IsRelativeFlag(VMV6DLGVAR* var) KERFLINE_NOEXCEPT;

/* One entry of a dialog-variable list. Texts and the condition array are
   library memory released by FreeDlgVars. */
typedef struct DLGVARENTRY {
  char szName[64];
  DLGVAREXT ext; /* zero when nHasExt is 0 */
  char* pszCaption;
  char* pszFormat;
  char* pszValue;
  char* pszGroup; /* the group holding the variable */
  char** ppszConditions;
  int32_t nConditionCount;
  int32_t nType;
  uint32_t nState;
  int32_t nHasExt;
} DLGVARENTRY;

typedef struct DLGVARLIST {
  int32_t nCount;
  int32_t nReserved;
  DLGVARENTRY* pEntries;
} DLGVARLIST;

/*
 * Lists the dialog variables of a place: kind 1 every dialog variable of the
 * driver's tree in tree order; 2 those of the owner's own variable list; 5
 * of its "Layervariablen"; 6 of its "Werkzeugparameter". A repeated name and
 * a name longer than 63 characters are left out. 1 listed (nCount may be
 * 0); -2 no driver or null list, kinds 2, 5 and 6 without owner; -3 out of
 * memory; -5 owner or sub-list not found, or another kind. The list is
 * written only on success; call FreeDlgVars after it.
 */
KERFLINE_API int32_t GetDlgVars(VMV6DRV* drv, int32_t kind, void* owner, DLGVARLIST* list) KERFLINE_NOEXCEPT;

/* Releases every text and array of the list and zeroes it, so a second call
   releases nothing. 1; -2 for a null list. */
KERFLINE_API int32_t FreeDlgVars(DLGVARLIST* list) KERFLINE_NOEXCEPT;

/*
 * Copies the value text of the variable found as GetVar finds it (variant
 * name first) into buffer. *length (when not null) receives the text's
 * length. 1 copied; 0 the buffer (size bytes) is too small: it then holds ""
 * when size > 0; -2/-5 as GetVar, and -2 for a null buffer with size > 0 or a
 * negative size.
 */
KERFLINE_API int32_t GetVarVal(VMV6VAR* var, char* buffer, int32_t size, int32_t* length) KERFLINE_NOEXCEPT;

/* One value a dialog offers. */
typedef struct VARVAL {
  double dValue;
  char szText[56]; /* the value put through the dialog format */
} VARVAL;

#define KERFLINE_VARVALS_MAX 10000 /* longer ranges are not offered as a list */

/*
 * The values a dialog offers for the variable: 0 and 1 for a Bool variable;
 * dMin, dMin + dIncrements, ... up to dMax for a variable with sound
 * extended parameters and a positive step. *values receives one block of
 * *count entries (never null on success, even for 0 entries), released with
 * FreeVarVals. 1 listed; 0 nothing to offer (no step, or more than
 * KERFLINE_VARVALS_MAX values: an empty block); -2 as above and for broken
 * extended parameters (nothing allocated); -3, -5 as above.
 */
KERFLINE_API int32_t GetVarVals(VMV6DLGVAR* var, VARVAL** values, int32_t* count) KERFLINE_NOEXCEPT;

/* Releases a block from GetVarVals; null is accepted. The same body as
   FreeCutDeviceList: the block goes back to the library's allocator
   (platform::library_free). */
KERFLINE_API void FreeVarVals(void* values) KERFLINE_NOEXCEPT;

/* As SetVideoVar and SetJoyStickVar, but an item that exists keeps its
   value. 1 added; 0 present (left as it is); -2 as those calls. */
KERFLINE_API int32_t SetVideoVarNoOverride(VMV6DRV* drv, const char* name,
                                           const char* value) KERFLINE_NOEXCEPT;
KERFLINE_API int32_t SetJoyStickVarNoOverride(VMV6DRV* drv, const char* name,
                                              const char* value) KERFLINE_NOEXCEPT;

/* Why CheckMatVarVal refused a value. */
#define KERFLINE_CHECK_TYPE 1   /* not a number, integer or date as the item's type asks */
#define KERFLINE_CHECK_RANGE 2  /* outside dMin..dMax of a dialog variable with KERFLINE_DLGVAR_LIMITS */
#define KERFLINE_CHECK_LENGTH 3 /* longer than the standard variable's limit allows */

/*
 * Checks value for the variable found as GetVar finds it (usually kind 2 or
 * 3 with a material record as owner) without storing it: the item's type
 * (Integer: a whole number without ".,;eE"; Double: a number; Bool: 0 or 1;
 * Date: "d.m.y"), the range of a dialog variable with
 * KERFLINE_DLGVAR_LIMITS and sound extended parameters, and the length
 * limit of a standard material variable (shorter than its limit). Nothing is
 * shown. 1 acceptable; 0 refused, with *reason (when not null) set to a
 * KERFLINE_CHECK_* code; -2 as GetVar or a null value; -5 not found.
 */
KERFLINE_API int32_t CheckMatVarVal(VMV6VAR* var, const char* value, int32_t* reason) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Cut data
 * ====================================================================== */

/* One named variable of a job, handed to the output templates. In the record
   both texts are copies owned by the library. */
typedef struct CUTVAR {
  char* pszName;
  char* pszValue;
} CUTVAR;

/* One layer of a job: seven words copied as the host gives them; their
   meaning belongs to the output templates. */
typedef struct CUTLAYER {
  int32_t anWords[7];
} CUTLAYER;

/* The description of one job. The host fills the job fields itself; the two
   arrays are built with AddVariable and AddLayer and released with
   FreeCutData (never with free()). */
typedef struct CUTDATA {
  uint8_t abJob[40];
  int32_t nVarCount;
  CUTVAR* pVars;
  int32_t nLayerCount;
  CUTLAYER* pLayers;
} CUTDATA;

/* Sets every field of the record to 0. 1; 0 for a null record. */
KERFLINE_API int32_t InitCutData(CUTDATA* data) KERFLINE_NOEXCEPT;

/*
 * Appends a copy of a variable (both texts copied; a null text is taken as
 * ""). 1; 0 for a null record or entry; -3 out of memory.
 * Add every variable before the first layer: from the second variable on,
 * adding a variable drops the layers added so far (they are released and the
 * record is left with no layers), as hosts of this interface have always
 * seen it.
 */
KERFLINE_API int32_t AddVariable(CUTDATA* data, const CUTVAR* variable) KERFLINE_NOEXCEPT;

/* Appends a copy of a layer. 1; 0 for a null record or layer; -3 out of memory. */
KERFLINE_API int32_t AddLayer(CUTDATA* data, const CUTLAYER* layer) KERFLINE_NOEXCEPT;

/*
 * Releases the arrays and the variable texts. The counts and pointers are
 * left as they were: call InitCutData before using the record again.
 * 1; 0 for a null record.
 */
KERFLINE_API int32_t FreeCutData(CUTDATA* data) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Evaluation
 * ====================================================================== */

/*
 * Templates in the cutter script language are evaluated by one evaluator
 * object per process, created by the first InitEval and kept until the
 * library is unloaded. All calls but EscapeEval and DoEval(NULL) belong to
 * one thread at a time; EscapeEval and DoEval(NULL) may come from another
 * thread while DoEval runs.
 *
 * Limits (no template can take the host down):
 *   - a template pass refuses to start after 10 passes on one evaluator
 *     since the last top-level reset ("[internal recursion limit reached]");
 *   - calls nest at most 64 deep inside one expression, user-function
 *     expansions included, and expansions may produce at most 64 KiB of text
 *     per expression (beyond either: "[internal recursion limit reached]");
 *   - evaluations started from inside an evaluation (Import chains, blocks
 *     that an operand's value brings in) nest at most 16 deep; the innermost
 *     then gives "[internal recursion limit reached]" in place of its value;
 *   - a conditional or arithmetic pass whose output would pass 64 MiB gives
 *     "0.0", as an unclosed block does;
 *   - an arithmetic block nests at most 200 levels (deeper: "0.00");
 *   - one DoEval (imports and block operands included) may start 100000
 *     evaluations and calls and produce 64 MiB in its template passes and
 *     conditional blocks; past either its whole result is
 *     "[internal recursion limit reached]";
 *   - the result of Join, Join3, Repl, AddNChar or IAR is cut at 16 MiB, and
 *     IAR draws at most 10000 lines.
 * The built-in functions and their output formats are listed in
 * docs/script-functions.md.
 */

/*
 * Creates the evaluator on the first call (building the function registry,
 * the user functions and seeding the random generator), counts the call,
 * keeps mode and logTarget when they are non-zero, keeps owner as given,
 * clears the escape flag, and switches asynchronous I/O on when IsAsyncIO()
 * says so. Returns 1.
 */
KERFLINE_API int32_t InitEval(uint32_t mode, uint32_t logTarget, void* owner) KERFLINE_NOEXCEPT;

/* InitEval, then switches asynchronous I/O on. Returns 1. */
KERFLINE_API int32_t InitEvalAsync(uint32_t mode, uint32_t logTarget, void* owner) KERFLINE_NOEXCEPT;

/*
 * 1 when the integer key "AsyncIO" of section "CutterSettings" in
 * "plotman.ini" in the suite directory is exactly 1, else 0 (also when the
 * file or key is missing).
 */
KERFLINE_API int32_t IsAsyncIO(void) KERFLINE_NOEXCEPT;

/* Keeps logTarget as the device trace target when the evaluator exists and
   logTarget is non-zero. Returns 1. */
KERFLINE_API int32_t SetEvalLogFile(uint32_t logTarget) KERFLINE_NOEXCEPT;

/*
 * Any thread: sets the escape flag of the evaluator and wakes every device
 * function waiting in it, so that a waiting DoEval returns at once.
 * Returns 1 (also without an evaluator).
 */
KERFLINE_API int32_t EscapeEval(void) KERFLINE_NOEXCEPT;

/* Clears the escape flag. Returns 1. */
KERFLINE_API int32_t EnableEval(void) KERFLINE_NOEXCEPT;

/*
 * With a text: evaluates the template for output (conditional blocks,
 * function calls, then arithmetic blocks with no decimals). Returns a new
 * zero-terminated block that the caller releases with FreeEval, or NULL when
 * the result is empty, an error arose outside the passes (the error text is
 * then the evaluator's last error), there is no evaluator yet (call InitEval
 * first) or memory ran out. A script error in a pass makes that pass's whole
 * output its bracketed text ("[incorrect number of parameters: Operator Left
 * expects 2 parameters]"), which is returned like any other result.
 * Once escaped, every later wait and call of this DoEval returns at once;
 * the escape flag is cleared when DoEval starts and ends.
 * With NULL (busy query, any thread): returns the pointer value 1 while a
 * device read of the evaluator waits or another DoEval runs, else NULL; this
 * value is not a block and must not be released.
 */
KERFLINE_API char* DoEval(const char* text) KERFLINE_NOEXCEPT;

/*
 * The value of a variable (shared variables visible on channel -1, then the
 * evaluator's own, then those set by the script's VarSet), or a copy of the
 * name when none has it, as a new block for FreeEval/FreeEvalVar. NULL when
 * there is no evaluator, name is NULL or the text is empty.
 */
KERFLINE_API char* GetEvalVar(const char* name) KERFLINE_NOEXCEPT;

/* Releases a block returned by DoEval or GetEvalVar; NULL is ignored.
   FreeEval and FreeEvalVar are the same function. */
KERFLINE_API void FreeEval(char* block) KERFLINE_NOEXCEPT;
KERFLINE_API void FreeEvalVar(char* block) KERFLINE_NOEXCEPT;

/* Does nothing; the evaluator lives until the library is unloaded. Returns 1. */
KERFLINE_API int32_t ExitEval(void) KERFLINE_NOEXCEPT;

/*
 * Sets a shared variable that every template can read by name (without
 * regard to case): value is copied; mask has bit (channel AND 31) set for
 * each channel that sees it (0xFFFFFFFF: every channel; DoEval uses channel
 * -1, i.e. bit 31). A NULL value removes the variable. Returns 1, -2 for a
 * NULL or empty name, -3 when memory ran out.
 */
KERFLINE_API int32_t SetEvalVar(const char* name, const char* value, uint32_t mask) KERFLINE_NOEXCEPT;

/*
 * Adds a user function, called in templates as &name(a, b): params is the
 * comma-separated list of parameter names (NULL or empty: none), body the
 * text that replaces each call, its parameter names (case-sensitive) replaced
 * by the argument texts as written. A built-in or an earlier function of the
 * same name (without regard to case) always wins. Returns 1 when added, 0
 * when the name is taken, -2 for a NULL or empty name or a NULL body, -3 when
 * memory ran out. Not to be called while an evaluation runs.
 */
KERFLINE_API int32_t AddEvalUserFunc(const char* name, const char* params,
                                     const char* body) KERFLINE_NOEXCEPT;

/*
 * Makes every named variable of an open driver a shared variable (as
 * SetEvalVar does, with the given mask), under its name as the driver writes
 * it ("%Speed%"), with its value as GetVar reads it (links followed). Items
 * are taken in tree order; when two have the same name (without regard to
 * case) the first wins, as in every other lookup by name. Groups are walked,
 * not loaded. Returns the number of variables set; -2 when the record holds
 * no open driver; -3 when memory ran out.
 */
KERFLINE_API int32_t LoadEvalVars(VMV6DRV* drv, uint32_t mask) KERFLINE_NOEXCEPT;

/*
 * The function registry, read-only, for a host's function browser: the
 * built-in functions in registration order (the basic table of 28, then the
 * extended table of 74), then the user functions. A name registered a second
 * time is listed where it was registered, flagged EVALFUNC_SHADOWED: calls
 * of that name always reach the first entry (so the extended table's OR, AND
 * and NOT are listed but never called). The registry is built by the first
 * InitEval; before it the list is empty.
 */
#define EVALFUNC_USER 0x00000001u     /* a user function (AddEvalUserFunc) */
#define EVALFUNC_SHADOWED 0x00000002u /* an earlier entry has the name */

/*
 * One entry. The texts belong to the library, are zero-terminated and stay
 * unchanged and valid until the library is unloaded; never NULL (an absent
 * text is ""). pszSecond is empty for most built-ins (for the D functions it
 * names the computation, e.g. " ceil(d1)"); for a user function it is the
 * body. pszHelp of a user function is "<!--user func-->".
 */
typedef struct EVALFUNC {
  const char* pszName;
  int32_t nParams;
  const char* pszParams;
  const char* pszSecond;
  const char* pszHelp;
  uint32_t dwFlags; /* EVALFUNC_* bits */
} EVALFUNC;

/* The number of entries in the list (0 before the first InitEval). */
KERFLINE_API int32_t GetEvalFuncCount(void) KERFLINE_NOEXCEPT;

/*
 * Fills *info with entry `index` (0-based, in the order described above).
 * Returns 1; 0 (nothing written) when index is negative or not below
 * GetEvalFuncCount(); -2 for a NULL info; -3 (nothing written) when memory
 * ran out. Like AddEvalUserFunc, not to be
 * called while another thread adds user functions.
 */
KERFLINE_API int32_t GetEvalFunc(int32_t index, EVALFUNC* info) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Shared data block
 * ====================================================================== */

/*
 * One 4096-byte block of data shared by every process that has the library
 * loaded, through which one process hands a position request to another and
 * collects the answer. It holds, in this order: flags (32 bits), blob size
 * (32 bits), six entries of three coordinates (doubles: all first, then all
 * second, then all third coordinates), values D, E, F (doubles), G (32-bit
 * integer), H, I (doubles), a 512-byte blob buffer (a port path in practice)
 * and a text buffer filling the rest of the block (a device name in
 * practice). Everything is zero when the first process opens it.
 *
 * On POSIX the block is the shared-memory object "/kerfline" (mode 0600, so
 * it is shared by the processes of one user); the environment variable
 * KERFLINE_SHM_NAME, read once at the first call, names another block (for
 * tests or separate installations). If the block cannot be opened the
 * process works on a private block of its own.
 */

/* Sizes of the blob and text buffers. */
#define KERFLINE_SHARED_BLOB_SIZE 512u
#define KERFLINE_SHARED_TEXT_SIZE 3384u

/* Flag bits as the position readers use them. */
#define KERFLINE_SHARED_SERVER 0x01u  /* a process that serves requests is present */
#define KERFLINE_SHARED_REQUEST 0x04u /* request pending; the server clears it when done */
#define KERFLINE_SHARED_COORDS 0x08u  /* the request's coordinates are present (entry 1) */
#define KERFLINE_SHARED_ANSWER 0x10u  /* answer ready (entry 1); the requester clears it */

/* A run of bytes handed to or fetched from the blob buffer. */
typedef struct SHAREDBLOB {
  uint32_t nSize; /* number of bytes at pData */
  void* pData;    /* the caller's bytes */
} SHAREDBLOB;

/*
 * Runs one operation on the shared block. nArgument is, as the operation
 * says, a bit mask or a pointer (to a double, an int32_t, a SHAREDBLOB, a
 * text or a text buffer) cast to uintptr_t.
 *
 *   Code                    Action                                   Argument
 *   1                       flags |= mask                            mask
 *   2                       flags &= ~mask                           mask
 *   3                       1 if every bit of mask is set, else 0    mask
 *                           (mask 0 gives 1)
 *   4                       copy the blob into the blob buffer and   SHAREDBLOB*
 *                           store its size; more than 512 bytes are
 *                           cut to 512 (the stored size is 512)
 *   5                       copy nSize bytes (at most 512) of the    SHAREDBLOB*
 *                           blob buffer to pData, then set nSize to
 *                           the stored blob size
 *   6, 14, 20, 26, 32, 38   set first coordinate of entry 1 .. 6     const double*
 *   7, 15, 21, 27, 33, 39   set second coordinate of entry 1 .. 6    const double*
 *   8, 16, 22, 28, 34, 40   set third coordinate of entry 1 .. 6     const double*
 *   9, 17, 23, 29, 35, 41   get first coordinate of entry 1 .. 6     double*
 *   10, 18, 24, 30, 36, 42  get second coordinate of entry 1 .. 6    double*
 *   11, 19, 25, 31, 37, 43  get third coordinate of entry 1 .. 6     double*
 *   12                      copy the text into the text buffer; a    const char*
 *                           longer text than 3383 characters is cut
 *   13                      copy the text buffer out with its NUL    char* (room for
 *                                                                    3384 bytes)
 *   44 / 45                 set / get value D                        double*
 *   46 / 47                 set / get value E                        double*
 *   48 / 49                 set / get value F                        double*
 *   50 / 51                 set / get value G                        int32_t*
 *   52 / 54                 set / get value H                        double*
 *   53 / 55                 set / get value I                        double*
 *
 * Within each entry the three "set" codes come before the three "get" codes;
 * 12 and 13 sit between entries 1 and 2; H and I are set by 52 and 53 and
 * read by 54 and 55.
 *
 * Returns 0 for a code outside 1..55 (nothing changes), the test result for
 * code 3, -2 for a null pointer where an operation needs one (or a blob
 * pointer that is null while its size is not 0; nothing changes), -3 when
 * memory runs out while the first call sets up the block, 1 otherwise.
 *
 * Flag operations are atomic, so processes setting different bits at the
 * same time lose none; every other field is read and written without a
 * lock. A requester writes its data before it sets the flags announcing it.
 */
KERFLINE_API int32_t SharedDataMan(int32_t nOperation, uintptr_t nArgument) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Mark data sets and mesh correction
 * ====================================================================== */

/*
 * Registration marks of printed jobs, kept per job as the measured marks
 * followed by the designed marks (see PROBEJOB). Job and mark entries use
 * 4-byte packing so that an entry is exactly 73 and 7 32-bit words on 32-bit
 * builds; the set record is laid out naturally.
 */
#if defined(__GNUC__) || defined(_MSC_VER)
#  pragma pack(push, 4)
#endif

/* One mark: position, size and a flag (7 words). */
typedef struct PROBEPOS {
  double x;
  double y;
  double dSize;
  int32_t nFlag;
} PROBEPOS;

/*
 * One job. pMarks holds nMarkCount marks from the C run-time allocator
 * (realloc), owned by the entry once the entry is in a set. The first
 * nMarkCount / 2 marks are the measured ones, the rest the designed ones in
 * the same order. dwJobData is carried and copied as it is.
 */
typedef struct PROBEJOB {
  int32_t nFlags;
  double dRotation;
  double dMarkSize;
  int32_t nMarkCount;
  PROBEPOS* pMarks;
  uint32_t dwJobData[66];
} PROBEJOB;

#if defined(__GNUC__) || defined(_MSC_VER)
#  pragma pack(pop)
#endif

/*
 * A set of jobs, owned by the caller. pJobs holds nJobCount entries from the
 * C run-time allocator, owned by the set; release them with ProbeDataFree.
 * The reserved words stay zero.
 */
typedef struct PROBEDATA {
  uint32_t dwFlags;
  int32_t nJobCount;
  uint32_t dwReserved;
  PROBEJOB* pJobs;
  uint32_t dwReserved2[4];
} PROBEDATA;

/*
 * In every function below a negative count, or a null array with a positive
 * count, is taken as no entries: nothing is read outside the arrays. A null
 * record pointer gives -2 (nothing from functions without a result).
 */

/* Zeroes every field of the set (without freeing anything). Returns 1. */
KERFLINE_API int32_t ProbeDataInit(PROBEDATA* set) KERFLINE_NOEXCEPT;

/* Frees every job's mark array, then the job array; the set is left with no
   jobs. Returns 1. */
KERFLINE_API int32_t ProbeDataFree(PROBEDATA* set) KERFLINE_NOEXCEPT;

/* Appends a copy of the job entry to the set. The set takes over the entry's
   mark array (freed by ProbeDataFree). Nothing is changed when the array
   cannot grow. */
KERFLINE_API void ProbeDataAdd(PROBEDATA* set, const PROBEJOB* job) KERFLINE_NOEXCEPT;

/* Copies job `index` to *job (the mark array is shared, not copied). Returns
   1, or 0 (nothing written) when index is negative or not below the count. */
KERFLINE_API int32_t ProbeDataGetAt(const PROBEDATA* set, int32_t index, PROBEJOB* job) KERFLINE_NOEXCEPT;

/* Re-initialises dst without freeing what it held and gives it src's flags.
   No job is copied: the result is an empty set with the source's flags.
   Returns 1. */
KERFLINE_API int32_t ProbeDataCopy(PROBEDATA* dst, const PROBEDATA* src) KERFLINE_NOEXCEPT;

/* Appends a copy of the mark to the job's mark array (realloc). Nothing is
   changed when the array cannot grow. */
KERFLINE_API void ProbeDataAddPos(PROBEJOB* job, const PROBEPOS* pos) KERFLINE_NOEXCEPT;

/* Copies mark `index` to *pos. Returns 1, or 0 (nothing written) when index
   is negative or not below the mark count. */
KERFLINE_API int32_t ProbeDataGetPosAt(const PROBEJOB* job, int32_t index, PROBEPOS* pos) KERFLINE_NOEXCEPT;

/* Overwrites mark `index` with *pos. Returns 1, or 0 when index is negative
   or not below the mark count. */
KERFLINE_API int32_t ProbeDataSetPosAt(PROBEJOB* job, int32_t index, const PROBEPOS* pos) KERFLINE_NOEXCEPT;

/* As ProbeDataGetPosAt, then mirrors the copy: y = height - y. */
KERFLINE_API int32_t ProbeDataXeneTecGetPosAt(const PROBEJOB* job, int32_t index, PROBEPOS* pos,
                                              double height) KERFLINE_NOEXCEPT;

/* Mirrors every mark of every job: y = height - y. Returns 1. */
KERFLINE_API int32_t ProbeDataTransformXene(PROBEDATA* set, double height) KERFLINE_NOEXCEPT;

/* Moves every mark of the job by (dx, dy). Returns 1. */
KERFLINE_API int32_t ProbeDataOffsetJob(PROBEJOB* job, double dx, double dy) KERFLINE_NOEXCEPT;

/* Moves only the measured marks (the first half) by (dx, dy). Returns 1. */
KERFLINE_API int32_t ProbeDataOffsetJobMarks(PROBEJOB* job, double dx, double dy) KERFLINE_NOEXCEPT;

/* Formats the set as debugging text and discards it. Returns 1. */
KERFLINE_API int32_t ProbeDataTrace(const PROBEDATA* set) KERFLINE_NOEXCEPT;

/*
 * Appends the marks of every job as HPGL circles to a plot file. mode != 0:
 * a new file "IN_<unique>.plt" is created in dir (dir must be given) and its
 * name remembered for the process; the measured marks are drawn with pen 6,
 * the designed marks with pen 8. mode 0: dir is ignored and the remembered
 * file is appended to; only the measured marks are drawn, with pen 7 or a pen
 * chosen by the mark's flag (8: 7, 16: 9, 4: 5, 1: 10). Returns 1, or 0 when
 * the file could not be created or opened (mode 0 before any call with a
 * mode != 0 included).
 */
KERFLINE_API int32_t ProbeDataTrace2PLT(const PROBEDATA* set, const char* dir,
                                        int32_t mode) KERFLINE_NOEXCEPT;

/*
 * Writes an HPGL circle of diameter `size` around (x, y) (in mark units, 0.4
 * plotter units each) to buffer: "PU <X+size*0.2>,<Y>;\r\nAA <X>,<Y>,360;\r\n"
 * with six decimals, NUL-terminated. The buffer must hold both lines (128
 * bytes hold them for coordinates and sizes below 1e9 in magnitude). Returns
 * the length of the text, or -2 for a null buffer.
 */
KERFLINE_API int32_t FrmtHpglCircle(double x, double y, double size, char* buffer) KERFLINE_NOEXCEPT;

/* Cell of a row-major grid: row = index / columns, column = index % columns,
   result 1; -1 (nothing written) when index < 0 or index >= rows * columns;
   -2 for a null output pointer. */
KERFLINE_API int32_t GetCellFromArray(int32_t index, int32_t rows, int32_t columns, int32_t* row,
                                      int32_t* column) KERFLINE_NOEXCEPT;

/* A point of the mesh functions: x then y. */
typedef struct MESHPOINT {
  double x;
  double y;
} MESHPOINT;

/*
 * Triangulates `count` mark positions (one process-wide mesh at a time) with
 * the plug-in "ocv.dll" (ocv.so / libocv.so on POSIX, looked for in the suite
 * directory and on the library search path). A mesh made earlier is released
 * first. The positions are copied. Returns -1 when the plug-in cannot be
 * loaded, -2 when it has no "DelaunayInit" (it stays loaded until
 * FreeDelaunay), -3 when the copy cannot be allocated, else DelaunayInit's
 * result: 1 triangulated, 0 the positions span no triangle. A null `points`
 * or a negative count is taken as no positions.
 */
KERFLINE_API int32_t CreateDelaunay(int32_t count, const MESHPOINT* points) KERFLINE_NOEXCEPT;

/*
 * Finds the mesh triangle that contains *query (for a point outside the mesh,
 * the nearest triangle) and writes the indices of the stored positions that
 * lie within 0.1 (in x and in y) of one of its corners, in ascending order, at
 * most 3, to out (room for 3; slots beyond those written are left alone).
 * Returns 1; 0 (nothing written) when no plug-in with "DelaunayLocate" is
 * loaded; -2 for a null pointer.
 */
KERFLINE_API int32_t LocatePt(const MESHPOINT* query, int32_t* out) KERFLINE_NOEXCEPT;

/* Releases the mesh, the copy of the positions and the plug-in. */
KERFLINE_API void FreeDelaunay(void) KERFLINE_NOEXCEPT;

/* Euclidean distance of a and b; -2.0 for a null pointer. */
KERFLINE_API double PointToPoint(const MESHPOINT* a, const MESHPOINT* b) KERFLINE_NOEXCEPT;

/*
 * Distance of p from the line through a and b (by Heron's formula; a base of
 * length 0 counts as 1e-7). The foot point written to *foot lies on the ray
 * from a towards b at the distance from a that the true foot has, so a point
 * behind a gets a foot ahead of a. Returns -2.0 (nothing written) for a null
 * pointer.
 */
KERFLINE_API double PointToLine(const MESHPOINT* a, const MESHPOINT* b, const MESHPOINT* p,
                                MESHPOINT* foot) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Port access
 *
 * Opening a device, writing to it and closing it. A device handle is
 * pointer-sized and opaque to the host; an invalid one is (void*)-1.
 * ====================================================================== */

/* A device handle that names nothing (INVALID_HANDLE_VALUE). */
#define KERFLINE_INVALID_DEVICE_HANDLE ((void*)(intptr_t)-1)

/* Why a device could not be opened (the open's error code). */
#define KERFLINE_OPEN_NO_DEVICE_NAME (-7) /* no device name */
#define KERFLINE_OPEN_NO_DIALOGUE (-6)    /* port type 1, 3 or 5 */
#define KERFLINE_OPEN_PORT_FAILED (-5)    /* the port or file path would not open */
#define KERFLINE_OPEN_READ_REFUSED (-4)   /* read side refused, retry declined */
#define KERFLINE_OPEN_WRITE_REFUSED (-3)  /* write side refused, retry declined */

/*
 * Opens the device named `device` (its settings section) as its driver and
 * settings decide: a port or file path gives one handle for both
 * directions, USB pipes give two. On success *readHandle and *writeHandle
 * receive the handles (the caller closes them with CloseDevice); on failure
 * or when the port type has nothing to open they are left as they were, so
 * preset them to KERFLINE_INVALID_DEVICE_HANDLE. Open failures may show the
 * retry prompts through the message-box hook. Always returns 1.
 */
KERFLINE_API int32_t ConnectToDevice(VMV6DRV* drv, const char* device, void** readHandle,
                                     void** writeHandle) KERFLINE_NOEXCEPT;

/*
 * Writes length bytes to *handle, writing the rest again after a short
 * write until all are out (a write that moves nothing three times running
 * ends it). Nothing is written for length 0, a null or an invalid handle.
 * Returns 1.
 */
KERFLINE_API int32_t WriteToDevice(void** handle, const void* bytes, uint32_t length) KERFLINE_NOEXCEPT;

/*
 * Closes *readHandle and, when it differs, *writeHandle (null and invalid
 * handles are skipped). The variables are not changed. Returns 1.
 */
KERFLINE_API int32_t CloseDevice(void** readHandle, void** writeHandle) KERFLINE_NOEXCEPT;

/*
 * Opens the device, writes the zero-terminated text (without its zero) in
 * one write and closes it again. Returns 1 when the write succeeded, 0 when
 * the open failed or the write did (a port type with nothing to open
 * writes nothing and gives 0).
 */
KERFLINE_API int32_t DeviceWriteString(VMV6DRV* drv, const char* device, const char* text) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Device readers
 *
 * One instruction, one answer: values and media widths read back from a
 * device through the link its driver and settings decide.
 * ====================================================================== */

/*
 * What a reader got back (208 bytes, 8-byte aligned; offsets 0, 4, 8, 72).
 * nStatus: 1 the device answered (and, for ReadDeviceVals and
 *   GetWidthFromDevice, the answer held the values); 0 no answer (nothing
 *   could be opened, the device stayed silent for about 2 s); -1 the answer
 *   did not read as asked (szAnswer holds it); -2 a null argument.
 * nCount: numbers in dValues.
 * dValues: ReadDeviceVals: the numbers of the answer in order (at most 8);
 *   GetWidthFromDevice: dValues[0] is the media width in the device's units.
 * szAnswer: the answer without its line end, zero-terminated, cut to 135
 *   characters.
 */
typedef struct KERFLINE_DEVICE_ANSWER {
  int32_t nStatus;
  int32_t nCount;
  double dValues[8];
  char szAnswer[136];
} KERFLINE_DEVICE_ANSWER;

/*
 * Sends the instruction to the device and fills *answer with what came back
 * (one answer, at most 128 bytes through a port, 4096 over the TCP/IP link).
 * The link is decided from the driver's variables and the device's settings:
 * the port or USB pipe query, a vendor USB library, or (%TCPIPApi% = "1") a
 * TCP connection to the device's "IP_ADDR" and "IP_PORT" (5 s to connect,
 * 2 s for the answer). With Ctrl and Shift held the user types the answer
 * instead. Returns nStatus.
 */
KERFLINE_API int32_t ReadDeviceString(VMV6DRV* drv, const char* device, const char* instruction,
                                      KERFLINE_DEVICE_ANSWER* answer) KERFLINE_NOEXCEPT;

/*
 * ReadDeviceString, then the decimal numbers of the answer (separated by
 * commas, semicolons or blanks) into dValues. nStatus -1 when the answer
 * holds no number.
 */
KERFLINE_API int32_t ReadDeviceVals(VMV6DRV* drv, const char* device, const char* instruction,
                                    KERFLINE_DEVICE_ANSWER* answer) KERFLINE_NOEXCEPT;

/*
 * The media width: sends the driver's %Read% (default "OH;"), cuts the answer
 * at the first %ReadTerminate% character (default ";") or line end, and reads
 * it with %ReadFormat% (default "%[!%s!]%,%[!%IMatWidth%!]%": fields separated
 * by commas, the field named %IMatWidth% is the width; "%s" skips a field).
 * <VBStart>...<VBEnd> sections in these three texts are replaced by their
 * values first (InitVBEval's engine, the driver's %VBGlobalCode% as global
 * code); a section that fails empties its text.
 * dValues[0] gets the width, nCount 1. Returns nStatus.
 */
KERFLINE_API int32_t GetWidthFromDevice(VMV6DRV* drv, const char* device,
                                        KERFLINE_DEVICE_ANSWER* answer) KERFLINE_NOEXCEPT;

/*
 * Names the driver and device that the evaluator's device functions
 * (ReadVar, WaitCmd and the rest) talk to; a null or empty device forgets
 * it. The driver record must stay valid while it is named. Returns 1, or 0
 * when there is no evaluator yet (call InitEval first).
 */
KERFLINE_API int32_t SetEvalDevice(VMV6DRV* drv, const char* device) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Device list
 *
 * The output devices listed in "plotman.ini" of the suite directory.
 * ====================================================================== */

/* One listed device. Texts are zero-terminated and cut to fit. */
typedef struct CUTDEVICE {
  char szPort[32];     /* "DevOut", "IP_ADDR", "Remote Plotmanager" or empty */
  char szDrvPath[260]; /* driver file: "DevDrvPath" (+ separator) + "DevDrvFileName" */
  char szName[128];    /* device name: key in "DeviceNames" and section name */
} CUTDEVICE;

/* What GetCutDeviceInfo reports. */
typedef struct CUTDEVICEINFO {
  int32_t nReserved;   /* always 0 */
  int32_t nDeviceType; /* 2, 3, 5 or 6; else 0 */
} CUTDEVICEINFO;

/*
 * The devices of section "DeviceNames", except those of "DevType" 3, as a new
 * array released with FreeCutDeviceList; *count receives the number of
 * records (count may be null). Port: empty when "DevFlgLocal" (default 1) is
 * 0; "DevOut" when "DevFlgUseSpooler" (default 1) is set; else by
 * "DevPortType" (2, 3, 4: "DevOut"; 5: "IP_ADDR"). Types 5 and 6 show the
 * port "Remote Plotmanager"; type 6 takes its driver from the suite's
 * "cutter/" directory. Never null while memory lasts, even for 0 devices.
 */
KERFLINE_API CUTDEVICE* GetCutDeviceList(int32_t* count) KERFLINE_NOEXCEPT;

/* Releases an array from GetCutDeviceList; null is accepted. The same
   release as FreeVarVals (one body). */
KERFLINE_API void FreeCutDeviceList(CUTDEVICE* list) KERFLINE_NOEXCEPT;

/*
 * Changes the device list; every change posts "Umsg_StartDeviceDlg" (0, 0)
 * through the broadcast hook. The caller keeps the record.
 *  - null: asks whether the plot manager listens: broadcasts
 *    "Umsg_StartDeviceDlg" (1, 0) and waits for the answer; 1 when it is 3,
 *    0 for another answer; when nobody answers (the hook returns -1) waits
 *    31 times 100 ms, pumping messages, and returns 1.
 *  - empty name: removes every listed device (spool files, key, section).
 *  - a name and an empty port: removes that device.
 *  - a name and a port: adds or updates the device as a cutter (type 2):
 *    spool directory SPOOLER/SL_<SAFE NAME> with "saved" and "index.hot",
 *    "DevIni", "DevIn", "DevOut" = the port as given, "DevDrvPath",
 *    "DevDrvFileName" and "DevDrvInfo" = the driver's name (GetDrvName).
 * 1 when done; 0 for a name that cannot be an INI key (a control character,
 * '=', or leading '[' or ';'), which changes nothing.
 */
KERFLINE_API int32_t WriteCutDevice(const CUTDEVICE* device) KERFLINE_NOEXCEPT;

/* 1 and the type in info->nDeviceType for device types 2, 3, 5 and 6
   ("DevType", default 2); else 0 (type stored as 0). info may be null. */
KERFLINE_API int32_t GetCutDeviceInfo(const char* name, CUTDEVICEINFO* info) KERFLINE_NOEXCEPT;

/* The device's "DevPortType" (default 2). */
KERFLINE_API int32_t GetCutDevicePortType(const char* name) KERFLINE_NOEXCEPT;

/*
 * Copies the device's spool directory ("DevIn") into buffer: 1 when copied,
 * 0 when it is empty, -(length) when size is not greater than its length
 * (a buffer exactly as long as the path is too small).
 */
KERFLINE_API int32_t GetCutDevicePath(const char* name, char* buffer, int32_t size) KERFLINE_NOEXCEPT;

/*
 * The machine's serial and parallel ports joined by separator, as a new
 * text released with QuickFree; null when there is none. On Linux the
 * device paths of /sys/class/tty (ttyS with a UART, ttyUSB*, ttyACM*),
 * /sys/class/printer (lp*) and /sys/class/usbmisc (lp*, as /dev/usb/lp*);
 * the environment variable KERFLINE_SYSFS_ROOT replaces "/sys".
 */
KERFLINE_API char* GetLocaleDevices(char separator) KERFLINE_NOEXCEPT;

/* 1 when a device listed in iniFile's "DeviceNames" has "DevIn" equal to
   path (both upper-cased by Windows-1252 rules), else 0. */
KERFLINE_API int32_t IsInputPathUsed(const char* iniFile, const char* path) KERFLINE_NOEXCEPT;

/* CBaseDeviceSettings::IsSetupAllowed for the name; a null iniFile means the
   suite's "plotman.ini". */
KERFLINE_API int32_t CanDoSetup(const char* iniFile, const char* name) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Plot-manager coupling, child processes and topic logs
 * ====================================================================== */

/*
 * Copies the suite directory (the directory that holds "plotman.ini"),
 * ending in the path separator, into buffer. The caller provides room for a
 * full path (MAX_PATH on Windows, 4096 bytes on POSIX); a longer directory is
 * cut to fit 4096 bytes. A null buffer is left alone. Always 0.
 */
KERFLINE_API int32_t GetPlotManPath(char* buffer) KERFLINE_NOEXCEPT;

/*
 * The number of active jobs in the spool of the named device (section
 * "ActiveJobs", key "Count" of its "index.hot"); 0 when none or when the
 * index does not exist. While a registration run has set its device, that
 * device is asked instead of the argument. A null name counts as none.
 */
KERFLINE_API int32_t IsJobRunning(const char* deviceName) KERFLINE_NOEXCEPT;

/*
 * With flag 0 tells the plot manager to stop: the message
 * "Umsg_StopPlotman" is posted (wParam 0, lParam 0) through the host's
 * broadcast hook. Any other flag does nothing. Always 1.
 */
KERFLINE_API int32_t CancelPlotman(int32_t flag) KERFLINE_NOEXCEPT;

/*
 * Starts the program that the command line names and waits for it to end.
 * The line is split into arguments by the Windows rules (double quotes
 * group, backslashes escape only before a quote); no shell is involved, the
 * program is looked up on the search path, the child inherits the caller's
 * environment and working directory but no open handle. showCommand is the
 * Windows SW_* value (ignored on POSIX).
 *
 * mode null (modal wait): a watcher thread waits for the child while the
 * calling thread calls the host's pump hook about every 20 ms. The wait
 * cursor hook is switched on for the wait and off after it: while it is on
 * the host's pump must repaint but drop keyboard, mouse and activation
 * input, so the user cannot act on the host's windows. Only one modal wait
 * runs at a time: a second one (from another thread, or from inside the
 * pump hook) is refused with 0 and starts nothing.
 * mode not null (polling wait): the exit status is read about every 20 ms
 * with the pump hook called in between; what mode points to is not used.
 *
 * Either wait ends early when the host calls KerflineCancelSpawnExe; the
 * child is then asked to stop and, after half a second, killed. When
 * SpawnExe returns, the child has ended and been collected.
 *
 * Returns 1 after the child has ended; 0 when no process could be started
 * (a null or empty line, a line that names no program, a program that does
 * not exist or cannot run; the hooks are then not called) or a modal wait
 * was refused.
 */
KERFLINE_API int32_t SpawnExe(char* commandLine, int32_t showCommand, void* mode) KERFLINE_NOEXCEPT;

/*
 * Ends every SpawnExe wait running at the time of the call, in any thread
 * (it may be called from another thread or from the pump hook). A later
 * SpawnExe is not affected. Returns the number of waits it ended.
 */
KERFLINE_API int32_t KerflineCancelSpawnExe(void) KERFLINE_NOEXCEPT;

/*
 * Topic logs: the file "lf_" + topic + ".log" beside "plotman.ini", written
 * only while key <topic> of section "Log" in "plotman.ini" is not 0.
 * action 1 deletes the file; 2 appends text as it is; 3 appends the local
 * time as "dd.mm.yy - HH:MM:SS " and then text. Other actions do nothing. A
 * topic holding a path separator ('/' or '\\') or a null topic writes
 * nothing, so a log never lands outside the suite directory; a file that
 * cannot be opened is skipped. A null text appends nothing. Always 1.
 */
KERFLINE_API int32_t LogFileMan(const char* topic, int32_t action, const char* text) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Scanner application bridge
 *
 * The scanner application's plug-in "lumaprobe.dll", loaded on demand.
 * ====================================================================== */

/*
 * The bridge forwards to the plug-in's entry points of the same meaning
 * ("ProbeInitDigitizer", "ProbeInit", "ProbeDoCommand",
 * "ProbeGetDigitizerPos", "ProbeFreeDigitizer", "ProbeRead", "Process",
 * "HandleUI", "ProbeExit"); what their arguments mean is the plug-in's
 * business. The plug-in stays loaded from LumaProbeInit or
 * LumaProbeInitDigitizer until LumaProbeFreeDigitizer or LumaProbeExit. While
 * a registration run has named its device, the bridge keeps the plug-in off
 * that device as long as its spool has active jobs. The bridge is meant for
 * the host's user-interface thread and is not locked.
 */

/* One digitiser position: 16 bytes. */
typedef struct DIGITIZERPOS {
  double x;
  double y;
} DIGITIZERPOS;

/*
 * Loads the plug-in (again) and calls "ProbeInitDigitizer"(value). Returns
 * its result; 1 when the plug-in lacks the entry; -4 when it cannot be
 * loaded.
 */
KERFLINE_API int32_t LumaProbeInitDigitizer(int32_t value) KERFLINE_NOEXCEPT;

/*
 * Loads the plug-in (again) and calls "ProbeInit"(data). Returns its result;
 * 1 when the plug-in lacks the entry (it stays loaded); -4 when the run's
 * device has active jobs (nothing is loaded) or the plug-in cannot be
 * loaded.
 */
KERFLINE_API int32_t LumaProbeInit(void* data) KERFLINE_NOEXCEPT;

/* "ProbeDoCommand"(a, b, c); 0 when no plug-in is loaded or it lacks the entry. */
KERFLINE_API int32_t LumaProbeDoCommand(int32_t a, int32_t b, int32_t c) KERFLINE_NOEXCEPT;

/*
 * Reads the digitiser's positions: asks "ProbeGetDigitizerPos"(0, NULL) for
 * their number n and writes it to *count; when n is at least 1, allocates n
 * positions, writes the array to *positions and has the plug-in fill it; its
 * result, at most n, becomes *count and the result. The array belongs to the
 * caller and is released only by LumaProbeFreeDigitizerPos; when nothing is
 * returned in it (n < 1, or the plug-in then reports fewer than 1) *positions
 * is set to NULL and nothing stays allocated. Returns -4 when no plug-in is
 * loaded, 0 when it lacks the entry, -3 when the array cannot be allocated
 * (more than 1048576 positions count as that; *count is then 0), -2 for a null pointer.
 */
KERFLINE_API int32_t LumaProbeGetDigitizerPos(int32_t* count, DIGITIZERPOS** positions) KERFLINE_NOEXCEPT;

/* Releases an array from LumaProbeGetDigitizerPos and sets *positions to NULL. Returns 1. */
KERFLINE_API int32_t LumaProbeFreeDigitizerPos(DIGITIZERPOS** positions) KERFLINE_NOEXCEPT;

/*
 * Calls "ProbeFreeDigitizer" (when present) and unloads the plug-in.
 * Returns the entry's result, 1 when it is missing, -4 when no plug-in is
 * loaded.
 */
KERFLINE_API int32_t LumaProbeFreeDigitizer(void) KERFLINE_NOEXCEPT;

/*
 * "ProbeRead"(data). While the run's device has active jobs the call waits,
 * checking every 500 ms and calling the host's pump hook in between; after
 * such a wait it pumps for another 100 ms before reading. 0 when no plug-in
 * is loaded or it lacks the entry.
 */
KERFLINE_API int32_t LumaProbeRead(void* data) KERFLINE_NOEXCEPT;

/* "Process"(); 0 when no plug-in is loaded or it lacks the entry. */
KERFLINE_API int32_t LumaProbeProcess(void) KERFLINE_NOEXCEPT;

/*
 * "HandleUI"(window, a, b, c); the window handle is passed on untouched. 0
 * when no plug-in is loaded or it lacks the entry.
 */
KERFLINE_API int32_t LumaProbeHandleUI(void* window, int32_t a, int32_t b, int32_t c) KERFLINE_NOEXCEPT;

/*
 * Calls "ProbeExit" (when present) and unloads the plug-in. Returns 1; 0
 * when no plug-in is loaded.
 */
KERFLINE_API int32_t LumaProbeExit(void) KERFLINE_NOEXCEPT;

/* ======================================================================
 * Script engine bridge
 *
 * Script sections handed to an embedded scripting engine.
 *
 * Driver texts may hold expressions in the script language of the platform:
 * VBScript through the Script Control component on Windows, Lua 5.4
 * elsewhere (an expression is evaluated as "return <expression>"; see
 * docs/script-bridge.md for writing expressions that work in both). A host
 * handle belongs to the thread that created it; every call for it must come
 * from that thread.
 *
 * Failures are shown in a message box (OK, error icon) through the host's
 * message-box hook:
 *   InitVBEval, title "VBCutter (VBInitGlobals):", text
 *     "Line: <line>\r\n<description>\r\n[<faulty source line>]\n"
 *   DoVBEval, title "VBCutter:", text
 *     "Line: <line> [Code: <number>]\r\n<description>\r\n[<faulty source line>]\n"
 * The number is the engine's error number (on Windows the VBScript error
 * number; with Lua the Lua status: 2 run-time error, 3 syntax error, 4 out
 * of memory).
 *
 * Lua limits, because driver files come from anywhere: only the base,
 * string, table, math and utf8 libraries are there, without dofile,
 * loadfile, load, print, require, string.dump; collectgarbage takes only
 * "count" and "collect" and setmetatable refuses "__gc" (no os, io, package
 * or debug library, no bytecode, no finalizers).
 * One call (the global code, or one expression) ends with "instruction
 * limit reached" after 10,000,000 virtual-machine instructions, and one
 * engine never holds more than 16 MiB ("not enough memory").
 * ====================================================================== */

/* A script host: one engine with its global code. Opaque. */
typedef struct KERFLINE_SCRIPT_HOST KERFLINE_SCRIPT_HOST;

/*
 * Starts an engine, runs globalCode in it (its functions and variables are
 * then visible to every expression; null is no code) and stores the new
 * host in *host. Returns 1; 0 when the engine could not be started or the
 * global code failed (the box above was shown, *host is null and nothing is
 * left to free); -2 when host is null.
 */
KERFLINE_API int32_t InitVBEval(KERFLINE_SCRIPT_HOST** host, const char* globalCode) KERFLINE_NOEXCEPT;

/*
 * The value of the expression as text, in a block from the C run-time
 * allocator (release it with FreeVBResult or free()). Null when the
 * evaluation failed (the box above was shown) or host or expression is
 * null. Truth values come out as "-1" and "0"; with Lua numbers use the
 * point as decimal separator (with VBScript the user's locale decides).
 */
KERFLINE_API char* DoVBEval(KERFLINE_SCRIPT_HOST* host, const char* expression) KERFLINE_NOEXCEPT;

/* Frees a block from DoVBEval (null is allowed). Always 1. */
KERFLINE_API int32_t FreeVBResult(char* result) KERFLINE_NOEXCEPT;

/*
 * Ends the engine of *host, frees the host and stores null in *host. A null
 * host pointer or a null *host does nothing. Always 1.
 */
KERFLINE_API int32_t FreeVBEval(KERFLINE_SCRIPT_HOST** host) KERFLINE_NOEXCEPT;

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KERFLINE_KERFLINE_H */

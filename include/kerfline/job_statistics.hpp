/*
 * job_statistics.hpp - per-tool distance totals of one output device.
 *
 * For each device the library keeps the distance each tool (blade, pen,
 * cutter) has travelled since the user last reset it, so that the user can
 * see tool wear. The totals live in the device's section of an INI file
 * (normally "plotman.ini"):
 *
 *   nStatCount              number of tools written ("%d")
 *   szTool<i>, dDist<i>     name and distance ("%f", point separator) of the
 *                           tool at list index i; a tool whose distance is
 *                           exactly 0 has both keys deleted instead
 *   lastResetH, lastResetL  high and low 32-bit halves of the time of the
 *                           last reset as a file time (100-ns units since
 *                           1601, UTC), each written as a signed "%d";
 *                           "0" in both: not yet stamped
 *
 * Key numbers are list indices, while loading reads numbers 0 to
 * nStatCount - 1: a tool with distance 0 before a nonzero one makes the
 * nonzero one unreadable by the next load. Files written by other programs
 * of the suite rely on this, so it stays.
 *
 * The class has no standard-library types in its interface, so a host built
 * with another C++ run-time can use it: texts are NUL-terminated 8-bit
 * strings (Windows-1252), and no member lets an exception out (a member that
 * runs out of memory leaves the object as it was). INI writes are not
 * checked, as everywhere in the suite.
 */
#ifndef KERFLINE_JOB_STATISTICS_HPP
#define KERFLINE_JOB_STATISTICS_HPP

#include "kerfline/kerfline.h"

/* One tool's total, owned by the CJobStatistics that returned it. */
struct TOOLDIST {
  double dDist; /* distance since the last reset, in the unit the caller adds */
  char* szTool; /* tool name; the characters may be changed, not the pointer */
};

class KERFLINE_API CJobStatistics {
 public:
  /* Created empty, with no device and no INI file. */
  CJobStatistics();
  /* Releases the tools; does not save. */
  virtual ~CJobStatistics();
  CJobStatistics(const CJobStatistics&) = delete;
  CJobStatistics& operator=(const CJobStatistics&) = delete;

  /* The INI section (the device's name); null means "". */
  void SetDevice(const char* szDevice);
  /* The INI file's full path (a bare name is a file in the suite
     directory); null means none, and every INI access then does nothing. */
  void SetIni(const char* szIniFile);

  /* Number of tools in the list. */
  int32_t GetSize() const;
  /* The tool at nIndex (insertion order), or null outside 0..GetSize()-1.
     Valid until the list is emptied (FreeToolInfoArray, destruction). */
  TOOLDIST* GetAt(int32_t nIndex) const;

  /* Adds dDist to the first tool named exactly szTool (case matters), or
     appends the tool when there is none. A null name does nothing. */
  void AddToolDist(const char* szTool, double dDist);
  /* Sets the distance of the first tool named exactly szTool to 0; others
     of that name keep theirs. Nothing is saved. */
  void ClearToolStat(const char* szTool);
  /* Sets every distance to 0, saves (which deletes every tool key and
     writes nStatCount=0), then writes "0" to lastResetH and lastResetL so
     that the next FormatTimeString stamps the reset time. */
  void ResetToolStat();
  /* Writes the list to the INI file as described at the top. */
  void SaveToolStat();
  /* Appends the tools stored in the INI file to the list (the list is not
     cleared first: loading twice doubles the entries). Slots whose name is
     empty are skipped; a name is read with a 260-character buffer, a
     distance that is not a number counts as 0. */
  void LoadToolStat();
  /* The time of the last reset in local time, "%d.%d.%d %d:%d:%d" (day,
     month, year, hour, minute, second, no leading zeros). When lastResetL
     is 0 the reset time is not yet stamped: the current time is taken and
     written to lastResetH/lastResetL. The text belongs to the object and
     stays valid until the next call or destruction; "" when the time cannot
     be shown. */
  const char* FormatTimeString();
  /* Releases every tool and empties the list. */
  void FreeToolInfoArray();

 private:
  struct Data;
  Data* m_pData;
};

#endif /* KERFLINE_JOB_STATISTICS_HPP */

/*
 * ocv_plugin.h - the Delaunay plug-in that Kerfline's mesh correction loads
 * as "ocv.dll" (libocv.so on POSIX). One process-wide mesh at a time; the
 * functions are not meant to be called from two threads at once.
 */
#ifndef KERFLINE_OCV_PLUGIN_H
#define KERFLINE_OCV_PLUGIN_H

#include <stdint.h>

#if defined(_WIN32)
#  if defined(OCV_BUILDING)
#    define OCV_API __declspec(dllexport)
#  else
#    define OCV_API __declspec(dllimport)
#  endif
#else
#  define OCV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A point: x then y (the layout of Kerfline's MESHPOINT). */
typedef struct OCV_POINT {
  double x;
  double y;
} OCV_POINT;

/*
 * Builds the Delaunay triangulation of `count` points (copied; the caller may
 * release them afterwards), replacing any earlier one. Points with a NaN or
 * infinite coordinate are left out, repeated points count once. Returns 1
 * when there is at least one triangle; 0 when there is none (fewer than three
 * distinct points, all on one line, a null array or a count <= 0); -3 when
 * memory runs out. After 0 or -3 there is no mesh.
 */
OCV_API int32_t DelaunayInit(int32_t count, const OCV_POINT* points);

/*
 * Writes to corners[0..2] the corner points (exactly as given to
 * DelaunayInit) of the triangle that contains *query; a point on an edge
 * shared by two triangles gets one of them. For a point outside the mesh, the
 * triangle nearest to it. When there is no mesh, or the query has a NaN or
 * infinite coordinate, corners is left as it is.
 */
OCV_API void DelaunayLocate(const OCV_POINT* query, OCV_POINT* corners);

/* Releases the mesh. Safe to call when there is none. */
OCV_API void DelaunayFree(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KERFLINE_OCV_PLUGIN_H */

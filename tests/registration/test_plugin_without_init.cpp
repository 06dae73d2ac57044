// A broken "ocv.dll": the mesh entries without DelaunayInit.
struct Point {
  double x, y;
};
extern "C" __attribute__((visibility("default"))) void DelaunayLocate(const Point*, Point*) {}
extern "C" __attribute__((visibility("default"))) void DelaunayFree() {}

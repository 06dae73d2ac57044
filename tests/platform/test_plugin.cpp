// A stand-in for a vendor DLL: one exported function with a known answer.
extern "C" __attribute__((visibility("default"))) int TestPlugAnswer(int x) { return x * 2 + 1; }

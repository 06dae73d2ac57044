// The shared library has no code of its own: it is assembled from the module
// archives (see src/CMakeLists.txt), each linked whole so that every exported
// function reaches the dynamic symbol table.

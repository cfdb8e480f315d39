# The kit's other algorithm libraries; a line per class, as in src/CMakeLists.txt. Part of the frame's library.
set(siblings ${CMAKE_SOURCE_DIR}/siblings)
set(ORVIK_SIBLING_SOURCES)

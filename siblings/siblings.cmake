# The kit's other algorithm libraries; a line per class, as in src/CMakeLists.txt. Part of the frame's library.
set(siblings ${CMAKE_SOURCE_DIR}/siblings)
set(ORVIK_SIBLING_SOURCES)

set(P ${siblings}/Filtering/Processor)
orvik_level3(GaussianGradient2dImg ${P}/GaussianGradient2dImg/GaussianGradient2dImg sse2 avx2 avx512)
list(APPEND ORVIK_SIBLING_SOURCES
  ${siblings}/Filtering/GaussianRules.cpp
  ${siblings}/Filtering/GaussianWeights.cpp
  ${siblings}/Filtering/Library.cpp
  ${P}/GaussianGradient2dImg/GaussianGradient2dImgLvl1.cpp ${P}/GaussianGradient2dImg/GaussianGradient2dImgLvl2.cpp
  ${GaussianGradient2dImg})

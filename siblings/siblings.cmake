# The kit's other algorithm libraries, part of the frame's library: one line per family, as in src/CMakeLists.txt.
set(ORVIK_SIBLING_SOURCES)
macro(orvik_sibling folder)
  orvik_family(ORVIK_SIBLING_SOURCES ${CMAKE_SOURCE_DIR}/siblings/${folder} ${ARGN})
endmacro()

orvik_sibling(AdvancedMorphology/Processor/ConnectedComponent2dImg)
orvik_sibling(AdvancedMorphology/Processor/ConnectedComponent3dImg)
orvik_sibling(AdvancedMorphology/Processor/IterativeExtremumPropagation2dImg sse2 avx2 avx512)
orvik_sibling(AdvancedMorphology/Processor/IterativeExtremumPropagation3dImg sse2 avx2 avx512)
orvik_sibling(AdvancedMorphology/Processor/LabelExtremumPropagation2dImg)
orvik_sibling(AdvancedMorphology/Processor/LabelExtremumPropagation3dImg)
orvik_sibling(Filtering/Processor/GaussianGradient2dImg sse2 avx2 avx512)
orvik_sibling(Filtering/Processor/GaussianGradient3dImg sse2 avx2 avx512)
orvik_sibling(Filtering/Processor/SmoothSlices3dImg sse2 avx2 avx512)
orvik_sibling(Filtering/Processor/StructureTensor2dImg sse2 avx2 avx512)
orvik_sibling(Filtering/Processor/StructureTensor3dImg sse2 avx2 avx512)
orvik_sibling(GlobalMeasure/Processor/HistogramMsr)
orvik_sibling(GlobalMeasure/Processor/StatsMsr)
orvik_sibling(Utility/Processor/BasicThresholdImg sse2 avx2 avx512)
orvik_sibling(Utility/Processor/EraseImg)

# What the families of a library share.
file(GLOB shared CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/siblings/*/*.cpp ${CMAKE_SOURCE_DIR}/siblings/*/Processor/*.cpp)
list(APPEND ORVIK_SIBLING_SOURCES ${shared})

# Loops that the compiler makes vectors of, though they have no kernels by set.
orvik_kernels(${CMAKE_SOURCE_DIR}/siblings/AdvancedMorphology/Processor/WeakSpreader.cpp
  ${CMAKE_SOURCE_DIR}/siblings/GlobalMeasure/Processor/HistogramMsr/ImageHistogram.cpp
  ${CMAKE_SOURCE_DIR}/siblings/GlobalMeasure/Processor/StatsMsr/ImageStats.cpp)

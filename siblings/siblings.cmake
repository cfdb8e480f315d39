# The kit's other algorithm libraries, part of the frame's library: one line per family, as in src/CMakeLists.txt.
set(siblings ${CMAKE_SOURCE_DIR}/siblings)
set(U ${siblings}/Utility/Processor)
set(M ${siblings}/AdvancedMorphology/Processor)
orvik_level3(BasicThresholdImg ${U}/BasicThresholdImg/BasicThresholdImg sse2 avx2 avx512)
orvik_level3(IterativeExtremumPropagation2dImg
  ${M}/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImg sse2 avx2 avx512)

set(ORVIK_SIBLING_SOURCES
  ${siblings}/Utility/Library.cpp
  ${siblings}/AdvancedMorphology/Library.cpp
  ${U}/BasicThresholdImg/BasicThresholdImgLvl1.cpp ${U}/BasicThresholdImg/BasicThresholdImgLvl2.cpp ${BasicThresholdImg}
  ${U}/EraseImg/EraseImgLvl2.cpp
  ${M}/PlaneRuns.cpp
  ${M}/ConnectedComponent2dImg/ConnectedComponent2dImgLvl1.cpp ${M}/ConnectedComponent2dImg/ConnectedComponent2dImgLvl2.cpp
  ${M}/IterativeExtremumPropagation2dImg/IterativeExtremumPropagation2dImgLvl2.cpp ${IterativeExtremumPropagation2dImg}
  ${M}/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgLutBuildPassLvl2.cpp
  ${M}/LabelExtremumPropagation2dImg/LabelExtremumPropagation2dImgThresholdPassLvl2.cpp)

set(F ${siblings}/Filtering/Processor)
orvik_level3(GaussianGradient2dImg ${F}/GaussianGradient2dImg/GaussianGradient2dImg sse2 avx2 avx512)
orvik_level3(StructureTensor2dImg ${F}/StructureTensor2dImg/StructureTensor2dImg sse2 avx2 avx512)
list(APPEND ORVIK_SIBLING_SOURCES
  ${siblings}/Filtering/FilteringMessages.cpp
  ${siblings}/Filtering/GaussianRules.cpp
  ${siblings}/Filtering/GaussianWeights.cpp
  ${siblings}/Filtering/Library.cpp
  ${F}/GaussianGradient2dImg/GaussianGradient2dImgLvl1.cpp ${F}/GaussianGradient2dImg/GaussianGradient2dImgLvl2.cpp
  ${GaussianGradient2dImg}
  ${F}/StructureTensor2dImg/StructureTensor2dImgLvl2.cpp ${StructureTensor2dImg})

set(S ${siblings}/GlobalMeasure/Processor)
orvik_kernels(${S}/StatsMsr/StatsMsr2dLvl2.cpp ${S}/HistogramMsr/HistogramMsr2dLvl2.cpp)
list(APPEND ORVIK_SIBLING_SOURCES
  ${siblings}/GlobalMeasure/CumulativeHistogramData.cpp
  ${siblings}/GlobalMeasure/Library.cpp
  ${S}/HistogramMsr/HistogramMsr2dLvl2.cpp
  ${S}/StatsMsr/StatsMsr2dLvl2.cpp)

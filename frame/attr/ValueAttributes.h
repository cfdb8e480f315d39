#pragma once

#include "frame/attr/Enumerations.h"
#include "frame/attr/Records.h"
#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseAttribute.h"

// Numbers, enumerators and records, one line per role; optional inputs with what they read as while unset.

namespace orvik { namespace imaproc { namespace attr {

ORVIK_OUTPUT(OutMax, (processor::BaseValueAttribute<double>), "maximum");
ORVIK_OUTPUT(OutMaxLabel, (processor::BaseValueAttribute<unsigned int>), "largest label");
ORVIK_INPUT(InNbLabels, (processor::BaseValueAttribute<unsigned int>), "number of labels");
ORVIK_INPUT(InThresholdMin, (processor::BaseValueAttribute<double>), "lowest value that counts");
ORVIK_INPUT(InThresholdMax, (processor::BaseValueAttribute<double>), "highest value that counts");
ORVIK_OPTIONAL_INPUT(InOptOutside, (processor::BaseValueAttribute<unsigned int>), 0,
                     "not 0: values outside the thresholds count; inside unless set");
ORVIK_INPUT(InStdDevX, (processor::BaseValueAttribute<float>), "standard deviation along x, in pixels");
ORVIK_INPUT(InStdDevY, (processor::BaseValueAttribute<float>), "standard deviation along y, in pixels");

ORVIK_INPUT(InLocalExtremumType, (processor::BaseValueAttribute<eLocalExtremumType>), "which extremum spreads");
ORVIK_INPUT(InNeighborhood2d, (processor::BaseValueAttribute<eNeighborhood2d>), "neighbours of a pixel");
ORVIK_OPTIONAL_INPUT(InOptNeighborhood2d, (processor::BaseValueAttribute<eNeighborhood2d>), eN2D_Eight,
                     "neighbours of a pixel; eight unless set");
ORVIK_OPTIONAL_INPUT(InOptOptimizationPolicy, (processor::BaseValueAttribute<eProcessingOptimizationPolicy>),
                     ePOP_Iterative, "memory against passes; iterative unless set");

ORVIK_INPUT(InCannyThresholds, (processor::InputDataItem<CannyThresholds>), "thresholds of the edge detector");
ORVIK_INPUT(InGaussianCoverage, (processor::InputDataItem<GaussianCoverage>), "reach of the Gaussian kernel");
ORVIK_OPTIONAL_INPUT(InOptGradientGaussianCoverage, (processor::InputOptionalDataItem<GaussianCoverage>),
                     createGaussianCoverage(), "reach of the Gaussian kernel; 4 standard deviations unless set");
ORVIK_OPTIONAL_INPUT(InOptGradStdDev, (processor::BaseValueAttribute<float>), 1.0f,
                     "standard deviation of the gradient and its smoothing, in pixels; 1 unless set");
ORVIK_INPUT(InGradStdDev, (processor::BaseValueAttribute<float>),
            "standard deviation of the gradient and its smoothing, in pixels");
ORVIK_INPUT(InSmoothingStdDev, (processor::BaseValueAttribute<float>), "standard deviation of the smoothing, in pixels");
ORVIK_INPUT(InCornerDetectionParams, (processor::InputDataItem<CornerDetectionParams>), "what is measured at a corner");
ORVIK_OPTIONAL_INPUT(InOptCornerDetectionParams2d, (processor::InputOptionalDataItem<CornerDetectionParams>),
                     createCornerDetectionParams2d(), "what is measured at a corner; Harris with k = 0.04 unless set");
ORVIK_INPUT(InFeaturesDistX, (processor::BaseValueAttribute<unsigned int>), "half-width of the neighbourhood along x");
ORVIK_INPUT(InFeaturesDistY, (processor::BaseValueAttribute<unsigned int>), "half-height of the neighbourhood along y");
ORVIK_INPUT(InLocalExtremaConfig, (processor::InputDataItem<LocalExtremaConfig>), "which local extrema are listed");
ORVIK_OPTIONAL_INPUT(InOptLocalExtremaConfig, (processor::InputOptionalDataItem<LocalExtremaConfig>),
                     createLocalExtremaConfig(), "which local extrema are listed; all maxima unless set");
ORVIK_OUTPUT(OutPixels2d, (processor::OutputDataItem<Pixels2d>), "listed pixels of one plane");
ORVIK_OUTPUT(OutPIPixels2d, (PlanIndexedStorage<PlanIndexedPixels2d>), "listed pixels of each plane");
ORVIK_OPTIONAL_INPUT(InOptHoughLinesImgParams, (processor::InputOptionalDataItem<HoughLinesImgParams>),
                     createHoughLinesImgParams(),
                     "bins of the accumulator; 1 pixel and 180 angles from 0 to pi, pixels above 0 vote, unless set");
ORVIK_OPTIONAL_INPUT(InOptHoughLinesExtractionParams, (processor::InputOptionalDataItem<HoughLinesExtractionParams>),
                     createHoughLinesExtractionParams(),
                     "which bins are lines; from half of the highest one on, 10 bins apart, unless set");
ORVIK_OUTPUT(OutHoughLines2dPpties, (processor::OutputDataItem<HoughLines2dPpties>), "lines of one plane");
ORVIK_OUTPUT(OutPIHoughLines2dPpties, (PlanIndexedStorage<PlanIndexedHoughLines2dPpties>), "lines of each plane");
ORVIK_OUTPUT(OutStatsResult, (processor::OutputDataItem<StatsResult>), "statistics");
ORVIK_OUTPUT(OutHistogramResult, (processor::OutputDataItem<HistogramResult>), "histogram");

}}}  // namespace orvik::imaproc::attr

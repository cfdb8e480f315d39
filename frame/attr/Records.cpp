#include "frame/attr/Records.h"

#include "frame/util/NumericLimits.h"

#include <boost/make_shared.hpp>
#include <boost/smart_ptr/make_shared_array.hpp>

#include <cmath>

namespace orvik { namespace imaproc { namespace attr {

#define ORVIK_RECORD_NAME(Kind, Name) ORVIK_##Kind##_DEFINE(Name)
#include "frame/attr/Records.inc"
#undef ORVIK_RECORD_NAME

boost::shared_ptr<GaussianCoverage> createGaussianCoverage()
{
    return GaussianCoverage::createNode(4.0);
}

boost::shared_ptr<CornerDetectionParams> createCornerDetectionParams2d()
{
    return CornerDetectionParams::createNode(eCRT_Harris, 0.04f);
}

boost::shared_ptr<CornerDetectionParams> createCornerDetectionParams3d()
{
    return CornerDetectionParams::createNode(eCRT_Harris, 0.005f);
}

boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig()
{
    return createLocalExtremaConfig(NumericLimits<unsigned long>::s_max);
}

boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(unsigned long maxNbExtrema)
{
    return createLocalExtremaConfig(static_cast<double>(NumericLimits<float>::s_min), maxNbExtrema);
}

boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(double threshold, unsigned long maxNbExtrema)
{
    return LocalExtremaConfig::createNode(eLET_Maxima, threshold, maxNbExtrema);
}

boost::shared_ptr<LocalExtremaConfig> createLocalExtremaConfig(const eLocalExtremumType& type, double threshold)
{
    return LocalExtremaConfig::createNode(type, threshold, NumericLimits<unsigned long>::s_max);
}

boost::shared_ptr<HoughLinesImgParams> createHoughLinesImgParams()
{
    return HoughLinesImgParams::createNode(1.0, 0.0, M_PI, 180u, 0.0f);
}

boost::shared_ptr<HoughLinesGradientImgParams> createHoughLinesGradientImgParams()
{
    return HoughLinesGradientImgParams::createNode(1.0, -M_PI, M_PI, 360u, 0.0f);
}

boost::shared_ptr<HoughLinesExtractionParams> createHoughLinesExtractionParams()
{
    return HoughLinesExtractionParams::createNode(eHLTT_Ratio, 0.5, 10u);
}

boost::shared_ptr<HoughCirclesRadiusRange> createHoughCirclesRadiusRange(long min, long max)
{
    return HoughCirclesRadiusRange::createNode(min, max);
}

boost::shared_ptr<AccumIntensityThreshold> createAccumIntensityThreshold()
{
    return AccumIntensityThreshold::createNode(0.0, 0.5);
}

boost::shared_ptr<RemoveTooCloseCirclesParams> createRemoveTooCloseCirclesParams()
{
    return RemoveTooCloseCirclesParams::createNode(true, 1.0);
}

}}}  // namespace orvik::imaproc::attr

#include "frame/attr/Records.h"

#include "frame/util/NumericLimits.h"

#include <boost/make_shared.hpp>
#include <boost/smart_ptr/make_shared_array.hpp>

namespace orvik { namespace imaproc { namespace attr {

ORVIK_RECORD_DEFINE(StatsResult)
ORVIK_RECORD_DEFINE(HistogramResult)
ORVIK_RECORD_DEFINE(CannyThresholds)
ORVIK_RECORD_DEFINE(GaussianCoverage)
ORVIK_RECORD_DEFINE(CornerDetectionParams)
ORVIK_RECORD_DEFINE(LocalExtremaConfig)
ORVIK_RECORD_DEFINE(Pixel2d)
ORVIK_RECORD_COLL_DEFINE(Pixels2d)
ORVIK_PLAN_INDEXED_DEFINE(PlanIndexedPixels2d)

boost::shared_ptr<GaussianCoverage> createGaussianCoverage()
{
    return GaussianCoverage::createNode(4.0);
}

boost::shared_ptr<CornerDetectionParams> createCornerDetectionParams2d()
{
    return CornerDetectionParams::createNode(eCRT_Harris, 0.04f);
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

}}}  // namespace orvik::imaproc::attr

#include "frame/attr/Records.h"

#include <boost/make_shared.hpp>

namespace orvik { namespace imaproc { namespace attr {

ORVIK_RECORD_DEFINE(StatsResult)
ORVIK_RECORD_DEFINE(CannyThresholds)
ORVIK_RECORD_DEFINE(GaussianCoverage)

boost::shared_ptr<GaussianCoverage> createGaussianCoverage()
{
    return GaussianCoverage::createNode(4.0);
}

}}}  // namespace orvik::imaproc::attr

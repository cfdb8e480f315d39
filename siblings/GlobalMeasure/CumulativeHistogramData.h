#pragma once

#include "frame/attr/Records.h"

namespace orvik { namespace imaproc { namespace glbmsr {

/// Shares of the samples of a histogram that lie at or below a value.
class ORVIK_API CumulativeHistogramData
{
public:
    /// What createCumulativeHistogramData throws and costs.
    explicit CumulativeHistogramData(const attr::HistogramResult& histogram);

    /// The value that `percent` of the samples do not exceed, in their unit.
    /// With a value per bin: the lowest value of the image for which that holds, so 0 gives the lowest and 100 the highest
    /// one. Else the samples of a bin are taken to lie evenly over it, and the value is read off in between.
    /// @param percent  0 to 100; what lies outside reads as 0 or 100. NaN gives NaN.
    /// A histogram without samples gives 0. Cost: logarithm of the number of bins.
    double getQuantile(double percent) const;

private:
    bool m_valuePerBin;
    double m_first, m_last;
    std::vector<unsigned long> m_cumulated;  // samples of this bin and those before
};

/// @throws ORVIKImageProcessingException for a histogram whose range is not finite or runs backwards, or has another
/// number of values than bins where there should be one for each. Cost: one addition per bin.
ORVIK_API boost::shared_ptr<const CumulativeHistogramData> createCumulativeHistogramData(
    const attr::HistogramResult& histogram);

}}}  // namespace orvik::imaproc::glbmsr

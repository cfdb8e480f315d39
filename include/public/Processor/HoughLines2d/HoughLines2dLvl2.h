#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// Level 2: one plane. Votes, continues a cyclic accumulator beyond its last angle, measures it where the threshold asks
/// for that, finds its local maxima, and makes lines of them.
class ORVIK_API HoughLines2dLvl2
    : public processor::Processor<HoughLines2dLvl2, processor::BaseRepeatedAsync1Processor, attr::InSubImg2d,
                                  attr::InOptHoughLinesImgParams, attr::InOptHoughLinesExtractionParams, attr::OutImg,
                                  attr::OutHoughLines2dPpties>
{
    ORVIK_PROCESSOR(HoughLines2dLvl2, 56)

    using BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

private:
    bool isMeasured() const;
    processor::RetrievalResult houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider);
    void duplicateOutImgFirstRowsAtTheEndIfNecessary();
    processor::RetrievalResult measure(const core::BasePriority& priority, processor::ProviderPtr& provider);
    processor::RetrievalResult localExtrema(const core::BasePriority& priority, processor::ProviderPtr& provider);
    double getThreshold() const;
    void extractLines();

    Ptr<attr::StatsResult> m_stats;
    Ptr<attr::HistogramResult> m_histogram;
    Ptr<attr::Pixels2d> m_peaks;
};

}}}  // namespace orvik::imaproc::fd

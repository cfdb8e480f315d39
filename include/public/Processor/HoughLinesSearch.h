#pragma once

#include "Library.h"

#include "frame/attr/Declarations.h"
#include "frame/processor/Processor.h"

namespace orvik { namespace imaproc { namespace fd {

/// What Level 2 of a search for lines is, from grey images and from gradients: one plane. Votes, continues a cyclic
/// accumulator beyond its last angle, measures it where the threshold asks for that, finds its local maxima, and makes lines
/// of them. `In` is the attribute of a plane, `Params` that of the bins, `Out` that of the accumulator; `D` and `A` are as
/// for Processor.
template<class D, class In, class Params, class Out, class... A>
class HoughLinesSearchLvl2 : public processor::Processor<D, processor::BaseRepeatedAsync1Processor, A...>
{
public:
    using processor::BaseRepeatedAsync1Processor::retrieveProvider;
    processor::RetrievalResult retrieveProvider(const core::BasePriority& priority, unsigned int iterationNumber,
                                                processor::ProviderPtr& provider) override;
    void clearIntermediateData() noexcept override;

protected:
    /// The stage that votes.
    virtual processor::RetrievalResult houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider) = 0;

private:
    typedef attr::HoughLinesExtractionParams Extraction;

    const Extraction& extraction() const;
    bool isMeasured() const;
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

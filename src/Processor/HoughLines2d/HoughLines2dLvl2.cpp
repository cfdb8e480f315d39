#include "Processor/HoughLines2d/HoughLines2dLvl2.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/HoughLines2dImg/HoughLines2dImgLvl2.h"
#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "siblings/GlobalMeasure/CumulativeHistogramData.h"
#include "siblings/GlobalMeasure/Processor/HistogramMsr/HistogramMsr2dLvl2.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsr2dLvl2.h"

#include <algorithm>
#include <cmath>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_DEFINE_PROCESSOR(HoughLines2dLvl2)

bool HoughLines2dLvl2::isMeasured() const
{
    const int type = value<InOptHoughLinesExtractionParams>()->get<HoughLinesExtractionParams::ThresholdType>();
    return type == eHLTT_Ratio || type == eHLTT_Quantile;
}

processor::RetrievalResult HoughLines2dLvl2::retrieveProvider(const core::BasePriority& priority,
                                                              unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    const unsigned int last = isMeasured() ? 3 : 2;
    if (iterationNumber > last)
        return invalidIteration(last);
    if (iterationNumber == 0)
        return houghLines(priority, provider);
    if (iterationNumber == 1) {
        duplicateOutImgFirstRowsAtTheEndIfNecessary();
        if (isMeasured())
            return measure(priority, provider);
    }
    if (iterationNumber < last)
        return localExtrema(priority, provider);
    extractLines();
    return processor::eRRT_NoMoreProvider;
}

processor::RetrievalResult HoughLines2dLvl2::houghLines(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    return delegate<HoughLines2dImgLvl2>(priority, provider, same(attribute<InSubImg2d>()),
                                         sameIfSet(attribute<InOptHoughLinesImgParams>()), same(attribute<OutImg>()));
}

void HoughLines2dLvl2::duplicateOutImgFirstRowsAtTheEndIfNecessary()
{
    const HoughLinesImgParams& params = *value<InOptHoughLinesImgParams>();
    if (!isCyclic(params))
        return;
    image::BaseImage& out = *value<OutImg>();
    const unsigned long nbThetaBins = params.get<HoughLinesImgParams::NbThetaBins>();
    const unsigned long peakDist = value<InOptHoughLinesExtractionParams>()->get<HoughLinesExtractionParams::PeakDist>();
    // Where there are fewer angles than rows to add, rows that were added are repeated in turn.
    const unsigned long nbRows = std::min(nbThetaBins + 2 * peakDist, out.getSizeY());
    image::withSampleType(image::toDataType(out.getBufferType()), [&](auto zero) {
        typedef decltype(zero) Sample;
        for (unsigned long row = nbThetaBins; row < nbRows; ++row) {
            const Sample* const from = static_cast<const Sample*>(out.getLine(row - nbThetaBins));
            std::reverse_copy(from, from + out.getSizeX(), static_cast<Sample*>(out.accessLine(row)));
        }
    });
}

processor::RetrievalResult HoughLines2dLvl2::measure(const core::BasePriority& priority, processor::ProviderPtr& provider)
{
    if (value<InOptHoughLinesExtractionParams>()->get<HoughLinesExtractionParams::ThresholdType>() == eHLTT_Ratio) {
        m_stats = StatsResult::createNode();
        return delegate<glbmsr::StatsMsr2dLvl2>(priority, provider, same<InSubImg2d>(value<OutImg>()),
                                                same<OutStatsResult>(m_stats));
    }
    m_histogram = HistogramResult::createNode();
    return delegate<glbmsr::HistogramMsr2dLvl2>(priority, provider, same<InSubImg2d>(value<OutImg>()),
                                                same<OutHistogramResult>(m_histogram));
}

double HoughLines2dLvl2::getThreshold() const
{
    const HoughLinesExtractionParams& params = *value<InOptHoughLinesExtractionParams>();
    const double threshold = params.get<HoughLinesExtractionParams::Threshold>();
    switch (params.get<HoughLinesExtractionParams::ThresholdType>()) {
    case eHLTT_Ratio: return threshold * m_stats->get<StatsResult::Max>();
    case eHLTT_Quantile: return glbmsr::createCumulativeHistogramData(*m_histogram)->getQuantile(threshold * 100.0);
    default: return threshold;
    }
}

processor::RetrievalResult HoughLines2dLvl2::localExtrema(const core::BasePriority& priority,
                                                          processor::ProviderPtr& provider)
{
    const unsigned int peakDist = value<InOptHoughLinesExtractionParams>()->get<HoughLinesExtractionParams::PeakDist>();
    m_peaks = Pixels2d::createNode();
    return delegate<ExtractLocalExtrema2dLvl2>(
        priority, provider, same<InSubImg2d>(value<OutImg>()), same<InFeaturesDistX>(peakDist),
        same<InFeaturesDistY>(peakDist), same<InLocalExtremaConfig>(createLocalExtremaConfig(eLET_Maxima, getThreshold())),
        same<OutPixels2d>(m_peaks));
}

void HoughLines2dLvl2::extractLines()
{
    const HoughLinesImgParams& params = *value<InOptHoughLinesImgParams>();
    const image::BaseImage& plane = *value<InSubImg2d>();
    const unsigned long sizeX = plane.getSizeX(), sizeY = plane.getSizeY();
    const double rhoStep = params.get<HoughLinesImgParams::RhoStep>(), halfRho = halfRhoOf(sizeX, sizeY, rhoStep);
    const double thetaMin = params.get<HoughLinesImgParams::ThetaMin>(), thetaStep = thetaStepOf(params);
    const double nbThetaBins = params.get<HoughLinesImgParams::NbThetaBins>();
    const double peakDist = value<InOptHoughLinesExtractionParams>()->get<HoughLinesExtractionParams::PeakDist>();
    const double centreX = static_cast<double>(sizeX / 2), centreY = static_cast<double>(sizeY / 2);
    const double lastColumn = static_cast<double>(value<OutImg>()->getSizeX() - 1);
    const bool cyclic = isCyclic(params);

    auto& lines = value<OutHoughLines2dPpties>()->access<HoughLines2dPpties::Coll>().accessNodes();
    lines.clear();
    for (std::size_t i = 0; i < m_peaks->size(); ++i) {
        const Pixel2d& peak = (*m_peaks)[i];
        double x = peak.get<Pixel2d::X>(), y = peak.get<Pixel2d::Y>();
        // A window of as many rows as there are angles, away from the first and last rows, sees each line once.
        if (cyclic && (y < peakDist || y >= peakDist + nbThetaBins))
            continue;
        if (cyclic && y >= nbThetaBins) {
            y -= nbThetaBins;
            x = lastColumn - x;
        }
        double theta = y * thetaStep + thetaMin;
        if (cyclic)
            theta = std::fmod(theta, M_PI);
        double sine, cosine;
        sincos(theta, &sine, &cosine);
        const double rho = rhoStep * (x - halfRho) + centreX * cosine + centreY * sine;
        lines.push_back(HoughLine2dPpties::createNode(rho, theta, peak.get<Pixel2d::Value>()));
    }
}

void HoughLines2dLvl2::clearIntermediateData() noexcept
{
    m_stats.reset();
    m_histogram.reset();
    m_peaks.reset();
}

}}}  // namespace orvik::imaproc::fd

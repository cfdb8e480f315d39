#pragma once

// The bodies of HoughLinesSearchLvl2, included by the unit of each class that derives from it.

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"
#include "Processor/HoughLines2dImg/HoughLinesGeometry.h"
#include "Processor/HoughLinesSearch.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "siblings/GlobalMeasure/CumulativeHistogramData.h"
#include "siblings/GlobalMeasure/Processor/HistogramMsr/HistogramMsr2dLvl2.h"
#include "siblings/GlobalMeasure/Processor/StatsMsr/StatsMsr2dLvl2.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace orvik { namespace imaproc { namespace fd {

template<class D, class In, class Params, class Out, class... A>
const attr::HoughLinesExtractionParams& HoughLinesSearchLvl2<D, In, Params, Out, A...>::extraction() const
{
    return *this->template value<attr::InOptHoughLinesExtractionParams>();
}

template<class D, class In, class Params, class Out, class... A>
bool HoughLinesSearchLvl2<D, In, Params, Out, A...>::isMeasured() const
{
    const int type = extraction().template get<Extraction::ThresholdType>();
    return type == attr::eHLTT_Ratio || type == attr::eHLTT_Quantile;
}

template<class D, class In, class Params, class Out, class... A>
processor::RetrievalResult HoughLinesSearchLvl2<D, In, Params, Out, A...>::retrieveProvider(
    const core::BasePriority& priority, unsigned int iterationNumber, processor::ProviderPtr& provider)
{
    const unsigned int last = isMeasured() ? 3 : 2;
    if (iterationNumber > last)
        return this->invalidIteration(last);
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

template<class D, class In, class Params, class Out, class... A>
void HoughLinesSearchLvl2<D, In, Params, Out, A...>::duplicateOutImgFirstRowsAtTheEndIfNecessary()
{
    const auto& params = *this->template value<Params>();
    if (!isCyclic(params))
        return;
    image::BaseImage& out = *this->template value<Out>();
    const unsigned long nbThetaBins = nbAnglesOf(params);
    const unsigned long peakDist = extraction().template get<Extraction::PeakDist>();
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

template<class D, class In, class Params, class Out, class... A>
processor::RetrievalResult HoughLinesSearchLvl2<D, In, Params, Out, A...>::measure(const core::BasePriority& priority,
                                                                                   processor::ProviderPtr& provider)
{
    if (extraction().template get<Extraction::ThresholdType>() == attr::eHLTT_Ratio) {
        m_stats = attr::StatsResult::createNode();
        return delegate<glbmsr::StatsMsr2dLvl2>(priority, provider, same<attr::InSubImg2d>(this->template value<Out>()),
                                                same<attr::OutStatsResult>(m_stats));
    }
    m_histogram = attr::HistogramResult::createNode();
    return delegate<glbmsr::HistogramMsr2dLvl2>(priority, provider, same<attr::InSubImg2d>(this->template value<Out>()),
                                                same<attr::OutHistogramResult>(m_histogram));
}

template<class D, class In, class Params, class Out, class... A>
double HoughLinesSearchLvl2<D, In, Params, Out, A...>::getThreshold() const
{
    const double threshold = extraction().template get<Extraction::Threshold>();
    switch (extraction().template get<Extraction::ThresholdType>()) {
    case attr::eHLTT_Ratio: return threshold * m_stats->get<attr::StatsResult::Max>();
    case attr::eHLTT_Quantile: return glbmsr::createCumulativeHistogramData(*m_histogram)->getQuantile(threshold * 100.0);
    default: return threshold;
    }
}

template<class D, class In, class Params, class Out, class... A>
processor::RetrievalResult HoughLinesSearchLvl2<D, In, Params, Out, A...>::localExtrema(const core::BasePriority& priority,
                                                                                        processor::ProviderPtr& provider)
{
    const unsigned int peakDist = extraction().template get<Extraction::PeakDist>();
    m_peaks = attr::Pixels2d::createNode();
    return delegate<ExtractLocalExtrema2dLvl2>(
        priority, provider, same<attr::InSubImg2d>(this->template value<Out>()), same<attr::InFeaturesDistX>(peakDist),
        same<attr::InFeaturesDistY>(peakDist),
        same<attr::InLocalExtremaConfig>(attr::createLocalExtremaConfig(attr::eLET_Maxima, getThreshold())),
        same<attr::OutPixels2d>(m_peaks));
}

template<class D, class In, class Params, class Out, class... A>
void HoughLinesSearchLvl2<D, In, Params, Out, A...>::extractLines()
{
    const auto& params = *this->template value<Params>();
    typedef std::decay_t<decltype(params)> Record;
    const image::BaseImage& plane = *this->template value<In>();
    const unsigned long sizeX = plane.getSizeX(), sizeY = plane.getSizeY();
    const double rhoStep = params.template get<typename Record::RhoStep>(), halfRho = halfRhoOf(sizeX, sizeY, rhoStep);
    const double thetaMin = params.template get<typename Record::ThetaMin>(), thetaStep = thetaStepOf(params);
    const double nbThetaBins = static_cast<double>(nbAnglesOf(params));
    const double peakDist = extraction().template get<Extraction::PeakDist>();
    const double centreX = static_cast<double>(sizeX / 2), centreY = static_cast<double>(sizeY / 2);
    const double lastColumn = static_cast<double>(this->template value<Out>()->getSizeX() - 1);
    const bool cyclic = isCyclic(params);

    auto& lines =
        this->template value<attr::OutHoughLines2dPpties>()->template access<attr::HoughLines2dPpties::Coll>().accessNodes();
    lines.clear();
    for (std::size_t i = 0; i < m_peaks->size(); ++i) {
        const attr::Pixel2d& peak = (*m_peaks)[i];
        double x = peak.get<attr::Pixel2d::X>(), y = peak.get<attr::Pixel2d::Y>();
        // A window of as many rows as there are angles, away from the first and last rows, sees each line once.
        if (cyclic && (y < peakDist || y >= peakDist + nbThetaBins))
            continue;
        if (cyclic && y >= nbThetaBins) {
            y -= nbThetaBins;
            x = lastColumn - x;
        }
        double theta = y * thetaStep + thetaMin;
        if (cyclic)
            theta = std::fmod(theta, periodOf(params));
        double sine, cosine;
        sincos(theta, &sine, &cosine);
        const double rho = rhoStep * (x - halfRho) + centreX * cosine + centreY * sine;
        lines.push_back(attr::HoughLine2dPpties::createNode(rho, theta, peak.get<attr::Pixel2d::Value>()));
    }
}

template<class D, class In, class Params, class Out, class... A>
void HoughLinesSearchLvl2<D, In, Params, Out, A...>::clearIntermediateData() noexcept
{
    m_stats.reset();
    m_histogram.reset();
    m_peaks.reset();
}

}}}  // namespace orvik::imaproc::fd

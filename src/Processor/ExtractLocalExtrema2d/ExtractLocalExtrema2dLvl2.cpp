#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl2.h"

#include "Processor/ExtractLocalExtrema2d/ExtractLocalExtrema2dLvl3.h"

#include "frame/attr/ImageAttributes.h"
#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/imaproc/Stages.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/util/NumericLimits.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace fd {

using namespace attr;

ORVIK_REGISTER_PROCESSOR(ExtractLocalExtrema2dLvl2)

ExtractLocalExtrema2dLvl2::ExtractLocalExtrema2dLvl2()
    : m_results(boost::make_shared<std::map<processor::ElementsRange, boost::shared_ptr<Pixels2d> > >())
{
}

ExtractLocalExtrema2dLvl2::~ExtractLocalExtrema2dLvl2() = default;

processor::RulePtr ExtractLocalExtrema2dLvl2::createRule() const
{
    return processor::none();
}

processor::RetrievalResult ExtractLocalExtrema2dLvl2::retrieveProvider(const core::BasePriority& priority,
                                                                       processor::ProviderPtr& provider)
{
    // There is nothing to see beyond the image, which hinders nothing.
    const image::BaseImage& plane = *value<InSubImg2d>();
    const unsigned long distX = std::min<unsigned long>(value<InFeaturesDistX>(), plane.getSizeX());
    const unsigned long distY = std::min<unsigned long>(value<InFeaturesDistY>(), plane.getSizeY());
    return dispatch<ExtractLocalExtrema2dLvl3>(priority, provider, resultOfEach<OutPixels2d>(m_results),
                                               same<InLocalExtremaConfig>(value<InLocalExtremaConfig>()),
                                               stripsWithMargins<InKnlYStrip2d>(value<InSubImg2d>(), distX, distY));
}

namespace {

/// A pixel's value and its place among all: sorted instead of the pixels, which lie scattered in memory.
template<class Value, class Place>
struct Ranked
{
    Value value;
    Place place;
};

/// The first `count` pixels in order. Equal values stand as the selection leaves them, which depends on nothing but the
/// values in scan order.
template<class Value, class Place>
Pixels2d::Coll::Nodes select(Pixels2d::Coll::Nodes& pixels, unsigned long count, bool lowest)
{
    typedef Ranked<Value, Place> Entry;
    std::vector<Entry> order;
    order.reserve(pixels.size());
    for (const boost::shared_ptr<Pixel2d>& pixel : pixels)
        order.push_back({static_cast<Value>(pixel->get<Pixel2d::Value>()), static_cast<Place>(order.size())});
    const auto end = order.begin() + static_cast<long>(count);
    if (lowest)
        std::partial_sort(order.begin(), end, order.end(), [](const Entry& a, const Entry& b) { return a.value < b.value; });
    else
        std::partial_sort(order.begin(), end, order.end(), [](const Entry& a, const Entry& b) { return a.value > b.value; });
    Pixels2d::Coll::Nodes selected;
    selected.reserve(count);
    for (auto entry = order.begin(); entry != end; ++entry)
        selected.push_back(std::move(pixels[entry->place]));
    return selected;
}

}  // namespace

processor::StageResult ExtractLocalExtrema2dLvl2::postProcess()
{
    Pixels2d::Coll::Nodes pixels;
    for (const auto& strip : *m_results) {
        Pixels2d::Coll::Nodes& nodes = strip.second->access<Pixels2d::Coll>().accessNodes();
        std::move(nodes.begin(), nodes.end(), std::back_inserter(pixels));
    }
    const LocalExtremaConfig& config = *value<InLocalExtremaConfig>();
    const unsigned long count = std::min<unsigned long>(pixels.size(), config.get<LocalExtremaConfig::MaxNbExtrema>());
    const bool lowest = isMinima(config.get<LocalExtremaConfig::LocalExtremumType>());
    // Floats hold all values but those of 32-bit integers; half as much memory is sorted faster.
    const eDataType type = image::toDataType(value<InSubImg2d>()->getBufferType());
    const bool small = type != eDT_Int32 && type != eDT_UInt32 && pixels.size() <= NumericLimits<unsigned int>::s_max;
    Pixels2d::Coll::Nodes selected =
        small ? select<float, unsigned int>(pixels, count, lowest) : select<double, unsigned long>(pixels, count, lowest);
    value<OutPixels2d>()->access<Pixels2d::Coll>().accessNodes().swap(selected);
    return processor::StageResult(processor::eSRT_Done);
}

void ExtractLocalExtrema2dLvl2::clearIntermediateData() noexcept
{
    m_results->clear();
}

}}}  // namespace orvik::imaproc::fd

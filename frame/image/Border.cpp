#include "frame/image/Border.h"

#include "frame/util/NumericLimits.h"

#include <algorithm>
#include <type_traits>

namespace orvik { namespace image {

namespace {

template<class T>
T borderSample(const BorderPolicy& policy)
{
    if (policy.getType() == eBT_Min)
        return NumericLimits<T>::s_min;
    if (policy.getType() == eBT_Max)
        return NumericLimits<T>::s_max;
    if constexpr (std::is_floating_point<T>::value) {
        return static_cast<T>(policy.getValue());
    } else {
        const double value = policy.getValue();
        if (!(value > static_cast<double>(NumericLimits<T>::s_min)))
            return NumericLimits<T>::s_min;
        return value < static_cast<double>(NumericLimits<T>::s_max) ? static_cast<T>(value) : NumericLimits<T>::s_max;
    }
}

}  // namespace

void fillBorder(const BorderPolicy& policy, eDataType type, void* samples, unsigned long n)
{
    if (policy.getType() == eBT_Nearest)
        return;
    withSampleType(type, [&](auto zero) {
        typedef decltype(zero) T;
        std::fill_n(static_cast<T*>(samples), n, borderSample<T>(policy));
    });
}

void repeatEdges(eDataType type, void* samples, unsigned long first, unsigned long sizeX, unsigned long n)
{
    withSampleType(type, [&](auto zero) {
        typedef decltype(zero) T;
        T* const line = static_cast<T*>(samples);
        std::fill(line, line + first, line[first]);
        std::fill(line + first + sizeX, line + n, line[first + sizeX - 1]);
    });
}

}}  // namespace orvik::image

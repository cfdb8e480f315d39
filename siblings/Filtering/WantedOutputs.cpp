#include "siblings/Filtering/WantedOutputs.h"

#include "frame/imaproc/ImageInitializers.h"
#include "frame/util/Arena.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace filter {

namespace {

class OutputOfNoneGiven : public BasePromoteUnaryImageInitializer
{
public:
    explicit OutputOfNoneGiven(const std::vector<WeakImage>& others) : m_others(others) {}
    BoolResult initAttribute() override
    {
        const bool given = std::any_of(m_others.begin(), m_others.end(), [](const WeakImage& each) {
            const boost::shared_ptr<const BaseImageAttribute> other = each.lock();
            return other && other->hasValue() && !other->isMadeByInitializer();
        });
        return given ? success() : BasePromoteUnaryImageInitializer::initAttribute();
    }

private:
    const std::vector<WeakImage> m_others;
};

}  // namespace

processor::InitializerPtr outputOfNoneGiven(const boost::shared_ptr<BaseOutputImageAttribute>& out,
                                            const std::vector<WeakImage>& others,
                                            const boost::shared_ptr<BaseInputImageAttribute>& in)
{
    const boost::shared_ptr<OutputOfNoneGiven> initializer = makeTogether<OutputOfNoneGiven>(others);
    initializer->init(out, in, ePUT_Real);
    return initializer;
}

}}}  // namespace orvik::imaproc::filter

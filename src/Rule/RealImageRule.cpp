#include "Rule/RealImageRule.h"

#include "frame/util/Arena.h"

namespace orvik { namespace imaproc { namespace fd {

namespace {

class RealImage : public BaseCustomCheckedImageProperty
{
public:
    explicit RealImage(const WeakImage& in)
    {
        initBase(in);
        enableCheck(eCIP_BufferType);
    }
    image::eImageBufferType getImageBufferType() const override { return image::eIBT_Real32; }
};

}  // namespace

processor::RulePtr isReal(const WeakImage& in, const WeakImage& out)
{
    return customImageProperty(out, makeTogether<RealImage>(in));
}

}}}  // namespace orvik::imaproc::fd

#pragma once

#include "frame/image/Border.h"
#include "frame/imaproc/ImageAttributes.h"
#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace imaproc {

class ORVIK_API BaseImageParser : public processor::BaseDataParser
{
public:
    ~BaseImageParser() override;
};

/// Knows the type of its samples, so that a kernel for another one is refused instead of misreading them.
class ORVIK_API BaseStripParser : public BaseImageParser
{
public:
    ~BaseStripParser() override;
    eDataType getDataType() const { return m_dataType; }

protected:
    BaseStripParser(eDataType dataType);

    const eDataType m_dataType;
    const unsigned long m_sampleSize;
};

/// Strips without margins. A run points into the image's own line where that has as much slack as the kernel may use,
/// else to a scratch line.
class ORVIK_API PlainStripParser : public BaseStripParser
{
public:
    ~PlainStripParser() override;
    void init(const boost::shared_ptr<image::BaseImageFragment>& strip) { m_strip = strip; }
    void clear() override { m_strip.reset(); }
    void start(unsigned long granularity) override;
    unsigned long getNbLines() const override { return m_strip->getNbLines(); }
    void beginLine(unsigned long line) override;
    void beginRun(unsigned long firstColumn, unsigned long nbData) override;
    void endRun(unsigned long firstColumn, unsigned long nbData) override;

    /// The samples of the current run, whatever their type.
    void* accessSamples() const { return m_current; }

protected:
    /// `wholeLines`: one run per line; otherwise whole blocks first, then the rest.
    PlainStripParser(eDataType dataType, bool writable, bool wholeLines);

private:
    void* m_current;
    boost::shared_ptr<image::BaseImageFragment> m_strip;
    image::TypedOwnBuffer m_scratch;
    const bool m_writable;
    const bool m_wholeLines;
    bool m_inPlace;
    unsigned long m_granularity;
    char* m_line;
};

/// The lines around the current one, in buffers of their own in which the border stands where there is no image: those of a
/// window of elements along the axis of the strip, lines of a plane or whole slices of a volume.
class ORVIK_API KernelStripParser : public BaseStripParser
{
public:
    ~KernelStripParser() override;
    void init(const boost::shared_ptr<image::BaseImageFragment>& strip) { m_strip = strip; }
    void clear() override { m_strip.reset(); }
    const image::BaseImageFragment& getStrip() const { return *m_strip; }
    /// 0 unless set.
    void setBorder(const image::BorderPolicy& policy) { m_border = policy; }
    /// Before the strip is begun: lines are copied when they are asked for, each over the one before, instead of the whole
    /// window ahead. For kernels that look at few lines of high windows; they reach any row of an element then.
    void readOnDemand() { m_onDemand = true; }
    /// Asks memory for `nbSamples` columns of the line that takes this one's place in the element that comes next. A kernel
    /// that works its way along the line calls it on the way, so that the line is there when it is copied; asked for all at
    /// once it would be waited for.
    void prefetchNext(unsigned long column, unsigned long nbSamples) const
    {
        if (!m_nextLine)
            return;
        const unsigned long cacheLine = 64;
        const char* const from = static_cast<const char*>(m_nextLine) + column * m_sampleSize;
        for (unsigned long i = 0; i < nbSamples * m_sampleSize; i += cacheLine)
            __builtin_prefetch(from + i);
    }

    void start(unsigned long granularity) override;
    unsigned long getNbLines() const override { return m_strip->getNbLines(); }
    void beginLine(unsigned long line) override;
    void beginRun(unsigned long, unsigned long) override {}
    void endRun(unsigned long, unsigned long) override {}

protected:
    explicit KernelStripParser(eDataType dataType);
    /// Line of element `element` of the window that lies `row` lines from the first one of the margin.
    void* bufferLine(unsigned long element, unsigned long row) const
    {
        return m_onDemand ? readLine(element, row) : m_elements.getDataPtr(element, (m_row + row) * m_lineSize);
    }

    boost::shared_ptr<image::BaseImageFragment> m_strip;

private:
    void load(unsigned long fragment, long element);
    void* readLine(unsigned long element, unsigned long row) const;
    /// Copies a line of the image, or the border, between margins of the border.
    void copyLine(long element, long line, void* to) const;

    image::BorderPolicy m_border;
    image::FragHybridBuffer m_elements;
    bool m_onDemand;
    unsigned long m_lineSize;
    long m_firstElement;     // of the window
    unsigned long m_row;     // line of the strip's current element, 0 in planes
    const void* m_nextLine;  // null at the end of the strip or image
};

// The parsers as kernels see them: by sample type and kind of attribute.

template<class T, class Attr>
using ParsedSample = typename std::conditional<Attr::s_writable, T, const T>::type;

/// `accessBuffer()`: the samples of the current run.
template<class T, class Attr, bool WholeLines>
class TypedPlainParser : public PlainStripParser
{
public:
    TypedPlainParser() : PlainStripParser(DataTypeOf<T>::value, Attr::s_writable, WholeLines) {}
    ParsedSample<T, Attr>* accessBuffer() const { return static_cast<T*>(accessSamples()); }
};

template<class T, class Attr>
using RawYStrip2dParser = TypedPlainParser<T, Attr, false>;
template<class T, class Attr>
using RawZStrip3dParser = TypedPlainParser<T, Attr, false>;
/// One run per line.
template<class T, class Attr>
using LineYStrip2dParser = TypedPlainParser<T, Attr, true>;
template<class T, class Attr>
using LineZStrip3dParser = TypedPlainParser<T, Attr, true>;

template<class Attr>
class BaseLineYStrip2dWithKernelParser : public KernelStripParser
{
public:
    typename Attr::StorageType getImageYStrip2dWithKernel() const
    {
        return boost::static_pointer_cast<typename Attr::Strip>(m_strip);
    }
    void setBorder2dPolicy(const image::Border2dPolicy& policy) { setBorder(policy); }

protected:
    using KernelStripParser::KernelStripParser;
};

template<class T, class Attr>
class LineYStrip2dWithKernelParser : public BaseLineYStrip2dWithKernelParser<Attr>
{
public:
    LineYStrip2dWithKernelParser() : BaseLineYStrip2dWithKernelParser<Attr>(DataTypeOf<T>::value) {}
    /// Line `line` of the kernel, 0 the first of the margin. It starts with the left margin and is readable one sample
    /// past the run, rounded up to the granularity, and the right margin.
    const T* accessBuffer(unsigned long line) const { return static_cast<const T*>(this->bufferLine(line, 0)); }
};

template<class Attr>
class BaseLineZStrip3dWithKernelParser : public KernelStripParser
{
public:
    typename Attr::StorageType getImageZStrip3dWithKernel() const
    {
        return boost::static_pointer_cast<typename Attr::Strip>(m_strip);
    }
    void setBorder3dPolicy(const image::Border3dPolicy& policy) { setBorder(policy); }

protected:
    using KernelStripParser::KernelStripParser;
};

template<class T, class Attr>
class LineZStrip3dWithKernelParser : public BaseLineZStrip3dWithKernelParser<Attr>
{
public:
    LineZStrip3dWithKernelParser() : BaseLineZStrip3dWithKernelParser<Attr>(DataTypeOf<T>::value) {}
    /// Row `row` of the kernel in its slice `slice`, each 0 the first of the margin; otherwise as in planes.
    const T* accessBuffer(unsigned long slice, unsigned long row) const
    {
        return static_cast<const T*>(this->bufferLine(slice, row));
    }
};

/// Whole blocks first, then the rest: for kernels that take each sample for itself.
struct ORVIK_API RawStripParserMode
{
    static constexpr bool s_wholeLines = false;
};
/// One run per line: for kernels that look at neighbours.
struct ORVIK_API LineStripParserMode
{
    static constexpr bool s_wholeLines = true;
};

/// The class of parser for a mode, a sample type and a kind of attribute.
template<class Mode, class T, class Attr, bool WithKernel = Attr::Strip::s_withKernel,
         image::eStripAxis Axis = Attr::Strip::s_axis>
struct StripParserClass
{
    typedef TypedPlainParser<T, Attr, Mode::s_wholeLines> type;
};
template<class T, class Attr>
struct StripParserClass<LineStripParserMode, T, Attr, true, image::eSA_Y>
{
    typedef LineYStrip2dWithKernelParser<T, Attr> type;
};
template<class T, class Attr>
struct StripParserClass<LineStripParserMode, T, Attr, true, image::eSA_Z>
{
    typedef LineZStrip3dWithKernelParser<T, Attr> type;
};

/// Makes the parser of an attribute's sample type; empty when that is no type.
template<class Mode, class Attr, class StorageAttr>
struct ORVIK_API StripParserInfo
{
    static boost::shared_ptr<processor::BaseDataParser> createParser(const boost::shared_ptr<Attr>& attribute);
};

}}  // namespace orvik::imaproc

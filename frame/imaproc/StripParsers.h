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

protected:
    /// `wholeLines`: one run per line; otherwise whole blocks first, then the rest.
    PlainStripParser(eDataType dataType, bool writable, bool wholeLines);

    void* m_current;

private:
    boost::shared_ptr<image::BaseImageFragment> m_strip;
    image::TypedOwnBuffer m_scratch;
    const bool m_writable;
    const bool m_wholeLines;
    bool m_inPlace;
    unsigned long m_granularity;
    char* m_line;
};

/// Lines around the current one, in buffers of their own in which the border stands where there is no image.
class ORVIK_API KernelYStrip2dParser : public BaseStripParser
{
public:
    ~KernelYStrip2dParser() override;
    void init(const boost::shared_ptr<image::InputImageYStrip2dWithKernel>& strip) { m_strip = strip; }
    void clear() override { m_strip.reset(); }
    const boost::shared_ptr<image::InputImageYStrip2dWithKernel>& getImageYStrip2dWithKernel() const { return m_strip; }
    /// Asks memory for `nbSamples` columns of the line that comes next. A kernel that works its way along the line calls
    /// it on the way, so that the line is there when it is copied; asked for all at once it would be waited for.
    void prefetchNext(unsigned long column, unsigned long nbSamples) const
    {
        const unsigned long cacheLine = 64;
        const char* const from = static_cast<const char*>(m_nextLine) + column * m_sampleSize;
        for (unsigned long i = 0; m_nextLine && i < nbSamples * m_sampleSize; i += cacheLine)
            __builtin_prefetch(from + i);
    }
    /// 0 unless set.
    void setBorder2dPolicy(const image::Border2dPolicy& policy) { m_border = policy; }

    void start(unsigned long granularity) override;
    unsigned long getNbLines() const override { return m_strip->getNbLines(); }
    void beginLine(unsigned long line) override;
    void beginRun(unsigned long, unsigned long) override {}
    void endRun(unsigned long, unsigned long) override {}

protected:
    explicit KernelYStrip2dParser(eDataType dataType);
    void* bufferLine(unsigned long line) const { return m_lines.getDataPtr(line); }

private:
    void load(unsigned long fragment, long y);

    boost::shared_ptr<image::InputImageYStrip2dWithKernel> m_strip;
    image::Border2dPolicy m_border;
    image::FragHybridBuffer m_lines;
    unsigned long m_lineSize;
    const void* m_nextLine;  // null at the end of the strip or image
};

/// Slices around the current one, whole, in buffers of their own in which the border stands where there is no image.
class ORVIK_API KernelZStrip3dParser : public BaseStripParser
{
public:
    ~KernelZStrip3dParser() override;
    void init(const boost::shared_ptr<image::InputImageZStrip3dWithKernel>& strip) { m_strip = strip; }
    void clear() override { m_strip.reset(); }
    const boost::shared_ptr<image::InputImageZStrip3dWithKernel>& getImageZStrip3dWithKernel() const { return m_strip; }
    /// 0 unless set.
    void setBorder3dPolicy(const image::Border3dPolicy& policy) { m_border = policy; }

    void start(unsigned long granularity) override;
    unsigned long getNbLines() const override { return m_strip->getNbLines(); }
    void beginLine(unsigned long line) override;
    void beginRun(unsigned long, unsigned long) override {}
    void endRun(unsigned long, unsigned long) override {}

protected:
    explicit KernelZStrip3dParser(eDataType dataType);
    void* bufferLine(unsigned long slice, unsigned long row) const
    {
        return m_slices.getDataPtr(slice, (m_y + row) * m_lineSize);
    }

private:
    void load(unsigned long fragment, long z);

    boost::shared_ptr<image::InputImageZStrip3dWithKernel> m_strip;
    image::Border3dPolicy m_border;
    image::FragHybridBuffer m_slices;
    unsigned long m_lineSize;
    unsigned long m_y;
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
    ParsedSample<T, Attr>* accessBuffer() const { return static_cast<T*>(m_current); }
};

template<class T, class Attr>
class RawYStrip2dParser : public TypedPlainParser<T, Attr, false>
{
};
template<class T, class Attr>
class RawZStrip3dParser : public TypedPlainParser<T, Attr, false>
{
};
/// One run per line.
template<class T, class Attr>
class LineYStrip2dParser : public TypedPlainParser<T, Attr, true>
{
};
template<class T, class Attr>
class LineZStrip3dParser : public TypedPlainParser<T, Attr, true>
{
};

template<class Attr>
class BaseLineYStrip2dWithKernelParser : public KernelYStrip2dParser
{
protected:
    using KernelYStrip2dParser::KernelYStrip2dParser;
};

template<class T, class Attr>
class LineYStrip2dWithKernelParser : public BaseLineYStrip2dWithKernelParser<Attr>
{
public:
    LineYStrip2dWithKernelParser() : BaseLineYStrip2dWithKernelParser<Attr>(DataTypeOf<T>::value) {}
    /// Line `line` of the kernel, 0 the first of the margin. It starts with the left margin and is readable one sample
    /// past the run, rounded up to the granularity, and the right margin.
    const T* accessBuffer(unsigned long line) const { return static_cast<const T*>(this->bufferLine(line)); }
};

template<class Attr>
class BaseLineZStrip3dWithKernelParser : public KernelZStrip3dParser
{
protected:
    using KernelZStrip3dParser::KernelZStrip3dParser;
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
};
/// One run per line: for kernels that look at neighbours.
struct ORVIK_API LineStripParserMode
{
};

/// The class of parser for a mode and a kind of attribute.
template<class Mode, class T, class Attr>
struct StripParserClass;
#define ORVIK_PARSER_CLASS(Mode, Attr, Parser) \
    template<class T> \
    struct StripParserClass<Mode, T, Attr> \
    { \
        typedef Parser<T, Attr> type; \
    }
ORVIK_PARSER_CLASS(RawStripParserMode, BaseInputYStrip2dAttribute, RawYStrip2dParser);
ORVIK_PARSER_CLASS(RawStripParserMode, BaseOutputYStrip2dAttribute, RawYStrip2dParser);
ORVIK_PARSER_CLASS(RawStripParserMode, BaseInputZStrip3dAttribute, RawZStrip3dParser);
ORVIK_PARSER_CLASS(RawStripParserMode, BaseOutputZStrip3dAttribute, RawZStrip3dParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseInputYStrip2dAttribute, LineYStrip2dParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseOutputYStrip2dAttribute, LineYStrip2dParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseInputZStrip3dAttribute, LineZStrip3dParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseOutputZStrip3dAttribute, LineZStrip3dParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseInputYStrip2dWithKernelAttribute, LineYStrip2dWithKernelParser);
ORVIK_PARSER_CLASS(LineStripParserMode, BaseInputZStrip3dWithKernelAttribute, LineZStrip3dWithKernelParser);
#undef ORVIK_PARSER_CLASS

/// Makes the parser of an attribute's sample type; empty when that is no type.
template<class Mode, class Attr, class StorageAttr>
struct ORVIK_API StripParserInfo
{
    static boost::shared_ptr<processor::BaseDataParser> createParser(const boost::shared_ptr<Attr>& attribute);
};

}}  // namespace orvik::imaproc

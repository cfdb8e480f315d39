#pragma once

#include "frame/util/ProcessingResult.h"
#include "frame/util/Export.h"

namespace orvik { namespace processor {

/// Hands the data of one attribute to a kernel, line by line and run by run.
class ORVIK_API BaseDataParser
{
public:
    BaseDataParser();
    virtual ~BaseDataParser();

    /// Releases the data.
    virtual void clear() = 0;

    // Samples in the up to three runs of a line; their sum is the line's length.
    unsigned long getNbInitData() const { return m_nbInit; }
    unsigned long getNbMainData() const { return m_nbMain; }
    unsigned long getNbFinalData() const { return m_nbFinal; }

    // --- the frame's own part: calls come in this order, lines from 0 on

    /// `granularity`: a power of two of samples, to a multiple of which kernels may read and write runs.
    virtual void start(unsigned long granularity) = 0;
    virtual unsigned long getNbLines() const = 0;
    virtual void beginLine(unsigned long line) = 0;
    virtual void beginRun(unsigned long firstColumn, unsigned long nbData) = 0;
    virtual void endRun(unsigned long firstColumn, unsigned long nbData) = 0;

protected:
    void setRuns(unsigned long nbInit, unsigned long nbMain, unsigned long nbFinal);

private:
    unsigned long m_nbInit, m_nbMain, m_nbFinal;
};

inline unsigned long alignedCount(unsigned long nbData, unsigned long granularity)
{
    return (nbData + granularity - 1) & ~(granularity - 1);
}

}}  // namespace orvik::processor

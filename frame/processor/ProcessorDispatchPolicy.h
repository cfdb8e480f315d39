#pragma once

#include "frame/util/Export.h"

namespace orvik { namespace processor {

/// How a processor's work is spread. There is one default: as even as the threads allow.
class ProcessorDispatchPolicy
{
public:
    ProcessorDispatchPolicy() : m_initialised(false) {}
    void initDefault() { m_initialised = true; }
    bool isInitialised() const { return m_initialised; }

private:
    bool m_initialised;
};

}}  // namespace orvik::processor

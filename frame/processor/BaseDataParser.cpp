#include "frame/processor/BaseDataParser.h"

namespace orvik { namespace processor {

BaseDataParser::BaseDataParser() : m_nbInit(0), m_nbMain(0), m_nbFinal(0) {}
BaseDataParser::~BaseDataParser() = default;

void BaseDataParser::setRuns(unsigned long nbInit, unsigned long nbMain, unsigned long nbFinal)
{
    m_nbInit = nbInit;
    m_nbMain = nbMain;
    m_nbFinal = nbFinal;
}

}}  // namespace orvik::processor

#pragma once

#include <boost/thread/mutex.hpp>

#include <vector>

namespace orvik { namespace imaproc { namespace fd {

/// A lock for each row of an accumulator.
class HoughLinesRowsMutexColl
{
public:
    explicit HoughLinesRowsMutexColl(unsigned long nbRows) : m_mutexes(nbRows) {}
    // Called by kernels of all instruction sets, so the lock's own code must stay outside of them.
    /// @throws boost::lock_error when the system refuses.
    void lock(unsigned long row);
    void unlock(unsigned long row);

private:
    std::vector<boost::mutex> m_mutexes;
};

}}}  // namespace orvik::imaproc::fd

#pragma once

namespace orvik::bench {

/// Seconds that all threads of this process have waited for mutexes since `restart`.
struct LockMeter
{
    static void restart();
    static double waited();
};

}  // namespace orvik::bench

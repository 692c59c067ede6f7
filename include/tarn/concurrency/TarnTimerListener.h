/// \file
/// The interface through which a timer calls its receivers.
#pragma once

#include "tarn/TarnExport.h"

class TarnTimer;

/// The receiver of a timer's firings, implemented by applications. It holds nothing: the timer
/// keeps only its address, so a listener must stay valid while the timer can fire, and it is
/// called on the thread that fires (the timer's own thread in its loop). The destructor is not
/// virtual and therefore protected: a listener is never deleted through this interface.
class TARN_API TarnTimerListener {
public:
    /// Makes a listener; there is nothing to set.
    TarnTimerListener() = default;
    /// Copies nothing.
    TarnTimerListener(const TarnTimerListener &) {}
    /// Copies nothing and returns this listener.
    TarnTimerListener &operator=(const TarnTimerListener &) { return *this; }

    /// Receives one firing of `timer`.
    virtual void timerElapsed(TarnTimer &timer) = 0;

protected:
    /// Destroys nothing of its own; only a derived listener is ever destroyed.
    ~TarnTimerListener() = default;
};

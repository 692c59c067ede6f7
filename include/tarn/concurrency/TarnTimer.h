/// \file
/// The periodic timer that calls its listeners from a thread of its own.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/concurrency/TarnThread.h"
#include "tarn/concurrency/TarnTimerListener.h"
#include "tarn/foundation/TarnVector.h"

#include <atomic>
#include <string>

/// A periodic timer on a thread of its own: it sleeps in ticks of 10 milliseconds and then calls
/// all its listeners in order of addition, until it is told to stop. It reads no clock, so the
/// period is coarse and drifts. The timer keeps the listeners' addresses only and never deletes
/// a listener. Listeners are added before `start` or from a listener; `stopNoWait` is the one
/// stop a listener may call. The stop flag and the interval are the only fields shared with the
/// timer's thread. Not copyable. Nothing is reported: a timer whose thread cannot be created
/// simply never fires.
class TARN_API TarnTimer : public TarnThread {
public:
    /// Makes an idle timer with no listeners.
    TarnTimer();
    /// A copy would share the thread but not the stop request, so `stop` on it could wait for
    /// good: timers are not copied.
    TarnTimer(const TarnTimer &) = delete;
    /// Not assignable, for the same reason.
    TarnTimer &operator=(const TarnTimer &) = delete;
    /// Deletes the cells that hold the listeners' addresses, never the listeners. Does not stop
    /// the thread: stop the timer first.
    ~TarnTimer() override;

    using TarnObject::isa;
    /// Returns true for "TarnTimer" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnTimer".
    std::string getClassName() const override;

    /// Starts firing every `interval` milliseconds, rounded down to a multiple of 10 (below 20,
    /// and negative, mean one tick of 10 milliseconds), at `priority`. The first firing comes one
    /// period after the start. While the timer is still running, only clears a stop request that
    /// the loop has not seen yet; the loop keeps its old period.
    void start(int interval, TarnThread::Priority priority);

    /// Asks the loop to end and waits without limit until the thread has ended. Must not be
    /// called from a listener (it would wait for itself); on a timer never started it only sets
    /// the request.
    void stop();
    /// Asks the loop to end and returns at once; the loop ends before its next tick. The stop
    /// for a listener.
    void stopNoWait();

    /// Adds `listener` at the end of the order. The same listener added twice is called twice per
    /// firing. Not while the timer's thread may fire, except from a listener.
    void addListener(TarnTimerListener &listener);

    /// Fires once on the calling thread: calls every listener in order; a listener added during
    /// the firing is called in it too, after the earlier ones.
    void elapse();

    /// The timer's loop, on its own thread: a period of ticks, then `elapse`, until stopped. The
    /// stop request is tested before every tick only.
    void run() override;

    /// Destroys this timer through its virtual destructor; it must have been made with new.
    void dispose();

private:
    // Set by stop and stopNoWait, cleared by start, read by the loop before every tick.
    std::atomic<bool> stopRequested;
    // The period in milliseconds. Atomic because a start while the loop runs writes it while
    // the loop may be reading it for its tick count.
    std::atomic<int> interval;
    // One heap cell per addition, holding the listener's address; the cells are owned here.
    TarnVector<TarnTimerListener *> listeners;
};

/* The auto-reset event, and so the semaphore, with three threads: one waits as long as it takes,
 * one waits with a time that may run out at any moment, one signals and polls.
 *
 * Shown: each signal ends one wait; a wait that runs out swallows none; a signal belongs to whoever
 * waited before it, and the signalling thread's own poll does not get it; nobody sleeps while there
 * is a signal. With DESTROY: a thread that was released may destroy the event at once.
 * CONTROL 1: a waiter whose time is up leaves although it was granted. A signal is lost.
 * CONTROL 2: whoever lets the list go wakes one of those who sleep for it. Somebody sleeps for ever.
 * CONTROL 3: a signal adds to the count and wakes. The poll gets it.
 * CONTROL 4: the grant comes before the list is let go. The event is touched after its end.
 */
#include "wait_queue.pml"
#if CONTROL == 4
#define DESTROY
#endif

inline GrantOne(me) {
    Lock(me);
    first = (listLength > 0 -> list[0] : NOBODY);
    if
    :: first != NOBODY -> atomic { RemoveAt(0); effective++ }
    :: else -> skip
    fi;
#if CONTROL == 3
    Unlock((first != NOBODY -> 1 : 0));
    if
    :: first != NOBODY -> taken--; Grant(first)
    :: else -> skip
    fi
#elif CONTROL == 4
    if
    :: first != NOBODY -> Grant(first)
    :: else -> skip
    fi;
    Unlock(0)
#else
    Unlock(0);
    if
    :: first != NOBODY -> Grant(first)
    :: else -> skip
    fi
#endif
}

inline Signal(me) {
    do
    :: atomic {
           !locked && !lockWanted && !waiters ->
           TOUCH;
           effective = effective + 1 - count;
           count = 1;
           break
       }
    :: locked || lockWanted || waiters ->
        GrantOne(me);
        if
        :: first != NOBODY -> break
        :: else -> skip
        fi
    od
}

byte finished = 0;

proctype Patient() {
    byte first, index, old;
    bool done, wake, timedOut;
    Wait(0, 1, false);
#ifdef DESTROY
    destroyed = true;
#endif
    finished++
}

proctype Hasty() {
    byte first, index, old;
    bool done, wake, timedOut;
    Wait(1, 1, true);
    finished++
}

proctype Signaller() {
    byte first, index, old;
    bool done, wake, timedOut;
    bool patientWaits = listed[0];
    Signal(2);
#ifndef DESTROY
    atomic {
        if
        :: count > 0 ->
            count--;
            taken++;
            assert(!patientWaits)
        :: else -> skip
        fi
    };
    Signal(2);
#endif
    finished++
}

#ifdef DESTROY
#define ALL 2
#else
#define ALL 3
#endif

/* When nothing moves any more: whoever sleeps waits for a signal that does not exist. */
proctype AtTheEnd() {
    byte first, index, old;
    bool done, wake, timedOut;
    timeout;
    if
    :: finished < ALL ->
        assert(finished == ALL - 1 && listed[0] && count == 0 && !locked);
        Signal(3);
        finished == ALL
    :: else -> skip
    fi;
    assert(effective == taken + count)
}

init {
    atomic {
        run Patient();
#ifndef DESTROY
        run Hasty();
#endif
        run Signaller();
        run AtTheEnd()
    }
}

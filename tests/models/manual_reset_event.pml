/* The manual-reset event and the gate, with three threads: two wait, one of them with a time that
 * may run out at any moment; one sets and resets at once, and later sets for good.
 *
 * Shown: all who wait when it is set go on, also if it is reset at once; nobody sleeps while it is
 * set.
 * CONTROL 1: a waiter whose time is up leaves although it was granted. It reports a time-out for a
 * signal that came before.
 * CONTROL 2: whoever lets the list go wakes one of those who sleep for it. Somebody sleeps for ever.
 * CONTROL 3: those who wait are woken to look at the event again. The reset holds them.
 */
#include "wait_queue.pml"

/* Set when the waiter with a time was taken off the list to be released. */
bool owedToHasty = false;

inline GrantAll(me) {
    Lock(me);
    atomic {
        last = listLength;
        index = 0;
        do
        :: index < last ->
           batch[index] = list[index];
           listed[list[index]] = false;
           owedToHasty = owedToHasty || list[index] == 1;
           index++
        :: else -> break
        od;
        index = 0;
        listLength = 0
    };
    Unlock(1);
    do
    :: index < last -> first = batch[index]; Grant(first); index++
    :: else -> break
    od;
    index = 0
}

inline Set(me) {
    do
    :: atomic { !locked && !lockWanted && !waiters -> TOUCH; count = 1; break }
    :: locked || lockWanted || waiters -> GrantAll(me); break
    od
}

inline Reset() {
    atomic {
        TOUCH;
        count = 0
    }
}

byte finished = 0;
bool patientIsThrough = false;

#if CONTROL == 3
#define WAIT(me, timed)                            \
    do                                             \
    :: Wait(me, 0, timed);                         \
       if                                          \
       :: timedOut -> break                        \
       :: !timedOut && count > 0 -> break          \
       :: else -> skip                             \
       fi                                          \
    od
#else
#define WAIT(me, timed) Wait(me, 0, timed)
#endif

proctype Patient() {
    byte first, index, old;
    bool done, wake, timedOut;
    WAIT(0, false);
    patientIsThrough = true;
    finished++
}

proctype Hasty() {
    byte first, index, old;
    bool done, wake, timedOut;
    WAIT(1, true);
    assert(done || !owedToHasty);
    finished++
}

proctype Setter() {
    byte first, index, old, last;
    byte batch[THREADS];
    bool done, wake, timedOut;
    bool patientWaits = listed[0];
    Set(2);
    Reset();
    if
    :: patientWaits -> patientIsThrough /* released by this set, for there is no other one yet */
    :: else -> skip
    fi;
    Set(2);
    finished++
}

/* Nobody is left behind. */
proctype AtTheEnd() {
    timeout;
    assert(finished == 3)
}

init {
    atomic {
        run Patient();
        run Hasty();
        run Setter();
        run AtTheEnd()
    }
}

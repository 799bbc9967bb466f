/* The lock word of src/platform/posix/critical_section_native.h, with three threads.
 *
 * Shown: one thread at a time is inside, and nobody sleeps for ever.
 * CONTROL 1: a thread that slept takes the lock as if nobody else slept. Somebody sleeps for ever.
 * CONTROL 2: the release does not wake. Somebody sleeps for ever.
 * CONTROL 3: the lock is seen to be free, and then taken. Two are inside.
 */
#ifndef CONTROL
#define CONTROL 0
#endif
#define THREADS 3
#define ROUNDS 2

byte state = 0; /* 0 free, 1 held, 2 held and somebody may sleep */
bool asleep[THREADS];
byte inside = 0;

/* The kernel compares and puts to sleep in one step. It may also wake for no reason. */
inline FutexWait(me, expected) {
    atomic {
        if
        :: state == expected -> asleep[me] = true
        :: else -> skip
        fi
    }
    if
    :: !asleep[me]
    :: asleep[me] && spurious > 0 -> atomic { spurious--; asleep[me] = false }
    fi
}

inline FutexWakeOne() {
    atomic {
        if
        :: asleep[0] -> asleep[0] = false
        :: asleep[1] -> asleep[1] = false
        :: asleep[2] -> asleep[2] = false
        :: !asleep[0] && !asleep[1] && !asleep[2] -> skip
        fi
    }
}

inline TakeIfFree() {
#if CONTROL == 3
    old = state;
    if
    :: old == 0 -> state = 1
    :: else -> skip
    fi
#else
    atomic {
        old = state;
        if
        :: old == 0 -> state = 1
        :: else -> skip
        fi
    }
#endif
}

inline Enter(me) {
    TakeIfFree();
    do
    :: old == 0 -> break
    :: else ->
#if CONTROL == 1
        atomic {
            old = state;
            state = (slept && old == 0 -> 1 : 2)
        }
#else
        atomic {
            old = state;
            state = 2
        }
#endif
        if
        :: old != 0 ->
            FutexWait(me, 2);
            slept = true
        :: else -> skip
        fi
    od;
    slept = false
}

inline Leave() {
    atomic {
        old = state;
        state = 0
    }
#if CONTROL != 2
    if
    :: old == 2 -> FutexWakeOne()
    :: else -> skip
    fi
#endif
}

proctype Thread(byte me) {
    byte old;
    byte round = 0;
    byte spurious = 0;
    bool slept = false;
    if
    :: me == 0 -> spurious = 1
    :: else -> skip
    fi;
    do
    :: round < ROUNDS ->
        Enter(me);
        inside++;
        assert(inside == 1);
        inside--;
        Leave();
        round++
    :: else -> break
    od
}

init {
    atomic {
        run Thread(0);
        run Thread(1);
        run Thread(2)
    }
}

/* The named semaphore: three threads wait, of which one may be killed in its sleep, and two post, of
 * which one may be killed on the way. The kernel's queue is what it is: a set of sleepers which one
 * joins if the word is as expected, and from which a wake-up takes one.
 *
 * Shown: as many go on as were posted, and nobody sleeps over a count.
 * CONTROL 1: a sleeper does not set the arrival. Somebody sleeps over a count.
 * CONTROL 2: a post does not change the epoch. Somebody sleeps over a count.
 * CONTROL 3: a post adds to the count at once and wakes. One post ends two waits.
 */
#ifndef CONTROL
#define CONTROL 0
#endif

byte count = 0;
bool sleepers = false;
bool arrival = false;

byte asleep = 0;  /* the kernel's queue: all that sleep there are alike */
byte granted = 0; /* woken, and not yet on their way */
byte posted = 0;
byte taken = 0;

/* Which processes have seen the word as it is. The epoch is what makes that one question: as long as
 * nobody posts to a sleeper, the word does not come back to an earlier value that matters. */
bool current[5];

#if CONTROL == 2
#define UNCHANGED (count == c && sleepers == s && arrival == a)
#else
#define UNCHANGED current[me]
#endif
#define SEE c = count; s = sleepers; a = arrival; current[me] = true
#define CHANGED current[0] = false; current[1] = false; current[2] = false; current[3] = false; \
    current[4] = false
#define FORGET c = 0; s = false; a = false; current[me] = false

proctype Waiter(byte me; bool mayDie) {
    byte c;
    bool s, a;
again:
    atomic { SEE }
    if
    :: c > 0 ->
        atomic {
            if
            :: UNCHANGED -> count = count - 1; taken++; CHANGED; goto end
            :: else -> goto again
            fi
        }
    :: else -> skip
    fi;
    atomic {
        if
        :: !(UNCHANGED) -> goto again
        :: else -> skip
        fi;
        if
        :: s && (a || CONTROL == 1) -> skip
        :: else ->
            CHANGED;
            sleepers = true;
#if CONTROL != 1
            arrival = true;
#endif
            SEE
        fi
    }
    atomic {
        if
        :: UNCHANGED -> asleep++; FORGET
        :: else -> goto again
        fi
    }
endAsleep:
    if
    :: atomic { granted > 0 -> granted--; taken++ }
    :: atomic { mayDie && asleep > 0 -> asleep--; mayDie = false }
    fi;
end:
    atomic { FORGET }
}

proctype Poster(byte me; bool mayDie) {
    byte c;
    bool s, a;
again:
    atomic { SEE }
    if
    :: !s || CONTROL == 3 ->
        atomic {
            if
            :: UNCHANGED -> count = count + 1; posted++; CHANGED
            :: else -> goto again
            fi
        }
#if CONTROL == 3
        atomic {
            if
            :: asleep > 0 -> asleep--; granted++
            :: else -> skip
            fi
        }
#endif
        goto end
    :: else -> skip
    fi;
    atomic {
        if
        :: UNCHANGED -> arrival = false; CHANGED; SEE
        :: else -> goto again
        fi
    }
    if
    :: mayDie -> goto end
    :: true
    fi;
    atomic {
        if
        :: asleep > 0 -> asleep--; granted++; posted++; goto end
        :: else -> skip
        fi
    }
    if
    :: mayDie -> goto end
    :: true
    fi;
    atomic {
        if
        :: UNCHANGED -> sleepers = false; count = count + 1; posted++; CHANGED
        :: else -> goto again
        fi
    }
end:
    atomic { FORGET }
}

init {
    atomic {
        run Waiter(0, false);
        run Waiter(1, false);
        run Waiter(2, true);
        run Poster(3, false);
        run Poster(4, true)
    }
    /* All that can happen has happened. */
    timeout ->
    assert(posted == taken + count);
    assert(granted == 0);
    assert(asleep == 0 || count == 0)
}

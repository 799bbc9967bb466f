/* The queue of src/platform/posix/waiting/wait_queue.h, for the models of the objects on it.
 *
 * An atomic block stands for one read-modify-write of the word or of a waiter's state, or for one
 * system call. The list is only written by the holder of the lock.
 */
#ifndef CONTROL
#define CONTROL 0
#endif
#define THREADS 4 /* three, and the one that looks at the end */
#define NOBODY 255

#define WAITING 0
#define GRANTED 1

/* The word. */
bool locked = false;
bool lockWanted = false;
bool waiters = false;
byte count = 0;
#define WORD (locked + 2 * lockWanted + 4 * waiters + 8 * count)

/* The list, and the waiters' records. */
byte list[THREADS];
byte listLength = 0;
byte waiterState[THREADS];
bool listed[THREADS];

/* Who sleeps in the kernel: on the word, on its own state. */
bool sleepsOnWord[THREADS];
bool sleepsOnState[THREADS];

/* What is only watched. */
bool destroyed = false;
byte effective = 0; /* signals that added something or released somebody */
byte taken = 0;     /* waits that ended with a signal */

#define TOUCH assert(!destroyed)

/* Each thread declares: byte first, index, old, next; bool done, wake, timedOut. */

inline AwaitLock(me) {
    atomic {
        TOUCH;
        if
        :: locked -> lockWanted = true; old = WORD
        :: else -> old = NOBODY
        fi
    };
    if
    :: old != NOBODY ->
        atomic {
            if
            :: WORD == old -> sleepsOnWord[me] = true
            :: else -> skip
            fi
        };
        !sleepsOnWord[me]
    :: else -> skip
    fi
}

inline Lock(me) {
    do
    :: atomic { !locked -> TOUCH; locked = true; break }
    :: locked -> AwaitLock(me)
    od
}

inline Unlock(add) {
    atomic {
        TOUCH;
        wake = lockWanted;
        locked = false;
        lockWanted = false;
        waiters = (listLength > 0);
        count = (add > count -> add : count)
    };
    if
    :: wake ->
        atomic {
#if CONTROL == 2
            /* One of those who sleep for the lock. */
            if
            :: sleepsOnWord[0] -> sleepsOnWord[0] = false
            :: sleepsOnWord[1] -> sleepsOnWord[1] = false
            :: sleepsOnWord[2] -> sleepsOnWord[2] = false
            :: else -> skip
            fi
#else
            sleepsOnWord[0] = false;
            sleepsOnWord[1] = false;
            sleepsOnWord[2] = false;
            sleepsOnWord[3] = false
#endif
        }
    :: else -> skip
    fi
}

/* The list is the holder of the lock's alone, so what is done to it is one step. */
inline RemoveAt(position) {
    listed[list[position]] = false;
    index = position;
    do
    :: index + 1 < listLength -> list[index] = list[index + 1]; index++
    :: else -> break
    od;
    listLength--;
    list[listLength] = 0;
    index = 0
}

inline Remove(me) {
    atomic {
        index = 0;
        do
        :: list[index] != me -> index++
        :: else -> break
        od;
        RemoveAt(index)
    }
}

inline Grant(waiter) {
    waiterState[waiter] = GRANTED;
    sleepsOnState[waiter] = false /* by address: the record may be gone */
}

/* done is set if there was a count. */
inline Join(me, takes) {
    done = false;
    waiterState[me] = WAITING;
    do
    :: atomic { count > 0 -> TOUCH; count = count - takes; taken++; done = true; break }
    :: atomic { count == 0 && !locked -> TOUCH; locked = true; break }
    :: count == 0 && locked -> AwaitLock(me)
    od;
    if
    :: !done ->
        d_step {
            list[listLength] = me;
            listLength++;
            listed[me] = true
        };
        Unlock(0)
    :: else -> skip
    fi
}

inline SleepUntilGranted(me, timed) {
    timedOut = false;
    do
    :: waiterState[me] == GRANTED -> break
    :: else ->
        atomic {
            if
            :: waiterState[me] == WAITING -> sleepsOnState[me] = true
            :: else -> skip
            fi
        };
        if
        :: !sleepsOnState[me]
        :: atomic { sleepsOnState[me] && timed -> sleepsOnState[me] = false; timedOut = true; break }
        fi
    od;
    if
    :: waiterState[me] == GRANTED -> timedOut = false
    :: else -> skip
    fi
}

/* done is set if the wait ended with a signal. */
inline Wait(me, takes, timed) {
    Join(me, takes);
    if
    :: !done ->
        SleepUntilGranted(me, timed);
        if
        :: timedOut ->
#if CONTROL == 1
            /* It does not look whether it is still on the list. */
            Lock(me);
            if
            :: listed[me] -> Remove(me)
            :: else -> skip
            fi;
            Unlock(0)
#else
            Lock(me);
            done = !listed[me];
            if
            :: listed[me] -> Remove(me)
            :: else -> skip
            fi;
            Unlock(0);
            if
            :: done -> SleepUntilGranted(me, false)
            :: else -> skip
            fi
#endif
        :: else -> done = true
        fi;
        if
        :: done -> taken++
        :: else -> skip
        fi
    :: else -> skip
    fi
}

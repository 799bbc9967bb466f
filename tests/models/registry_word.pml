/* The word of src/platform/posix/registry_word.h: two writers, one of whom may be killed at any
 * step, and two readers who remember. The second reader takes no locks: he finds what is in place,
 * the two halves of the store one by one.
 *
 * Shown: no read gives a value that is older than what somebody knew when it began, be it that the
 * write was acknowledged or that another read gave it; and none that is half of one write and half
 * of another.
 * CONTROL 1: a writer ends his mark behind the lock, whatever the word is by then.
 * CONTROL 2: a reader looks once only.
 * CONTROL 3: the mark begins behind the change.
 * CONTROL 4: what a killed writer left counts as a number at rest.
 */
#ifndef CONTROL
#define CONTROL 0
#endif
#define READS 2

byte word = 2;
byte value = 0;     /* what a reader with locks finds: what was committed last */
byte half[2];       /* what stands in place */
byte known = 0;     /* the newest value that anybody knows of */
bool locked = false;

#if CONTROL == 4
#define AT_REST(number) true
#else
#define AT_REST(number) (number % 2 == 0)
#endif
#if CONTROL == 2
#define IS_STILL(number) true
#else
#define IS_STILL(number) (word == number)
#endif

/* The kernel lets go of a dead process's lock. */
#define MAY_DIE                                                  \
    if                                                           \
    :: mortal -> locked = (holds -> false : locked); goto dead \
    :: skip                                                      \
    fi

inline MarkBegin() {
    d_step {
        mine = word + 1 + word % 2;
        word = mine
    }
}

inline MarkEnd() {
#if CONTROL == 1
    word = mine + 1
#else
    d_step {
        if
        :: word == mine -> word = mine + 1
        :: else -> skip
        fi
    }
#endif
}

inline Learn(number) {
    d_step {
        if
        :: known < number -> known = number
        :: else -> skip
        fi
    }
}

/* Whoever takes the lock first puts right what a killed writer left. */
proctype Writer(bool mortal) {
    byte mine, own;
    bool holds;
    atomic { !locked -> locked = true; holds = true };
    MAY_DIE;
#if CONTROL != 3
    MarkBegin();
    MAY_DIE;
#endif
    atomic { own = value + 1; half[0] = own };
    MAY_DIE;
    atomic { half[1] = own; value = own }; /* the commit */
    MAY_DIE;
#if CONTROL == 3
    MarkBegin();
    MAY_DIE;
#endif
#if CONTROL == 1
    d_step { locked = false; holds = false };
    MAY_DIE;
    MarkEnd();
#else
    MarkEnd();
    MAY_DIE;
    d_step { locked = false; holds = false };
#endif
    MAY_DIE;
    Learn(own);
dead:
    skip
}

proctype Reader(bool takesLocks) {
    byte due, before, answer, other, remembered, number, read;
    do
    :: read == READS -> break
    :: else ->
        due = known;
        before = word;
        if
        :: number == before && AT_REST(before) -> answer = remembered
        :: else ->
            if
            :: takesLocks -> answer = value; other = answer
            :: else -> answer = half[0]; other = half[1]
            fi;
            if
            :: AT_REST(before) && IS_STILL(before) -> number = before; remembered = answer
            :: else -> if
                       :: takesLocks -> skip
                       :: else -> goto again
                       fi
            fi;
            assert(answer == other)
        fi;
        assert(answer >= due);
        Learn(answer);
again:
        read++
    od
}

init {
    atomic {
        run Writer(true);
        run Writer(false);
        run Reader(true);
        run Reader(false)
    }
}

/* Says where a program's expectation failed, and counts. */
#ifndef TESTS_CLIENT_EXPECT_H
#define TESTS_CLIENT_EXPECT_H

#include <stdio.h>

static int failures = 0;

#define EXPECT(condition)                                                  \
    do {                                                                   \
        if (!(condition)) {                                                \
            printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            ++failures;                                                    \
        }                                                                  \
    } while (0)

#endif

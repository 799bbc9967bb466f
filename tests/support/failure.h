// What a failing call leaves beside its result: errno as it was, and in programs that hold the
// library's objects its number in the last error.
#ifndef TESTS_SUPPORT_FAILURE_H
#define TESTS_SUPPORT_FAILURE_H

#include <gtest/gtest.h>

#include <cerrno>

#include "support/known_differences.h"

// For a scope in which nothing but the library is called. The other platform's runtime has an errno
// of its own.
class ErrnoStays {
  public:
    ErrnoStays() { errno = kOdd; }
    ~ErrnoStays() { EXPECT_TRUE(kOnReferencePlatform || errno == kOdd) << "errno is " << errno; }
    ErrnoStays(const ErrnoStays&) = delete;
    ErrnoStays& operator=(const ErrnoStays&) = delete;

  private:
    static constexpr int kOdd = 4711;
};

#ifdef QX_BUILDING_LIBRARY
#include "platform/errors.h"

constexpr u32 kNoNumber = 815;

// The number that a call leaves; kNoNumber if it leaves none.
template <typename Call>
u32 LastErrorOf(Call call) {
    platform::SetLastError(kNoNumber);
    const ErrnoStays errnoStays;
    call();
    return platform::GetLastError();
}
#endif

#endif

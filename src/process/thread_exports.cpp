#include <qxcore/thread.h>

#include "platform/threads.h"

void QXSleep(uint32_t ms) {
    platform::Sleep(ms);
}

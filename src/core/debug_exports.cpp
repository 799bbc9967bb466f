#include <qxcore/debug.h>

#include "platform/threads.h"

void QXDebugBreak() {
    platform::DebugBreak();
}

// The message box of an alert.
#ifndef QX_CORE_ALERT_MESSAGE_H
#define QX_CORE_ALERT_MESSAGE_H

#include <qxcore/base.h>

#include "platform/alerts.h"

// Shows the box and waits for the answer, platform::kAnswerNone if nobody gives one. Throws
// EQXCoreException if the debug mutex fails.
u32 ShowAlertMessage(const wchar* caption, const wchar* text);

// The session that gets the box: the caller's own if it has a desktop, and for a service that of
// the console, or with nobody there that of the first user.
u32 ChooseAlertSession(u32 own, platform::ConsoleSessionFunction consoleSession,
                       bool (*servicesHaveOwnSession)() noexcept);

#endif

/**
 * @file
 * w64qxcore6: the whole exported interface.
 *
 * C11 and C++. Include this header, or the single family that you need from qxcore/.
 */
#ifndef QXCORE_H
#define QXCORE_H

#include <qxcore/atomic.h>
#include <qxcore/base.h>
#include <qxcore/bytes.h>
#include <qxcore/component.h>
#include <qxcore/condition.h>
#include <qxcore/converter.h>
#include <qxcore/debug.h>
#include <qxcore/event.h>
#include <qxcore/file.h>
#include <qxcore/guid.h>
#include <qxcore/host.h>
#include <qxcore/line_file.h>
#include <qxcore/locale.h>
#include <qxcore/lockstats.h>
#include <qxcore/memory.h>
#include <qxcore/module.h>
#include <qxcore/mutex.h>
#include <qxcore/named_semaphore.h>
#include <qxcore/option.h>
#include <qxcore/process.h>
#include <qxcore/registry.h>
#include <qxcore/result.h>
#include <qxcore/rwlock.h>
#include <qxcore/security.h>
#include <qxcore/semaphore.h>
#include <qxcore/shared_mem.h>
#include <qxcore/string.h>
#include <qxcore/system.h>
#include <qxcore/thread.h>
#include <qxcore/time.h>
#include <qxcore/transform.h>
#include <qxcore/unknown.h>

#endif

/**
 * @file
 * Figures of the system, and the user's name.
 *
 * Any thread may call any function here.
 */
#ifndef QXCORE_SYSTEM_H
#define QXCORE_SYSTEM_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/** What QXGetSystemInfo fills; in brackets what a field holds on Linux. */
typedef struct QXSystemInfoRecord {
    /** Bytes of memory [of the machine, whatever a container may use]. */
    uint64_t totalPhysicalMemory;
    /** Bytes that can be had without swapping [the kernel's own estimate]. */
    uint64_t availablePhysicalMemory;
    /** Bytes of the process's address space [less where a limit is set]. */
    uint64_t totalVirtualMemory;
    /** Bytes of it that are not in use. */
    uint64_t availableVirtualMemory;
    /** What the address of a mapping is a multiple of, in bytes [the size of a page]. */
    uint32_t allocationGranularity;
    /** Bytes of a page. */
    uint32_t pageSize;
    /** 8664 for an x86 of 64 bits, 586 for one of 32, 0 for others. */
    uint16_t processorType;
    /** The processor's family [x86; 0 for others]. */
    uint16_t processorLevel;
    /** The processor's model in the high byte, its stepping in the low one [x86; 0 for others]. */
    uint16_t processorRevision;
    /** Processors in use, the low 16 bits of their number. */
    uint16_t numberOfProcessors;
    /** 2 on Windows [4]. */
    uint16_t platformId;
    /** 0. */
    uint16_t reservedZero;
    /** The system's version [the kernel's]. */
    uint16_t majorVersion;
    /** The second number of the version. */
    uint16_t minorVersion;
    /** The build [the third number of the kernel's version]. */
    uint16_t buildNumber;
} QXSystemInfoRecord;

/**
 * Reports memory, processors and the system's version.
 *
 * The record is written field by field; the two bytes behind the last one stay as they are.
 *
 * @param info  a whole record, not null.
 * @param size  not used.
 * @return QX_S_OK; what the system's failure to tell its version maps to: the last five fields are
 *         then as they were.
 */
QX_API QXResult QXGetSystemInfo(QXSystemInfoRecord* info, uint32_t size);

/**
 * Copies the name of the user in whose name the process acts. On Linux a user without a password
 * entry is named by the number.
 *
 * @param buffer  receives the name and its terminator; left alone on failure.
 * @param size    16-bit units of the buffer.
 * @return QX_S_OK; QX_E_FAIL: the buffer is too short; what another failure of the system maps to.
 */
QX_API QXResult QXGetUserName(wchar* buffer, uint32_t size);

QX_END_DECLS

#endif

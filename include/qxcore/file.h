/**
 * @file
 * Files and directories.
 *
 * Paths are terminated wide text; `/` and `\` both separate. On Linux a path is UTF-8 on disk; a
 * byte that is no UTF-8 is the unit U+DC00 and its value, and a `\` in a name U+DC5C, so that each
 * name that a listing shows can be opened and deleted.
 *
 * Any thread may call any function here. Two threads that share a handle share its position.
 * Nothing is buffered. Failures of the system map as in QXResultFromNative: QX_E_NOTFOUND for what
 * is not there, QX_E_ACCESSDENIED for what is not allowed, QX_E_HANDLE for a handle that is none,
 * QX_E_FAIL for most others. "Or the system's failure" means any of these.
 *
 * On Linux a file lock binds only those who ask for locks, a file that is open can be deleted, and
 * openings do not exclude each other.
 */
#ifndef QXCORE_FILE_H
#define QXCORE_FILE_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/** @name Flags of QXFileOpen
 *  @{ */
/** Read access. */
#define QX_FILE_READ 0x80000000u
/** Write access. */
#define QX_FILE_WRITE 0x40000000u
/** A write returns when its bytes are on disk. */
#define QX_FILE_WRITETHROUGH 0x00001000u
/** With QX_FILE_CREATE: the file must not be there. Alone, or with QX_FILE_TRUNCATE alone, it is
 * refused. */
#define QX_FILE_EXCLUSIVE 0x00000400u
/** Empties the file. Without QX_FILE_CREATE it must be there, and needs write access. */
#define QX_FILE_TRUNCATE 0x00000200u
/** Makes the file if it is not there. */
#define QX_FILE_CREATE 0x00000100u
/** The file goes when it is closed. */
#define QX_FILE_TEMPORARY 0x00000040u
/** One move to the end behind the opening; no mode. */
#define QX_FILE_APPEND 0x00000008u
/** @} */

/**
 * Opens a file.
 *
 * @param path   the file; with QX_FILE_TEMPORARY it may be null or empty, and a new file in the
 *               directory for temporary files is opened, or else it is created.
 * @param flags  of the above.
 * @param mode   with QX_FILE_CREATE: without any of the bits 0222 a new file gets the read-only
 *               attribute.
 * @param file   receives the handle, which the caller closes with QXFileClose; the invalid one on
 *               failure.
 * @return QX_S_OK; 2: QX_FILE_CREATE without QX_FILE_EXCLUSIVE has made the file, so test for
 *         negative; QX_E_ACCESSDENIED also for a directory, and for writing to a file with the
 *         read-only attribute; QX_E_FAIL also for an exclusive creation of what is there; or the
 *         system's failure. If only the move of QX_FILE_APPEND fails, the handle is open all the
 *         same.
 */
QX_API QXResult QXFileOpen(const wchar* path, uint32_t flags, int32_t mode, QXHandle* file);

/**
 * Closes a handle, and unlocks what was locked through it.
 *
 * @param file  the handle of a file, of a pipe's end or of shared memory.
 * @return QX_S_OK, or the system's failure.
 */
QX_API QXResult QXFileClose(QXHandle file);

/**
 * Reads from the handle's position on.
 *
 * @param file    with read access.
 * @param buffer  receives the bytes.
 * @param count   bytes of the buffer.
 * @param done    receives the bytes that were read.
 * @return QX_S_OK; QX_E_EOF: there was nothing to read, or `count` is 0; QX_E_ACCESSDENIED without
 *         read access; QX_E_FAIL also at the end of a pipe; or the system's failure.
 */
QX_API QXResult QXFileRead(QXHandle file, void* buffer, uint32_t count, uint32_t* done);

/**
 * Writes at the handle's position.
 *
 * @param file    with write access.
 * @param buffer  the bytes.
 * @param count   their number.
 * @param done    receives the number of those written.
 * @return QX_S_OK, also when fewer were written than `count`; QX_E_ACCESSDENIED without write
 *         access; QX_E_FAIL also for a pipe that nobody reads, and on a full disk; or the system's
 *         failure.
 */
QX_API QXResult QXFileWrite(QXHandle file, const void* buffer, uint32_t count, uint32_t* done);

/**
 * Moves the handle's position, which must stay below 4 GiB.
 *
 * @param file      a file.
 * @param offset    bytes, also negative.
 * @param origin    from 0 the start, 1 the position, 2 the end.
 * @param position  receives the low 32 bits of the new position; all ones on failure.
 * @return QX_S_OK, or the system's failure: QX_E_FAIL for another origin, and for a place before
 *         the start or at 4 GiB or behind.
 */
QX_API QXResult QXFileSeek(QXHandle file, int32_t offset, uint32_t origin, uint32_t* position);

/** QXFileSeek without the limit of 4 GiB; on failure the position is 0. */
QX_API QXResult QXFileSeek64(QXHandle file, int64_t offset, uint32_t origin, uint64_t* position);

/**
 * Brings what was written to the disk.
 *
 * @param file  with write access.
 * @return QX_S_OK; QX_E_ACCESSDENIED without write access; or the system's failure.
 */
QX_API QXResult QXFileFlush(QXHandle file);

/**
 * Tells a file's size.
 *
 * @param file  a file.
 * @param size  receives the bytes.
 * @return QX_S_OK; QX_E_NOTIMPL on a system that is not of the NT line; or the system's failure.
 */
QX_API QXResult QXFileGetSize(QXHandle file, uint64_t* size);

/** @name Flags of QXFileLock
 *  @{ */
/** Others may have shared locks on the same bytes. */
#define QX_FILE_LOCK_SHARED 1u
/** Wait for those who have locked the bytes. */
#define QX_FILE_LOCK_WAIT 2u
/** @} */

/**
 * Locks bytes of a file for this handle, beyond its end too.
 *
 * @param file    the file.
 * @param offset  the first byte.
 * @param length  bytes; 0 locks nothing.
 * @param flags   of the above; 0 asks for an exclusive lock and does not wait.
 * @return QX_S_OK; QX_E_FAIL: some of the bytes are locked, on Linux also by the handle itself
 *         unless both locks are shared; or the system's failure.
 */
QX_API QXResult QXFileLock(QXHandle file, uint32_t offset, uint32_t length, uint32_t flags);

/**
 * Gives up one lock.
 *
 * @param file    the file.
 * @param offset  as it was locked.
 * @param length  as it was locked.
 * @return QX_S_OK; QX_E_FAIL: this is no lock of the handle; or the system's failure.
 */
QX_API QXResult QXFileUnlock(QXHandle file, uint32_t offset, uint32_t length);

/**
 * Deletes a file.
 *
 * @param path  the file.
 * @return QX_S_OK; QX_E_ACCESSDENIED also for a directory and for a file with the read-only
 *         attribute; or the system's failure.
 */
QX_API QXResult QXFileDelete(const wchar* path);

/**
 * Copies a file. A failure to read reads as the file's end. A copy that fails half-way is left as
 * it is.
 *
 * @param source       the file to read.
 * @param destination  the file to write.
 * @param flags        of QXFileOpen, for the destination; QX_FILE_WRITE is added.
 * @param mode         of QXFileOpen, for the destination.
 * @param file         null, or receives the destination's handle, positioned behind the copy: the
 *                     caller closes it. The invalid handle on failure.
 * @return QX_S_OK; what QXFileOpen gives for either file; QX_E_FAIL: not all was written;
 *         QX_E_OUTOFMEMORY: both files then stay open; or the system's failure of a write.
 */
QX_API QXResult QXFileCopy(const wchar* source, const wchar* destination, uint32_t flags,
                           int32_t mode, QXHandle* file);

/** What QXDirRead tells of an entry. Times are seconds since 1970; one that cannot be told is 0. */
typedef struct QXDirEntry {
    /** The entry's name. */
    wchar name[260];
    /** Empty. */
    wchar shortName[14];
    /** The bits 0444, with 0222 unless the entry has the read-only attribute, and 040000 for a
     * directory. */
    uint32_t mode;
    /** The high 32 bits of the size in bytes. */
    uint32_t sizeHigh;
    /** The low 32 bits. */
    uint32_t sizeLow;
    /** When it was made. */
    int64_t createTime;
    /** When it was last read. */
    int64_t accessTime;
    /** When it was last written. */
    int64_t writeTime;
} QXDirEntry;

/**
 * Opens the listing of a directory.
 *
 * @param path       the directory; wild cards are ordinary characters of its name. The empty path
 *                   is the root. A path that ends in ":" is the current directory of a drive.
 * @param directory  receives the handle, which the caller closes with QXDirClose; the invalid one
 *                   on failure. It belongs to one thread at a time.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; or the system's failure.
 */
QX_API QXResult QXDirOpen(const wchar* path, QXHandle* directory);

/**
 * Gives the next entry, "." and ".." included. Links are not followed.
 *
 * @param directory  the listing.
 * @param entry      receives it; left alone on failure.
 * @param reserved   not used.
 * @return QX_S_OK; QX_E_FAIL: there is no more, or the system's failure.
 */
QX_API QXResult QXDirRead(QXHandle directory, QXDirEntry* entry, uint32_t reserved);

/**
 * Closes a listing.
 *
 * @param directory  the listing.
 * @return QX_S_OK.
 */
QX_API QXResult QXDirClose(QXHandle directory);

/**
 * Makes a directory.
 *
 * @param path  its place, which must be there, and its name.
 * @param mode  not used.
 * @return QX_S_OK; QX_E_ALREADYEXISTS; or the system's failure.
 */
QX_API QXResult QXDirCreate(const wchar* path, uint32_t mode);

/**
 * Removes an empty directory.
 *
 * @param path  the directory.
 * @return QX_S_OK; QX_E_FAIL: it is not empty, or no directory; or the system's failure.
 */
QX_API QXResult QXDirRemove(const wchar* path);

/**
 * Makes a path whole: from the root on, without "." and "..". Works on letters alone; nothing need
 * be there.
 *
 * @param path      the path.
 * @param buffer    receives it; left alone when it is too small.
 * @param capacity  16-bit units of the buffer.
 * @return QX_S_OK, also when the buffer is too small; QX_E_FAIL for the empty path, or the system's
 *         failure.
 */
QX_API QXResult QXPathExpand(const wchar* path, wchar* buffer, uint32_t capacity);

QX_END_DECLS

#endif

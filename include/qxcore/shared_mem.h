/**
 * @file
 * Blocks of memory that processes share by name.
 *
 * Open a mapping, attach views of it, detach each view, close the mapping: handle and views do not
 * depend on each other, so a view outlives the handle. The mapping lives as long as any handle or
 * view of it is left in any process, and its name is as new after that, also when the last
 * processes were killed. Any thread may call any function here; what is in the memory is the
 * callers' to guard.
 *
 * On Linux a mapping is a file in /dev/shm. Any user may open any other's and spoil it: one who
 * shortens the file has everybody who touches the memory killed by SIGBUS. A child that was forked
 * shares its parent's handles and views, and each side gives them up for itself; a program that is
 * started inherits none.
 */
#ifndef QXCORE_SHARED_MEM_H
#define QXCORE_SHARED_MEM_H

#include <qxcore/file.h>
#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Opens a mapping, with flags of QXFileOpen: QX_FILE_READ, QX_FILE_WRITE, QX_FILE_CREATE,
 * QX_FILE_EXCLUSIVE, the last of which alone does what QX_FILE_CREATE does.
 *
 * With QX_FILE_CREATE or QX_FILE_EXCLUSIVE one that does not exist is created, of zeros, and the
 * handle has all access; otherwise it must exist, and the handle has read access for QX_FILE_READ
 * or none of the two access bits, and access for writing views alone for QX_FILE_WRITE. May block
 * while other processes open the same mapping, on Linux for ten seconds at most.
 *
 * @param name      narrow text of up to 507 wide units. Named semaphores have names of their own.
 * @param flags     QX_FILE_ flags.
 * @param reserved  not used.
 * @param size      bytes of a new mapping, which are rounded up to whole pages. Not 0 if the
 * mapping is to be created; without effect if it exists. On Linux the space is taken at once.
 * @param out       receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *                  QXSharedMemClose.
 * @return 2 if the mapping is new, and always if it was only to be opened; QX_S_OK if it was to be
 *         created and exists; QX_E_FAIL if it exists and the flags were both QX_FILE_CREATE and
 *         QX_FILE_EXCLUSIVE, for a name that is too long or no text, for a size of 0, and where
 *         there is no space for it; QX_E_NOTFOUND if there is none of that name; QX_E_HANDLE if the
 *         name stands for something else; QX_E_ACCESSDENIED; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXSharedMemOpen(const char* name, uint32_t flags, uint32_t reserved, uint32_t size,
                                QXHandle* out);

/**
 * Gives the handle of a mapping up. Its views stay.
 *
 * @param mapping  the handle, which is gone afterwards.
 * @return QX_S_OK; QX_E_HANDLE if it is no open handle.
 */
QX_API QXResult QXSharedMemClose(QXHandle mapping);

/**
 * Maps the whole of a mapping into the process.
 *
 * @param mapping  the handle.
 * @param flags    QX_FILE_READ, QX_FILE_WRITE or both, and no other bit. Any other word asks for no
 *                 access: the pages can be neither read nor written, or the call fails.
 * @param address  receives the view's address; unchanged on failure. The caller owns the view until
 *                 QXSharedMemDetach.
 * @return QX_S_OK; QX_E_ACCESSDENIED for access that the handle does not have; QX_E_HANDLE if it is
 *         no open handle of a mapping; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXSharedMemAttach(QXHandle mapping, uint32_t flags, void** address);

/**
 * Unmaps a view.
 *
 * @param address  what QXSharedMemAttach stored.
 * @return QX_S_OK; QX_E_FAIL if there is no view at the address; then nothing is unmapped.
 */
QX_API QXResult QXSharedMemDetach(void* address);

QX_END_DECLS

#endif

/**
 * @file
 * Child processes.
 *
 * The handle of a child is the platform's own. It stays open until the child's exit code was
 * collected, by one of the three functions that give it, or the child was detached: then it is
 * invalid. What still runs when the library goes runs on.
 *
 * Any thread may call any function here. While one waits in QXProcessJoinChild, the others block
 * where they would change the set of the children: QXProcessCreate once its child runs, the others
 * once the handle is closed.
 *
 * The exit code on Linux is 0 to 255, or 128 and the number of the signal that ended the child. It
 * is all ones for a child whose code the host program itself has collected, or lets the system
 * throw away by ignoring SIGCHLD. A child whose code is 259 counts as one that runs.
 *
 * A process that was forked has none of its parent's children: it can wait for their end, and gets
 * all ones as their code.
 */
#ifndef QXCORE_PROCESS_H
#define QXCORE_PROCESS_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Starts a program.
 *
 * The child inherits what is marked for inheritance: on Linux all descriptors that are not
 * close-on-exec, as those of this library are. There no signal is blocked or ignored in it.
 *
 * @param program          the file to run; it is not looked for. ".exe" is added unless the path
 * ends in just that, or has three units; on Linux the file without it is run if only that is there.
 * A relative path begins in this process's directory.
 * @param arguments        null, or what stands behind the path and a blank on the child's command
 * line. Nothing is quoted. On Linux the child gets the path as its first argument, and the rest is
 * split by blanks and double quotes as the reference platform's C runtime does it.
 * @param directory        the child's directory, or null for this process's own.
 * @param environment      the child's environment: pointers to texts `NAME=value` and a null
 * pointer behind them; the texts are sorted without regard to case. Null for this process's own.
 * @param reserved         not used.
 * @param standardHandles  null: the child has this process's own. Otherwise three handles, for
 * standard input, standard output and standard error. The invalid one asks for a pipe and is
 * replaced by its other end, to write to, to read from and to read from, which the caller closes
 * with QXFileClose. Any other is the child's to use, must be inheritable, though not on Linux, and
 * stays the caller's; a null one is no handle, the null device on Linux. When this fails, the ends
 * that are in the slots are closed.
 * @param process          receives the child's handle; the invalid one on failure.
 * @return QX_S_OK; QX_E_NOTFOUND: there is no such file; QX_E_ACCESSDENIED: it is a directory or
 * may not be run; QX_E_HANDLE, on Linux: a standard handle is none; QX_E_OUTOFMEMORY; QX_E_FAIL: it
 * is no program, there is no such directory, or the system refuses another pipe or process.
 */
QX_API QXResult QXProcessCreate(const wchar* program, const wchar* arguments,
                                const wchar* directory, const wchar* const* environment,
                                uint32_t reserved, QXHandle* standardHandles, QXHandle* process);

/**
 * Gives a child up: it runs on, and nobody asks for its exit code.
 *
 * @param process  a child.
 * @return QX_S_OK; QX_E_HANDLE for what is no open handle, and for that of QXProcessGetHandle.
 */
QX_API QXResult QXProcessDetach(QXHandle process);

/**
 * Collects a child's exit code if it has ended.
 *
 * @param process   a child; not valid any more on success.
 * @param exitCode  receives the code; left alone on failure.
 * @return QX_S_OK; QX_E_FAIL: the child runs; QX_E_HANDLE.
 */
QX_API QXResult QXProcessGetExitCode(QXHandle process, uint32_t* exitCode);

/**
 * Waits for a child's end, for ever, and collects its exit code.
 *
 * @param process   a child; not valid any more on success.
 * @param exitCode  null, or receives the code; left alone on failure.
 * @return QX_S_OK; QX_E_FAIL: the child's code is 259; QX_E_HANDLE for what is no open handle, and
 * for that of QXProcessGetHandle.
 */
QX_API QXResult QXProcessJoin(QXHandle process, uint32_t* exitCode);

/**
 * Waits for the end of any child, for ever, and collects its exit code. Of several the one with the
 * smallest handle.
 *
 * @param process   receives which one it was, also on a failure behind the wait.
 * @param exitCode  null, or receives the code; left alone on failure.
 * @return QX_S_OK; QX_E_FAIL: there are no children or more than 64, or the child's code is 259;
 *         QX_E_HANDLE: a child was detached meanwhile.
 */
QX_API QXResult QXProcessJoinChild(QXHandle* process, uint32_t* exitCode);

/** Gives the platform's pseudo handle of this process, which is none for the functions above. */
QX_API QXHandle QXProcessGetHandle(void);

/** Gives the system's number of this process. */
QX_API uint32_t QXProcessGetID(void);

/**
 * Tells the name of the file that a process runs, without its directory.
 *
 * @param id      the system's number of any process.
 * @param buffer  receives the name, cut to what fits, and zeros behind it; left alone on failure.
 * @param length  bytes of the buffer, at least 1.
 * @return a 16-bit flag: 1; 0 if there is no such process, or it may not be asked.
 */
QX_API int16_t QXProcessGetName(uint32_t id, char* buffer, uint32_t length);

QX_END_DECLS

#endif

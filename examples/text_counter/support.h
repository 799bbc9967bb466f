// What all parts of the program use: handles that close themselves, failures, and text.
#ifndef EXAMPLES_SUPPORT_H
#define EXAMPLES_SUPPORT_H

#include <qxcore.h>

#include <string>

// A call without which the program cannot go on has failed. It ends in main.
struct Failure {
    std::string what;
    QXResult result;
};

inline void Check(QXResult result, const char* what) {
    if (QX_FAILED(result)) {
        throw Failure{what, result};
    }
}

// Owns a handle of the library and gives it up by `close`.
template <QXResult (*close)(QXHandle)>
class Handle {
  public:
    Handle() = default;
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    operator QXHandle() const { return m_handle; }
    // Where a creating function puts the handle.
    QXHandle* Slot() { return &m_handle; }
    void Close() {
        if (m_handle != QX_INVALID_HANDLE) {
            close(m_handle);
            m_handle = QX_INVALID_HANDLE;
        }
    }

  private:
    QXHandle m_handle = QX_INVALID_HANDLE;
};

// The library's functions are imported on Windows, so they are no constants there; these are.
inline QXResult CloseFile(QXHandle file) {
    return QXFileClose(file);
}
inline QXResult CloseDirectory(QXHandle directory) {
    return QXDirClose(directory);
}
inline QXResult DestroyMutex(QXHandle mutex) {
    return QXMutexDestroy(mutex);
}
inline QXResult DestroySemaphore(QXHandle semaphore) {
    return QXSemaphoreDestroy(semaphore);
}
inline QXResult DestroyEvent(QXHandle event) {
    return QXEventDestroy(event);
}

using File = Handle<CloseFile>;
using Directory = Handle<CloseDirectory>;
using Mutex = Handle<DestroyMutex>;
using Semaphore = Handle<DestroySemaphore>;
using Event = Handle<DestroyEvent>;

// Holds a mutex for as long as it lives.
class Locked {
  public:
    explicit Locked(QXHandle mutex) : m_mutex(mutex) { QXMutexAcquire(m_mutex); }
    ~Locked() { QXMutexRelease(m_mutex); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    QXHandle m_mutex;
};

// An argument of the command line. Throws a Failure if it is no text.
std::u16string Wide(const char* narrow);

// The same for people: what is no text in it becomes U+FFFD.
std::u16string WideForPeople(const char* narrow);

// For people, in UTF-8. What is no text in a file's name becomes U+FFFD.
std::string Narrow(const std::u16string& wide);

// What a result means to people.
std::string Explain(QXResult result);

// To standard error, under the program's name.
void Complain(const std::string& about, QXResult result);

#endif

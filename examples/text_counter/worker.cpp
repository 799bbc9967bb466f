#include "worker.h"

#include <new>

#include "interrupt.h"

namespace {

QXResult ReadPiece(QXHandle file, std::string* text) {
    char piece[64 * 1024];
    uint32_t done = 0;
    const QXResult result = QXFileRead(file, piece, sizeof piece, &done);
    if (QX_SUCCEEDED(result)) {
        text->append(piece, done);
    }
    return IsInterrupted() ? QX_E_ABORT : result;
}

QXResult ReadFile(const std::u16string& path, std::string* text) {
    File file;
    text->clear();
    QXResult result = QXFileOpen(path.c_str(), QX_FILE_READ, 0, file.Slot());
    while (QX_SUCCEEDED(result)) {
        result = ReadPiece(file, text);
    }
    return result == QX_E_EOF ? QX_S_OK : result;
}

}  // namespace

Worker::Worker(CounterObject counter, std::u16string encoding, WorkQueue* queue, Progress* progress)
    : m_counter(std::move(counter)),
      m_encoding(std::move(encoding)),
      m_queue(queue),
      m_progress(progress),
      m_thread([this] { CountFiles(); }) {}

Worker::~Worker() {
    m_queue->Close();
}

void Worker::CountFiles() {
    while (FileReport* const file = m_queue->Pop()) {
        file->result = CountFile(file->path, &file->counts);
        m_progress->Add(file->counts.bytes);
    }
}

QXResult Worker::CountFile(const std::u16string& path, TextCounts* counts) try {
    const QXResult result = IsInterrupted() ? QX_E_ABORT : ReadFile(path, &m_text);
    return QX_FAILED(result)
               ? result
               : m_counter->Count(m_text.data(), m_text.size(), m_encoding.c_str(), counts);
} catch (const std::bad_alloc&) {
    return QX_E_OUTOFMEMORY;
}

// Children of the library's, and what they write.
#ifndef TESTS_PROCESS_PROCESS_SUPPORT_H
#define TESTS_PROCESS_PROCESS_SUPPORT_H

#include <gtest/gtest.h>
#include <qxcore.h>

#include <string>

// The child's standard handles, at first a pipe each.
struct Pipes {
    ~Pipes() {
        for (const QXHandle end : ends) {
            if (end != QX_INVALID_HANDLE && end != nullptr) {
                QXFileClose(end);
            }
        }
    }
    void CloseInput() {
        EXPECT_EQ(QX_S_OK, QXFileClose(ends[0]));
        ends[0] = QX_INVALID_HANDLE;
    }
    QXHandle ends[3] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE, QX_INVALID_HANDLE};
};

inline std::string ReadAll(QXHandle file) {
    std::string all;
    char buffer[4096];
    uint32_t count = 0;
    while (QX_SUCCEEDED(QXFileRead(file, buffer, sizeof buffer, &count))) {
        all.append(buffer, count);
    }
    return all;
}

inline void Write(QXHandle file, const std::string& text) {
    uint32_t count = 0;
    EXPECT_EQ(QX_S_OK, QXFileWrite(file, text.data(), static_cast<uint32_t>(text.size()), &count));
    EXPECT_EQ(text.size(), count);
}

// Of a child that has ended or will.
inline uint32_t CodeOf(QXHandle child) {
    uint32_t code = 12345;
    EXPECT_EQ(QX_S_OK, QXProcessJoin(child, &code));
    return code;
}

#endif

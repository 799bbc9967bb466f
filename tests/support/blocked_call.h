// A call that blocks, in a thread of its own.
#ifndef TESTS_SUPPORT_BLOCKED_CALL_H
#define TESTS_SUPPORT_BLOCKED_CALL_H

#include <qxcore/result.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

#include "support/system.h"

class BlockedCall {
  public:
    // Returns when the thread sleeps in the call, or is through it.
    explicit BlockedCall(std::function<QXResult()> call)
        : m_thread([this, call = std::move(call)] {
              m_number = ThreadNumber();
              m_result = call();
              m_returned = true;
          }) {
        while (!HasReturned() && (m_number == 0 || !ThreadSleeps(m_number))) {
            std::this_thread::yield();
        }
    }
    ~BlockedCall() { Result(); }
    BlockedCall(const BlockedCall&) = delete;
    BlockedCall& operator=(const BlockedCall&) = delete;

    bool HasReturned() const { return m_returned; }

    // Waits for the call to return.
    QXResult Result() {
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return m_result;
    }

  private:
    std::atomic<unsigned> m_number{0};
    std::atomic<bool> m_returned{false};
    QXResult m_result = QX_S_OK;
    std::thread m_thread;
};

#endif

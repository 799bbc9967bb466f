#include <new>

#include "narrow_text.h"
#include "platform/alerts.h"
#include "platform/cancellation.h"
#include "platform/errors.h"
#include "question.h"

namespace platform {
namespace {

std::u16string_view CountedText(const char16_t* text, u32 bytes) noexcept {
    return {text, bytes / sizeof *text - 1};
}

}  // namespace

bool WTSSendMessageW(void*, u32, const char16_t* title, u32 titleBytes, const char16_t* text,
                     u32 textBytes, u32, u32, u32* answer, bool) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff cancellationOff;
    try {
        const Question question = {NarrowText(CountedText(title, titleBytes)),
                                   NarrowText(CountedText(text, textBytes))};
        for (const auto ask : {AskByDialog, AskAtTerminal}) {
            if (const std::optional<Answer> given = ask(question)) {
                *answer = *given;
                return true;
            }
        }
        SetLastError(kErrorFileNotFound);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
    }
    return false;
}

}  // namespace platform

// Expands a reference to its environment. Exit code: 0 if it stayed, 1 if it was expanded, plus 2
// if the system says that the program runs with more rights than its caller.
#include <sys/auxv.h>

#include <string_view>

#include "platform/environment.h"

int main() {
    char16_t text[100];
    platform::ExpandEnvironmentStringsW(u"%QXCORE_PROBE%", text, 100);
    return (std::u16string_view(text) != u"%QXCORE_PROBE%") + (::getauxval(AT_SECURE) != 0 ? 2 : 0);
}

// Names that no other test uses, also not one that runs at the same time.
#ifndef TESTS_SUPPORT_UNIQUE_NAME_H
#define TESTS_SUPPORT_UNIQUE_NAME_H

#include <random>
#include <string>

inline std::string UniqueName(const std::string& what = "test") {
    static std::random_device s_random;
    return what + "-" + std::to_string(s_random()) + "-" + std::to_string(s_random());
}

#endif

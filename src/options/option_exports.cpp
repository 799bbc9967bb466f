#include "options/option_scan.h"

int32_t QXGetOption(int32_t argc, char** argv, const QXOptionRecord* options, int32_t* longIndex) {
    return QXGetOptionInternal(argc, argv, "", options, longIndex,
                               QX_OPTION_PERMUTE | QX_OPTION_LONGONLY);
}

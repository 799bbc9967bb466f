#include <qxcore/option.h>

namespace {

// Clients read the texts through a pointer to characters that they may change, but do not.
consteval char* Text(const char* text) {
    return const_cast<char*>(text);
}

}  // namespace

constinit char* QXGetOptionMsgCharacterRequiresArgument =
    Text("Usage: option requires an argument -- %c");
constinit char* QXGetOptionMsgIllegal = Text("Usage: illegal option -- %c");
constinit char* QXGetOptionMsgInvalid = Text("Usage: invalid option -- %c");
constinit char* QXGetOptionMsgStringRequiresArgument =
    Text("Usage: option '%s%s' requires an argument");
constinit char* QXGetOptionMsgAmbiguous = Text("Usage: option '%s%.*s' is ambiguous");
constinit char* QXGetOptionMsgNoArgumentAllowed =
    Text("Usage: option '%s%.*s' doesn't allow an argument");
constinit char* QXGetOptionMsgUnrecognized = Text("Usage: unrecognized option '%s%s'");

// For programs that hold the library's objects: the loader tells the entry function of a library,
// but not of a program.
#include "platform/lifetime.h"

namespace {

class Attached {
  public:
    Attached() { DllMain(nullptr, platform::kProcessAttach, nullptr); }
    ~Attached() { DllMain(nullptr, platform::kProcessDetach, this); }
};

const Attached s_attached;

}  // namespace

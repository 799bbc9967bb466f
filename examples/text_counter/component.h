// The text counter as a component: put on record, and made by the name that stands there.
#ifndef EXAMPLES_COMPONENT_H
#define EXAMPLES_COMPONENT_H

#include <memory>

#include "support.h"
#include "text_counter.h"

// Puts a library on record as the text counter's.
void RegisterTextCounter(const char* library);
// The same by a file: all that ./qxregistry.ini holds goes into the registry, and the file goes.
void InstallTextCounter();
void UnregisterTextCounter();

struct ReleaseObject {
    void operator()(void* object) const { IQXUnknown_Release(object); }
};
using CounterObject = std::unique_ptr<ITextCounter, ReleaseObject>;

// The first one loads the library; for the others the class is in the library's cache.
CounterObject CreateCounter();

#endif

// Mappings: see shared/named_object.h.
#include "handles_native.h"

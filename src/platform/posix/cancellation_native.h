#include "cancellation.h"

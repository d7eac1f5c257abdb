// Entry of the add-on: registration with the host.
#include "host/ZorUtil.h"

extern "C" __attribute__((visibility("default"))) void InitZorAddOn113(void) {}

#include "ovra/ovStatus.h"

// Out of line so the vtable lives in the library.
ovStatus::~ovStatus() = default;

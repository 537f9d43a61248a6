#include "ovra/ovSystemOperations.h"

// Out of line so the vtables live in the library.
ovISysInfoOperations::~ovISysInfoOperations() = default;
ovISynchOperations::~ovISynchOperations() = default;
ovIProcessThreadOperations::~ovIProcessThreadOperations() = default;
ovIProcessEnvironmentOperations::~ovIProcessEnvironmentOperations() = default;

std::unique_ptr<ovICriticalSection> ovNoSynchOperations::create() const {
    return std::make_unique<ovDummyCriticalSection>();
}

void ovNoSynchOperations::sleep(unsigned long) const {}

#include "input_file_fixture.h"

#include <io.h>

void ovtest::close_descriptor(FILE* stream) {
    _close(_fileno(stream));
}

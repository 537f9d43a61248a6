#include "input_file_fixture.h"

#include <unistd.h>

void ovtest::close_descriptor(FILE* stream) {
    close(fileno(stream));
}

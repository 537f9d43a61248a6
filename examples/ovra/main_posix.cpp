// POSIX arguments are bytes; the tool reads them as UTF-8.
#include "ovra_tool.h"

int main(int argc, char** argv) {
    return ovra_tool_run(std::vector<std::string>(argv + 1, argv + argc));
}

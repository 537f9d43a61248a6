// Finds every *.txt file under a directory and copies the whole tree elsewhere.
//   tree_demo <directory> <new copy>
#include "ovra/ovFileFinder.h"
#include "ovra/ovFileSystem.h"

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: tree_demo <directory> <new copy>\n");
        return 2;
    }
    const ovPath top{utString(argv[1])};
    ovPathcoDList found;
    // Case-insensitive, paths relative to the top directory.
    ovRecursiveFileFinder(top).get_files_including_sub_folders(utString("*.txt"), 0, 1, found);
    for (const ovPath& p : found)
        std::printf("%s\n", p.path().c_str());

    const ovDirectory source(top, nullptr);
    const ovDirectory target(ovPath(utString(argv[2])), nullptr);
    // Refuses an existing target: nothing is ever overwritten.
    if (!source.copy_to(target).ok()) {
        std::fprintf(stderr, "copy failed\n");
        return 1;
    }
    std::printf("copied %d files at the top level\n", target.number_of_files());
    return 0;
}

// Tour of the system services: copying a file, listing a directory, stepping a numbered name.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdio>

void tourSystem() {
    std::printf("\n== System\n");

    // The tour runs in a scratch folder: its files go there under bare names.
    if (std::FILE *notes = std::fopen("tour-notes.txt", "wb")) {
        std::fputs("first line\nsecond line\n", notes);
        std::fclose(notes);
    }
    const bool copied = TarnSystem::cp("tour-notes.txt", "tour-notes-copy.txt");
    const TarnFileName copy("tour-notes-copy.txt");
    std::printf("cp tour-notes.txt tour-notes-copy.txt: %s, copy exists: %s, %u bytes\n",
                copied ? "true" : "false", copy.exists() ? "true" : "false", copy.getSize());

    TarnVector<TarnString> files;
    TarnSystem::dir(files, ".");
    std::printf("files of the current directory named tour-*:");
    for (unsigned int index = 0; index < files.size(); ++index) {
        if (files[index].left(5).compare("tour-") == 0) {
            std::printf(" %s", files[index].c_str());
        }
    }
    std::printf("\n");

    // Names are taken apart with the backslash on every platform.
    TarnFileName name("C:\\reports\\run009.log");
    std::printf("%s: path %s, name %s, extension %s\n", name.c_str(), name.getPath().c_str(),
                name.getFileName().c_str(), name.getFileExt().c_str());
    for (int step = 0; step < 2; ++step) {
        name.increment();
        std::printf("increment: %s\n", name.c_str());
    }

    TarnString scratch;
    TarnSystem::uniqueFilename(scratch);
    std::printf("processors: %d, a scratch name: %s\n", TarnSystem::getNumberOfSystemProcessors(),
                scratch.c_str());
}

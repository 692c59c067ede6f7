// Tour of the configuration file: write a few settings, read typed values back, show the file.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

void tourConfig() {
    std::printf("\n== Configuration\n");
    const char *const name = "tour.ini";

    // Write a small configuration: every value is stored as text.
    TarnINIFile *settings = newTarnINIFile(name);
    settings->writePrivateProfileString("window", "title", "Tarn tour");
    settings->writePrivateProfileInt("window", "width", 640);
    settings->writePrivateProfileDouble("window", "zoom", 1.25);
    settings->writePrivateProfileHex("colors", "background", 0x202830);
    settings->writePrivateProfileBool("colors", "dark", true);
    settings->write(nullptr);
    settings->dispose();

    // Read it back with defaults; a key that is missing takes its default and is stored.
    TarnINIFile *loaded = newTarnINIFile(name);
    const bool read = loaded->read(nullptr);
    TarnString title;
    int width = 0;
    int height = 0;
    double zoom = 0.0;
    int background = 0;
    bool dark = false;
    loaded->getPrivateProfileString("window", "title", "untitled", title);
    loaded->getPrivateProfileInt("window", "width", 800, width);
    loaded->getPrivateProfileInt("window", "height", 480, height);
    loaded->getPrivateProfileDouble("window", "zoom", 1.0, zoom);
    loaded->getPrivateProfileHex("colors", "background", 0, background);
    loaded->getPrivateProfileBool("colors", "dark", false, dark);
    std::printf("read: %s; title \"%s\", %d x %d (height from its default), zoom %g, background 0x%06x, "
                "dark %s\n",
                read ? "true" : "false", title.c_str(), width, height, zoom,
                static_cast<unsigned>(background), dark ? "true" : "false");

    // Saving again stores the default of the missing height too; sections and keys come sorted.
    loaded->write(nullptr);
    loaded->dispose();
    std::printf("the file %s:\n", name);
    std::cout << std::ifstream(name).rdbuf();
}

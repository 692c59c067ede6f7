// Example: file names taken apart with the backslash, a text file written and read by lines, a
// directory made, a file copied and listed.
#include <tarn/tarn.h>

#include <cstdio>

int main() {
    // Path syntax uses the backslash on every platform; the parts come from the text, and the
    // file system is not asked.
    TarnFileName report("reports\\daily\\run009.log");
    const bool partsOk = report.getPath().compare("reports\\daily") == 0 &&
                         report.getFileName().compare("run009") == 0 &&
                         report.getFileExt().compare("log") == 0;
    report.increment(); // run009 -> run010, zero-padded to the old width
    report.setFileExt("txt");
    std::printf("next report: %s\n", report.c_str());
    const bool renamedOk = report.compare("reports\\daily\\run010.txt") == 0;

    // A text file is a standard file stream with line-oriented reading and writing; failures show
    // in the stream's state.
    {
        TarnTextFile out("notes.txt", TarnTextFile::WRITE);
        out.writeLine("first line");
        out.writeLine(TarnString("second line"));
    }
    unsigned int lines = 0;
    {
        TarnTextFile in("notes.txt", TarnTextFile::READ);
        TarnString line;
        while (in.readLine(line)) {
            ++lines;
        }
    }

    // A directory, a copy into it, and the listing. Names given to the file system pass to it
    // unchanged, so the forward slash, which both platforms accept, joins them here.
    TarnSystem::mkdir("backup");
    const bool copied = TarnSystem::cp("notes.txt", "backup/notes.txt");
    const TarnFileName copy("backup/notes.txt");
    TarnVector<TarnString> files;
    TarnSystem::dir(files, "backup");
    std::printf("copied: %s, %u bytes, %u file(s) in backup, %d processor(s)\n", copied ? "true" : "false",
                copy.getSize(), static_cast<unsigned>(files.size()),
                TarnSystem::getNumberOfSystemProcessors());

    // A file that does not exist answers false or every bit set, never an error.
    const TarnFileName missing("no-such-file.txt");
    const bool missingOk = !missing.exists() && missing.getSize() == 0xFFFFFFFFu;

    const bool ok = partsOk && renamedOk && lines == 2 && copied && copy.exists() && files.size() == 1 &&
                    files[0].compare("notes.txt") == 0 && missingOk;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}

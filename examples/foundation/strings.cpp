// Example: text with TarnString, owned elements in TarnVector, and class identity by name.
#include <tarn/tarn.h>

#include <cstdio>
#include <string>

int main() {
    // Split a record into fields: every byte of the delimiter text is one delimiter, and the
    // empty runs between adjacent delimiters produce nothing.
    TarnString record("  north; 12.5 ;;east ;0x1F  ");
    record.trim();
    TarnVector<TarnString> fields; // owns the TarnString objects that split adds
    record.split(";", fields);
    for (unsigned int i = 0; i < fields.size(); ++i) {
        fields[i].trim();
    }

    // Numbers are read from the start of the text; a text that holds none reads as 0.
    const double reading = fields[1];
    bool isHex = false;
    const unsigned int code = fields[3].toUIntBase16(&isHex);

    // Texts are compared with compare or compareNoCase: == on two TarnString objects compares
    // addresses, as it does for every TarnObject.
    const bool north = fields[0].compareNoCase("NORTH") == 0;

    TarnString line;
    line.format("%s reads %.2f, code %u", fields[0].c_str(), reading, code);
    line.toUpper();
    std::printf("%u fields; %s\n", static_cast<unsigned>(fields.size()), line.c_str());

    // Substrings outside the text are empty, never clipped.
    const bool outside = line.mid(40, 5).isempty() && line.left(500).isempty();

    // Class identity: each class answers to its own name only.
    const bool identity = line.isa("TarnString") && line.getClassName() == "TarnString";

    const bool ok = fields.size() == 4 && reading == 12.5 && isHex && code == 31 && north && outside &&
                    identity && line.compare("NORTH READS 12.50, CODE 31") == 0;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}

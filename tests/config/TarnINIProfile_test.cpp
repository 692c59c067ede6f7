// Tests of TarnINIFile's profile accessors: defaults through their text forms, scans, text forms.
#include "config/TarnINITestSupport.h"

#include <climits>
#include <cmath>
#include <limits>

namespace {

using tarn_test::makeINIFile;
using tarn_test::Model;
using tarn_test::modelOf;

// The stored text of section/key, or "<missing>".
std::string stored(TarnINIFile &file, const char *section, const char *key) {
    const Model model = modelOf(file);
    auto keys = model.find(section);
    if (keys == model.end() || keys->second.count(key) == 0) {
        return "<missing>";
    }
    return keys->second.at(key);
}

// A read of a missing key stores the default's text form and gives what that text reads as; a later
// default does not replace the stored value.
TEST(TarnINIFileTest, DefaultsPassThroughTheirTextForms) {
    auto file = makeINIFile();
    float f = 1.0f;
    file->getPrivateProfileFloat("s", "f", 1e-7f, f);
    double d = 1.0;
    file->getPrivateProfileDouble("s", "d", 1e-20, d);
    int h = 0;
    file->getPrivateProfileHex("s", "h", -2, h);
    bool b = false;
    file->getPrivateProfileBool("s", "b", true, b);
    TarnString text("old");
    file->getPrivateProfileString("s", "t", nullptr, text);
    EXPECT_EQ(f, 0.0f);
    EXPECT_EQ(d, 0.0);
    EXPECT_EQ(h, -2);
    EXPECT_TRUE(b);
    EXPECT_EQ(std::string(text), "");
    EXPECT_EQ(
        modelOf(*file),
        (Model{
            {"s",
             {{"f", "0.000000"}, {"d", "0.000000000000000"}, {"h", "fffffffe"}, {"b", "true"}, {"t", ""}}}}));
    int i = 0;
    file->getPrivateProfileInt("s", "i", 5, i);
    file->getPrivateProfileInt("s", "i", 9, i);
    EXPECT_EQ(i, 5);
    EXPECT_EQ(stored(*file, "s", "i"), "5");
}

// One stored text and what a typed read of it must give.
template <class T>
struct ScanCase {
    const char *text;
    T expected;
};

// A typed read of the const char* family.
template <class T>
using TypedRead = void (TarnINIFile::*)(const char *, const char *, T, T &);

// Stores each case's text under s/k and reads it back with `read` into an output that holds
// `preset` beforehand: where no number starts the text, the preset must stay.
template <class T, std::size_t N>
void expectScans(TarnINIFile &file, const ScanCase<T> (&cases)[N], T preset, TypedRead<T> read,
                 const char *kind) {
    for (const ScanCase<T> &c : cases) {
        file.writePrivateProfileString("s", "k", c.text);
        T out = preset;
        (file.*read)("s", "k", T(), out);
        EXPECT_EQ(out, c.expected) << kind << " of \"" << c.text << "\"";
    }
    EXPECT_EQ(stored(file, "s", "k"), cases[N - 1].text) << "a scan never changes the stored text";
}

TEST(TarnINIFileTest, IntegerScansTakeTheLeadingNumberOrLeaveTheOutput) {
    const int kept = 12345;
    const ScanCase<int> decimal[] = {{"12abc", 12},
                                     {" -7", -7},
                                     {"+3", 3},
                                     {"abc", kept},
                                     {"", kept},
                                     {"- 1", kept},
                                     {"99999999999", INT_MAX},
                                     {"-99999999999", INT_MIN},
                                     {"0x10", 0}};
    const ScanCase<int> hex[] = {{"ff", 255},  {"0x1F", 31}, {" -1", -1},        {"ffffffff", -1},
                                 {"zz", kept}, {"0x", 0},    {"7fffffffff", -1}, {"10g", 16}};
    const ScanCase<unsigned int> unsignedCases[] = {{"-1", 0xFFFFFFFFu},
                                                    {"4294967295", 0xFFFFFFFFu},
                                                    {"4294967296", 0xFFFFFFFFu},
                                                    {"-4294967296", 0xFFFFFFFFu},
                                                    {"42x", 42u},
                                                    {"x", 12345u}};
    auto file = makeINIFile();
    expectScans(*file, decimal, kept, &TarnINIFile::getPrivateProfileInt, "%d");
    expectScans(*file, hex, kept, &TarnINIFile::getPrivateProfileHex, "%x");
    expectScans(*file, unsignedCases, 12345u, &TarnINIFile::getPrivateProfileUInt, "%u");
}

TEST(TarnINIFileTest, RealScansFollowTheStandardGrammarInTheCLocale) {
    const double inf = std::numeric_limits<double>::infinity();
    const double kept = 99.0;
    // The grammar itself is the number reader's; these cases show the wrapper's rules: a text
    // without a number keeps the output, one out of range saturates.
    const ScanCase<double> cases[] = {{"  +2.5xyz", 2.5}, {"0x1p3", 8.0}, {"1e400", inf},
                                      {"-1e400", -inf},   {"--1", kept},  {"", kept}};
    auto file = makeINIFile();
    expectScans(*file, cases, kept, &TarnINIFile::getPrivateProfileDouble, "%lf");
    // "%f" rounds to float once: beyond float's range is infinite although a double would hold it.
    const ScanCase<float> floats[] = {
        {"1e39", std::numeric_limits<float>::infinity()}, {"0.1", 0.1f}, {"x", 2.0f}};
    expectScans(*file, floats, 2.0f, &TarnINIFile::getPrivateProfileFloat, "%f");

    double out = 0.0;
    file->writePrivateProfileString("s", "k", "-1e-400");
    file->getPrivateProfileDouble("s", "k", 0.0, out);
    EXPECT_TRUE(out == 0.0 && std::signbit(out)) << "underflow keeps the sign";
    file->writePrivateProfileString("s", "k", "nan(1)");
    file->getPrivateProfileDouble("s", "k", 0.0, out);
    EXPECT_TRUE(std::isnan(out));
}

TEST(TarnINIFileTest, BoolReadTrimsAndFoldsCaseOnAWorkingCopy) {
    auto file = makeINIFile();
    for (const char *text : {"true", "TRUE", " T ", "\tt", "tomorrow", "1", "yes", "on", ""}) {
        const bool expected = text[0] != '\0' && std::string("tT \t").find(text[0]) != std::string::npos;
        file->writePrivateProfileString("s", "k", text);
        bool out = !expected;
        int number = 5;
        file->getPrivateProfileBool("s", "k", !expected, out);
        file->getPrivateProfileBOOL("s", "k", !expected, number);
        EXPECT_EQ(out, expected) << text;
        EXPECT_EQ(number, expected ? 1 : 0) << text;
        EXPECT_EQ(stored(*file, "s", "k"), text) << "the model keeps its text";
    }
}

TEST(TarnINIFileTest, WritesStoreTheirTextForms) {
    auto file = makeINIFile();
    file->writePrivateProfileFloat("s", "float", 0.1f);
    file->writePrivateProfileDouble("s", "double", 1234.5);
    file->writePrivateProfileExp("s", "exp", 1234.5);
    file->writePrivateProfileExpG("s", "expg", 1234.5);
    file->writePrivateProfileInt("s", "int", -42);
    file->writePrivateProfileHex("s", "hex", -1);
    file->writePrivateProfileHex("s", "hex255", 255);
    file->writePrivateProfileBool("s", "bool", false);
    file->writePrivateProfileBOOL("s", "BOOL", 2);
    file->writePrivateProfileString("s", "text", " as is\n");
    Model model = modelOf(*file);
    // A runtime whose formatter gives three exponent digits writes e+003: both forms are right.
    if (model["s"]["exp"] == "1.234500000000000e+003") {
        model["s"]["exp"] = "1.234500000000000e+03";
    }
    EXPECT_EQ(model, (Model{{"s",
                             {{"float", "0.100000"},
                              {"double", "1234.500000000000000"},
                              {"exp", "1.234500000000000e+03"},
                              {"expg", "1234.5"},
                              {"int", "-42"},
                              {"hex", "ffffffff"},
                              {"hex255", "ff"},
                              {"bool", "false"},
                              {"BOOL", "true"},
                              {"text", " as is\n"}}}}));
    int hex = 0;
    file->getPrivateProfileHex("s", "hex", 0, hex);
    EXPECT_EQ(hex, -1);
    for (const char *key : {"double", "exp", "expg"}) {
        double out = 0.0;
        file->getPrivateProfileDouble("s", key, 0.0, out);
        EXPECT_EQ(out, 1234.5) << key << " reads back through the double kind";
    }
}

// Every TarnString overload must act on the section its text names, exactly as the const char*
// one does; names are used untrimmed.
TEST(TarnINIFileTest, StringOverloadsActAsTheTextOnesOnUntrimmedNames) {
    const auto writeAll = [](TarnINIFile &file, auto &section) {
        file.writePrivateProfileString(section, " s", "v");
        file.writePrivateProfileFloat(section, "f", 0.5f);
        file.writePrivateProfileDouble(section, "d", 0.25);
        file.writePrivateProfileExp(section, "e", 2.0);
        file.writePrivateProfileExpG(section, "g", 3.0);
        file.writePrivateProfileInt(section, "i", -4);
        file.writePrivateProfileHex(section, "h", 255);
        file.writePrivateProfileBool(section, "b", true);
        file.writePrivateProfileBOOL(section, "B", 0);
    };
    const auto readAll = [](TarnINIFile &file, auto &section) {
        TarnString text;
        float f = 0.0f;
        double d = 0.0;
        unsigned int u = 0;
        int i = 0, h = 0, B = 1;
        bool b = false;
        file.getPrivateProfileString(section, " s", "", text);
        file.getPrivateProfileFloat(section, "f", 0.0f, f);
        file.getPrivateProfileDouble(section, "d", 0.0, d);
        file.getPrivateProfileUInt(section, "i", 0u, u);
        file.getPrivateProfileInt(section, "i", 0, i);
        file.getPrivateProfileHex(section, "h", 0, h);
        file.getPrivateProfileBool(section, "b", false, b);
        file.getPrivateProfileBOOL(section, "B", true, B);
        return std::string(text) + ";" + std::to_string(f) + ";" + std::to_string(d) + ";" +
               std::to_string(u) + ";" + std::to_string(i) + ";" + std::to_string(h) + ";" +
               std::to_string(b) + ";" + std::to_string(B);
    };
    const char *name = " S ";
    TarnString section(name);
    auto viaText = makeINIFile();
    auto viaString = makeINIFile();
    writeAll(*viaText, name);
    writeAll(*viaString, section);
    EXPECT_EQ(modelOf(*viaString), modelOf(*viaText));
    EXPECT_EQ(readAll(*viaString, section), "v;0.500000;0.250000;4294967292;-4;255;1;0");
    EXPECT_EQ(readAll(*viaText, name), readAll(*viaString, section));
    EXPECT_EQ(modelOf(*viaText).count(" S "), 1u);
}

TEST(TarnINIFileTest, NullNamesChangeNothing) {
    auto file = makeINIFile();
    file->writePrivateProfileString(nullptr, "k", "v");
    file->writePrivateProfileInt("s", nullptr, 1);
    int out = 0;
    file->getPrivateProfileInt(nullptr, "k", 8, out);
    EXPECT_EQ(out, 8) << "the default's text form is read";
    file->getPrivateProfileInt("s", nullptr, 9, out);
    EXPECT_EQ(out, 9);
    EXPECT_TRUE(file->empty());
}

} // namespace

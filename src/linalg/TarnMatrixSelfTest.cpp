// The self-tests of TarnMatrix, TarnUpperTriangularMatrix and TarnLowerTriangularMatrix.
#include "tarn/linalg/TarnLowerTriangularMatrix.h"
#include "tarn/linalg/TarnMatrix.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"
#include "tarn/linalg/TarnUpperTriangularMatrix.h"

namespace {

// The 10 x 10 system: A, the solution x, and b, the exact product of A and x.
const double kSystem[100] = {
    59.9388, 87.5572, 41.014,  59.8636, 21.6915, 29.8943, 72.8862, 61.4246, 42.7557, 68.9934,
    25.0044, 55.6266, 26.0248, 41.5656, 67.7655, 55.6045, 47.9247, 63.3609, 58.5317, 35.046,
    36.4043, 87.3023, 73.7426, 88.5159, 33.5737, 17.9919, 1.698,   41.4668, 29.2128, 7.3297,
    85.9184, 10.348,  34.3838, 22.482,  32.7556, 7.1124,  83.1289, 56.9871, 27.5235, 33.2981,
    94.9415, 24.5322, 88.786,  51.1022, 30.4446, 80.6189, 73.2716, 50.0715, 54.3223, 66.2302,
    35.4189, 13.8863, 49.2371, 6.8723,  79.6455, 91.0131, 43.7814, 62.4793, 80.7322, 13.2009,
    90.484,  90.7147, 53.8019, 60.2781, 70.0359, 92.6887, 41.9804, 31.2329, 85.0458, 19.9014,
    72.1764, 29.6885, 23.3972, 12.5496, 49.644,  62.9285, 28.7159, 65.8638, 31.9558, 48.5226,
    57.0784, 31.0226, 54.5508, 58.5191, 47.1019, 42.6449, 56.0129, 76.8378, 63.2851, 76.614,
    97.9775, 80.9664, 64.9852, 8.6243,  32.2061, 31.5598, 84.2875, 37.0276, 88.5034, 69.8644,
};
const double kSolution[10] = {68.0057, 92.0271, 90.8347, 18.4554, 44.1932,
                              82.3037, 66.3455, 1.7932,  94.2783, 61.8712};
const double kRightHandSide[10] = {33628.60175344, 28501.70565903, 25201.03324643, 22638.82534158,
                                   39873.01485983, 30741.16249812, 43315.42232421, 25408.78199863,
                                   32923.69331349, 42522.0250287};
// The exact inverse of A, rounded to 14 decimals.
const double kInverse[100] = {
    -0.00011753494132, -0.01716972578302, -0.00066139161793, 0.00668846746661,  -0.00645742149824,
    -0.00057892845442, 0.00959176594709,  0.00674011441563,  0.00533817747129,  -0.00142596218957,
    0.00603154419008,  0.00613653225628,  0.00400253209780,  -0.00408955896577, -0.00089561520322,
    -0.00120979110134, -0.00320943796868, 0.00463000773177,  -0.01251009785552, 0.00498948780226,
    -0.01552079685323, 0.01650687768839,  0.01214340812190,  -0.00277210573864, 0.01560403510023,
    -0.00346327760322, -0.01542486113560, 0.00036679346336,  -0.01208523213883, 0.01034815121195,
    0.00359148669492,  -0.00556428886747, -0.00254744584857, 0.00334192314251,  -0.00184587352941,
    -0.00362607820048, 0.01164099742470,  -0.00957676694373, 0.01370843688049,  -0.01134356147773,
    -0.05090361328679, 0.06995904408214,  0.00594974520206,  0.00400439224006,  0.01953407399839,
    -0.03772429586233, -0.01010499600691, 0.00666768281235,  -0.01399322155827, 0.01484556026917,
    0.01355833913717,  -0.00736545872541, -0.00545211083838, -0.00673018695722, 0.00600847304419,
    0.00820117365825,  0.00349447768012,  0.00238492731324,  -0.00691380704194, -0.00823051479725,
    0.00359013165547,  0.01662286877159,  -0.00487544448012, 0.00724438605676,  0.00924472634740,
    -0.00215662597215, -0.00337346041269, -0.01041381613751, -0.01287119929536, -0.00087317407193,
    0.03268693191256,  -0.04425305354498, 0.00284748124607,  0.00279798178010,  -0.02096293586101,
    0.03142057402045,  -0.00148912443975, 0.00543268372196,  0.00926009221699,  -0.01128119783693,
    0.01942006409515,  -0.04389139616118, -0.00647951675511, -0.00176718788736, -0.02345735424393,
    0.02420501268955,  0.01507686043542,  -0.01211402544287, 0.02701128194738,  -0.00347720914693,
    -0.02174703833562, 0.03237765973360,  -0.00239075486155, -0.00926441023060, 0.01376080189926,
    -0.02514505447256, -0.00798181969593, 0.00690225615981,  0.00253761928619,  0.01061740917108,
};

// B (2 x 7) and the stored triangle of its normal matrix, upper storage.
const double kTall[14] = {19.4502343676097,  1.4727198528851, -4.5255132472106, -0.0247497362581,
                          -0.15822292914,    0.0179261257123, -0.2639420914607, 3.3958435700865,
                          -18.6942011409108, 4.7245052948685, 0.0144948650802,  -0.0303122669222,
                          -0.1571622930019,  -0.2528250804797};
const double kTallNormal[28] = {389.843370507441, -34.8378364458193, -71.9786123645485,
                                -0.4321658763749, -3.1804087708248,  -0.1850312157427,
                                -5.9922899622906, 351.642060061914,  -94.9856654772318,
                                -0.3074193512602, 0.3336455659553,   2.9644236783671,
                                4.3376501498476,  42.8012204319189,  0.1804863261207,
                                0.5728294962618,  -0.8236390048237,  0.0,
                                0.0008226505585,  0.0034766035469,   -0.0027217131163,
                                0.0028678317206,  0.0259533288316,   0.0019276212573,
                                0.0494253921584,  0.0250213323247,   0.0350031102643,
                                0.1335859489642};

// C (2 x 3) and its normal matrix, lower storage.
const double kSmall[6] = {1, 2, 3, 4, 5, 6};
const double kSmallNormal[6] = {17, 22, 29, 27, 36, 45};

// M (4 x 3) times the upper triangular U of order 3.
const double kLeft[12] = {1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12};
const double kRightUpper[6] = {0.1, 0.2, 0.25, 0.3, 0.4, 0.5};
const double kLeftTimesUpper[12] = {0.1, 1.7, 6.75, 0.2, 2.2, 7.9, 0.3, 2.7, 9.05, 0.4, 3.2, 10.2};

// T1 (upper storage) and T2 (lower storage), order 6: each is the other's transpose.
const double kUpperSix[21] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21};
const double kLowerSix[21] = {1, 2, 7, 3, 8, 12, 4, 9, 13, 16, 5, 10, 14, 17, 19, 6, 11, 15, 18, 20, 21};

// W, upper triangular of order 3, times N (3 x 4).
const double kUpperLeft[6] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
const double kDenseRight[12] = {1, 4, 7, 10, 2, 5, 8, 11, 3, 6, 9, 12};
const double kUpperTimesDense[12] = {1.4, 3.2, 5, 6.8, 2.3, 5, 7.7, 10.4, 1.8, 3.6, 5.4, 7.2};

// Appends one new line to the report.
void report(TarnVector<TarnString> &results, const char *line) {
    results.add() = line;
}

// Appends the line for the outcome of one check and returns the outcome.
bool check(TarnVector<TarnString> &results, bool passed, const char *passedLine, const char *failedLine) {
    report(results, passed ? passedLine : failedLine);
    return passed;
}

// Transposes the order-6 triangle `sourcePacked` of form Source into a fresh Target and
// compares the result with `expectedPacked` as a Target.
template <class Source, class Target>
bool transposeMatches(const double *sourcePacked, const double *expectedPacked) {
    const Source source(sourcePacked, 6, 6);
    Target transposed;
    source.transpose(transposed);
    const Target expected(expectedPacked, 6, 6);
    return transposed == expected;
}

} // namespace

bool TarnMatrix::test(TarnVector<TarnString> &results) {
    report(results, "class TarnMatrix");
    bool allPassed = true;

    const TarnMatrix system(kSystem, 10, 10);
    const TarnMatrix rightHandSide(kRightHandSide, 10, 1);
    TarnMatrix solution;
    const bool solved = system.solve(solution, rightHandSide);
    const TarnMatrix expectedSolution(kSolution, 10, 1);
    allPassed &= solved;
    allPassed &= check(results, solution == expectedSolution, "\tTarnMatrix::solve passed",
                       "\t*** TarnMatrix::solve failed");

    // Only the comparison counts here, not what invert reports.
    TarnMatrix inverse;
    system.invert(inverse);
    const TarnMatrix expectedInverse(kInverse, 10, 10);
    allPassed &= check(results, inverse == expectedInverse, "\tTarnMatrix::invert passed",
                       "\t*** TarnMatrix::invert failed");

    TarnMatrix unit;
    unit.identity(10);
    allPassed &= check(results, system * inverse == unit, "\tTarnMatrix::operator * passed",
                       "\t*** TarnMatrix::operator *  failed");

    const TarnMatrix tall(kTall, 2, 7);
    TarnSymmetricMatrix tallNormal(0);
    tall.AtA(tallNormal);
    const TarnSymmetricMatrix expectedTallNormal(kTallNormal, 7, 7, 0);
    allPassed &= check(results, tallNormal == expectedTallNormal, "\tTarnMatrix::AtA upper passed",
                       "\t*** TarnMatrix::AtA upper failed");

    const TarnMatrix small(kSmall, 2, 3);
    TarnSymmetricMatrix smallNormal(1);
    small.AtA(smallNormal);
    const TarnSymmetricMatrix expectedSmallNormal(kSmallNormal, 3, 3, 1);
    const bool lowerPassed = check(results, smallNormal == expectedSmallNormal,
                                   "\tTarnMatrix::AtA lower passed", "\t*** TarnMatrix::AtA lower failed");
    if (!lowerPassed) {
        smallNormal.dump(18);
    }
    allPassed &= lowerPassed;

    const TarnMatrix left(kLeft, 4, 3);
    const TarnUpperTriangularMatrix rightUpper(kRightUpper, 3, 3);
    const TarnMatrix expectedProduct(kLeftTimesUpper, 4, 3);
    allPassed &= check(results, left * rightUpper == expectedProduct,
                       "\tTarnTarnMatrix::operator*(TarnUpperTriangularMatrix) passed",
                       "\t*** TarnMatrix::operator*(TarnUpperTriangularMatrix) failed ***");
    return allPassed;
}

bool TarnLowerTriangularMatrix::test(TarnVector<TarnString> &results) {
    report(results, "class TarnLowerTriangularMatrix");
    const bool passed =
        transposeMatches<TarnLowerTriangularMatrix, TarnUpperTriangularMatrix>(kLowerSix, kUpperSix);
    return check(results, passed, "\ttranspose passed", "\t*** transpose failed ***");
}

bool TarnUpperTriangularMatrix::test(TarnVector<TarnString> &results) {
    report(results, "class TarnUpperTriangularMatrix");
    bool allPassed = true;

    const bool transposed =
        transposeMatches<TarnUpperTriangularMatrix, TarnLowerTriangularMatrix>(kUpperSix, kLowerSix);
    allPassed &= check(results, transposed, "\tTarnUpperTriangularMatrix::transpose passed",
                       "\t*** TarnUpperTriangularMatrix::transpose failed ***");

    const TarnUpperTriangularMatrix upperLeft(kUpperLeft, 3, 3);
    const TarnMatrix denseRight(kDenseRight, 3, 4);
    const TarnMatrix expectedProduct(kUpperTimesDense, 3, 4);
    allPassed &= check(results, upperLeft * denseRight == expectedProduct,
                       "\tTarnUpperTriangularMatrix::operator *(TarnMatrix) passed",
                       "\t*** TarnUpperTriangularMatrix::operator *(TarnMatrix) failed ***");
    return allPassed;
}

// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/gallery/WindowsFonts.h"

#include <array>

namespace WindowsFonts {

namespace {
constexpr char16_t kFirst = 0x20;
constexpr char16_t kLast = 0x7e;
constexpr double kUnitsPerEm = 2048;
/// Segoe UI's ascent and descent; Microsoft YaHei's lines are a hair lower.
constexpr double kLine = 2210 + 514;

// How far Segoe UI moves on after each printable ASCII character. The Latin letters of Microsoft YaHei are
// taken to be as wide: they are cut after the same design.
// clang-format off
constexpr std::array<int, kLast - kFirst + 1> kRegular{
    // blank and marks up to /
    561, 582, 803, 1210, 1104, 1676, 1639, 471, 618, 618, 854, 1401, 444, 819, 444, 798,
    // 0 to 9
    1104, 1104, 1104, 1104, 1104, 1104, 1104, 1104, 1104, 1104,
    // marks up to @
    444, 444, 1401, 1401, 1401, 918, 1956,
    // A to Z
    1321, 1174, 1268, 1436, 1036, 1000, 1405, 1454, 545, 731, 1188, 964, 1839, 1532, 1544, 1147, 1544, 1225,
    1088, 1073, 1407, 1272, 1913, 1208, 1132, 1168,
    // marks up to `
    618, 776, 618, 1401, 850, 549,
    // a to z
    1042, 1204, 946, 1206, 1071, 641, 1206, 1159, 496, 496, 1018, 496, 1764, 1159, 1200, 1204, 1206, 712,
    869, 694, 1159, 981, 1480, 940, 991, 926,
    // { | } ~
    618, 490, 618, 1401,
};
constexpr std::array<int, kLast - kFirst + 1> kBold{
    // blank and marks up to /
    565, 670, 1010, 1213, 1178, 1776, 1740, 600, 756, 756, 932, 1448, 555, 828, 555, 908,
    // 0 to 9
    1178, 1178, 1178, 1178, 1178, 1178, 1178, 1178, 1178, 1178,
    // marks up to @
    555, 555, 1448, 1448, 1448, 897, 1954,
    // A to Z
    1440, 1313, 1278, 1510, 1090, 1065, 1456, 1569, 649, 912, 1329, 1047, 1960, 1618, 1553, 1258, 1553,
    1337, 1148, 1200, 1481, 1366, 2058, 1342, 1243, 1243,
    // marks up to `
    756, 893, 756, 1448, 850, 643,
    // a to z
    1102, 1270, 983, 1268, 1108, 785, 1268, 1233, 582, 582, 1145, 582, 1876, 1239, 1252, 1270, 1268, 815,
    901, 797, 1239, 1110, 1633, 1131, 1102, 981,
    // { | } ~
    756, 668, 756, 1448,
};
// clang-format on

/// Chinese writing stands in squares.
double unitsOf(QChar character, bool bold)
{
    const char16_t code = character.unicode();
    if (code < kFirst || code > kLast)
        return kUnitsPerEm;
    return (bold ? kBold : kRegular).at(code - kFirst);
}
} // namespace

double widthOf(const QString &line, int pixelSize, bool bold)
{
    double units = 0;
    for (const QChar character : line)
        units += unitsOf(character, bold);
    return units * pixelSize / kUnitsPerEm;
}

double lineHeight(int pixelSize)
{
    return kLine * pixelSize / kUnitsPerEm;
}

} // namespace WindowsFonts

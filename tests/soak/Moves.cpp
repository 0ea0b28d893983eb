// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "tests/soak/Moves.h"

#include "tests/soak/Dice.h"
#include "tests/soak/Gaps.h"

#include <numeric>

namespace soak {

namespace {

constexpr int kBetweenPanels = 25; // per cent

struct Move {
    int weight;
    const char *pattern;
};

// The looks at what is the case change nothing, but they must bear whatever they meet.
constexpr Move kMoves[]{
    {70, "pause <time>"},
    {40, "plug <chip>"},
    {30, "unplug <chip>"},
    {8, "brick <chip>"},
    {8, "device <model> pc <firmware> otg <firmware>"},
    {8, "server pc <version> otg <version>"},
    {60, "fault <fault> [<chip>] [<requests>] [<times>]"},
    {8, "clear faults"},
    {8, "clear <fault>"},

    {20, "model <model>"},
    {20, "language <language>"},
    {50, "try click <button>"},
    {12, "recover"},
    {20, "create panel"},
    {10, "destroy panel"},
    {15, "destroy panel after <time>"},
    {10, "try dismiss warning"},
    {1, "picture storm"},
    {1, "say \"a storm\""},
    {1, "forget"},

    {10, "try wait screen <screen> <patience>"},
    {10, "try wait bar <percent> <patience>"},
    {4, "try wait device <chip> <firmware> <patience>"},
    {4, "try wait read <chip> <version> <patience>"},
    {4, "try wait interface <pid> <patience>"},
    {8, "try wait flashing <chip> <patience>"},
    {8, "try wait tool ended <patience>"},
    {8, "try wait download <chip> <patience>"},
    {4, "try wait warning <patience>"},
    {2, "try hold screen <screen> <time>"},

    {1, "try expect screen <screen>"},
    {1, "try expect bar <percent>"},
    {1, "try expect text <name> x"},
    {1, "try expect visible <name>"},
    {1, "try expect hidden <name>"},
    {1, "try expect device <chip> <firmware>"},
    {1, "try expect flash <chip> served"},
    {1, "try expect downloads none"},
    {1, "try expect downloads pc otg"},
    {1, "try expect queries none"},
    {1, "try expect flashed none"},
    {1, "try expect flashed pc otg"},
    {1, "try expect tool pid <pid>"},
    {1, "try expect tool pid <pid> already-in-dfu"},
    {1, "try expect tools <count>"},
    {1, "try expect <event> 1s after <event> within 1s"},
};

// Where an application has more than one panel.
constexpr Move kMovesBetweenPanels[]{
    {60, "panel <panel>"},
    {30, "create panel"},
    {10, "destroy panel after <time>"},
    {1, "destroy panels"},
};

template <std::size_t count> QString oneOf(const Move (&moves)[count], Dice &dice)
{
    const int sum = std::accumulate(std::begin(moves), std::end(moves), 0,
                                    [](int before, const Move &move) { return before + move.weight; });
    int mark = dice.below(sum);
    const Move *move = moves;
    while (mark >= move->weight)
        mark -= move++->weight;
    return filled(move->pattern, dice);
}

} // namespace

QString randomMove(Dice &dice, Panels panels)
{
    const bool between = panels == Panels::Several && dice.happens(kBetweenPanels);
    return between ? oneOf(kMovesBetweenPanels, dice) : oneOf(kMoves, dice);
}

} // namespace soak

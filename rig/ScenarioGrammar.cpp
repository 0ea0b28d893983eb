// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/ScenarioGrammar.h"

namespace rig {

const QList<StatementForm> &grammar()
{
    using Stage = ScenarioStage;
    // clang-format off
    static const QList<StatementForm> forms {
        {"device <model> pc <firmware> otg <firmware>", "an unplugged device of this model with these firmwares", &Stage::device},
        {"plug <chip>", "put the cable into this port", &Stage::plug},
        {"unplug <chip>", "pull the cable out of this port", &Stage::unplug},
        {"brick <chip>", "leave the chip without firmware", &Stage::brick},
        {"server pc <version> otg <version>", "the newest firmwares on the server, for both models", &Stage::server},
        {"fault <fault> [<chip>] [<requests>] [<times>]", "arm a fault", &Stage::fault},
        {"clear faults", "clear every fault", &Stage::clearFaults},
        {"clear <fault>", "clear one fault", &Stage::clearFault},

        {"model <model>", "tell the panel which model it serves", &Stage::model},
        {"language <language>", "switch the language", &Stage::language},
        {"click <button>", "press a button of the panel with the mouse", &Stage::click},
        {"recover", "call the panel's recovery entry", &Stage::recover},
        {"create panel", "make a new panel", &Stage::createPanel},
        {"destroy panel", "delete the panel", &Stage::destroyPanel},
        {"dismiss warning", "press the button of the warning box", &Stage::dismissWarning},
        {"picture <name>", "keep a picture of the panel", &Stage::picture},
        {"say <text>", "put a line into the progress", &Stage::say},
        {"timeout <duration>", "the whole scenario fails after so long (10m unless stated)", &Stage::limitScenario},
        {"forget", "start the lists of requests and tool runs anew", &Stage::forget},

        {"pause <duration>", "do nothing for so long", &Stage::pause},
        {"wait screen <screen> [<duration>]", "until the panel shows this screen (30s unless stated, as for every wait)", &Stage::waitScreen},
        {"wait bar <percent> [<duration>]", "until the bar stands at this value or above", &Stage::waitBar},
        {"wait device <chip> <firmware> [<duration>]", "until the chip runs this firmware", &Stage::waitDevice},
        {"wait read <chip> <version> [<duration>]", "until the panel has read this version of the chip from the device", &Stage::waitRead},
        {"wait interface <pid> [<duration>]", "until this product ID is on the bus", &Stage::waitInterface},
        {"wait flashing <chip> [<duration>]", "until a flashing tool works on this chip", &Stage::waitFlashing},
        {"wait tool ended [<duration>]", "until no flashing tool runs", &Stage::waitToolEnded},
        {"wait download <chip> [<duration>]", "until the server was asked for this chip's image", &Stage::waitDownload},
        {"wait warning [<duration>]", "until the warning box is up", &Stage::waitWarning},
        {"hold screen <screen> <duration>", "the panel shows this screen without a break for so long", &Stage::holdScreen},

        {"expect screen <screen>", "the panel shows this screen", &Stage::expectScreen},
        {"expect bar <percent>", "the bar's value", &Stage::expectBar},
        {"expect text <name> <text>", "the text of the widget with this object name", &Stage::expectText},
        {"expect visible <name>", "the widget with this object name can be seen", &Stage::expectVisible},
        {"expect hidden <name>", "it cannot", &Stage::expectHidden},
        {"expect device <chip> <firmware>", "what the chip runs", &Stage::expectDevice},
        {"expect flash <chip> <contents>", "the chip's flash holds what the server served last (SHA-256), an intact image of this version, a partial one, something damaged, or nothing", &Stage::expectFlash},
        {"expect downloads none", "no image was asked for", &Stage::expectNoDownloads},
        {"expect downloads <chip>...", "the images that were asked for, in order", &Stage::expectDownloads},
        {"expect queries none", "no version was asked for", &Stage::expectNoQueries},
        {"expect flashed none", "no chip was flashed to the end", &Stage::expectNothingFlashed},
        {"expect flashed <chip>...", "the chips that were flashed to the end, in order", &Stage::expectFlashed},
        {"expect tool pid <pid>", "the last tool was started for this product ID and nothing else", &Stage::expectTool},
        {"expect tool pid <pid> already-in-dfu", "the same with --already-in-dfu", &Stage::expectToolInDfu},
        {"expect tools <count>", "how often the tool was started", &Stage::expectToolCount},
        {"expect <event> <duration> after <event> within <duration>", "the time between two events: image answered, tool started or ended, interface appeared, version read", &Stage::expectDelay},

        {"panel <name>", "what follows is about the panel of this name; the first one is called main", &Stage::choosePanel},
        {"destroy panels", "delete every panel; what follows is about main", &Stage::destroyPanels},
        {"destroy panel after <duration>", "delete the panel so long from now, whatever it is doing then", &Stage::destroyPanelLater},

        {"run <text> [<duration>]", "run this program with these arguments to its end, with status 0 (within 5m unless stated)", &Stage::runCommand},

        {"mark", "note the threads, handles, child processes and files that are there, once they stand still", &Stage::mark},
        {"expect nothing left [<duration>]", "no more of them than at the mark; what is still ending has so long (130s unless stated)", &Stage::expectNothingLeft},

        {"weigh <name>", "note and print the process's memory, handles and threads and the objects below the panel, once all but memory stands still", &Stage::weigh},
        {"expect growth since <name> resident <size> heap <size> handles <count> threads <count> objects <count>", "what was weighed last is no more than that above what was noted under this name", &Stage::expectGrowth},
    };
    // clang-format on
    return forms;
}

QList<FormPart> partsOf(const StatementForm &form)
{
    QList<FormPart> parts;
    for (QString word : QString::fromLatin1(form.pattern).split(QLatin1Char(' '))) {
        FormPart part;
        part.optional = word.startsWith(u'[');
        part.repeated = word.endsWith(QStringLiteral("..."));
        part.gap = word.contains(u'<');
        if (part.gap)
            word = word.mid(word.indexOf(u'<') + 1, word.indexOf(u'>') - word.indexOf(u'<') - 1);
        part.word = word;
        parts.append(part);
    }
    return parts;
}

} // namespace rig

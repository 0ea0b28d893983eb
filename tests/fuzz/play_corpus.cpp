// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

// Plays every file of the folders it is given to a fuzz target, with any compiler: what was found once stays
// mended.
#include <QDir>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int argc, char *argv[])
{
    int played = 0;
    for (int at = 1; at < argc; ++at) {
        const QDir folder(QFile::decodeName(argv[at]));
        for (const QString &name : folder.entryList(QDir::Files)) {
            QFile file(folder.filePath(name));
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file.fileName()));
                return 1;
            }
            std::printf("%s\n", qPrintable(name));
            std::fflush(stdout); // the last name printed is the one that broke it
            const QByteArray input = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(input.constData()),
                                   std::size_t(input.size()));
            ++played;
        }
    }
    std::printf("%d files\n", played);
    return played > 0 ? 0 : 1;
}

// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#include "rig/FirmwareImage.h"
#include "tests/support/TestProgram.h"

#include <QTest>

#include <functional>

using namespace rig;

namespace {
using Damage = std::function<void(QByteArray &image)>;

ImageInfo sample()
{
    return {Model::R2, Chip::Otg, QVersionNumber(1, 20, 3)};
}
} // namespace

class RigImageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anImageSaysWhatItWasBuiltFor_data();
    void anImageSaysWhatItWasBuiltFor();
    void theSameOrderGivesTheSameBytes();
    void everyImageIsAnother();
    void damageIsFound_data();
    void damageIsFound();
    void whatFollowsAnImageIsLeftAlone();
};

void RigImageTest::anImageSaysWhatItWasBuiltFor_data()
{
    QTest::addColumn<Model>("model");
    QTest::addColumn<Chip>("chip");
    QTest::addColumn<QVersionNumber>("version");
    QTest::addColumn<int>("bodySize");
    for (const ChipIdentity &identity : allIdentities())
        QTest::newRow(identity.project) << identity.model << identity.chip << QVersionNumber(1, 2, 3) << -1;
    QTest::newRow("lowest version") << Model::R1 << Chip::Pc << QVersionNumber(0, 0, 0) << -1;
    QTest::newRow("highest version") << Model::R1 << Chip::Pc << QVersionNumber(65535, 65535, 65535) << -1;
    QTest::newRow("header only") << Model::R2 << Chip::Pc << QVersionNumber(1, 0, 0) << 0;
    QTest::newRow("one byte") << Model::R2 << Chip::Pc << QVersionNumber(1, 0, 0) << 1;
}

void RigImageTest::anImageSaysWhatItWasBuiltFor()
{
    QFETCH(Model, model);
    QFETCH(Chip, chip);
    QFETCH(QVersionNumber, version);
    QFETCH(int, bodySize);
    const QByteArray image = buildImage({model, chip, version}, bodySize);
    QCOMPARE(image.size(), kImageHeaderSize + (bodySize < 0 ? usualBodySize(chip) : bodySize));
    QString why = QStringLiteral("unset");
    const auto info = readImage(image, &why);
    QVERIFY2(info, qPrintable(why));
    QVERIFY(why.isEmpty());
    QCOMPARE(info->model, model);
    QCOMPARE(info->chip, chip);
    QCOMPARE(info->version, version);
}

void RigImageTest::theSameOrderGivesTheSameBytes()
{
    QCOMPARE(buildImage(sample()), buildImage(sample()));
}

void RigImageTest::everyImageIsAnother()
{
    ImageInfo newer = sample();
    newer.version = QVersionNumber(1, 20, 4);
    ImageInfo other = sample();
    other.model = Model::R1;
    const QByteArray body = buildImage(sample()).sliced(kImageHeaderSize);
    QVERIFY(body != buildImage(newer).sliced(kImageHeaderSize));
    QVERIFY(body != buildImage(other).sliced(kImageHeaderSize));
}

void RigImageTest::damageIsFound_data()
{
    QTest::addColumn<Damage>("damage");
    QTest::addColumn<QString>("why");
    const auto flip = [](qsizetype at) {
        return Damage([at](QByteArray &image) { image[at] = char(image.at(at) ^ 1); });
    };
    const auto damaged = QStringLiteral("damaged");
    QTest::newRow("nothing") << Damage([](QByteArray &i) { i.clear(); })
                             << QStringLiteral("shorter than a header");
    QTest::newRow("half a header") << Damage([](QByteArray &i) { i.truncate(kImageHeaderSize / 2); })
                                   << QStringLiteral("shorter than a header");
    QTest::newRow("an error page") << Damage([](QByteArray &i) {
        i = "<html>404</html>" + QByteArray(200, ' ');
    }) << QStringLiteral("no firmware image");
    QTest::newRow("a bit of the mark") << flip(0) << QStringLiteral("no firmware image");
    QTest::newRow("an unknown model")
        << Damage([](QByteArray &i) { i[4] = 2; }) << QStringLiteral("made for an unknown device");
    QTest::newRow("an unknown chip") << Damage([](QByteArray &i) { i[5] = 2; })
                                     << QStringLiteral("made for an unknown device");
    QTest::newRow("one byte short") << Damage([](QByteArray &i) { i.chop(1); })
                                    << QStringLiteral("shorter than its header says");
    QTest::newRow("half of it") << Damage([](QByteArray &i) { i.truncate(i.size() / 2); })
                                << QStringLiteral("shorter than its header says");
    QTest::newRow("a length beyond every file")
        << Damage([](QByteArray &i) { i.replace(12, 4, QByteArray(4, char(0xFF))); })
        << QStringLiteral("shorter than its header says");
    QTest::newRow("the other model") << flip(4) << damaged;
    QTest::newRow("the other chip") << flip(5) << damaged;
    QTest::newRow("another version") << flip(6) << damaged;
    QTest::newRow("a bit of the digest") << flip(16) << damaged;
    QTest::newRow("the first byte of the body") << flip(kImageHeaderSize) << damaged;
    QTest::newRow("the last byte of the body")
        << flip(kImageHeaderSize + usualBodySize(Chip::Otg) - 1) << damaged;
}

void RigImageTest::damageIsFound()
{
    QFETCH(Damage, damage);
    QByteArray image = buildImage(sample());
    damage(image);
    QString why;
    QVERIFY(!readImage(image, &why));
    QTEST(why, "why");
}

void RigImageTest::whatFollowsAnImageIsLeftAlone()
{
    QVERIFY(readImage(buildImage(sample()) + QByteArray(1000, char(0xFF))));
}

QUILLON_TEST_CORE(RigImageTest)
#include "tst_rig_image.moc"

// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "panel/FirmwareUpgradeWidget.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

using QuillonFirmwareUpgrade::DeviceModel;
using QuillonFirmwareUpgrade::FirmwareUpgradeWidget;
using QuillonFirmwareUpgrade::Language;
using QuillonFirmwareUpgrade::UpgradePlan;

/// The device has two, and nearly everything the panel knows it knows of each.
enum class Chip { Pc, Otg };

/// What a panel can lose without a crash.
enum class Part { Library, Bar, Poll, Watchdog, Tool, Movie, Animation, DetectingText, CableHint };

/// The panel with its lid off: all that a test may see of its inside or do to it, and the only place where
/// its private members are touched. Whatever a customer can do is inherited.
///
/// A "pretend" puts the panel into a state that would take a whole run to reach; it sets the one value that
/// it names and nothing else happens.
class OpenPanel : public FirmwareUpgradeWidget {
public:
    using FirmwareUpgradeWidget::FirmwareUpgradeWidget;

    // ---- What happens to a panel from outside ----
    void seeDevices(const QStringList &paths, const QList<int> &productIds = {}); ///< a scan of the bus ends
    void connectionChanges(int status); ///< the device was opened (0) or is gone (anything else)
    void receive(const QByteArray &report); ///< the device sends this
    void endDownload(); ///< an image has come, or its server has given up
    void listenForImages(); ///< as a run does once it downloads
    void pollProgress(); ///< the moment has come to look at the tool's report
    void endTool(int exitCode, QProcess::ExitStatus status); ///< the flashing tool says that it has ended
    void fireWatchdog(); ///< the flashing tool has had its time
    void click(); ///< the bar was clicked
    using FirmwareUpgradeWidget::changeEvent;
    using FirmwareUpgradeWidget::eventFilter;
    using FirmwareUpgradeWidget::mouseMoveEvent;
    using FirmwareUpgradeWidget::mousePressEvent;

    // ---- Steps of a run, without what leads to them ----
    void startRun(); ///< asks for versions that are not known, then downloads
    void flash(const QString &image, int productId); ///< starts the flashing tool
    /// The PC half of a run over both chips has ended well. False: the panel was deleted meanwhile.
    [[nodiscard]] bool handOverToOtg();
    void completeRun(); ///< the last chip is flashed
    void fail(); ///< the run is over; the retry is offered
    void refreshVersions(int retriesLeft); ///< compares again until a version has changed
    UpgradePlan decidePlan();
    int compareVersions(const QString &a, const QString &b) const;

    // ---- Screens ----
    void createWidgetsAnew(); ///< a second set, not translated yet; the first one stays a child
    void retranslate();
    void updateScreen(); ///< to what versions, plan and flags say
    void showUpToDate();
    void showUpgradeAvailable();
    void waitForCable(Chip chip);
    void layOutWaitingLine();

    // ---- What the model decides ----
    int normalId(Chip chip) const;
    int bootLoaderId(Chip chip) const;
    bool isBootLoaderId(int productId) const;
    int targetId(Chip chip) const; ///< under which the tool is told to look for the chip
    QString versionAddress(Chip chip) const;
    QString imageAddressOfModel(Chip chip) const;
    QString filePrefix() const;
    QString offlineToolAddress() const;
    QString progressFile() const;
    QStringList toolArguments(const QString &image, int productId) const;

    // ---- What it knows of device and server ----
    DeviceModel model() const;
    void pretendModel(DeviceModel model);
    QString deviceVersion(Chip chip) const; ///< empty: not known
    void pretendDeviceVersion(Chip chip, const QString &version);
    QString serverVersion(Chip chip) const; ///< empty: not known
    void pretendServerVersion(Chip chip, const QString &version);
    void pretendVersions(const QString &devicePc, const QString &serverPc, const QString &deviceOtg,
                         const QString &serverOtg);
    int lastSeenId(Chip chip) const; ///< the product ID on the bus; 0: never seen
    void pretendLastSeenId(Chip chip, int productId);
    UpgradePlan plan() const;
    void pretendPlan(UpgradePlan plan);

    // ---- How far it has come ----
    bool isUpgrading() const; ///< a run is going on
    void pretendUpgrading(bool isUpgrading);
    bool isRecovering() const; ///< without having been asked to, or a retry is offered
    void pretendRecovering(bool isRecovering);
    bool offersRetry() const; ///< the failure screen is up
    void pretendRetryOffer(bool offers);
    bool isPcDone() const; ///< of a run over both chips
    void pretendPcDone(bool isDone);
    bool isWaitingForCable() const; ///< the bar says so
    void pretendWaitingForCable(bool isWaiting);
    bool awaitsNewVersions() const; ///< after a success the versions are read back without a word
    void pretendAwaitingNewVersions(bool awaits);
    int notReadyReplies() const; ///< versions "0.0.0" in a row while it awaits new ones
    void pretendNotReadyReplies(int count);

    // ---- Images ----
    bool hasImage(Chip chip) const; ///< it is on disk, whole
    void pretendImage(Chip chip, bool isThere);
    QString imagePath(Chip chip) const;
    void pretendImagePath(Chip chip, const QString &path);
    QString imageAddress(Chip chip) const; ///< where it was last asked for
    void pretendImageAddress(Chip chip, const QString &address);
    void pretendDownloadRetries(int count);
    int downloadRetries() const;

    // ---- The tool's report ----
    int lastPercent() const; ///< -1: none yet
    void pretendLastPercent(int percent);
    QDateTime lastPercentSince() const; ///< since when it has reported the same
    void pretendLastPercentSince(const QDateTime &time);

    // ---- Window and language ----
    bool isChinese() const; ///< the texts on the screen are
    void pretendChinese(bool isChinese);
    bool isDragged() const;
    QPoint dragPosition() const; ///< of the pointer, in the panel's frame

    // ---- Parts; null once lost ----
    HIDCommunicator::OrvikHIDManager *library() const;
    QProcess *tool() const;
    QTimer *pollTimer() const; ///< looks at the tool's report
    QTimer *watchdog() const; ///< ends a tool that takes too long
    bool isDeviceOpen() const; ///< in the HID library
    /// The pointer becomes null while the part itself stays; gives back what undoes this.
    std::function<void()> forget(Part part);
    /// The part is deleted as well; of the library, the panel's hold is let go.
    void lose(Part part);

    // ---- Widgets ----
    QLabel *title() const;
    QPushButton *closeButton() const;
    QLabel *card() const; ///< of the versions
    QLabel *noNewFirmware() const;
    QLabel *newVersionTitle() const;
    QLabel *newVersionDot() const;
    QLabel *newVersion() const;
    QLabel *currentVersionTitle() const;
    QLabel *currentVersion() const;
    QLabel *notesIcon() const;
    QLabel *notesTitle() const;
    QLabel *notesLine() const;
    QTextEdit *notes() const;
    QLabel *animation() const; ///< how to connect the device
    QMovie *movie() const; ///< what it plays
    QLabel *detectingText() const;
    QLabel *cableHint() const;
    QLabel *failureIcon() const;
    QLabel *failureText() const;
    QLabel *offlineToolTip() const;
    QLabel *offlineToolIcon() const;
    QLabel *offlineToolLink() const;

    // ---- The bar and what stands on it ----
    ClickableProgressBar *bar() const;
    QColor barBackground() const;
    QColor barBorder() const;
    double barBorderWidth() const;
    QLabel *rocket() const;
    QLabel *upgradeText() const; ///< the offer to upgrade, or to try again
    QLabel *tooOldText() const;
    QLabel *percentText() const;
    QLabel *waitingIcon() const;
    QLabel *waitingText() const; ///< for the cable, or for the upgrade to end
    QLabel *doneIcon() const;
    QLabel *doneText() const;

    // ---- The whole of it ----
    /// Every flag, version, path and number as "name=value" lines, so that a test can state what stayed as it
    /// was, or which lines changed.
    QStringList state() const;

    /// How many connections a signal, given as SIGNAL(), has.
    static int receiversOf(const QObject &sender, const char *signal);
};

/// The lines of \a after that are not in \a before.
inline QStringList changedState(const QStringList &before, const QStringList &after)
{
    QStringList changed;
    for (const QString &line : after) {
        if (!before.contains(line))
            changed.append(line);
    }
    return changed;
}

/// A panel does without a part while this lives.
class Without {
public:
    Without(OpenPanel &panel, Part part)
        : m_bringBack(panel.forget(part))
    {
    }
    ~Without() { m_bringBack(); }
    Without(const Without &) = delete;
    Without &operator=(const Without &) = delete;

private:
    const std::function<void()> m_bringBack;
};

// SPDX-FileCopyrightText: 2026 Quillon
// SPDX-License-Identifier: LicenseRef-Quillon

#pragma once

#include "device/DeviceModel.h"

#include <QDateTime>
#include <QList>
#include <QPoint>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QWidget>

class ClickableProgressBar;
class QLabel;
class QMessageBox;
class QMovie;
class QPushButton;
class QTextEdit;
class QTimer;

namespace HIDCommunicator {
class OrvikHIDManager;
}

#if defined(QUILLON_FIRMWARE_UPGRADE_LIBRARY)
#define QUILLON_FIRMWARE_UPGRADE_EXPORT Q_DECL_EXPORT
#else
#define QUILLON_FIRMWARE_UPGRADE_EXPORT Q_DECL_IMPORT
#endif

/// The firmware-upgrade panel, and what it is told: the device's model and the user's language.
namespace QuillonFirmwareUpgrade {

/// Which firmware of the device has to be replaced.
enum class UpgradePlan : int { None = 0, PcOnly = 1, OtgOnly = 2, Both = 3 };

/// The languages of the panel. A value outside the two is shown as English.
enum class Language : int { Chinese = 0, English = 1 };

struct LanguageRow;

/// Switches every panel of this process, those to come included, to \a lang and re-translates them before it
/// returns. Also makes the language's font family the application's default font. GUI thread only; needs a
/// QApplication.
QUILLON_FIRMWARE_UPGRADE_EXPORT void setLanguage(Language lang);

/// What setLanguage() was last called with, unchanged; Chinese before the first call. GUI thread only.
QUILLON_FIRMWARE_UPGRADE_EXPORT Language getCurrentLanguage();

/// The firmware-upgrade panel: a frameless window of 472 x 418 pixels that works by itself once it exists.
///
/// It watches the HID bus for a device of its model, reads the device's two firmware versions, asks the
/// update server for the newest ones, shows what it found and, on a click, downloads both images and drives
/// the external flashing tool for one chip after the other. A device that is stuck in its boot loader is
/// recovered without a click.
///
/// Everything runs on the GUI thread; every function is to be called there. A server query blocks the caller
/// for at most 2 s in a nested event loop, a start of the flashing tool for at most 3 s. The panel may be
/// deleted at any moment, also from inside such a loop; a running flashing tool is then ended within 1 s.
///
/// Its log lines carry Qt's logging categories quillon.panel, quillon.hid, quillon.net and quillon.flash. All
/// are on; a host filters them as any other, for example with
/// QLoggingCategory::setFilterRules("quillon.net.debug=false").
class QUILLON_FIRMWARE_UPGRADE_EXPORT FirmwareUpgradeWidget : public QWidget {
    Q_OBJECT

public:
    /// Builds the panel for R2 in the current language and starts watching the bus. Never fails: without a
    /// device it waits.
    explicit FirmwareUpgradeWidget(QWidget *parent = nullptr);

    /// Ends a running flashing tool (asked first, then killed) and releases the HID library. Takes at most
    /// about 1 s.
    ~FirmwareUpgradeWidget() override;

    /// Serves \a model from now on. While idle the panel forgets what it knew of the former device and looks
    /// for the new one; while an upgrade runs only the model changes. The model already served: nothing
    /// happens. Where a device in its boot loader is attached this starts its recovery, and blocks as long as
    /// startAutoRecoverUpgrade().
    void setDeviceModel(DeviceModel model);

    /// Shows the panel and starts the recovery of a device in its boot loader: both firmwares, no version
    /// check. While the failure screen is up it offers the retry instead. Discovery calls it by itself; a
    /// host may as well. May block for four server queries, about 8 s in all, in nested event
    /// loops, longer while the device's replies ask the server, too, and until a warning box that comes up
    /// meanwhile is answered.
    void startAutoRecoverUpgrade();

Q_SIGNALS:
    /// The versions were compared: the version to show, and whether any firmware has to be upgraded. The
    /// server names the version: a host shows it as plain text.
    void upgradeDisplayMsg(QString disPlayVer, bool isUpgradeNeeded);
    /// A device in its boot loader was found while nothing ran; the recovery starts.
    void onDeviceBrickedDetected();
    /// The OTG interface is on the bus and the run has reached its OTG half. The panel drops every receiver
    /// of this signal at several points of a run: a host's connection does not last.
    void r2otgConnected();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;

private Q_SLOTS:
    void ConnectingR2(const QStringList &devices, const QList<int> &pidList);
    void onHidConnetChanged(int remove);
    void onReceiveHIDdata(QByteArray receiveData);
    void onFirmwareDownloaded();
    void onDfuProcessFinished(int exitCode, QProcess::ExitStatus status);
    void onDfuTimeout();
    void onReadFirmwareTxt();

private:
    enum class Port { Pc, Otg };
    /// Whether the panel outlived a call in which others could delete it: their slots, or an event loop, ran
    /// there. Once it is Gone no member may be touched. Only a function's last step may ignore it.
    enum class [[nodiscard]] PanelIs{Alive, Gone};

    // ---- Lifecycle: panel/Lifecycle.cpp ----
    void removeStaleProgressFile();
    void setUpWindow();
    void createToolAndTimers();
    void disconnectEverything();
    void endRunningTool();
    void leaveTool();
    void refreshConnectionHint();
    void resetRunState();
    void connectToModel();

    // ---- Versions and plan: panel/Plan.cpp ----
    int compareVersion(const QString &a, const QString &b) const;
    UpgradePlan decideUpgradePlan();
    PanelIs storeFreshPlan();
    bool isTooOldForPanel() const;
    bool isUpgradePlanned() const;
    bool isOtgPhase() const;
    void takeFreshVersions(bool silent);
    PanelIs refreshPlanAndScreen();
    void logPlan() const;

    // ---- Download and sequence: panel/Sequence.cpp ----
    void onUpgradeClicked();
    void startDownloadAndUpgrade();
    PanelIs fetchRemoteVersions();
    void prepareDownloads();
    void startPhaseOfPlan();
    void startPcPhase();
    void startOtgPhase();
    void startBothPhases();
    void startPcFlashing();
    void scheduleOtgFlashing();
    void startOtgFlashingIfStillWanted();
    void startOtgFlashingAtOnce();
    PanelIs handOverToOtg();
    void completeUpgrade();

    // ---- Recovery and refresh: panel/Recovery.cpp ----
    void requestVersionRefreshWithRetry(int retriesLeft);
    void judgeVersionRefresh(int retriesLeft);

    // ---- Models: device/panel/Models.cpp ----
    int pcNormalPid() const;
    int pcDfuPid() const;
    int otgNormalPid() const;
    int otgDfuPid() const;
    bool isDfuPid(int pid) const;
    int resolvePcTargetPid() const;
    int resolveOtgTargetPid() const;
    QString pcVersionUrl() const;
    QString otgVersionUrl() const;
    QString pcFirmwareDownloadUrl() const;
    QString otgFirmwareDownloadUrl() const;
    QString firmwareFilePrefix() const;

    // ---- Discovery: device/panel/Discovery.cpp ----
    void initHIDCommunicator();
    PanelIs rescan();
    void queryDeviceMode();
    void connectToDevice(const QString &path);
    void recoverBrickedDevice();

    // ---- Version reading: device/panel/VersionReading.cpp ----
    void handle_Continue_RD(QByteArray receiveData);
    void handle_Randow_RD(QByteArray receiveData);
    void handle_Randow_WR(QByteArray receiveData);
    void answerDeviceMode(bool upgradeMode);
    void warnOfUpgradeMode();
    void nameWarningButton();
    struct VersionChannel;
    bool isTooEarly(const VersionChannel &channel, const QString &version);
    PanelIs takeDeviceVersion(const VersionChannel &channel, const QString &version);
    PanelIs queryServer(const QString &url, QString FirmwareUpgradeWidget::*remoteVersion);

    // ---- Flashing tool: flash/panel/FlashingTool.cpp ----
    void startUpgradeWithExternalTool(const QString &binPath, int pid);
    QStringList buildDfuArgs(const QString &binPath, int pid) const;
    bool startTool(const QString &binPath, int pid);
    void showFlashingStarted();
    enum class ToolHelpers { End, Stay };
    ToolHelpers helpersOfTheTool() const;
    void killTool(ToolHelpers helpers = ToolHelpers::End);
    void bringPollForward();

    // ---- Progress of the tool: flash/panel/ProgressMonitor.cpp ----
    QString firmwareTxtPath() const;
    bool isToolRunning() const;
    void takeLine(const QString &line);
    void failWhenToolEnded(const QString &reason);
    void takeResult(int status);
    void takePercentage(int percent);
    bool isStalled(int percent);
    void endStalledRun(int percent);
    void switchToOtgProgress(int percent);
    bool isWaitingForOtg() const;

    // ---- Layout: panel/Layout.cpp ----
    void setupUI();
    void createTitleBar();
    void createVersionCard();
    void createNotes();
    void createBar();
    void createConnectionHint();
    void createFailureLine();
    void createOfflineToolLine();

    // ---- Keyboard and screen readers: panel/Access.cpp ----
    void makeAccessible();
    void nameForScreenReaders();
    void takeFocusFrom(QWidget *control);

    // ---- Language: panel/Language.cpp ----
    void retranslateUI();
    void retranslateOfflineTool();
    void retranslateLabels();
    void retranslateNotes();
    void retranslateUpgradeText();
    const LanguageRow &shownLanguage() const;
    QString fontFamily() const;
    QString currentReleaseNotes() const;
    QString detectingText(Port port) const;
    QString connectionHint(Port port) const;

    // ---- Screens: panel/States.cpp ----
    void updateUIByUpgradeState();
    void showUpgradeFailureUI();
    void updateWaitingLabelLayout();
    void showTooOldScreen();
    void showUpgradeAvailableScreen();
    void showUpToDateScreen();
    void placeOfflineToolLine();
    void showServerVersion();
    PanelIs fetchReleaseNotes();
    void showReleaseNotes();
    void showRetryOffer();
    bool isRetryScreen() const;
    void showWaitingScreen(Port port);
    void hideConnectionHint();
    void showCardAndNotes(bool visible);
    void loadTipMovie(Port port);
    void showProgress(int percent);
    void resetStallDetector();

    // ---- Window: panel/Interaction.cpp ----
    QString offlineToolAddress() const;
    QString offlineToolLink(bool underlined) const;

    // ---- State ----
    bool m_dragging = false;
    QPoint m_dragPosition;

    QLabel *m_titleLabel = nullptr;
    QPushButton *m_closeBtn = nullptr;
    QLabel *verCompLb = nullptr;
    QLabel *m_noNewFirmwareLb = nullptr;
    QLabel *m_newVerTitleLb = nullptr;
    QLabel *m_newVerDotLb = nullptr;
    QLabel *m_newVerLb = nullptr;
    QLabel *m_curVerTitleLb = nullptr;
    QLabel *m_curVerLb = nullptr;
    QLabel *m_notesIconLb = nullptr;
    QLabel *m_notesTitleLb = nullptr;
    QLabel *m_notesLineLb = nullptr;
    QTextEdit *m_notesEdit = nullptr;
    QLabel *m_rocketLb = nullptr;
    QLabel *m_upgradeTextLb = nullptr;
    QLabel *m_tooOldLb = nullptr;
    QLabel *upgradeProgDisPlay = nullptr;
    QLabel *m_waitingIconLb = nullptr;
    QLabel *m_upgradingLb = nullptr;
    QLabel *m_doneIconLb = nullptr;
    QLabel *m_doneLb = nullptr;
    QLabel *tipMoiveLb = nullptr;
    QMovie *m_tipMovie = nullptr;
    QLabel *m_detectingUsbLb = nullptr;
    QLabel *m_connectHintLb = nullptr;
    QLabel *m_failIconLb = nullptr;
    QLabel *m_failTextLb = nullptr;
    QLabel *m_offlineToolTipLb = nullptr;
    QLabel *m_offlineToolIconLb = nullptr;
    QLabel *m_offlineToolLinkLb = nullptr;

    HIDCommunicator::OrvikHIDManager *m_hidManager = nullptr; // shared by the process, not owned

    // Versions: empty = not yet known, "0.0.0" = the device is not ready, "104" = the server gave no answer.
    QString m_remotePcVersion;
    QString m_devicePcVersion;
    QString m_remoteOtgVersion;
    QString m_deviceOtgVersion;
    QString m_pcFirmwarePath;
    QString m_otgFirmwarePath;
    QString m_pcDownloadUrl;
    QString m_otgDownloadUrl;
    UpgradePlan m_upgradePlan = UpgradePlan::None;

    ClickableProgressBar *m_progressBar = nullptr;
    QProcess *m_dfuProcess = nullptr;
    QTimer *m_progressTimer = nullptr;
    QTimer *m_dfuTimeoutTimer = nullptr;

    // clang-format off
    // Flag                                true means                              set by                       cleared by
    bool m_autoRecoverRunning = false;     // a recovery runs or a retry is offered  discovery, failure screen    click, model change, success
    bool m_inFailureRetry = false;         // the failure screen offers the retry    failure screen               click, model change
    bool m_isUpgrading = false;            // a run is in progress                   download start, discovery    failure screen, success
    bool m_pcFirmwareDownloaded = false;   // the PC image is on disk, not empty     onFirmwareDownloaded         download start, model change
    bool m_otgFirmwareDownloaded = false;  // the OTG image is on disk, not empty    onFirmwareDownloaded         download start, model change
    bool pcUpgradeCompleted = false;       // the PC half of Both is flashed         progress monitor             download start, model change
    int m_downloadRetryCount = 0;
    int m_maxDownloadRetry = 3;
    bool isChinese = true;                 // the texts are Chinese                  retranslateUI                retranslateUI
    bool m_isWaitingForUSB = true;         // the bar asks for the cable             waiting screen               tool start, progress monitor
    DeviceModel m_deviceModel = DeviceModel::R2;
    int lastDetectedOtgPid = 0;            // 0: none seen                           discovery                    click, model change, success
    int lastDetectedPcPid = 0;             // 0: none seen                           discovery                    model change
    int m_lastProgressPercent = -1;        // -1: the tool has not reported yet      progress monitor             tool start, click, failure
    QDateTime m_lastProgressTime;          // when that percentage was first seen    progress monitor             tool start, click, failure
    bool m_postUpgradeWaiting = false;     // the next version read is silent        success                      version reading
    int m_zeroVersionCount = 0;            // "0.0.0" in a row in that wait          version reading              version reading, success
    QString m_leftoverReport;              // an old report that cannot be removed   tool start                   tool start
    int m_heldPolls = 0;                   // polls that found the file held         progress monitor             tool start
    Language m_otherLanguage = Language::English; // the texts' when not Chinese     retranslateUI
    QPointer<QMessageBox> m_warningBox;    // the user has to answer it              version reading
    int m_nestedReplies = 0;               // versions that wait for the server      version reading              version reading
    // clang-format on
};

} // namespace QuillonFirmwareUpgrade

#include <QApplication>
#include <QDialog>
#include <QTimer>

#include "frame/frmSplash.h"
#include "link/DownloadPortFixture.h"
#include "link/frmDownloadPortParallel.h"
#include "link/frmDownloadPortSerial.h"
#include "link/frmDownloader.h"
#include "platform/Global.h"

namespace {

// The downloader window with the download port as a test has it.
class DownloaderDownloadPortTest : public DownloadPortFixture {
  protected:
    void SetUp() override {
        DownloadPortFixture::SetUp();
        MakeGoodInstallation();
        frmDownloader::ResetProcessEnded();
        // A downloader closed by an earlier case of this process asked the
        // application to quit while no loop ran, and every later loop would end
        // at once; the application's own loop, run once, clears that.
        QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
        QCoreApplication::exec();
    }
    void TearDown() override {
        Global<frmSplash>::Unload();
        Global<frmDownloader>::Unload();
        frmDownloader::ResetProcessEnded();
        DownloadPortFixture::TearDown();
    }
    frmDownloader& Load() {
        frmDownloader& Window = Global<frmDownloader>::Get();
        Window.Form_Load();
        return Window;
    }
    // Chooses the menu entry and notes which window comes up, modal or not,
    // then leaves it by its OK button as a user would.
    void ChooseDownloadPortSetup(frmDownloader& Window) {
        QTimer::singleShot(0, [this] {
            QWidget* Shown = QApplication::activeModalWidget();
            if (Shown == nullptr) {
                return;
            }
            ShownName = Shown->objectName();
            ShownModal = Shown->isModal();
            if (auto* OK = Shown->findChild<QPushButton*>(QStringLiteral("cmdOK"))) {
                OK->click();
            } else if (auto* Dialog = qobject_cast<QDialog*>(Shown)) {
                Dialog->reject();
            }
        });
        Window.mnuDownloadPortSetup->trigger();
    }
    QString ShownName;
    bool ShownModal = false;
};

TEST_F(DownloaderDownloadPortTest, StartUpTriesTheStoredSerialPortThroughTheWindowsChipLink) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    frmDownloader& Window = Load();
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.KavlinControl1->CommPort(), SerialDevices::SimulatedChipPort)
        << "every transfer opens the number found usable";
    EXPECT_FALSE(Window.KavlinControl1->PortOpen());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloaderDownloadPortTest, StartUpWithAPortThatWillNotOpenShowsNoBox) {
    StoreSerialPort(4);
    Load();
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloaderDownloadPortTest, DownloadPortMenuOpensTheSerialWindowForAKv20) {
    frmDownloader& Window = Load();
    GlobalData::ChipType = 2;
    ChooseDownloadPortSetup(Window);
    EXPECT_EQ(ShownName, QStringLiteral("frmDownloadPortSerial"));
    EXPECT_TRUE(ShownModal);
    EXPECT_FALSE(Global<frmDownloadPortSerial>::IsLoaded()) << "OK unloads the window";
}

TEST_F(DownloaderDownloadPortTest, DownloadPortMenuOpensTheSerialWindowForAKv30) {
    frmDownloader& Window = Load();
    GlobalData::ChipType = 3;
    ChooseDownloadPortSetup(Window);
    EXPECT_EQ(ShownName, QStringLiteral("frmDownloadPortSerial"));
}

TEST_F(DownloaderDownloadPortTest, DownloadPortMenuOpensTheParallelWindowForAKv10) {
    frmDownloader& Window = Load();
    GlobalData::ChipType = 1;
    ChooseDownloadPortSetup(Window);
    EXPECT_EQ(ShownName, QStringLiteral("frmDownloadPortParallel"));
    EXPECT_TRUE(ShownModal);
    EXPECT_FALSE(Global<frmDownloadPortParallel>::IsLoaded());
}

}  // namespace

#include <QTest>

#include "link/DownloadPortFixture.h"
#include "link/frmDownloadPortSerial.h"
#include "platform/Global.h"
#include "platform/SerialPortObject.h"

namespace {

class DownloadPortSerialTest : public DownloadPortFixture {
  protected:
    void TearDown() override {
        Global<frmDownloadPortSerial>::Unload();
        SerialDevices::SetDeviceInfoSource(nullptr);
        DownloadPortFixture::TearDown();
    }
    frmDownloadPortSerial& Open() {
        frmDownloadPortSerial& Window = Global<frmDownloadPortSerial>::Get();
        Window.show();
        return Window;
    }
    // The user picks an entry with the keys, as from a closed list.
    static void Choose(QComboBox* List, Qt::Key Key) {
        List->setFocus();
        QTest::keyClick(List, Key);
    }
    void Click(QPushButton* Button) { QTest::mouseClick(Button, Qt::LeftButton); }
};

TEST_F(DownloadPortSerialTest, WindowHasItsCaptionControlsAndToolTip) {
    frmDownloadPortSerial& Window = Open();
    EXPECT_EQ(Window.windowTitle(), QStringLiteral("Download Port"));
    EXPECT_TRUE(Window.isModal());
    EXPECT_EQ(Window.fraSerialPort->title(), QStringLiteral("Serial Port"));
    EXPECT_EQ(Window.lblSerialPortNumber->text(), QStringLiteral("Port Number:"));
    EXPECT_EQ(Window.cboSerialPortNumber->toolTip(), QStringLiteral("Choose the port number here"));
    EXPECT_EQ(Window.fraPortStatus->title(), QStringLiteral("Port Status"));
    EXPECT_EQ(Window.cmdOpenPort->text(), QStringLiteral("Open Port"));
    EXPECT_EQ(Window.cmdClosePort->text(), QStringLiteral("Close Port"));
    EXPECT_EQ(Window.fraPortStatus->lblStatusCaption->text(), QStringLiteral("Status:"));
    EXPECT_EQ(Window.cmdOK->text(), QStringLiteral("&OK"));
    EXPECT_EQ(Window.findChild<QComboBox*>(QStringLiteral("cboSerialPortNumber")),
              Window.cboSerialPortNumber);
}

TEST_F(DownloadPortSerialTest,
       ListHoldsPortsOneToSixteenLabelledWithTheirDevicesAndTheSimulatedChip) {
    SerialDevices::SetDeviceLister([] { return QStringList({QStringLiteral("/dev/ttyUSB0")}); });
    SerialDevices::SetDeviceInfoSource([] {
        return QList<SerialDevices::DeviceInfo>(
            {{QStringLiteral("/dev/ttyUSB0"), QStringLiteral("FT232R USB UART"), QString(),
              QString()}});
    });
    QComboBox* List = Open().cboSerialPortNumber;
    ASSERT_EQ(List->count(), 17);
    EXPECT_EQ(List->itemText(0), QStringLiteral("1 - ttyUSB0 FT232R USB UART"));
    EXPECT_EQ(List->itemText(1), QStringLiteral("2"));
    EXPECT_EQ(List->itemText(15), QStringLiteral("16"));
    EXPECT_EQ(List->itemText(16), QStringLiteral("99 - simulated chip"));
}

TEST_F(DownloadPortSerialTest, PortNumberZeroInTheSettingsShowsTheFirstEntry) {
    StoreSerialPort(0);
    DownloadPortExecutive::Initialize();
    frmDownloadPortSerial& Window = Open();
    EXPECT_EQ(Window.cboSerialPortNumber->currentIndex(), 0);
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
}

TEST_F(DownloadPortSerialTest, StoredPortIsShownAndAnOpenPortStaysOpenWhenTheWindowFillsItself) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    frmDownloadPortSerial& Window = Open();
    EXPECT_EQ(Window.cboSerialPortNumber->currentText(), QStringLiteral("99 - simulated chip"));
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral("  Open"));
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("99"));
}

TEST_F(DownloadPortSerialTest, OpenPortOnTheSimulatedChipShowsOpenAndSavesIt) {
    frmDownloadPortSerial& Window = Open();
    Choose(Window.cboSerialPortNumber, Qt::Key_End);
    Click(Window.cmdOpenPort);
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral("  Open"));
    EXPECT_EQ(Window.lblStatus->palette().color(QPalette::Window), QColor(Qt::white));
    EXPECT_NE(Window.lblStatus->palette().color(QPalette::WindowText), QColor(Qt::white));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("99"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Mode")), QStringLiteral("Serial"));
}

TEST_F(DownloadPortSerialTest, OpenPortOnAMissingDeviceShowsTheBoxWithItsCauseAndStaysDefined) {
    SerialDevices::SetDeviceLister(
        [] { return QStringList({QStringLiteral("/dev/kavlin-test-no-such-tty")}); });
    frmDownloadPortSerial& Window = Open();
    Click(Window.cmdOpenPort);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Download Port Error"));
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Unable to open Com1\nNo such device: /dev/kavlin-test-no-such-tty"));
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(Window.lblStatus->palette().color(QPalette::Window), QColor(Qt::red));
    EXPECT_EQ(Window.lblStatus->palette().color(QPalette::WindowText), QColor(Qt::white));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("1"))
        << "nothing is rolled back";
}

TEST_F(DownloadPortSerialTest, PortHeldByAnotherPortIsReportedWithThatCause) {
    SerialPortObject Holder;
    Holder.SetCommPort(SerialDevices::SimulatedChipPort);
    Holder.SetPortOpen(true);
    frmDownloadPortSerial& Window = Open();
    Choose(Window.cboSerialPortNumber, Qt::Key_End);
    Click(Window.cmdOpenPort);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Text,
              QStringLiteral("Unable to open Com99\nThe simulated chip's line is in use"));
}

TEST_F(DownloadPortSerialTest, ChangingThePortNumberWithThePortOpenClosesItAndStoresItUndefined) {
    frmDownloadPortSerial& Window = Open();
    Choose(Window.cboSerialPortNumber, Qt::Key_End);
    Click(Window.cmdOpenPort);
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    Choose(Window.cboSerialPortNumber, Qt::Key_Up);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloadPortSerialTest, ClosePortClosesAndStoresTheSetUpUndefined) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    frmDownloadPortSerial& Window = Open();
    Click(Window.cmdClosePort);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloadPortSerialTest, OKLeavesTheWindowAndAppliesNothing) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    frmDownloadPortSerial& Window = Open();
    Click(Window.cmdOK);
    EXPECT_FALSE(Window.isVisible());
    EXPECT_EQ(Window.result(), QDialog::Accepted);
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("99"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

}  // namespace

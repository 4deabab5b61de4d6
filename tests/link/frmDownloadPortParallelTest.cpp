#include <QTest>

#include "link/DownloadPortFixture.h"
#include "link/ParallelDownloader.h"
#include "link/frmDownloadPortParallel.h"
#include "platform/Global.h"

namespace {

class DownloadPortParallelTest : public DownloadPortFixture {
  protected:
    void SetUp() override {
        DownloadPortFixture::SetUp();
        GlobalData::ChipType = 1;
    }
    void TearDown() override {
        Global<frmDownloadPortParallel>::Unload();
        DownloadPortFixture::TearDown();
    }
    frmDownloadPortParallel& Open() {
        frmDownloadPortParallel& Window = Global<frmDownloadPortParallel>::Get();
        Window.show();
        return Window;
    }
    // A new opening of the window, as from the menu again.
    frmDownloadPortParallel& OpenAgain() {
        Global<frmDownloadPortParallel>::Unload();
        return Open();
    }
    // On the indicator: a radio button or check box takes a click on itself only.
    static void Click(QAbstractButton* Button) {
        QTest::mouseClick(Button, Qt::LeftButton, {}, QPoint(6, Button->height() / 2));
    }
    static void Choose(QComboBox* List, Qt::Key Key) {
        List->setFocus();
        QTest::keyClick(List, Key);
    }
    // Selects what the box holds and types in its place.
    static void TypeOver(QLineEdit* Box, const QString& Text) {
        QTest::keyClick(Box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(Box, Text);
    }
    static DownloadPortInfoType Info() {
        DownloadPortInfoType Port;
        DownloadPortExecutive::GetDownloadPortInfo(Port);
        return Port;
    }
    void OpenOnLpt1(frmDownloadPortParallel& Window) {
        Click(Window.cmdOpenPort);
        ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
        ASSERT_EQ(Window.lblStatus->text(), QStringLiteral("  Open"));
    }
};

TEST_F(DownloadPortParallelTest, WindowHasItsCaptionControlsAndToolTips) {
    frmDownloadPortParallel& Window = Open();
    EXPECT_EQ(Window.windowTitle(), QStringLiteral("Download Port"));
    EXPECT_TRUE(Window.isModal());
    EXPECT_EQ(Window.fraParallelPort->title(), QStringLiteral("Parallel Port"));
    EXPECT_EQ(Window.chkPortReserve->text(), QStringLiteral("&Reserve Port"));
    EXPECT_EQ(Window.lblParallelPortNumber->text(), QStringLiteral("Port Number"));
    EXPECT_EQ(Window.cboParallelPortNumber->toolTip(),
              QStringLiteral("Choose the LPT number here"));
    ASSERT_EQ(Window.cboParallelPortNumber->count(), 16);
    EXPECT_EQ(Window.cboParallelPortNumber->itemText(0), QStringLiteral("1"));
    EXPECT_EQ(Window.cboParallelPortNumber->itemText(15), QStringLiteral("16"));
    EXPECT_EQ(Window.fraParallelPortAddress->title(), QStringLiteral("Port Address"));
    EXPECT_EQ(Window.optH378->text(), QStringLiteral("&H378"));
    EXPECT_EQ(Window.optH278->text(), QStringLiteral("&H278"));
    EXPECT_EQ(Window.optH3BC->text(), QStringLiteral("&H3BC"));
    EXPECT_EQ(Window.optH268->text(), QStringLiteral("&H268"));
    EXPECT_EQ(Window.lblFreeFormat->text(), QStringLiteral("User-defined"));
    EXPECT_EQ(Window.txtFreeFormat->toolTip(), QStringLiteral("User-defined port address"));
    EXPECT_EQ(Window.fraPortStatus->title(), QStringLiteral("Port Status"));
    EXPECT_EQ(Window.cmdOpenPort->text(), QStringLiteral("Open Port"));
    EXPECT_EQ(Window.cmdClosePort->text(), QStringLiteral("Close Port"));
    EXPECT_EQ(Window.cmdOK->text(), QStringLiteral("&OK"));
}

TEST_F(DownloadPortParallelTest, NothingStoredShowsAddressZeroAsUserDefined) {
    frmDownloadPortParallel& Window = Open();
    EXPECT_TRUE(Window.optFreeFormat->isChecked());
    EXPECT_EQ(Window.txtFreeFormat->text(), QStringLiteral("&H0"));
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
}

TEST_F(DownloadPortParallelTest, PortNumberZeroInTheSettingsShowsTheFirstEntry) {
    StoreParallelPort(0, QStringLiteral("888"), false);
    DownloadPortExecutive::Initialize();
    frmDownloadPortParallel& Window = Open();
    EXPECT_EQ(Window.cboParallelPortNumber->currentIndex(), 0);
}

TEST_F(DownloadPortParallelTest, StoredSetUpFillsTheControls) {
    StoreParallelPort(3, QStringLiteral("632"), true);
    DownloadPortExecutive::Initialize();
    frmDownloadPortParallel& Window = Open();
    EXPECT_TRUE(Window.optH278->isChecked());
    EXPECT_EQ(Window.cboParallelPortNumber->currentText(), QStringLiteral("3"));
    EXPECT_TRUE(Window.chkPortReserve->isChecked());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral("  Open"));
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen())
        << "filling the controls changes nothing";
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("3"));
}

TEST_F(DownloadPortParallelTest, AddressOfNoFixedButtonIsShownInCapitalHexadecimal) {
    StoreParallelPort(1, QStringLiteral("&H2bc"), false);
    DownloadPortExecutive::Initialize();
    frmDownloadPortParallel& Window = Open();
    EXPECT_TRUE(Window.optFreeFormat->isChecked());
    EXPECT_EQ(Window.txtFreeFormat->text(), QStringLiteral("&H2BC"));
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen()) << "filling the box is no change";
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("1"));
    StoreParallelPort(1, QStringLiteral("-1"), false);
    DownloadPortExecutive::Initialize();
    EXPECT_EQ(OpenAgain().txtFreeFormat->text(), QStringLiteral("&HFFFF"));
}

TEST_F(DownloadPortParallelTest, AddressTypedAs378HexIsStoredAs888AndTheNextOpeningShowsOptH378) {
    frmDownloadPortParallel& Window = Open();
    Click(Window.optH278);
    TypeOver(Window.txtFreeFormat, QStringLiteral("&H378"));
    EXPECT_EQ(Window.txtFreeFormat->text(), QStringLiteral("&H378"));
    EXPECT_TRUE(Window.optFreeFormat->isChecked());
    EXPECT_FALSE(Window.optH278->isChecked());
    Click(Window.cmdOpenPort);
    EXPECT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("888"));
    EXPECT_EQ(ParallelDownloader::GetDataPort(), 888);
    frmDownloadPortParallel& Again = OpenAgain();
    EXPECT_TRUE(Again.optH378->isChecked());
    EXPECT_FALSE(Again.optFreeFormat->isChecked());
}

TEST_F(DownloadPortParallelTest, TypedTextThatIsNoNumberGivesAddressZero) {
    frmDownloadPortParallel& Window = Open();
    TypeOver(Window.txtFreeFormat, QStringLiteral("lpt"));
    ASSERT_EQ(Window.txtFreeFormat->text(), QStringLiteral("lpt"));
    Click(Window.cmdOpenPort);
    EXPECT_EQ(Info().Address(), 0);
    EXPECT_EQ(Setting(QStringLiteral("Port_Address")), QStringLiteral("0"));
}

TEST_F(DownloadPortParallelTest, AddressTextIsReadAsHexadecimalOrDecimalAndCutTo16Bits) {
    EXPECT_EQ(frmDownloadPortParallel::AddressOf(QStringLiteral("&H3BC")), 956);
    EXPECT_EQ(frmDownloadPortParallel::AddressOf(QStringLiteral("632")), 632);
    EXPECT_EQ(frmDownloadPortParallel::AddressOf(QStringLiteral("0x378")), 0);
    EXPECT_EQ(frmDownloadPortParallel::AddressOf(QStringLiteral("&HFFFF")), -1);
    EXPECT_EQ(frmDownloadPortParallel::AddressOf(QStringLiteral("70000")), 4464);
}

TEST_F(DownloadPortParallelTest, FixedButtonsGiveTheirAddresses) {
    frmDownloadPortParallel& Window = Open();
    const std::pair<QRadioButton*, int> Buttons[] = {
        {Window.optH378, 888}, {Window.optH278, 632}, {Window.optH3BC, 956}, {Window.optH268, 616}};
    for (const auto& [Button, Address] : Buttons) {
        Click(Button);
        Click(Window.cmdOpenPort);
        EXPECT_EQ(Info().Address(), Address) << Button->objectName().toStdString();
        EXPECT_EQ(ParallelDownloader::GetDataPort(), Address);
    }
}

TEST_F(DownloadPortParallelTest, ChangingThePortNumberWithThePortOpenClosesItAndStoresItUndefined) {
    frmDownloadPortParallel& Window = Open();
    OpenOnLpt1(Window);
    Choose(Window.cboParallelPortNumber, Qt::Key_Down);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    EXPECT_FALSE(Info().IsDefined());
    Click(Window.cmdOpenPort);
    EXPECT_EQ(Info().PortNumber(), 2) << "Open Port takes up the new number";
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("2"));
}

TEST_F(DownloadPortParallelTest, TickingReserveWithThePortOpenClosesIt) {
    frmDownloadPortParallel& Window = Open();
    OpenOnLpt1(Window);
    Click(Window.chkPortReserve);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QString());
    Click(Window.cmdOpenPort);
    EXPECT_EQ(Reservation.Opened, QStringList({QStringLiteral("/dev/parport0")}));
}

TEST_F(DownloadPortParallelTest, ChoosingAnAddressOrTypingOneWithThePortOpenClosesIt) {
    frmDownloadPortParallel& Window = Open();
    OpenOnLpt1(Window);
    Click(Window.optH3BC);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    OpenOnLpt1(Window);
    QTest::keyClick(Window.txtFreeFormat, Qt::Key_5);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_TRUE(Window.optFreeFormat->isChecked());
}

TEST_F(DownloadPortParallelTest, DeviceThatCannotBeHeldShowsTheBoxWithItsCause) {
    Reservation.FailWith = QStringLiteral("Permission denied: add the user to the lp group");
    frmDownloadPortParallel& Window = Open();
    Choose(Window.cboParallelPortNumber, Qt::Key_Down);
    Click(Window.chkPortReserve);
    Click(Window.cmdOpenPort);
    ASSERT_EQ(Boxes->Boxes.size(), 1);
    EXPECT_EQ(Boxes->Boxes[0].Title, QStringLiteral("Download Port Error"));
    EXPECT_EQ(
        Boxes->Boxes[0].Text,
        QStringLiteral("Unable to open LPT2:\nPermission denied: add the user to the lp group"));
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_EQ(Setting(QStringLiteral("Port_Number")), QStringLiteral("2"));
}

TEST_F(DownloadPortParallelTest, ClosePortClosesAndLetsGoOfTheDevice) {
    StoreParallelPort(1, QStringLiteral("888"), true);
    DownloadPortExecutive::Initialize();
    frmDownloadPortParallel& Window = Open();
    Click(Window.cmdClosePort);
    EXPECT_FALSE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Reservation.Closed, QList<int>({7}));
    EXPECT_EQ(Window.lblStatus->text(), QStringLiteral(" Closed"));
    EXPECT_TRUE(Boxes->Boxes.isEmpty());
}

TEST_F(DownloadPortParallelTest, SerialPortOpenShowsTheParallelWindowClosed) {
    StoreSerialPort(SerialDevices::SimulatedChipPort);
    DownloadPortExecutive::Initialize();
    ASSERT_TRUE(DownloadPortExecutive::DownloadPortIsOpen());
    EXPECT_EQ(Open().lblStatus->text(), QStringLiteral(" Closed"));
}

}  // namespace

#include <QTest>

#include "chip/ProcessorOptionsHost.h"
#include "chip/frmProcessorOptions.h"
#include "frame/GlobalData.h"
#include "frame/RegistryCentral.h"
#include "platform/Global.h"
#include "support/FrameFixture.h"
#include "support/QtPrinters.h"

namespace {

// The downloader's side of the dialog, recorded in the order it is asked.
class RecordingProcessorOptionsHost : public ProcessorOptionsHost {
  public:
    void EnableChipMenus(bool Enabled) override {
        Calls << (Enabled ? QStringLiteral("menus on") : QStringLiteral("menus off"));
    }
    void CheckPortMatchesChip() override {
        Calls << QStringLiteral("port check for %1").arg(GlobalData::ChipType);
    }
    QStringList Calls;
};

class ProcessorOptionsTest : public FrameFixture {
  protected:
    void SetUp() override {
        FrameFixture::SetUp();
        ProcessorOptionsHost::Install(&Host);
    }
    void TearDown() override {
        Global<frmProcessorOptions>::Unload();
        ProcessorOptionsHost::Uninstall(&Host);
        FrameFixture::TearDown();
    }
    frmProcessorOptions& Open() {
        frmProcessorOptions& Dialog = Global<frmProcessorOptions>::Get();
        Dialog.show();
        return Dialog;
    }
    static void Click(QAbstractButton* Button) { QTest::mouseClick(Button, Qt::LeftButton); }
    static QString Chosen(frmProcessorOptions& Dialog) {
        QStringList On;
        for (QRadioButton* Option : {Dialog.optKV10, Dialog.optKV20, Dialog.optKV30}) {
            if (Option->isChecked()) {
                On << Option->objectName();
            }
        }
        return On.join(QLatin1Char(','));
    }
    RecordingProcessorOptionsHost Host;
};

TEST_F(ProcessorOptionsTest, TheDialogHasItsCaptions) {
    frmProcessorOptions& Dialog = Open();
    EXPECT_EQ(Dialog.windowTitle(), QStringLiteral("Processor Type"));
    EXPECT_TRUE(Dialog.isModal());
    EXPECT_EQ(Dialog.Frame1->title(), QStringLiteral("Processor Type"));
    EXPECT_EQ(Dialog.optKV10->text(), QStringLiteral("KV-&10"));
    EXPECT_EQ(Dialog.optKV20->text(), QStringLiteral("KV-&20"));
    EXPECT_EQ(Dialog.optKV30->text(), QStringLiteral("KV-&30"));
    EXPECT_EQ(Dialog.cmdCancel->text(), QStringLiteral("Cancel"));
    EXPECT_EQ(Dialog.findChild<QRadioButton*>(QStringLiteral("optKV30")), Dialog.optKV30);
}

TEST_F(ProcessorOptionsTest, TheChipModelInUseIsTheOneOptionOn) {
    for (const int Chip : {1, 2, 3}) {
        GlobalData::ChipType = Chip;
        frmProcessorOptions& Dialog = Open();
        EXPECT_EQ(Chosen(Dialog), QStringLiteral("optKV%1").arg(Chip * 10));
        Global<frmProcessorOptions>::Unload();
    }
    EXPECT_EQ(ProbeErrors, QStringList());
}

TEST_F(ProcessorOptionsTest, AnUnknownChipTypeInMemoryShowsTheKv20WithAReport) {
    GlobalData::ChipType = 9;
    EXPECT_EQ(Chosen(Open()), QStringLiteral("optKV20"));
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_1 in frmProcessorOptions.Form_Load")});
}

TEST_F(ProcessorOptionsTest, AnUnknownChipTypeInTheSettingsGivesTheKv20) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV99"));
    GlobalData::ChipType = RegistryCentral::RegistryGetChipType();
    EXPECT_EQ(Chosen(Open()), QStringLiteral("optKV20"));
    EXPECT_EQ(ProbeErrors, QStringList{QStringLiteral("Error_1 in RegistryGetChipType")});
}

TEST_F(ProcessorOptionsTest, OKWithTheKv10StoresItDisablesTheChipMenusAndChecksThePort) {
    GlobalData::ChipType = 2;
    frmProcessorOptions& Dialog = Open();
    Click(Dialog.optKV10);
    EXPECT_EQ(Chosen(Dialog), QStringLiteral("optKV10"));
    Click(Dialog.cmdOK);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_EQ(GlobalData::ChipType, 1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV10"));
    EXPECT_EQ(Host.Calls,
              (QStringList{QStringLiteral("menus off"), QStringLiteral("port check for 1")}));
}

TEST_F(ProcessorOptionsTest, OKWithASerialChipEnablesTheChipMenus) {
    for (const int Chip : {2, 3}) {
        GlobalData::ChipType = 1;
        Host.Calls.clear();
        frmProcessorOptions& Dialog = Open();
        Click(Chip == 2 ? Dialog.optKV20 : Dialog.optKV30);
        Click(Dialog.cmdOK);
        EXPECT_EQ(GlobalData::ChipType, Chip);
        EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV%1").arg(Chip * 10));
        EXPECT_EQ(Host.Calls, (QStringList{QStringLiteral("menus on"),
                                           QStringLiteral("port check for %1").arg(Chip)}));
        Global<frmProcessorOptions>::Unload();
    }
}

TEST_F(ProcessorOptionsTest, CancelLeavesTheSettingTheChipTypeAndTheMenusAlone) {
    SetSetting(QStringLiteral("Chip_Type"), QStringLiteral("KV10"));
    GlobalData::ChipType = 1;
    frmProcessorOptions& Dialog = Open();
    Click(Dialog.optKV30);
    Click(Dialog.cmdCancel);
    EXPECT_FALSE(Dialog.isVisible());
    EXPECT_EQ(GlobalData::ChipType, 1);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV10"));
    EXPECT_EQ(Host.Calls, QStringList());
}

TEST_F(ProcessorOptionsTest, WithoutADownloaderTheChoiceIsStillStored) {
    ProcessorOptionsHost::Uninstall(&Host);
    frmProcessorOptions& Dialog = Open();
    Click(Dialog.optKV30);
    Click(Dialog.cmdOK);
    EXPECT_EQ(GlobalData::ChipType, 3);
    EXPECT_EQ(Setting(QStringLiteral("Chip_Type")), QStringLiteral("KV30"));
}

}  // namespace

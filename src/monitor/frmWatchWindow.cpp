#include "monitor/frmWatchWindow.h"

#include <QCloseEvent>
#include <QEvent>
#include <QFont>
#include <QHBoxLayout>
#include <QPalette>
#include <QVBoxLayout>
#include <algorithm>

#include "compile/CompilerCentral.h"
#include "frame/GlobalData.h"
#include "frame/TwipsConversion.h"
#include "link/XSerialDownloader.h"
#include "link/frmDownloader.h"
#include "monitor/WatchValues.h"
#include "platform/ErrObject.h"
#include "platform/Global.h"
#include "project/ProjectType.h"

namespace {
constexpr int RamSize = 65536;
// The window's fixed height and least width, in twips.
constexpr int32_t WindowHeight = 7125;
constexpr int32_t LeastWidth = 4680;
// The list and the values keep this much of the inner width free.
constexpr int32_t SideMargins = 250;

bool ChipCanBeWatched() { return GlobalData::ChipType == 2 || GlobalData::ChipType == 3; }
}  // namespace

frmWatchWindow::frmWatchWindow() : RamImage_(RamSize, 0) {
    setObjectName(QStringLiteral("frmWatchWindow"));
    setWindowTitle(QStringLiteral("Watch List"));
    setWindowFlag(Qt::Window);
    const QFont Courier(QStringLiteral("Courier New"));

    Label1 = new QLabel(QStringLiteral("Sample Period"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    WatchTimeCombo = new QComboBox(this);
    WatchTimeCombo->setObjectName(QStringLiteral("WatchTimeCombo"));
    for (int Milliseconds = 1000; Milliseconds <= 5000; Milliseconds += 500) {
        WatchTimeCombo->addItem(
            QStringLiteral("%1.%2 second").arg(Milliseconds / 1000).arg(Milliseconds % 1000 / 100),
            Milliseconds);
    }
    WatchTimeCombo->setCurrentIndex(0);
    Label1->setBuddy(WatchTimeCombo);
    // A user's choice only: setting the list from code starts nothing.
    connect(WatchTimeCombo, &QComboBox::activated, this, &frmWatchWindow::WatchTimeCombo_Click);

    WatchTimer = new QTimer(this);
    WatchTimer->setObjectName(QStringLiteral("WatchTimer"));
    WatchTimer->setInterval(1000);
    connect(WatchTimer, &QTimer::timeout, this, &frmWatchWindow::WatchTimer_Timer);

    lstWatchList = new QListWidget(this);
    lstWatchList->setObjectName(QStringLiteral("lstWatchList"));
    lstWatchList->setSelectionMode(QAbstractItemView::MultiSelection);
    lstWatchList->setFont(Courier);

    txtWatchText = new QPlainTextEdit(this);
    txtWatchText->setObjectName(QStringLiteral("txtWatchText"));
    txtWatchText->setReadOnly(true);
    txtWatchText->setUndoRedoEnabled(false);
    txtWatchText->setFont(Courier);

    CloseWatch = new QPushButton(QStringLiteral("&Close"), this);
    CloseWatch->setObjectName(QStringLiteral("CloseWatch"));
    connect(CloseWatch, &QPushButton::clicked, this, &frmWatchWindow::CloseWatch_Click);

    auto* Layout = new QVBoxLayout(this);
    const int Side = TwipsConversion::TwipsToPixelsX(SideMargins / 2);
    Layout->setContentsMargins(Side, Side, Side, Side);
    auto* Period = new QHBoxLayout();
    Period->addWidget(Label1);
    Period->addWidget(WatchTimeCombo);
    Period->addStretch(1);
    Layout->addLayout(Period);
    Layout->addWidget(lstWatchList, 1);
    Layout->addWidget(txtWatchText, 1);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(CloseWatch);
    Layout->addLayout(Buttons);

    setFixedHeight(TwipsConversion::TwipsToPixelsY(WindowHeight));
    setMinimumWidth(TwipsConversion::TwipsToPixelsX(LeastWidth));
    // After a good compile the list is read from the new symbol map.
    CompilerCentral::SetKvmFileHandler([this] { ProcessKvmFile(); });
    Form_Load();
}

frmWatchWindow::~frmWatchWindow() {
    WatchTimer->stop();
    CompilerCentral::SetKvmFileHandler(nullptr);
}

void frmWatchWindow::Form_Load() { KvmIsLoaded_ = false; }

bool frmWatchWindow::event(QEvent* Event) {
    if (Event->type() == QEvent::WindowActivate) {
        Form_Activate();
    } else if (Event->type() == QEvent::WindowDeactivate) {
        Form_Deactivate();
    }
    return QWidget::event(Event);
}

void frmWatchWindow::EnableMonitorPortSetup(bool Enable) {
    if (Global<frmDownloader>::IsLoaded()) {
        Global<frmDownloader>::Get().mnuMonitorPortSetup->setEnabled(Enable);
    }
}

void frmWatchWindow::Form_Activate() {
    EnableMonitorPortSetup(false);
    if (!KvmIsLoaded_) {
        ProcessKvmFile();
        if (!KvmIsLoaded_) {
            return;
        }
    }
    if (Global<frmDownloader>::IsLoaded()) {
        Global<frmDownloader>::Get().KavlinControl1->PCLink(true);
    }
    WatchTimer->start();
    SetWatchTextEnabled(true);
}

void frmWatchWindow::Form_Deactivate() {
    // The link stays the window's until it closes; only the sampling stops,
    // so that nothing samples while another window downloads.
    WatchTimer->stop();
    SetWatchTextEnabled(false);
}

void frmWatchWindow::ProcessKvmFile() {
    KvmIsLoaded_ = false;
    if (!ChipCanBeWatched()) {
        txtWatchText->setPlainText(QStringLiteral("Error -- KV-20 or KV-30 must be selected"));
        SetWatchTextEnabled(false);
        return;
    }
    lstWatchList->clear();
    KvmEntries_.clear();
    const KvmFileContents Contents =
        KvmFile::Read(KvmFile::KvmFilename(Project().Path(), Project().Name()));
    // The rows read before an error stay listed.
    KvmEntries_ = Contents.Entries;
    lstWatchList->addItems(Contents.Rows);
    if (Contents.IsLoaded) {
        txtWatchText->clear();
        KvmIsLoaded_ = true;
        SetWatchTextEnabled(true);
    } else {
        txtWatchText->setPlainText(Contents.ErrorText);
        SetWatchTextEnabled(false);
    }
}

void frmWatchWindow::RefreshValues() {
    if (!KvmIsLoaded_) {
        return;
    }
    // Any failure from here on ends the sample where it had come.
    try {
        txtWatchText->clear();
        QList<KvmEntry> Selected;
        for (int Row = 0; Row < lstWatchList->count() && Row < KvmEntries_.size(); ++Row) {
            if (lstWatchList->item(Row)->isSelected()) {
                Selected << KvmEntries_[Row];
            }
        }
        const WatchValues::RamRange Range = WatchValues::ReadRange(Selected);
        if (!Range.Fits) {
            return;
        }
        // Nothing selected gives a negative length, and the chip is not
        // read. The slack above the highest address may reach past the end
        // of RAM: the block has room for it, and only RAM's part is kept.
        KavlinControl::ByteBlock Block(RamImage_.begin(), RamImage_.end());
        if (Range.Length > 0) {
            Block.resize(std::max<size_t>(Block.size(),
                                          static_cast<size_t>(Range.StartingAddress) +
                                              static_cast<size_t>(Range.Length)));
        }
        XSerialDownloader::ReadChipRam(Range.StartingAddress, Range.Length, Block);
        std::copy(Block.begin(), Block.begin() + RamSize, RamImage_.begin());
        txtWatchText->setPlainText(WatchValues::WatchText(Selected, RamImage_));
    } catch (...) {
        TakeCurrentException();
    }
}

void frmWatchWindow::StopWatching() {
    WatchTimer->stop();
    KvmIsLoaded_ = false;
    lstWatchList->clear();
    KvmEntries_.clear();
    if (Global<frmDownloader>::IsLoaded()) {
        Global<frmDownloader>::Get().KavlinControl1->PCLink(false);
    }
    EnableMonitorPortSetup(true);
}

void frmWatchWindow::SetWatchTextEnabled(bool IsEnabled) {
    txtWatchText->setEnabled(IsEnabled);
    QPalette Colours = txtWatchText->palette();
    const QColor Background =
        IsEnabled ? QWidget::palette().color(QPalette::Active, QPalette::Base) : QColor(0xE0E0E0);
    for (const QPalette::ColorGroup Group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        Colours.setColor(Group, QPalette::Base, Background);
    }
    txtWatchText->setPalette(Colours);
}

void frmWatchWindow::WatchTimeCombo_Click(int Index) {
    // The first three characters of the entry's text give the seconds.
    const QString Text = WatchTimeCombo->itemText(Index);
    bool Ok = false;
    const double Seconds = Text.left(3).toDouble(&Ok);
    if (Ok) {
        WatchTimer->setInterval(static_cast<int>(Seconds * 1000.0 + 0.5));
    }
}

void frmWatchWindow::WatchTimer_Timer() {
    if (ChipCanBeWatched()) {
        RefreshValues();
    }
}

void frmWatchWindow::CloseWatch_Click() {
    StopWatching();
    ClosingFromCode = true;
    close();
}

void frmWatchWindow::closeEvent(QCloseEvent* Event) {
    Event->accept();
    if (!ClosingFromCode) {
        StopWatching();
    }
    Unload();
}

void frmWatchWindow::Unload() {
    hide();
    if (Global<frmWatchWindow>::IsLoaded() && &Global<frmWatchWindow>::Get() == this) {
        Global<frmWatchWindow>::Release();
        deleteLater();
    }
}

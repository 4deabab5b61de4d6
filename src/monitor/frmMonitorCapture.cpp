#include "monitor/frmMonitorCapture.h"

#include <QCloseEvent>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "frame/DirectoryCentral.h"
#include "frame/ErrorDisplay.h"
#include "monitor/MonitorCapture.h"
#include "platform/FileDialogService.h"
#include "platform/Global.h"

frmMonitorCapture::frmMonitorCapture() {
    setObjectName(QStringLiteral("frmMonitorCapture"));
    setWindowTitle(QStringLiteral("Capture to File"));
    Frame1 = new QGroupBox(QStringLiteral("Capture monitor port input"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    auto Button = [](QWidget* Parent, const char* Name, const char* Caption) {
        auto* Made = new QPushButton(QString::fromLatin1(Caption), Parent);
        Made->setObjectName(QString::fromLatin1(Name));
        return Made;
    };
    auto Label = [](QWidget* Parent, const char* Name, const char* Caption) {
        auto* Made = new QLabel(QString::fromLatin1(Caption), Parent);
        Made->setObjectName(QString::fromLatin1(Name));
        return Made;
    };
    cmdCreateCaptureFile = Button(Frame1, "cmdCreateCaptureFile", "Create File");
    cmdCloseFile = Button(Frame1, "cmdCloseFile", "Close File");
    lblFilename = Label(Frame1, "lblFilename", "Filename:");
    txtFilename = new QLineEdit(Frame1);
    txtFilename->setObjectName(QStringLiteral("txtFilename"));
    txtFilename->setReadOnly(true);
    lblFileSize = Label(Frame1, "lblFileSize", "File Size:  000000000 Bytes");
    lblStatus = Label(Frame1, "lblStatus", "Status:  Closed");
    tmrFileSizeMonitor = new QTimer(this);
    tmrFileSizeMonitor->setObjectName(QStringLiteral("tmrFileSizeMonitor"));
    cmdOK = Button(this, "cmdOK", "OK");

    auto* Inner = new QGridLayout(Frame1);
    Inner->addWidget(cmdCreateCaptureFile, 0, 0);
    Inner->addWidget(cmdCloseFile, 0, 1);
    Inner->addWidget(lblFilename, 1, 0);
    Inner->addWidget(txtFilename, 1, 1);
    Inner->addWidget(lblFileSize, 2, 0, 1, 2);
    Inner->addWidget(lblStatus, 3, 0, 1, 2);
    auto* Layout = new QVBoxLayout(this);
    Layout->addWidget(Frame1);
    auto* Buttons = new QHBoxLayout();
    Buttons->addStretch(1);
    Buttons->addWidget(cmdOK);
    Layout->addLayout(Buttons);
    setMinimumWidth(420);

    connect(cmdCreateCaptureFile, &QPushButton::clicked, this,
            &frmMonitorCapture::cmdCreateCaptureFile_Click);
    connect(cmdCloseFile, &QPushButton::clicked, this, &frmMonitorCapture::cmdCloseFile_Click);
    connect(cmdOK, &QPushButton::clicked, this, &frmMonitorCapture::cmdOK_Click);
    connect(tmrFileSizeMonitor, &QTimer::timeout, this,
            &frmMonitorCapture::tmrFileSizeMonitor_Timer);
    Form_Load();
}

frmMonitorCapture::~frmMonitorCapture() { MonitorCapture::SetCaptureWindowIsOpen(false); }

void frmMonitorCapture::Form_Load() {
    FilenameBackground = txtFilename->palette().color(QPalette::Base);
    FormBackground = palette().color(QPalette::Window);
    MonitorCapture::SetCaptureWindowIsOpen(true);
    ResetCaptureDisplay();
    ShowCaptureState();
}

void frmMonitorCapture::SetFilenameDisplay(const QString& Filename) {
    const QString Name = Filename.trimmed();
    QPalette Colours = txtFilename->palette();
    Colours.setColor(QPalette::Base, Name.isEmpty() ? FormBackground : FilenameBackground);
    txtFilename->setPalette(Colours);
    txtFilename->setEnabled(!Name.isEmpty());
    txtFilename->setText(Name);
}

void frmMonitorCapture::ShowRecording() {
    lblFileSize->setText(QStringLiteral("File Size:  "));
    cmdCreateCaptureFile->setEnabled(false);
    cmdCloseFile->setEnabled(true);
    tmrFileSizeMonitor->start();
    lblStatus->setText(QStringLiteral("Status:  Recording"));
}

void frmMonitorCapture::ShowCaptureState() {
    if (MonitorCapture::IsCaptureFileOpen()) {
        SetFilenameDisplay(MonitorCapture::GetCaptureFilename());
        ShowRecording();
    } else {
        SetFilenameDisplay(QString());
    }
}

void frmMonitorCapture::ResetCaptureDisplay() {
    tmrFileSizeMonitor->stop();
    tmrFileSizeMonitor->setInterval(500);
    cmdCreateCaptureFile->setEnabled(true);
    cmdCloseFile->setEnabled(false);
    lblFileSize->setText(QStringLiteral("File Size:  "));
    lblStatus->setText(QStringLiteral("Status:  Closed"));
    SetFilenameDisplay(QString());
}

void frmMonitorCapture::cmdCreateCaptureFile_Click() {
    if (MonitorCapture::IsCaptureFileOpen()) {
        ErrorDisplay::ShowErrorMessage(QStringLiteral("File already open"),
                                       QStringLiteral("File Open Error"));
        return;
    }
    FileDialogRequest Request;
    Request.Title = QStringLiteral("Open Capture File");
    Request.InitDir = DirectoryCentral::GetWorkPath();
    QString Filename;
    if (!FileDialogService::Instance().Show(Request, Filename)) {
        // A cancel ends it as a failure does, without a word.
        cmdCloseFile_Click();
        return;
    }
    if (QFileInfo::exists(Filename)) {
        const int Answer = ErrorDisplay::AskYesNo(
            QStringLiteral("File ") + Filename + QStringLiteral(" already exists. Replace?"),
            QStringLiteral("File Exists"));
        if (Answer != 6) {
            cmdCloseFile_Click();
            return;
        }
        QFile::remove(Filename);
    }
    SetFilenameDisplay(Filename);
    bool Success = false;
    MonitorCapture::OpenCaptureFile(Filename, Success);
    if (Success) {
        ShowRecording();
        return;
    }
    QString Text = QStringLiteral("Error opening file ") + Filename;
    if (!MonitorCapture::LastOpenFailure().isEmpty()) {
        Text += QLatin1Char('\n') + MonitorCapture::LastOpenFailure();
    }
    ErrorDisplay::ShowErrorMessage(Text, QStringLiteral("File Open Error"));
    txtFilename->clear();
    cmdCloseFile_Click();
}

void frmMonitorCapture::cmdCloseFile_Click() {
    MonitorCapture::CloseCaptureFile();
    cmdCreateCaptureFile->setEnabled(true);
    cmdCloseFile->setEnabled(false);
    tmrFileSizeMonitor->stop();
    lblFileSize->setText(QStringLiteral("File Size:  "));
    lblStatus->setText(QStringLiteral("Status:  Closed"));
    SetFilenameDisplay(QString());
}

void frmMonitorCapture::tmrFileSizeMonitor_Timer() {
    if (!MonitorCapture::IsCaptureFileOpen()) {
        // A failed write has ended the capture; the dialog follows.
        cmdCloseFile_Click();
        return;
    }
    lblFileSize->setText(QStringLiteral("File Size:  ") +
                         QString::number(MonitorCapture::GetCaptureFileSize()) +
                         QStringLiteral(" bytes"));
}

void frmMonitorCapture::cmdOK_Click() {
    tmrFileSizeMonitor->stop();
    Unload();
}

void frmMonitorCapture::closeEvent(QCloseEvent* Event) {
    Event->accept();
    tmrFileSizeMonitor->stop();
    Unload();
}

void frmMonitorCapture::Unload() {
    MonitorCapture::SetCaptureWindowIsOpen(false);
    hide();
    if (Global<frmMonitorCapture>::IsLoaded() && &Global<frmMonitorCapture>::Get() == this) {
        Global<frmMonitorCapture>::Release();
        deleteLater();
    }
}

#pragma once

#include <QString>
#include <memory>

// One file dialog: what it shows and how it asks.
struct FileDialogRequest {
    QString Title;
    QString InitDir;
    QString FileName;
    // "Description|pattern" pairs, as the menus have always written them.
    QString Filter;
    int FilterIndex = 1;
    bool Save = false;
};

// The file dialogs: Qt's in the program, scripted in tests.
class FileDialogService {
public:
    virtual ~FileDialogService() = default;
    // The chosen full file name; False when the user cancelled.
    virtual bool Show(const FileDialogRequest& Request, QString& Filename) = 0;

    static FileDialogService& Instance();
    static std::unique_ptr<FileDialogService> Install(std::unique_ptr<FileDialogService> Service);
};

// Cancels every dialog: where nobody can answer, nothing is chosen.
class CancellingFileDialogService : public FileDialogService {
public:
    bool Show(const FileDialogRequest&, QString&) override { return false; }
};

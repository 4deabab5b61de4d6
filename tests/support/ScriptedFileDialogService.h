#pragma once

#include <QList>
#include <deque>

#include "platform/FileDialogService.h"

// File dialogs for tests: records every request and answers from a queue of
// chosen names; an empty queue cancels.
class ScriptedFileDialogService : public FileDialogService {
  public:
    bool Show(const FileDialogRequest& Request, QString& Filename) override {
        Requests.append(Request);
        if (Answers.empty()) {
            return false;
        }
        Filename = Answers.front();
        Answers.pop_front();
        return true;
    }
    QList<FileDialogRequest> Requests;
    std::deque<QString> Answers;
};

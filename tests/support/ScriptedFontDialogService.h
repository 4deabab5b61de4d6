#pragma once

#include <QList>
#include <deque>
#include <utility>

#include "platform/FontDialogService.h"

// Font dialogs for tests: records every request and answers from a queue of
// chosen names and sizes; an empty queue cancels.
class ScriptedFontDialogService : public FontDialogService {
  public:
    bool Show(const FontDialogRequest& Request, QString& FontName, int& FontSize) override {
        Requests.append(Request);
        if (Answers.empty()) {
            return false;
        }
        FontName = Answers.front().first;
        FontSize = Answers.front().second;
        Answers.pop_front();
        return true;
    }
    QList<FontDialogRequest> Requests;
    std::deque<std::pair<QString, int>> Answers;
};

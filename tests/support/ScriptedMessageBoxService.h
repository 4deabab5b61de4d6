#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>

#include "platform/MessageBoxService.h"

// A message-box service for tests: records every box (title, text, buttons)
// and answers from a queue; with the queue empty a box takes its default
// button, as nobody is there to press another.
class ScriptedMessageBoxService : public MessageBoxService {
  public:
    struct Box {
        QString Text;
        QString Title;
        MsgBoxButtons Buttons;
    };

    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon Icon) override;

    void QueueAnswer(int Answer) { Answers.push_back(Answer); }
    // Every box so far as "Title|Text".
    QStringList Texts() const;
    QList<Box> Boxes;
    std::deque<int> Answers;
    // Runs while a box is up, before it is answered: what the user sees then.
    std::function<void(const Box&)> WhileShown;
};

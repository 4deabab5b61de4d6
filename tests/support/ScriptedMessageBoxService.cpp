#include "support/ScriptedMessageBoxService.h"

int ScriptedMessageBoxService::Show(const QString& Text, const QString& Title,
                                    MsgBoxButtons Buttons, MsgBoxIcon /*Icon*/) {
    Boxes.append(Box{Text, Title, Buttons});
    if (WhileShown) {
        WhileShown(Boxes.last());
    }
    if (Answers.empty()) {
        return DefaultAnswer(Buttons);
    }
    const int Answer = Answers.front();
    Answers.pop_front();
    return Answer;
}

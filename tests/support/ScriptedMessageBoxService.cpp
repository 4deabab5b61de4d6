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

QStringList ScriptedMessageBoxService::Texts() const {
    QStringList List;
    for (const Box& Shown : Boxes) {
        List << Shown.Title + QLatin1Char('|') + Shown.Text;
    }
    return List;
}

#include "platform/HeadlessMessageBoxService.h"

int HeadlessMessageBoxService::Show(const QString& Text, const QString& Title,
                                    MsgBoxButtons Buttons, MsgBoxIcon /*Icon*/) {
    const int Answer = DefaultAnswer(Buttons);
    if (Stream_ != nullptr) {
        const char* AnswerText = Answer == vbNo ? "No" : "OK";
        std::fprintf(Stream_, "[%s] %s (answered %s)\n", Title.toUtf8().constData(),
                     Text.toUtf8().constData(), AnswerText);
        std::fflush(Stream_);
    }
    return Answer;
}

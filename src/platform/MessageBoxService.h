#pragma once

#include <QString>
#include <memory>

// The answers and button sets of the message boxes, with the numbers the rest
// of the system compares against.
enum class MsgBoxButtons { OKOnly, YesNo, YesNoCancel };
enum class MsgBoxIcon { Exclamation, Information, Critical };

constexpr int vbOK = 1;
constexpr int vbCancel = 2;
constexpr int vbYes = 6;
constexpr int vbNo = 7;

// Every box the system shows goes through this service: Qt boxes in the
// program, a scripted answerer in tests, and a non-blocking answerer where no
// display exists.
class MessageBoxService {
  public:
    virtual ~MessageBoxService() = default;
    virtual int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
                     MsgBoxIcon Icon) = 0;

    // The service in use. Until one is installed, the headless answerer is used
    // so that no code path can block on a box nobody sees.
    static MessageBoxService& Instance();
    // Takes ownership; returns the previous one.
    static std::unique_ptr<MessageBoxService> Install(std::unique_ptr<MessageBoxService> Service);
};

// The button a box takes when nobody can answer it: OK, or No.
int DefaultAnswer(MsgBoxButtons Buttons);

#pragma once

#include <poll.h>
#include <unistd.h>

#include <QByteArray>
#include <QElapsedTimer>

// Reads what arrived at one end of a pseudo-terminal pair: Count bytes, or
// whatever came within the time limit.
inline QByteArray ReadFromTerminal(int Handle, int Count, int LimitMilliseconds = 3000) {
    QByteArray Got;
    QElapsedTimer Timer;
    Timer.start();
    while (Got.size() < Count && Timer.elapsed() < LimitMilliseconds) {
        pollfd Poll{Handle, POLLIN, 0};
        if (::poll(&Poll, 1, 50) > 0) {
            char Buffer[512];
            const ssize_t Read = ::read(Handle, Buffer, sizeof Buffer);
            if (Read > 0) {
                Got.append(Buffer, static_cast<int>(Read));
            }
        }
    }
    return Got;
}

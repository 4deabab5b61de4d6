#include "kvsim/SimInput.h"

#include <unistd.h>

#include <cerrno>

SimInput::SimInput(int Descriptor) : Reader([this, Descriptor] { ReadAll(Descriptor); }) {}

SimInput::~SimInput() { Reader.detach(); }

void SimInput::ReadAll(int Descriptor) {
    uint8_t Buffer[256];
    while (true) {
        const ssize_t Count = ::read(Descriptor, Buffer, sizeof Buffer);
        if (Count < 0 && errno == EINTR) {
            continue;
        }
        std::lock_guard<std::mutex> Guard(Lock);
        if (Count <= 0) {
            Ended = true;
            Changed.notify_all();
            return;
        }
        Bytes.insert(Bytes.end(), Buffer, Buffer + Count);
        Changed.notify_all();
    }
}

bool SimInput::Available() {
    std::lock_guard<std::mutex> Guard(Lock);
    return !Bytes.empty();
}

std::optional<uint8_t> SimInput::Read() {
    std::lock_guard<std::mutex> Guard(Lock);
    if (Bytes.empty()) {
        return std::nullopt;
    }
    const uint8_t Byte = Bytes.front();
    Bytes.pop_front();
    return Byte;
}

bool SimInput::Exhausted() {
    std::lock_guard<std::mutex> Guard(Lock);
    return Ended && Bytes.empty();
}

void SimInput::WaitFor(std::chrono::nanoseconds Time) {
    std::unique_lock<std::mutex> Guard(Lock);
    Changed.wait_for(Guard, Time, [this] { return Ended || !Bytes.empty(); });
}

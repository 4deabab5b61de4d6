#pragma once

#include <cstdio>

#include "platform/MessageBoxService.h"

// Answers every box at once with its default button and writes its title and
// text to a stream (standard error in the program), so that a run on a machine
// without a display never waits for a person who cannot be there.
class HeadlessMessageBoxService : public MessageBoxService {
  public:
    explicit HeadlessMessageBoxService(std::FILE* Stream = stderr) : Stream_(Stream) {}
    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon Icon) override;

  private:
    std::FILE* Stream_;
};

#pragma once

#include "platform/MessageBoxService.h"

// The boxes a person sees: QMessageBox, modal, with the system's texts.
class QtMessageBoxService : public MessageBoxService {
  public:
    int Show(const QString& Text, const QString& Title, MsgBoxButtons Buttons,
             MsgBoxIcon Icon) override;
};

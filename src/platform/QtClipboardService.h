#pragma once

#include "platform/ClipboardService.h"

// The desktop's clipboard. Texts go in and out with CR LF line breaks, as the
// editor counts them; other programs get plain line feeds.
class QtClipboardService : public ClipboardService {
  public:
    void Clear() override;
    void SetText(const QString& Text) override;
    QString GetText() override;
};

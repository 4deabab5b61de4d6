#pragma once

#include "platform/FontDialogService.h"

// QFontDialog from the request's font; a size outside the range is brought
// back into it.
class QtFontDialogService : public FontDialogService {
  public:
    bool Show(const FontDialogRequest& Request, QString& FontName, int& FontSize) override;
};

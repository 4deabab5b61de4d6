#pragma once

#include "platform/FileDialogService.h"

// QFileDialog with the request's title, folder, name and filters.
class QtFileDialogService : public FileDialogService {
public:
    bool Show(const FileDialogRequest& Request, QString& Filename) override;
};

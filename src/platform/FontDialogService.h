#pragma once

#include <QString>
#include <memory>

// One font dialog: the font it starts from and the sizes it offers.
struct FontDialogRequest {
    QString FontName;
    int FontSize = 9;
    int MinSize = 8;
    int MaxSize = 20;
};

// The font dialog: Qt's in the program, scripted in tests.
class FontDialogService {
  public:
    virtual ~FontDialogService() = default;
    // The chosen name and size, the size within the request's range; False
    // when the user cancelled.
    virtual bool Show(const FontDialogRequest& Request, QString& FontName, int& FontSize) = 0;

    static FontDialogService& Instance();
    static std::unique_ptr<FontDialogService> Install(std::unique_ptr<FontDialogService> Service);
};

// Cancels every dialog: where nobody can answer, nothing is chosen.
class CancellingFontDialogService : public FontDialogService {
  public:
    bool Show(const FontDialogRequest&, QString&, int&) override { return false; }
};

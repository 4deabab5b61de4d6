#pragma once

#include <QString>
#include <memory>

// The clipboard: the system's in the program, a plain one in tests.
class ClipboardService {
  public:
    virtual ~ClipboardService() = default;
    virtual void Clear() = 0;
    virtual void SetText(const QString& Text) = 0;
    virtual QString GetText() = 0;

    static ClipboardService& Instance();
    static std::unique_ptr<ClipboardService> Install(std::unique_ptr<ClipboardService> Service);
};

// A clipboard of this process only.
class MemoryClipboardService : public ClipboardService {
  public:
    void Clear() override { Text_.clear(); }
    void SetText(const QString& Text) override { Text_ = Text; }
    QString GetText() override { return Text_; }

  private:
    QString Text_;
};

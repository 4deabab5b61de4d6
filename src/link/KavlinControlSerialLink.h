#pragma once

#include "link/DownloadPortExecutive.h"

class KavlinControl;

// The download port tried through a KavlinControl, so that the port number it
// finds usable is the one every later transfer of that control opens.
class KavlinControlSerialLink : public DownloadPortExecutive::SerialLink {
  public:
    explicit KavlinControlSerialLink(KavlinControl& Control) : Control(Control) {}

    void SetCommPort(int16_t PortNumber) override;
    void OpenPort(bool OpenThePort, DownloaderStatusTypes& Status) override;

    // Makes Control the download port's serial link until Control goes away.
    static void Install(KavlinControl& Control);

  private:
    KavlinControl& Control;
};

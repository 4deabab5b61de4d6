#pragma once

// What the processor dialog asks of the downloader window, which stands
// above the chip subsystem: the two diagnostic menu entries that only a
// serial chip has, and a download port of the right kind for the chip. The
// downloader installs itself for its life; without it nothing is asked.
class ProcessorOptionsHost {
  public:
    virtual ~ProcessorOptionsHost() = default;
    // mnuRescue and mnuDiagnosticATN.
    virtual void EnableChipMenus(bool Enabled) = 0;
    // A port of the wrong kind for ChipType is closed.
    virtual void CheckPortMatchesChip() = 0;

    // The installed host, or none.
    static ProcessorOptionsHost* Instance();
    static void Install(ProcessorOptionsHost* Host);
    static void Uninstall(ProcessorOptionsHost* Host);
};

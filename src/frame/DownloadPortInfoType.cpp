#include "frame/DownloadPortInfoType.h"

void DownloadPortInfoType::Copy(const DownloadPortInfoType& Source) {
    IsDefined_ = Source.IsDefined_;
    IsParallel_ = Source.IsParallel_;
    PortNumber_ = Source.PortNumber_;
    Address_ = Source.Address_;
    Reserve_ = Source.Reserve_;
}

#include "frame/MonitorPortInfoType.h"

void MonitorPortInfoType::Copy(const MonitorPortInfoType& Source) {
    IsDefined = Source.IsDefined;
    BaudRate = Source.BaudRate;
    Parity = Source.Parity;
    PortNumber_ = Source.PortNumber_;
    DataBits_ = Source.DataBits_;
    StopBits_ = Source.StopBits_;
}

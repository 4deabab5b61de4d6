#include "platform/SerialPortObject.h"

#include "platform/QtSerialPort.h"
#include "platform/SerialDevices.h"

SerialPortObject::~SerialPortObject() {
    try {
        SetPortOpen(false);
    } catch (...) {
        // A device that fails to close at the end has nothing left to tell.
    }
}

void SerialPortObject::SetCommPort(int16_t Value) {
    if (PortOpen()) {
        SerialPortErrors::RaisePortAlreadyOpen();
    }
    CommPort_ = Value;
}

bool SerialPortObject::PortOpen() const { return Device_ && Device_->PortOpen(); }

void SerialPortObject::SetPortOpen(bool Value) {
    if (!Value) {
        if (Device_) {
            // A device that refuses to close stays this object's open port.
            if (Device_->PortOpen()) {
                Device_->SetPortOpen(false);
            }
            Device_.reset();
        }
        return;
    }
    if (PortOpen()) {
        SerialPortErrors::RaisePortAlreadyOpen();
    }
    std::shared_ptr<SerialPort> Opening;
    if (CommPort_ == SerialDevices::SimulatedChipPortNumber()) {
        Opening = SerialDevices::OpenSimulatedDevice();
    } else {
        const QString Name = SerialDevices::DeviceForPort(CommPort_);
        if (!Name.isEmpty()) {
            Opening = std::make_shared<QtSerialPort>(Name);
        }
    }
    if (!Opening) {
        SerialPortErrors::RaiseInvalidPortNumber();
    }
    if (Opening->PortOpen()) {
        // The simulated line is one device, as a real port is.
        SerialPortErrors::RaisePortAlreadyOpen();
    }
    Opening->SetSettings(Settings_);
    Opening->SetHandshaking(Handshaking_);
    Opening->SetInBufferSize(InBufferSize_);
    Opening->SetOutBufferSize(OutBufferSize_);
    Opening->SetInputLen(InputLen_);
    Opening->SetParityReplace(ParityReplace_);
    Opening->SetDTREnable(DTREnable_);
    Opening->SetPortOpen(true);
    Device_ = std::move(Opening);
}

SerialPort& SerialPortObject::OpenDevice() {
    if (!PortOpen()) {
        SerialPortErrors::RaisePortNotOpen();
    }
    return *Device_;
}

void SerialPortObject::Output(const QByteArray& Bytes) { OpenDevice().Output(Bytes); }

QByteArray SerialPortObject::Input() { return OpenDevice().Input(); }

int32_t SerialPortObject::InBufferCount() { return OpenDevice().InBufferCount(); }

void SerialPortObject::SetInBufferCount(int32_t Value) { OpenDevice().SetInBufferCount(Value); }

int32_t SerialPortObject::OutBufferCount() { return OpenDevice().OutBufferCount(); }

void SerialPortObject::SetDTREnable(bool Value) {
    DTREnable_ = Value;
    if (PortOpen()) {
        Device_->SetDTREnable(Value);
    }
}

void SerialPortObject::WaitForInput(int32_t Count, int64_t MaxMicroseconds) {
    OpenDevice().WaitForInput(Count, MaxMicroseconds);
}

void SerialPortObject::WaitForOutputDrain(int64_t MaxMicroseconds) {
    OpenDevice().WaitForOutputDrain(MaxMicroseconds);
}

QList<int32_t> SerialPortObject::TakeCommEvents() {
    return Device_ ? Device_->TakeCommEvents() : QList<int32_t>();
}

#pragma once

#include <QString>
#include <cstdint>
#include <exception>

// The current run-time error: a number and a description. Code that fails in
// a way nobody expected throws RuntimeError (or any exception); an error trap
// catches it and takes it into Err() with TakeCurrentException().
struct ErrObject {
    int32_t Number = 0;
    QString Description;
    void Clear() {
        Number = 0;
        Description.clear();
    }
};

class RuntimeError : public std::exception {
  public:
    RuntimeError(int32_t Number, QString Description)
        : Number_(Number), Description_(std::move(Description)), What_(Description_.toUtf8()) {}
    int32_t Number() const { return Number_; }
    const QString& Description() const { return Description_; }
    const char* what() const noexcept override { return What_.constData(); }

  private:
    int32_t Number_;
    QString Description_;
    QByteArray What_;
};

// The process-wide current error.
ErrObject& Err();

// Sets Err() from the exception being handled; call it inside a catch block.
// Standard exceptions get the numbers the old run time gave the same failure
// (7 out of memory, 9 subscript out of range); an unknown one has no text.
void TakeCurrentException();

// Throws RuntimeError, the counterpart of raising an error by number.
[[noreturn]] void RaiseError(int32_t Number, const QString& Description);

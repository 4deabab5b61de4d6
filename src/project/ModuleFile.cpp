#include "project/ModuleFile.h"

#include <QFile>
#include <QStringDecoder>

#include "frame/UtilitiesFilename.h"
#include "platform/UserFileWriter.h"

namespace ModuleFile {

namespace {
// Windows-1252 from 0x80 to 0x9F; the other bytes are Latin-1. 0 marks the
// five unassigned codes, which map to the control characters of their value.
const char16_t Cp1252High[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

QString FromCp1252(const QByteArray& Bytes) {
    QString Text;
    Text.reserve(Bytes.size());
    for (char Byte : Bytes) {
        const uint8_t Code = static_cast<uint8_t>(Byte);
        if (Code >= 0x80 && Code <= 0x9F && Cp1252High[Code - 0x80] != 0) {
            Text += QChar(Cp1252High[Code - 0x80]);
        } else {
            Text += QChar(Code);
        }
    }
    return Text;
}

// False when a character has no Windows-1252 code.
bool ToCp1252(const QString& Text, QByteArray& Bytes) {
    Bytes.clear();
    Bytes.reserve(Text.size());
    for (QChar C : Text) {
        const char16_t Code = C.unicode();
        if (Code < 0x80 || (Code >= 0xA0 && Code <= 0xFF)) {
            Bytes += static_cast<char>(Code);
            continue;
        }
        int Found = -1;
        for (int Index = 0; Index < 32; ++Index) {
            if (Cp1252High[Index] == Code || (Cp1252High[Index] == 0 && Code == 0x80 + Index)) {
                Found = Index;
                break;
            }
        }
        if (Found < 0) {
            return false;
        }
        Bytes += static_cast<char>(0x80 + Found);
    }
    return true;
}

}  // namespace

QString Decode(const QByteArray& Bytes, ModuleFileFormat& Format) {
    QByteArray Body = Bytes;
    Format = ModuleFileFormat();
    if (Body.startsWith("\xEF\xBB\xBF")) {
        Format.ByteOrderMark = true;
        Body.remove(0, 3);
    }
    QStringDecoder Utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString Text = Utf8.decode(Body);
    if (Utf8.hasError()) {
        Format.Utf8 = false;
        Format.ByteOrderMark = false;
        Text = FromCp1252(Bytes);
    }
    Format.LineFeedOnly =
        Text.contains(QLatin1Char('\n')) && !Text.contains(QStringLiteral("\r\n"));
    if (Format.LineFeedOnly) {
        Text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    }
    return Text;
}

QByteArray Encode(const QString& Text, const ModuleFileFormat& Format) {
    QString Body = Text;
    if (Format.LineFeedOnly) {
        Body.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    }
    if (!Format.Utf8) {
        QByteArray Bytes;
        if (ToCp1252(Body, Bytes)) {
            return Bytes;
        }
        // A character the old code page lacks: UTF-8 keeps it.
    }
    QByteArray Bytes = Body.toUtf8();
    if (Format.ByteOrderMark) {
        Bytes.prepend("\xEF\xBB\xBF");
    }
    return Bytes;
}

bool Read(const QString& Filename, QString& Text, ModuleFileFormat& Format) {
    QFile File(UtilitiesFilename::LocalFilename(Filename));
    if (!File.open(QIODevice::ReadOnly)) {
        return false;
    }
    Text = Decode(File.readAll(), Format);
    return File.error() == QFileDevice::NoError;
}

bool WriteBytes(const QString& Filename, const QByteArray& Bytes, UserFileFailure& Failure) {
    return UserFile::Write(UtilitiesFilename::LocalFilename(Filename), Bytes, Failure);
}

bool Write(const QString& Filename, const QString& Text, const ModuleFileFormat& Format,
           UserFileFailure& Failure) {
    return WriteBytes(Filename, Encode(Text, Format), Failure);
}

}  // namespace ModuleFile

#include "kvcomp/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace OutputFile {

namespace {

bool Fail(const std::filesystem::path& File, const char* Step, int Errno, std::string& Error) {
    Error = "Can't write " + File.string() + ": " + Step + ": " + std::strerror(Errno);
    return false;
}

}  // namespace

bool Write(const std::filesystem::path& File, std::string_view Bytes, Durability How,
           std::string& Error) {
    std::error_code Code;
    if (std::filesystem::is_directory(File, Code)) {
        Error = "Can't write " + File.string() + ": a folder has that name";
        return false;
    }
    const std::filesystem::path Folder =
        File.has_parent_path() ? File.parent_path() : std::filesystem::path(".");
    // A hidden name beside the file, so that the rename stays on one file system.
    std::string Leaf(".");
    Leaf.append(File.filename().string()).append(".XXXXXX");
    std::string Pattern = (Folder / Leaf).string();
    const int Handle = ::mkstemp(Pattern.data());
    if (Handle < 0) {
        return Fail(File, "create", errno, Error);
    }
    const auto Abandon = [&](const char* Step) {
        const int Errno = errno;
        ::close(Handle);
        ::unlink(Pattern.c_str());
        return Fail(File, Step, Errno, Error);
    };
    size_t Done = 0;
    while (Done < Bytes.size()) {
        const ssize_t Count = ::write(Handle, Bytes.data() + Done, Bytes.size() - Done);
        if (Count < 0 && errno == EINTR) {
            continue;
        }
        if (Count <= 0) {
            if (Count == 0) {
                errno = EIO;
            }
            return Abandon("write");
        }
        Done += static_cast<size_t>(Count);
    }
    // mkstemp makes the file for its owner alone; an output file is as any other.
    const mode_t Mask = ::umask(0);
    ::umask(Mask);
    if (::fchmod(Handle, 0666 & ~Mask) != 0) {
        return Abandon("chmod");
    }
    if (How == Durability::Synced && ::fsync(Handle) != 0) {
        return Abandon("sync");
    }
    if (::close(Handle) != 0) {
        const int Errno = errno;
        ::unlink(Pattern.c_str());
        return Fail(File, "close", Errno, Error);
    }
    if (::rename(Pattern.c_str(), File.c_str()) != 0) {
        const int Errno = errno;
        ::unlink(Pattern.c_str());
        return Fail(File, "rename", Errno, Error);
    }
    const int FolderHandle =
        How == Durability::Synced ? ::open(Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (FolderHandle >= 0) {
        ::fsync(FolderHandle);
        ::close(FolderHandle);
    }
    return true;
}

}  // namespace OutputFile

#include "platform/SystemSharedBlocks.h"

#include "platform/FileDescriptor.h"
#include "platform/RuntimeFolder.h"

#include <QFile>

#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
constexpr int lockAttempts = 400;
constexpr long lockPause = 5'000'000; // nanoseconds

/// Open file description locks: they belong to this opening, change between shared and exclusive in one
/// step, and end with the process.
bool TryLock(int file, short type)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    return fcntl(file, F_OFD_SETLK, &lock) == 0;
}

/// True when an exclusive lock could not be had. Asking gets none.
bool IsLockedElsewhere(int file)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    // An error leaves the question open; who waits for the others to leave must not stop too early.
    return fcntl(file, F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

/// The name may have been taken away, and perhaps given to a newer file, before the lock was got.
bool IsNamed(int file, const QByteArray &path)
{
    struct stat opened = {};
    struct stat named = {};
    return fstat(file, &opened) == 0 && stat(path.constData(), &named) == 0 &&
           opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

/// Empties the file and gives it its size; the disk space is taken at once, so that no access can fail later.
int MakeEmpty(int file, int size)
{
    if (ftruncate(file, 0) != 0)
        return errno;
    return posix_fallocate(file, 0, size);
}

int CheckSize(int file, int size)
{
    struct stat status = {};
    if (fstat(file, &status) != 0)
        return errno;
    return status.st_size < size ? EINVAL : 0;
}

class MappedBlock final : public SharedBlock
{
public:
    MappedBlock(FileDescriptor descriptor, QByteArray path, char *bytes, int size, bool existed)
        : file(std::move(descriptor))
        , abPath(std::move(path))
        , abBytes(bytes)
        , lSize(size)
        , bExisted(existed)
    {
    }

    ~MappedBlock() override
    {
        munmap(abBytes, static_cast<size_t>(lSize));
        // Two that leave at the same time may both miss: the file then stays, and its next opener empties it.
        if (TryLock(file.Number(), F_WRLCK) && IsNamed(file.Number(), abPath))
            unlink(abPath.constData());
    }

    bool Existed() const override { return bExisted; }
    bool IsHeldElsewhere() const override { return IsLockedElsewhere(file.Number()); }
    char *Bytes() override { return abBytes; }
    int Size() const override { return lSize; }

private:
    Q_DISABLE_COPY(MappedBlock)

    FileDescriptor file;
    QByteArray abPath;
    char *abBytes;
    int lSize;
    bool bExisted;
};

/// An open file on which this process has a shared lock.
struct HeldFile
{
    FileDescriptor file;
    bool bExisted = false;
};

/// One attempt; EAGAIN when another process is just making or leaving the block.
int TryHold(const QByteArray &path, int size, HeldFile &held)
{
    FileDescriptor file(open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!file.IsOpen())
        return errno;
    const bool alone = TryLock(file.Number(), F_WRLCK);
    if (!alone && !TryLock(file.Number(), F_RDLCK))
        return errno == EACCES ? EAGAIN : errno;
    if (!IsNamed(file.Number(), path))
        return EAGAIN;
    const int failure = alone ? MakeEmpty(file.Number(), size) : CheckSize(file.Number(), size);
    if (failure != 0)
        return failure;
    if (alone && !TryLock(file.Number(), F_RDLCK))
        return errno;
    held = {std::move(file), !alone};
    return 0;
}

int Hold(const QByteArray &path, int size, HeldFile &held)
{
    int failure = TryHold(path, size, held);
    for (int attempt = 1; failure == EAGAIN && attempt < lockAttempts; ++attempt) {
        const timespec pause{0, lockPause};
        nanosleep(&pause, nullptr);
        failure = TryHold(path, size, held);
    }
    return failure;
}
} // namespace

std::unique_ptr<SharedBlock> SystemSharedBlocks::Open(const QString &name, int size, int &errorCode)
{
    const QString folder = RuntimeFolder(errorCode);
    if (folder.isEmpty())
        return nullptr;
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/velmar.") + name);
    HeldFile held;
    errorCode = Hold(path, size, held);
    if (errorCode != 0)
        return nullptr;
    void *bytes =
        mmap(nullptr, static_cast<size_t>(size), PROT_READ | PROT_WRITE, MAP_SHARED, held.file.Number(), 0);
    if (bytes == MAP_FAILED) {
        errorCode = errno;
        return nullptr;
    }
    return std::make_unique<MappedBlock>(std::move(held.file), path, static_cast<char *>(bytes), size,
                                         held.bExisted);
}

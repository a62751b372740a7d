#include "Confinement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr char systemTemporary[] = "/tmp";

constexpr quint64 reading = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr quint64 running = reading | LANDLOCK_ACCESS_FS_EXECUTE;
constexpr quint64 sockets = LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_REMOVE_FILE;
constexpr quint64 writing = reading | sockets | LANDLOCK_ACCESS_FS_WRITE_FILE |
                            LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_MAKE_DIR |
                            LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SYM;

/// Rights that came with later versions of Landlock. Moving between folders is refused unless it is allowed.
constexpr quint64 moving = LANDLOCK_ACCESS_FS_REFER, shortening = 1ULL << 14;

/// What a file, and no folder, can be allowed.
constexpr quint64 fileRights =
    LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_EXECUTE | shortening;

quint64 RightsOfSystem()
{
    constexpr int moveVersion = 2, shortenVersion = 3;
    const long version = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1)
        return 0;
    return writing | running | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_FIFO |
           LANDLOCK_ACCESS_FS_MAKE_BLOCK | (version >= moveVersion ? moving : 0) |
           (version >= shortenVersion ? shortening : 0);
}

/// A runaway must not take the machine with it.
void LimitResources()
{
    constexpr rlim_t gigabyte = rlim_t(1) << 30;
    const rlimit noCore{0, 0}, fileSize{gigabyte, gigabyte}, memory{4 * gigabyte, 4 * gigabyte};
    setrlimit(RLIMIT_CORE, &noCore);
    setrlimit(RLIMIT_FSIZE, &fileSize);
    setrlimit(RLIMIT_AS, &memory);
}

bool WriteTo(const char *path, const char *text)
{
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return false;
    const auto size = static_cast<ssize_t>(std::strlen(text));
    const bool written = write(file, text, static_cast<size_t>(size)) == size;
    close(file);
    return written;
}

QByteArray MapOf(uint id)
{
    const QByteArray number = QByteArray::number(id);
    return number + ' ' + number + " 1";
}

} // namespace

Confinement::Confinement(const QString &workFolder, const QString &program)
    : lParent(getpid())
    , abWorkFolder(QFile::encodeName(workFolder))
    , abTemporary(QFile::encodeName(QDir(workFolder).filePath(QStringLiteral("tmp"))))
    , abUserMap(MapOf(geteuid()))
    , abGroupMap(MapOf(getegid()))
{
    // The work folder itself may stand in the temporary one: a place for it to be seen at.
    const QString inside = QDir(QLatin1String(systemTemporary)).relativeFilePath(workFolder);
    const QDir temporary(QFile::decodeName(abTemporary));
    temporary.mkpath(inside.startsWith(QLatin1String("..")) ? QStringLiteral(".") : inside);

    lRuled = RightsOfSystem();
    landlock_ruleset_attr attributes = {};
    attributes.handled_access_fs = lRuled;
    if (lRuled != 0)
        rules = FileDescriptor(
            static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
    AllowProgram(program);
    AllowFonts();
    AllowWork(workFolder);
}

void Confinement::AllowPath(const QString &path, quint64 rights)
{
    const FileDescriptor place(open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC));
    struct stat status = {};
    if (!rules.IsOpen() || !place.IsOpen() || fstat(place.Number(), &status) != 0)
        return;
    landlock_path_beneath_attr rule = {};
    rule.allowed_access = rights & lRuled & (S_ISDIR(status.st_mode) ? ~quint64(0) : fileRights);
    rule.parent_fd = place.Number();
    syscall(SYS_landlock_add_rule, rules.Number(), LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
}

void Confinement::AllowProgram(const QString &program)
{
    AllowPath(QFileInfo(program).canonicalPath(), running);
    for (const char *folder : {"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/opt"})
        AllowPath(QLatin1String(folder), running);
    for (const char *readable :
         {"/etc/alternatives", "/etc/fonts", "/etc/group", "/etc/ld.so.cache", "/etc/ld.so.conf",
          "/etc/ld.so.conf.d", "/etc/libreoffice", "/etc/localtime", "/etc/nsswitch.conf", "/etc/papersize",
          "/etc/passwd", "/dev/random", "/dev/urandom", "/dev/zero", "/proc", "/sys/devices/system",
          "/var/cache/fontconfig", "/var/lib/libreoffice", "/var/spool/libreoffice"})
        AllowPath(QLatin1String(readable), reading);
    AllowPath(QStringLiteral("/dev/null"), writing);
}

void Confinement::AllowFonts()
{
    const QDir home = QDir::home();
    for (const char *own : {".fonts", ".fonts.conf", ".fonts.conf.d"})
        AllowPath(home.filePath(QLatin1String(own)), reading);
    using Paths = QStandardPaths;
    AllowPath(Paths::writableLocation(Paths::GenericDataLocation) + QStringLiteral("/fonts"), reading);
    AllowPath(Paths::writableLocation(Paths::GenericConfigLocation) + QStringLiteral("/fontconfig"), reading);
    AllowPath(Paths::writableLocation(Paths::GenericCacheLocation) + QStringLiteral("/fontconfig"), reading);
}

void Confinement::AllowWork(const QString &workFolder)
{
    AllowPath(workFolder, writing | moving | shortening);
    // As the temporary folder it is seen by another way, which does not lead through the work folder.
    AllowPath(QFile::decodeName(abTemporary), writing | moving | shortening);
    // Where that cannot be had, the office program makes a socket in the real one, and won't start without.
    AllowPath(QLatin1String(systemTemporary), sockets);
}

void Confinement::Enter() const
{
    setsid(); // a group of its own, so that all of it can be ended
    LimitResources();
    if (LeaveNamespaces())
        HideTemporaryFiles();
    // Behind the change of namespaces, which takes it back.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != lParent)
        _exit(1);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    if (rules.IsOpen())
        syscall(SYS_landlock_restrict_self, rules.Number(), 0);
}

/// No network, and mounts of its own.
bool Confinement::LeaveNamespaces() const
{
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS | CLONE_NEWIPC) != 0)
        return false;
    WriteTo("/proc/self/setgroups", "deny");
    return WriteTo("/proc/self/uid_map", abUserMap.constData()) &&
           WriteTo("/proc/self/gid_map", abGroupMap.constData());
}

/// The office program leaves a socket in the temporary folder when it is killed.
void Confinement::HideTemporaryFiles() const
{
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return;
    const int work = open(abWorkFolder.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (work < 0 || mount(abTemporary.constData(), systemTemporary, nullptr, MS_BIND, nullptr) != 0)
        return;
    struct stat status = {};
    const bool seen = stat(abWorkFolder.constData(), &status) == 0;
    // The folder's own path leads to the empty place within the new one by now; a descriptor does not.
    if (!seen || fchdir(work) != 0 || mount(".", abWorkFolder.constData(), nullptr, MS_BIND, nullptr) != 0)
        umount2(systemTemporary, MNT_DETACH);
}

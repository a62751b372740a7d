#include "core/CSharedString.h"

#include "core/RaisedError.h"
#include "core/Utilities.h"
#include "core/ports/SharedBlock.h"

#include <QtEndian>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace {

// The block: length, text, NUL.
constexpr int blockSize = 65535;
constexpr int textOffset = 4;

constexpr long typeMismatch = 13;
constexpr long outOfStringSpace = 14;
constexpr long badArguments = 160;

[[noreturn]] void RaiseOwnError(long number, const QString &description)
{
    throw RaisedError(number, ProgramFileName() + QStringLiteral(".VBError"), description);
}

SharedBlock &MappedBlock(const std::unique_ptr<SharedBlock> &block)
{
    if (!block)
        RaiseOwnError(typeMismatch, QStringLiteral("Type mismatch"));
    BugAssert(block->Bytes() != nullptr && block->Size() > textOffset,
              QStringLiteral("Shared block without view"));
    return *block;
}

} // namespace

CSharedString::CSharedString() = default;
CSharedString::~CSharedString() = default;

void CSharedString::Create(SharedBlocks &blocks, const QString &name)
{
    if (name.isEmpty())
        ApiRaise(badArguments);
    int errorCode = 0;
    std::unique_ptr<SharedBlock> opened = blocks.Open(name, blockSize, errorCode);
    if (!opened)
        ApiRaise(errorCode);
    block = std::move(opened);
    if (!block->Existed())
        qToLittleEndian<qint32>(0, MappedBlock(block).Bytes());
}

bool CSharedString::IsHeldElsewhere() const
{
    return MappedBlock(block).IsHeldElsewhere();
}

QString CSharedString::Item() const
{
    SharedBlock &mapped = MappedBlock(block);
    // Another process may have written anything: neither the length nor the NUL is relied on.
    const qint32 length = qFromLittleEndian<qint32>(mapped.Bytes());
    const qint32 readable = std::clamp(length, 0, mapped.Size() - textOffset);
    const char *text = mapped.Bytes() + textOffset;
    return QString::fromUtf8(text, static_cast<qsizetype>(qstrnlen(text, static_cast<size_t>(readable))));
}

void CSharedString::SetItem(const QString &value)
{
    SharedBlock &mapped = MappedBlock(block);
    const QByteArray bytes = value.toUtf8();
    if (bytes.size() >= mapped.Size() - textOffset)
        RaiseOwnError(outOfStringSpace, QStringLiteral("Out of string space"));
    // The text first: a reader that polls meanwhile finds nothing of a text that follows an empty one.
    std::memcpy(mapped.Bytes() + textOffset, bytes.constData(), static_cast<size_t>(bytes.size()) + 1);
    std::atomic_thread_fence(std::memory_order_release);
    qToLittleEndian<qint32>(static_cast<qint32>(bytes.size()), mapped.Bytes());
}

#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

/// A named block of bytes that the processes of one user share. It lives while any process holds it, also
/// when a holder was killed; the first holder finds zeros.
class SharedBlock
{
public:
    virtual ~SharedBlock() = default;

    /// True when another process held the block already as this one opened it.
    virtual bool Existed() const = 0;
    /// True while another opening of the block lasts, also one of this process. A killed holder counts no
    /// more.
    virtual bool IsHeldElsewhere() const = 0;

    virtual char *Bytes() = 0;
    virtual int Size() const = 0;
};

class SharedBlocks
{
public:
    virtual ~SharedBlocks() = default;

    /// Opens or makes the block of that name. A failure gives null and the system's code in `errorCode`.
    virtual std::unique_ptr<SharedBlock> Open(const QString &name, int size, int &errorCode) = 0;
};

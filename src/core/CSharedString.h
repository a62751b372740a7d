#pragma once

#include <QString>

#include <memory>

class SharedBlock;
class SharedBlocks;

/// One string in a named block of 65535 bytes that other processes read: 4 bytes length, little-endian, then
/// the text in UTF-8, ended by a NUL. There is no lock: one writer, and a reader that polls.
class CSharedString
{
public:
    CSharedString();
    ~CSharedString();

    /// Maps the block; an existing one keeps its contents. Raises the system's error.
    void Create(SharedBlocks &blocks, const QString &name);

    /// True while another process holds the block. Raises 13 before `Create`.
    bool IsHeldElsewhere() const;
    /// The stored text. Raises 13 before `Create`.
    QString Item() const;
    /// Stores a text; one that exceeds the block is refused with a raised error and changes nothing.
    void SetItem(const QString &value);

private:
    std::unique_ptr<SharedBlock> block;
};

#pragma once

#include <utility>

#include <unistd.h>

/// Owner of an open file of the system; -1 for none.
class FileDescriptor final
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : lNumber(number)
    {
    }
    FileDescriptor(FileDescriptor &&other) noexcept
        : lNumber(std::exchange(other.lNumber, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(lNumber, other.lNumber);
        return *this;
    }
    ~FileDescriptor()
    {
        if (IsOpen())
            close(lNumber);
    }

    bool IsOpen() const { return lNumber >= 0; }
    int Number() const { return lNumber; }

private:
    int lNumber = -1;
};

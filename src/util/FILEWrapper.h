#pragma once
// A FILE* that checks every operation. The caller closes it: this is a value that checks, not an owner.

#include "util/String.h"

#include <cstdio>

namespace util
{

class FILEWrapper
{
public:
    // Throws std::runtime_error "Failed to open file \"path\"".
    FILEWrapper(const String& path, const char* mode);

    void Seek(long offset, int origin);
    void Read(void* buffer, unsigned long bytes);
    void Write(const void* buffer, unsigned long bytes);
    long Tell() const;
    void Close();

    FILE* Get() const { return m_file; }

private:
    FILE* m_file;
};

} // namespace util

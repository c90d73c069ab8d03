#include "util/FILEWrapper.h"

#include "logging/Exception.h"
#include "util/StringUtil.h"

#include <stdexcept>
#include <sys/stat.h>

namespace util
{

FILEWrapper::FILEWrapper(const String& path, const char* mode) : m_file(std::fopen(path.c_str(), mode))
{
    // A folder opens like a file on Linux and then reads as nothing and measures as the largest long: it is
    // no file to open.
    struct stat status;
    if (m_file && (fstat(fileno(m_file), &status) != 0 || S_ISDIR(status.st_mode)))
    {
        std::fclose(m_file);
        m_file = nullptr;
    }
    if (!m_file)
        throw internal::ExceptionDescriber(QLEX_SITE) %
            std::runtime_error("Failed to open file \"" + path + "\"");
}

void FILEWrapper::Seek(long offset, int origin)
{
    if (std::fseek(m_file, offset, origin) != 0)
        throw internal::ExceptionDescriber(QLEX_SITE) % std::runtime_error("Failed to seek in FILE");
}

void FILEWrapper::Read(void* buffer, unsigned long bytes)
{
    if (std::fread(buffer, 1, bytes, m_file) != bytes)
        throw internal::ExceptionDescriber(QLEX_SITE) %
            std::runtime_error("Failed to read " + ToString(bytes) + " bytes");
}

void FILEWrapper::Write(const void* buffer, unsigned long bytes)
{
    if (std::fwrite(buffer, 1, bytes, m_file) != bytes)
        throw internal::ExceptionDescriber(QLEX_SITE) %
            std::runtime_error("Failed to write " + ToString(bytes) + " bytes");
}

long FILEWrapper::Tell() const
{
    return std::ftell(m_file);
}

void FILEWrapper::Close()
{
    if (m_file)
        std::fclose(m_file);
    m_file = nullptr;
}

} // namespace util

// Arbitrary text behind "fmem::": the name must parse to some block, and
// reading that block, wherever it points, must end in data or in an I/O
// fault of the file, never in a crash.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "kticore/files/File.h"
#include "kticore/files/FileUtilities.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    std::basic_string<KTWCHAR> name = KTW("fmem::");
    for (size_t i = 0; i < size && name.size() < 511; ++i)
        name += static_cast<KTWCHAR>(data[i] == 0 ? '.' : data[i]);
    FioFileInfo info{};
    Fio_GetFileInfo(name.c_str(), &info);
    IXFile* file = Fio_Open(name.c_str(), 0);
    if (file->GetLength() != info.size)
        std::abort();
    char buffer[64];
    try {
        file->Read(buffer, sizeof buffer);
        file->Seek(-1, 2);
    } catch (const CXFileException& failure) {
        if (failure.code != XE_IO_FAULT && failure.code != XE_BAD_SEEK)
            std::abort();
    }
    file->Release();
    return 0;
}

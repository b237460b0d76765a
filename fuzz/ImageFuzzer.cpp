// JPEG streams and raw images, as entries of an archive.
#include <cstdint>
#include <cstdlib>

#include "Quiet.h"
#include "access/ZROZRFxAccess.h"
#include "data/ZROZRFxImageJpeg.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::beQuiet();
    nuo::Image image;
    if (unstruct::ZRFxImageJpeg::Decode(data, size, &image)) {
        const std::size_t most = size * unstruct::ZRFxImageJpeg::kMostExpansion;
        if (std::size_t{3} * image.width() * image.height() > most) std::abort();
    }
    unstruct::ZRFxZipMemFile file;
    unstruct::ZRFxAccess access;
    if (!access.Open(&file, unstruct::ZRZipAccessMode::CREATE) ||
        !access.WriteDataRaw("image.raw", data, size, true)) {
        std::abort();
    }
    access.ReadImage("image.raw", &image);
    return 0;
}

#include "access/ZRFxImageEntry.h"

#include "access/ZROZRFxAccess.h"
#include "data/ZRFxRawImage.h"
#include "data/ZROZRFxImageJpeg.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

bool isRaw(const ZRString& name) {
    return name.Extension() == ".raw";
}

template <typename... Values>
bool fail(nvf::LocatedText message, const Values&... values) {
    return nvf::archiveLogger()->fail(message, values...);
}

}  // namespace

bool WriteImageEntry(ZRFxAccess& access, const ZRString& name, const nuo::Image& image) {
    ZRUbyteArray bytes;
    if (isRaw(name)) {
        if (!ZRFxRawImage::Encode(image, &bytes)) {
            return fail("Error writing snapshot image to ZRFx");
        }
    } else if (!ZRFxImageJpeg::Encode(image, &bytes)) {
        return fail("Error encoding JPEG image");
    }
    return access.WriteDataRaw(name, bytes.Data(), static_cast<std::size_t>(bytes.GetSize()),
                               true) ||
           fail("Error writing snapshot image to ZRFx");
}

bool ReadImageEntry(ZRFxAccess& access, const ZRString& name, nuo::Image* image) {
    NVF_ASSERT(image);
    if (!image) return false;
    ZRFxZipRawData raw;
    if (!access.InternalReadDataRaw(name, LogMode::LOG, &raw) || raw.Length() == 0) {
        return fail("Error reading JPEG image from archive");
    }
    const auto decode = isRaw(name) ? &ZRFxRawImage::Decode : &ZRFxImageJpeg::Decode;
    return decode(raw.Buffer(), raw.Length(), image) ||
           fail("Error decoding JPEG image '%1'", name);
}

}  // namespace unstruct
